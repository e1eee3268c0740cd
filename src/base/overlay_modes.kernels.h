// Kernels of the blend modes: a row function for each mode.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

namespace zlv {

// 1 / M in two parts: a product of a sample and the head is exact, and d * head + d * tail is d / M, correctly rounded.
struct SplitReciprocal {
    f64 head, tail;
};
inline constexpr SplitReciprocal kByteReciprocal = {0x1.01010101p-8, 0x1.0101010101010p-48};
inline constexpr SplitReciprocal kWordReciprocal = {0x1.00010001p-16, 0x1.000100010001p-64};

// What formulas know beside the two samples.
struct OverlayTerms {
    f64 factor;      // of the scaled product; so limited that no product leaves the range of doubles
    i32 bias;        // at most four times the number of sample values, up or down
    i32 lowest;      // limits biased results from below
    u32 first, end;  // samples that replace: first <= s < end
};

// base[i] = f(base[i], overlay[i]). The rows do not overlap.
template <class T>
using OverlayRow = void (*)(T* base, const T* overlay, size_t count, const OverlayTerms& terms);

template <class T>
struct OverlayRows {
    // By mode. Null where f is the overlay's sample itself, or the base may stay.
    OverlayRow<T> byMode[31];

    // base[i] = mixed[i] where overlay[i] replaces.
    void (*select)(T* base, const T* mixed, const T* overlay, size_t count, const OverlayTerms& terms);
};

struct OverlayKernels {
    OverlayRows<u8> bytes;
    OverlayRows<u16> words;
};

ZLV_DECLARE_KERNELS(OverlayKernels, kOverlayKernels);

}  // namespace zlv
