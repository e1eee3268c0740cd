// The processor's floating-point modes: rounding, masked exceptions, flush to zero.
//
// x87 modes are left alone: nothing in the library computes in 80 bits.
#pragma once

#include "platform/types.h"

#if defined(__x86_64__) && !defined(ZLV_PORTABLE)

namespace zlv::platform {

using FloatEnvironment = u32;  // MXCSR

inline constexpr FloatEnvironment kStandardFloatModes = 0x1F80;  // nearest, all exceptions masked, no flush to zero
inline constexpr FloatEnvironment kFloatStatusBits = 0x3F;       // what the host's own arithmetic has raised so far

inline FloatEnvironment ReadFloatEnvironment() { return __builtin_ia32_stmxcsr(); }

// Loading the register costs tens of cycles, so it is done only when something differs.
inline void WriteFloatEnvironment(FloatEnvironment wanted)
{
    if (__builtin_ia32_stmxcsr() != wanted) __builtin_ia32_ldmxcsr(wanted);
}

inline void SetStandardFloatEnvironment()
{
    if ((__builtin_ia32_stmxcsr() & ~kFloatStatusBits) != kStandardFloatModes) {
        __builtin_ia32_ldmxcsr(kStandardFloatModes);
    }
}

}  // namespace zlv::platform

#else

#include <cfenv>

namespace zlv::platform {

using FloatEnvironment = std::fenv_t;

inline FloatEnvironment ReadFloatEnvironment()
{
    FloatEnvironment environment;
    std::fegetenv(&environment);
    return environment;
}

inline void WriteFloatEnvironment(const FloatEnvironment& wanted) { std::fesetenv(&wanted); }
inline void SetStandardFloatEnvironment() { std::fesetenv(FE_DFL_ENV); }

}  // namespace zlv::platform

#endif
