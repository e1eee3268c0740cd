// The size of a vector on a kernel file's target. For kernel files alone.
#pragma once

#include "platform/types.h"

namespace zlv {
namespace {

#if defined(ZLV_TARGET_avx512)
constexpr size_t kVectorBytes = 64;
#elif defined(ZLV_TARGET_avx2)
constexpr size_t kVectorBytes = 32;
#else
constexpr size_t kVectorBytes = 16;
#endif

}  // namespace
}  // namespace zlv
