// Vectors of a kernel file's target, for kernels that the compiler does not turn into vectors by itself. They are the
// compilers' own vector types: no intrinsics, and on a processor without such vectors still the same numbers.
//
// For kernel files alone. Everything here has internal linkage: what is compiled for one target must not reach another.
#pragma once

#include "runtime/vector_bytes.h"

namespace zlv {
namespace {

// Vectors of as many numbers as a vector of Real has.
template <class Real>
struct Lanes {
    static constexpr size_t kCount = kVectorBytes / sizeof(Real);
    using Reals __attribute__((vector_size(kVectorBytes))) = Real;
    using Ints __attribute__((vector_size(kCount * sizeof(i32)))) = i32;
    using Words __attribute__((vector_size(kCount * sizeof(u16)))) = u16;
    using SignedWords __attribute__((vector_size(kCount * sizeof(i16)))) = i16;
};

template <class Real>
using RealsOf = typename Lanes<Real>::Reals;

// Any alignment.
template <class Vector, class Number>
Vector Load(const Number* from)
{
    Vector loaded;
    __builtin_memcpy(&loaded, from, sizeof(loaded));
    return loaded;
}

template <class Vector, class Number>
void Store(Number* to, const Vector& value)
{
    __builtin_memcpy(to, &value, sizeof(value));
}

}  // namespace
}  // namespace zlv
