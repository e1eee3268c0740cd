// Differences of neighbours and the steps that a table gives for them, all in bytes. AVX-512 looks up a table of 128
// bytes in one instruction, AVX2 in eight parts of sixteen.
#include "filters/adaptive_unsharp_mask.kernels.h"

#include "base/kernel_vectors.h"

#if !defined(ZLV_PORTABLE)
#include <immintrin.h>
#endif

namespace zlv::ZLV_TARGET {

namespace {

constexpr i32 kLimit = i32(kLargestDifference);

i32 Limited(i32 difference)
{
    const i32 notBelow = difference > -kLimit ? difference : -kLimit;
    return notBelow < kLimit ? notBelow : kLimit;
}

void Responses(const u8* from, const u8* subtracted, size_t count, u8* out)
{
    for (size_t i = 0; i < count; ++i) out[i] = u8(kLimit + Limited(from[i] - subtracted[i]));
}

u8 Sharpened(u8 from, u8 subtracted, u8 sample, const SharpeningSteps& steps)
{
    const i32 difference = Limited(from - subtracted);
    const i32 moved = difference < 0 ? sample - steps.steps[-difference] : sample + steps.steps[difference];
    return u8(moved < 0 ? 0 : moved > 255 ? 255 : moved);
}

#if defined(ZLV_TARGET_avx512)

using Bytes = __m512i;
Bytes LoadBytes(const u8* from) { return _mm512_loadu_si512(from); }
Bytes Excess(Bytes a, Bytes b) { return _mm512_subs_epu8(a, b); }
Bytes Or(Bytes a, Bytes b) { return _mm512_or_si512(a, b); }
Bytes Limited(Bytes a) { return _mm512_min_epu8(a, _mm512_set1_epi8(i8(kLimit))); }

class StepTable {
public:
    explicit StepTable(const SharpeningSteps& steps)
        : lower_(_mm512_loadu_si512(steps.steps)), upper_(_mm512_loadu_si512(steps.steps + sizeof(Bytes)))
    {
    }
    Bytes Of(Bytes differences) const { return _mm512_permutex2var_epi8(lower_, differences, upper_); }

private:
    Bytes lower_, upper_;
};

void StoreMoved(Bytes samples, Bytes steps, Bytes falling, u8* to)
{
    const __mmask64 isFalling = _mm512_test_epi8_mask(falling, falling);
    const Bytes raised = _mm512_adds_epu8(samples, steps);
    _mm512_storeu_si512(to, _mm512_mask_subs_epu8(raised, isFalling, samples, steps));
}

#elif defined(ZLV_TARGET_avx2)

using Bytes = __m256i;
Bytes LoadBytes(const u8* from) { return Load<Bytes>(from); }
Bytes Excess(Bytes a, Bytes b) { return _mm256_subs_epu8(a, b); }
Bytes Or(Bytes a, Bytes b) { return _mm256_or_si256(a, b); }
Bytes Limited(Bytes a) { return _mm256_min_epu8(a, _mm256_set1_epi8(i8(kLimit))); }

class StepTable {
public:
    explicit StepTable(const SharpeningSteps& steps)
    {
        for (size_t i = 0; i < kParts; ++i) {
            parts_[i] = _mm256_broadcastsi128_si256(Load<__m128i>(steps.steps + i * kPartBytes));
        }
    }

    // A shuffle gives 0 where the highest bit is set: a saturating addition sets it for whatever is not in the part.
    Bytes Of(Bytes differences) const
    {
        const Bytes toHighestBit = _mm256_set1_epi8(0x80 - kPartBytes);
        Bytes places = differences, steps = _mm256_setzero_si256();
        for (const Bytes& part : parts_) {
            steps = Or(steps, _mm256_shuffle_epi8(part, _mm256_adds_epu8(places, toHighestBit)));
            places = _mm256_sub_epi8(places, _mm256_set1_epi8(kPartBytes));
        }
        return steps;
    }

private:
    static constexpr size_t kPartBytes = 16, kParts = 8;
    Bytes parts_[kParts];
};

void StoreMoved(Bytes samples, Bytes steps, Bytes falling, u8* to)
{
    const Bytes isRising = _mm256_cmpeq_epi8(falling, _mm256_setzero_si256());
    const Bytes raised = _mm256_adds_epu8(samples, _mm256_and_si256(isRising, steps));
    Store(to, _mm256_subs_epu8(raised, _mm256_andnot_si256(isRising, steps)));
}

#endif

void Sharpen(const u8* from, const u8* subtracted, const u8* samples, const SharpeningSteps& steps, size_t count,
             u8* out)
{
    size_t left = count;
#if defined(ZLV_TARGET_avx2) || defined(ZLV_TARGET_avx512)
    const StepTable table(steps);
    while (left >= sizeof(Bytes)) {
        left -= sizeof(Bytes);
        const Bytes a = LoadBytes(from + left), b = LoadBytes(subtracted + left);
        const Bytes falling = Excess(b, a);
        const Bytes differences = Limited(Or(Excess(a, b), falling));
        StoreMoved(LoadBytes(samples + left), table.Of(differences), falling, out + left);
    }
#endif
    while (left > 0) {
        --left;
        out[left] = Sharpened(from[left], subtracted[left], samples[left], steps);
    }
}

void CopyColours(const u8* __restrict from, size_t pixels, u8* __restrict to)
{
    for (size_t i = 0; i < 4 * pixels; ++i) to[i] = i % 4 == 3 ? to[i] : from[i];
}

}  // namespace

extern const UnsharpMaskKernels kUnsharpMaskKernels;
const UnsharpMaskKernels kUnsharpMaskKernels = {Responses, Sharpen, CopyColours};

}  // namespace zlv::ZLV_TARGET
