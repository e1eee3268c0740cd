// The cost matrix: for every pixel the least energy of a path that comes down to it from the first row, one column to
// the side a row at most (S. Avidan and A. Shamir, Seam Carving for Content-Aware Image Resizing, 2007).
#pragma once

#include "seam/seam_context.h"

namespace zlv {

// Fills `cost` on the calling thread. The bias may be empty. Code 5 when the images are narrower or lower than 3 or
// differ in size.
//
// Without a bias the last column continues the cheaper of the two above it. With one it looks a column further to the
// left and never continues straight down: results depend on it, and a neutral mask is not the same as none.
[[nodiscard]] Error ComputeCost(const CLImage<u16>& energy, const CLImage<i32>& bias, CLImage<i32>& cost);

// The same on two threads that the call starts and waits for, each with one half of the columns. Its last column is the
// one with a bias, with and without. Also code 1 without memory for events, 17 when a thread can't be started, and
// 84 when one is not ready or a row is not done within a second. The context's mutexes must be there.
[[nodiscard]] Error ComputeCostThreaded(SeamContext& context, const CLImage<u16>& energy, CLImage<i32>& cost,
                                        const CLImage<i32>& bias);

// ---- Shared by both ---------------------------------------------------------------------------------------------

bool AreCostSizesUsable(const CLImage<u16>& energy, const CLImage<i32>& cost);

// The columns of one row of costs. Row 0 has none above it.
class CostRow {
public:
    CostRow(const CLImage<u16>& energy, const CLImage<i32>& bias, CLImage<i32>& cost, u32 y)
        : energy_(energy.Row(y)),
          bias_(bias.IsEmpty() ? nullptr : bias.Row(y)),
          cost_(cost.Row(y)),
          above_(y > 0 ? cost.Row(y - 1) : nullptr)
    {
    }

    // Of row 0: its energy and bias.
    void Begin(u32 first, u32 end) const;
    // With three columns above each.
    void Inside(u32 first, u32 end) const;
    // With the cheaper of two columns above it.
    void FromTwo(u32 x, u32 a, u32 b) const;

private:
    const u16* const energy_;
    const i32* const bias_;
    i32* const cost_;
    const i32* const above_;

    void Set(u32 x, i32 above) const { cost_[x] = i32(u32(above) + energy_[x] + u32(bias_ ? bias_[x] : 0)); }
};

}  // namespace zlv
