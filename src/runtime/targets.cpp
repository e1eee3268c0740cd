#include "runtime/targets.h"

namespace zlv {

constinit Target activeTarget = Target::Baseline;

Target BestTarget()
{
#ifndef ZLV_PORTABLE
    __builtin_cpu_init();
    if (!__builtin_cpu_supports("avx2") || !__builtin_cpu_supports("bmi2")) return Target::Baseline;
    const bool hasAvx512 = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                           __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl") &&
                           __builtin_cpu_supports("avx512vbmi");
    return hasAvx512 ? Target::Avx512 : Target::Avx2;
#else
    return Target::Baseline;
#endif
}

}  // namespace zlv
