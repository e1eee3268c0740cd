// Sums and differences of samples and entries, and the extremes of them.
#include "base/gray_morphology.kernels.h"

#if !defined(ZLV_PORTABLE)
#include <immintrin.h>
#endif

namespace zlv::ZLV_TARGET {

namespace {

u8 MinOf(u8 a, u8 b) { return b < a ? b : a; }
u8 AddSaturated(u8 a, u8 b) { return u8(a + MinOf(b, u8(255 - a))); }
u8 SubtractSaturated(u8 a, u8 b) { return u8(a - MinOf(a, b)); }

#if defined(ZLV_TARGET_avx512)

using Lanes = __m512i;
constexpr size_t kLanes = 64;
Lanes Load(const u8* from) { return _mm512_loadu_si512(from); }
void Store(Lanes a, u8* to) { _mm512_storeu_si512(to, a); }
Lanes Broadcast(u8 value) { return _mm512_set1_epi8(i8(value)); }
Lanes MaxOf(Lanes a, Lanes b) { return _mm512_max_epu8(a, b); }
Lanes MinOf(Lanes a, Lanes b) { return _mm512_min_epu8(a, b); }
Lanes AddSaturated(Lanes a, Lanes b) { return _mm512_adds_epu8(a, b); }
Lanes SubtractSaturated(Lanes a, Lanes b) { return _mm512_subs_epu8(a, b); }
bool IsEqual(Lanes a, Lanes b) { return _mm512_cmpneq_epi8_mask(a, b) == 0; }

#elif defined(ZLV_TARGET_avx2)

using Lanes = __m256i;
constexpr size_t kLanes = 32;
Lanes Load(const u8* from) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from)); }
void Store(Lanes a, u8* to) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), a); }
Lanes Broadcast(u8 value) { return _mm256_set1_epi8(i8(value)); }
Lanes MaxOf(Lanes a, Lanes b) { return _mm256_max_epu8(a, b); }
Lanes MinOf(Lanes a, Lanes b) { return _mm256_min_epu8(a, b); }
Lanes AddSaturated(Lanes a, Lanes b) { return _mm256_adds_epu8(a, b); }
Lanes SubtractSaturated(Lanes a, Lanes b) { return _mm256_subs_epu8(a, b); }
bool IsEqual(Lanes a, Lanes b) { return _mm256_movemask_epi8(_mm256_cmpeq_epi8(a, b)) == -1; }

#elif !defined(ZLV_PORTABLE)

using Lanes = __m128i;
constexpr size_t kLanes = 16;
Lanes Load(const u8* from) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)); }
void Store(Lanes a, u8* to) { _mm_storeu_si128(reinterpret_cast<__m128i*>(to), a); }
Lanes Broadcast(u8 value) { return _mm_set1_epi8(i8(value)); }
Lanes MaxOf(Lanes a, Lanes b) { return _mm_max_epu8(a, b); }
Lanes MinOf(Lanes a, Lanes b) { return _mm_min_epu8(a, b); }
Lanes AddSaturated(Lanes a, Lanes b) { return _mm_adds_epu8(a, b); }
Lanes SubtractSaturated(Lanes a, Lanes b) { return _mm_subs_epu8(a, b); }
bool IsEqual(Lanes a, Lanes b) { return _mm_movemask_epi8(_mm_cmpeq_epi8(a, b)) == 0xFFFF; }

#else

using Lanes = u8;
constexpr size_t kLanes = 1;
Lanes Load(const u8* from) { return *from; }
void Store(Lanes a, u8* to) { *to = a; }
Lanes Broadcast(u8 value) { return value; }
Lanes MaxOf(Lanes a, Lanes b) { return a < b ? b : a; }
bool IsEqual(Lanes a, Lanes b) { return a == b; }

#endif

