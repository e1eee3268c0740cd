// Bounds. The lower one is tested first, which decides the result when the bounds are crossed.
#pragma once

#include "platform/types.h"

namespace zlv {

namespace detail {

template <class T>
constexpr T Clamp(T value, const T* lower, const T* upper)
{
    if (value < *lower) return *lower;
    return value > *upper ? *upper : value;
}

}  // namespace detail

constexpr i32 ClampInt(i32 value, const i32* lower, const i32* upper) { return detail::Clamp(value, lower, upper); }
constexpr u32 ClampUInt(u32 value, const u32* lower, const u32* upper) { return detail::Clamp(value, lower, upper); }
constexpr f64 ClampDouble(f64 value, const f64* lower, const f64* upper) { return detail::Clamp(value, lower, upper); }

template <class T>
constexpr T Max(const T* a, const T* b)
{
    return *a < *b ? *b : *a;
}

template <class T>
constexpr T Min(const T* a, const T* b)
{
    return *b < *a ? *b : *a;
}

}  // namespace zlv
