#include "runtime/math.h"
#include "runtime/math/exp_scaled.h"

namespace zlv {

f64 Exp(f64 x)
{
    if (IsExpOrdinary(x)) [[likely]]
        return ExpCore(x);
    return IsNaN(x) ? kNaN : ExpScaled(x, 0);
}

}  // namespace zlv