// What a window starts from, where it can stop, and how it goes on. Results beyond the range are the end of the range
// at once: the extreme starts from one end, and at the other nothing is left to find.
struct Dilation {
    static constexpr u8 kStart = 0, kEnd = 255;
    template <class V>
    static V Extreme(V a, V b)
    {
        return MaxOf(a, b);
    }
    template <class V>
    static V ApplyPositive(V sample, V entry)
    {
        return AddSaturated(sample, entry);
    }
    template <class V>
    static V ApplyNegative(V sample, V size)
    {
        return SubtractSaturated(sample, size);
    }
};

struct Erosion {
    static constexpr u8 kStart = 255, kEnd = 0;
    template <class V>
    static V Extreme(V a, V b)
    {
        return MinOf(a, b);
    }
    template <class V>
    static V ApplyPositive(V sample, V entry)
    {
        return SubtractSaturated(sample, entry);
    }
    template <class V>
    static V ApplyNegative(V sample, V size)
    {
        return AddSaturated(sample, size);
    }
};

template <class Apply>
void ApplyTo(u8* samples, u8 size, size_t count, Apply apply)
{
    const Lanes sizes = Broadcast(size);
    size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) Store(apply(Load(samples + i), sizes), samples + i);
    for (; i < count; ++i) samples[i] = apply(samples[i], size);
}

template <class Op>
void Apply(u8* samples, i16 entry, size_t count)
{
    const auto positive = [](auto sample, auto size) { return Op::ApplyPositive(sample, size); };
    const auto negative = [](auto sample, auto size) { return Op::ApplyNegative(sample, size); };
    if (entry >= 0) ApplyTo(samples, u8(entry), count, positive);
    else ApplyTo(samples, u8(-entry), count, negative);
}

constexpr size_t kVectors = 4;
constexpr size_t kBlock = kVectors * kLanes;
static_assert(kBlock <= kMorphologyBlock);

// One entry over a block.
template <class Op, class Apply>
void ApplyEntry(const u8* from, u8 size, Lanes* found, Apply apply)
{
    const Lanes sizes = Broadcast(size);
#pragma GCC unroll 4
    for (size_t v = 0; v < kVectors; ++v) found[v] = Op::Extreme(found[v], apply(Load(from + v * kLanes), sizes));
}

template <class Op>
void WindowBlock(const u8* const* rows, const i16* entries, size_t side, size_t first, u8* out)
{
    const auto positive = [](Lanes sample, Lanes size) { return Op::ApplyPositive(sample, size); };
    const auto negative = [](Lanes sample, Lanes size) { return Op::ApplyNegative(sample, size); };
    Lanes found[kVectors];
    for (size_t v = 0; v < kVectors; ++v) found[v] = Broadcast(Op::kStart);
    const Lanes end = Broadcast(Op::kEnd);
    for (size_t j = 0; j < side; ++j) {
        const u8* const from = rows[j] + first;
        for (size_t k = 0; k < side; ++k) {
            const i16 entry = entries[j * side + k];
            if (entry >= 0) ApplyEntry<Op>(from + k, u8(entry), found, positive);
            else ApplyEntry<Op>(from + k, u8(-entry), found, negative);
        }
        // Bright and dark regions are at the end of the range long before the window is.
        bool isAtEnd = true;
        for (size_t v = 0; v < kVectors; ++v) isAtEnd = isAtEnd && IsEqual(found[v], end);
        if (isAtEnd) break;
    }
    for (size_t v = 0; v < kVectors; ++v) Store(found[v], out + v * kLanes);
}

template <class Op>
void Window(const u8* const* rows, const i16* entries, size_t side, size_t count, u8* out)
{
    size_t i = 0;
    for (; i + kBlock <= count; i += kBlock) WindowBlock<Op>(rows, entries, side, i, out + i);
    if (i == count) return;
    u8 rest[kBlock];
    WindowBlock<Op>(rows, entries, side, i, rest);
    for (size_t k = 0; i + k < count; ++k) out[i + k] = rest[k];
}

}  // namespace

extern const GrayMorphologyKernels kGrayMorphologyKernels;
const GrayMorphologyKernels kGrayMorphologyKernels = {{Apply<Dilation>, Window<Dilation>},
                                                      {Apply<Erosion>, Window<Erosion>}};

}  // namespace zlv::ZLV_TARGET
