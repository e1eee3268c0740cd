#include "runtime/math/tables.h"

namespace zlv {

alignas(64) const f64 kExpTable[2 * kExpSteps] = {
#include "runtime/math/exp_table.inc"
};

alignas(64) const f64 kLogTable[4 * kLogSteps] = {
#include "runtime/math/log_table.inc"
};

alignas(64) const f64 kSineTable[2 * kSineSteps] = {
#include "runtime/math/sine_table.inc"
};

alignas(64) const f64 kAtanTable[4 * kArcSteps] = {
#include "runtime/math/atan_table.inc"
};

const u64 kTwoOverPi[22] = {
#include "runtime/math/two_over_pi_table.inc"
};

}  // namespace zlv
