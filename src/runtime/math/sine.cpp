#include "runtime/math.h"
#include "runtime/math/scaling.h"
#include "runtime/math/sine_core.h"

namespace zlv {
namespace {

__extension__ typedef unsigned __int128 u128;  // NOLINT(modernize-use-using): using takes no __extension__

// 192 binary places, the most significant word first.
struct Places {
    u64 words[3];
};

// The places of 2/pi from the given one on (counted from the binary point; places before the point
// are zeros).
Places TwoOverPiFrom(i64 place)
{
    const u64 first = u64(place + 64);
    const u64* words = kTwoOverPi + first / 64;
    const u32 shift = first % 64;
    Places places;
    for (u32 i = 0; i < 3; ++i) {
        const u64 fromNext = shift ? words[i + 1] >> (64 - shift) : 0;
        places.words[i] = words[i] << shift | fromNext;
    }
    return places;
}

// number * places, modulo 1.
Places TimesModuloOne(u64 number, const Places& places)
{
    const u128 low = u128(number) * places.words[2];
    const u128 middle = u128(number) * places.words[1] + u64(low >> 64);
    return {{number * places.words[0] + u64(middle >> 64), u64(middle), u64(low)}};
}

// The reduction of an angle of any size. Method: M. Payne, R. Hanek, "Radian reduction for
// trigonometric functions", ACM SIGNUM Newsletter 18 (1983): the places of 2/pi that contribute
// only whole turns are left out, and so are those too small to matter. 192 places less 53 for the
// significand leave 139, eight of which count the steps. No double is nearer than 2^-56 steps to a
// whole one (but 0), so 70 significant bits and more remain.
AngleReduction<f64> ReduceLargeAngle(f64 angle)
{
    const u64 bits = ToBits(Magnitude(angle));
    const i64 exponent = i64(bits >> 52) - 1075;
    const u64 significand = (bits & ((u64(1) << 52) - 1)) | u64(1) << 52;

    // angle / (2 pi) = significand * 2^(exponent - 2) * (2/pi): the point is moved so that the
    // product counts turns.
    Places turns = TimesModuloOne(significand, TwoOverPiFrom(exponent - 2));
    if (ToBits(angle) & kSignBit) {
        u64 carry = 1;
        for (u32 i = 3; i-- > 0;) {
            turns.words[i] = ~turns.words[i] + carry;
            carry = carry && turns.words[i] == 0;
        }
    }

    // The nearest step, and the signed distance to it in units of 2^-128 steps.
    const u64 steps = (turns.words[0] + (u64(1) << 55)) >> 56;
    const u64 high = turns.words[0] << 8 | turns.words[1] >> 56;
    const u64 low = turns.words[1] << 8 | turns.words[2] >> 56;
    const bool isNegative = high >> 63;
    u128 distance = u128(high) << 64 | low;
    if (isNegative) distance = -distance;

    // Its leading 26 bits, the next 53 and the rest of them, as numbers.
    const u64 upper = u64(distance >> 64);
    const u32 zeros = u32(__builtin_clzll(upper | 1));
    const u64 aligned = u64((distance << zeros) >> 64);
    const f64 scale = PowerOfTwo(-64 - i64(zeros));
    const f64 distanceHigh = f64(i64(aligned >> 38)) * 0x1p38 * scale;
    const f64 distanceLow = f64(i64(aligned & ((u64(1) << 38) - 1))) * scale;

    // Times the size of a step: 26 bits times 27 first.
    const f64 product = distanceHigh * kSineStepHigh;
    const f64 rest = distanceLow * kSineStepHigh + (distanceHigh + distanceLow) * kSineStepLow;
    const f64 r = product + rest;
    const f64 rLow = (product - r) + rest;
    return isNegative ? AngleReduction<f64>{steps, -r, -rLow} : AngleReduction<f64>{steps, r, rLow};
}

}  // namespace

f64 Sin(f64 angle)
{
    bool ordinary;
    const f64 sine = SinCore(angle, ordinary);
    if (ordinary) [[likely]]
        return sine;
    if (!(Magnitude(angle) < kInfinity)) return kNaN;
    return SineOf(ReduceLargeAngle(angle));
}

f64 Cos(f64 angle)
{
    bool ordinary;
    const f64 cosine = CosCore(angle, ordinary);
    if (ordinary) [[likely]]
        return cosine;
    if (!(Magnitude(angle) < kInfinity)) return kNaN;
    AngleReduction<f64> reduced = ReduceLargeAngle(angle);
    reduced.steps += kSineQuarter;
    return SineOf(reduced);
}

}  // namespace zlv
