#include "seam/seam_cost.h"

#include "seam/seam_cost.kernels.h"

#include <algorithm>

namespace zlv {

namespace {

constexpr u32 kSmallestSide = 3;

}  // namespace

bool AreCostSizesUsable(const CLImage<u16>& energy, const CLImage<i32>& cost)
{
    return energy.width >= kSmallestSide && energy.height >= kSmallestSide && cost.width == energy.width &&
           cost.height == energy.height;
}

void CostRow::Begin(u32 first, u32 end) const
{
    for (u32 x = first; x < end; ++x) Set(x, 0);
}

void CostRow::Inside(u32 first, u32 end) const
{
    if (first >= end) return;
    Kernels<SeamKernels>().costs(above_ + first, energy_ + first, bias_ ? bias_ + first : nullptr, cost_ + first,
                                 end - first);
}

void CostRow::FromTwo(u32 x, u32 a, u32 b) const { Set(x, std::min(above_[a], above_[b])); }

Error ComputeCost(const CLImage<u16>& energy, const CLImage<i32>& bias, CLImage<i32>& cost)
{
    if (!AreCostSizesUsable(energy, cost)) return Error::BadArgument;
    const u32 width = energy.width, last = width - 1;
    const u32 lastFrom = bias.IsEmpty() ? last : last - 2;
    CostRow(energy, bias, cost, 0).Begin(0, width);
    for (u32 y = 1; y < energy.height; ++y) {
        const CostRow row(energy, bias, cost, y);
        row.FromTwo(0, 0, 1);
        row.Inside(1, last);
        row.FromTwo(last, lastFrom, last - 1);
    }
    return Error::None;
}

}  // namespace zlv
