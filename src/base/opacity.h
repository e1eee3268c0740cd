// Opacity: what a share of every sample value is, truncated as tables of it would have it.
#pragma once

#include "platform/types.h"

namespace zlv {

// The entries trunc(i * share) for bytes i, as a table and, wherever one is found, as a multiplier for vectors:
// (i * multiplier) >> 16, with `step` added at a few exceptions. 65536 has more multiples than there are different
// fractions of denominators up to 255, so a multiplier with the same floors always exists; the exceptions are products
// that doubles round to the wrong side of a whole number (0.7 * 10 and its like).
struct ByteShare {
    static constexpr u32 kMaxExceptions = 6;
    enum class Form : u8 { Multiplier, MultiplierAndExceptions, Table };

    void Set(f64 share);

    u8 table[256];
    Form form;
    u16 multiplier;
    i16 step;
    u16 exceptions[kMaxExceptions];  // unused ones are no byte

private:
    bool FindExceptions(u32 candidate);
};

// The two shares that are mixed at an opacity of 0 to 1.
struct ByteShares {
    void Set(f64 opacity)
    {
        under.Set(1 - opacity);
        over.Set(opacity);
    }

    ByteShare under, over;
};

// The same entries before they are truncated.
struct DoubleShares {
    explicit DoubleShares(f64 opacity);

    f64 under[256], over[256];
};

// Limits to 0 to 1. What is no number stays none.
f64 LimitOpacity(f64 opacity);

}  // namespace zlv
