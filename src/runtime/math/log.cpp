#include "runtime/math.h"
#include "runtime/math/log_core.h"
#include "runtime/math/scaling.h"

namespace zlv {

f64 Log(f64 x)
{
    if (IsLogOrdinary(x)) [[likely]]
        return LogCore(x);
    if (x == 0) return -kInfinity;
    if (x < 0 || IsNaN(x)) return kNaN;
    if (x == kInfinity) return kInfinity;
    return FinishLog(ReduceLog<f64>(ToBits(x * 0x1p54), -54));
}

}  // namespace zlv
