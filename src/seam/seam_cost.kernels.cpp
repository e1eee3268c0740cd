// Costs of a row of cells: the compiler makes vectors of these loops, in which every cell is on its own.
#include "seam/seam_cost.kernels.h"

namespace zlv::ZLV_TARGET {

namespace {

i32 LeastOf3(const i32* middle)
{
    const i32 sides = middle[-1] < middle[1] ? middle[-1] : middle[1];
    return sides < middle[0] ? sides : middle[0];
}

void Costs(const i32* above, const u16* energy, const i32* bias, i32* __restrict cost, size_t count)
{
    if (bias) {
        for (size_t x = 0; x < count; ++x) cost[x] = i32(u32(LeastOf3(above + x)) + energy[x] + u32(bias[x]));
    } else {
        for (size_t x = 0; x < count; ++x) cost[x] = i32(u32(LeastOf3(above + x)) + energy[x]);
    }
}

}  // namespace

extern const SeamKernels kSeamKernels;
const SeamKernels kSeamKernels = {Costs};

}  // namespace zlv::ZLV_TARGET
