#include "base/opacity.h"

#include "runtime/clamp.h"
#include "runtime/math.h"

#include <algorithm>

namespace zlv {

namespace {

constexpr u32 kNoByte = 256;
constexpr u32 kMultiplierOne = 65536;

}  // namespace

void ByteShare::Set(f64 share)
{
    for (i32 i = 0; i < 256; ++i) table[i] = u8(i32(i * share));

    const u32 below = u32(Floor(share * kMultiplierOne));
    bool isFound = false;
    // The two neighbours of the share first: nearly always one of them has no exception.
    for (const u32 candidate : {below, below + 1, below - 1, below + 2}) {
        if (candidate >= kMultiplierOne || !FindExceptions(candidate)) continue;
        isFound = true;
        if (form == Form::Multiplier) return;
    }
    if (!isFound) form = Form::Table;
}

// False, with this share as it was, when there are too many of them, or of two kinds.
bool ByteShare::FindExceptions(u32 candidate)
{
    u16 found[kMaxExceptions];
    std::fill_n(found, kMaxExceptions, u16(kNoByte));
    u32 count = 0;
    i32 difference = 0;
    for (u32 i = 0; i < 256; ++i) {
        const i32 here = table[i] - i32((i * candidate) >> 16);
        if (here == 0) continue;
        if (count == kMaxExceptions || here < -1 || here > 1 || (count > 0 && here != difference)) return false;
        difference = here;
        found[count++] = u16(i);
    }
    form = count == 0 ? Form::Multiplier : Form::MultiplierAndExceptions;
    multiplier = u16(candidate);
    step = i16(difference);
    std::copy_n(found, kMaxExceptions, exceptions);
    return true;
}

DoubleShares::DoubleShares(f64 opacity)
{
    for (i32 i = 0; i < 256; ++i) {
        over[i] = i * opacity;
        under[i] = i * (1 - opacity);
    }
}

f64 LimitOpacity(f64 opacity)
{
    constexpr f64 kNone = 0, kFull = 1;
    return ClampDouble(opacity, &kNone, &kFull);
}

}  // namespace zlv
