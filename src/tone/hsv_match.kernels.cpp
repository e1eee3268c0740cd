// Colours compared by components, a pixel a lane.
#include "tone/hsv_match.kernels.h"

#include "base/kernel_vectors.h"

#include <cstring>

namespace zlv::ZLV_TARGET {

namespace {

using Reals = RealsOf<f64>;
using Bits __attribute__((vector_size(sizeof(Reals)))) = i64;
constexpr size_t kLanes = Lanes<f64>::kCount;

struct Pixels {
    Reals h, s, v;
};

// As many pixels as a vector has lanes.
Pixels LoadPixels(const f64* pixels)
{
    const Reals a = Load<Reals>(pixels), b = Load<Reals>(pixels + kLanes), c = Load<Reals>(pixels + 2 * kLanes);
#if defined(ZLV_TARGET_avx512)
    const Reals h = __builtin_shufflevector(a, b, 0, 3, 6, 9, 12, 15, 0, 0);
    const Reals s = __builtin_shufflevector(a, b, 1, 4, 7, 10, 13, 0, 0, 0);
    const Reals v = __builtin_shufflevector(a, b, 2, 5, 8, 11, 14, 0, 0, 0);
    return {__builtin_shufflevector(h, c, 0, 1, 2, 3, 4, 5, 10, 13),
            __builtin_shufflevector(s, c, 0, 1, 2, 3, 4, 8, 11, 14),
            __builtin_shufflevector(v, c, 0, 1, 2, 3, 4, 9, 12, 15)};
#elif defined(ZLV_TARGET_avx2)
    const Reals h = __builtin_shufflevector(a, b, 0, 3, 6, 6);
    const Reals s = __builtin_shufflevector(a, b, 1, 4, 7, 7);
    const Reals v = __builtin_shufflevector(a, b, 2, 5, 5, 5);
    return {__builtin_shufflevector(h, c, 0, 1, 2, 5), __builtin_shufflevector(s, c, 0, 1, 2, 6),
            __builtin_shufflevector(v, c, 0, 1, 4, 7)};
#else
    return {__builtin_shufflevector(a, b, 0, 3), __builtin_shufflevector(a, c, 1, 2),
            __builtin_shufflevector(b, c, 0, 3)};
#endif
}

Reals Distance(const Reals& a, f64 b)
{
    constexpr i64 kAllButSign = 0x7FFFFFFFFFFFFFFF;
    return Reals(Bits(a - b) & kAllButSign);
}

// Round the circle where that is shorter. The two forms differ in their rounding.
Reals HueDistance(const Reals& a, f64 b)
{
    const Reals direct = Distance(a, b);
    const Reals round = a > 180 ? (360 - a) + b : (360 - b) + a;
    return direct > 180 ? round : direct;
}

// All bits of the lanes whose pixels match.
struct Equal {
    static Bits Find(const Pixels& pixels, const HsvMatch& match)
    {
        const Hsv& wanted = match.reference;
        return (pixels.h == wanted.h) & (pixels.s == wanted.s) & (pixels.v == wanted.v);
    }
};

struct Within {
    static Bits Find(const Pixels& pixels, const HsvMatch& match)
    {
        const Hsv& wanted = match.reference;
        const Hsv& tolerance = match.tolerance;
        return (HueDistance(pixels.h, wanted.h) <= tolerance.h) & (Distance(pixels.s, wanted.s) <= tolerance.s) &
               (Distance(pixels.v, wanted.v) <= tolerance.v);
    }
};

template <class Test>
u64 FindBits(const f64* pixels, size_t count, const HsvMatch& theMatch)
{
    const HsvMatch match = theMatch;
    Bits places, found = {};
    for (size_t lane = 0; lane < kLanes; ++lane) places[lane] = i64(1) << lane;
    size_t x = 0;
    for (; x + kLanes <= count; x += kLanes, places <<= kLanes) {
        found |= Test::Find(LoadPixels(pixels + x * 3), match) & places;
    }
    if (x < count) {
        f64 last[kLanes * 3] = {};
        std::memcpy(last, pixels + x * 3, (count - x) * 3 * sizeof(f64));
        found |= Test::Find(LoadPixels(last), match) & places;
    }
    u64 bits = 0;
    for (size_t lane = 0; lane < kLanes; ++lane) bits |= u64(found[lane]);
    return bits;
}

u64 FindMatches(const f64* pixels, size_t count, const HsvMatch& match)
{
    const u64 bits = match.isExact ? FindBits<Equal>(pixels, count, match) : FindBits<Within>(pixels, count, match);
    const u64 all = count < kMatchBlock ? (u64{1} << count) - 1 : ~u64{0};
    return all & (match.takesMismatches ? ~bits : bits);
}

// The eight lowest bits as eight bytes of 0 or 1, bit 0 first.
u64 BytesOfBits(u64 bits)
{
    constexpr u64 kOnes = 0x0101010101010101;
    const u64 kept = ((bits & 255) * kOnes) & 0x8040201008040201;  // bit k in byte k
    return ((kept + 0x7F * kOnes) >> 7) & kOnes;
}

void SpreadBits(u64 bits, size_t count, u8 value, u8* bytes)
{
    for (size_t k = 0; k < count; k += 8) {
        const u64 eight = BytesOfBits(bits >> k) * value;
        std::memcpy(bytes + k, &eight, count - k < 8 ? count - k : 8);
    }
}

}  // namespace

extern const HsvMatchKernels kHsvMatchKernels;
const HsvMatchKernels kHsvMatchKernels = {FindMatches, SpreadBits};

}  // namespace zlv::ZLV_TARGET
