#include "seam/seam_search.h"

#include "runtime/random.h"

namespace zlv {

namespace {

constexpr i32 kOutside = 0x7FFFFFFF;
constexpr u32 kRowsAhead = 8;  // a row of costs is asked for so early that it has come when the walk is there

u32 CheapestColumn(const i32* costs, u32 width)
{
    u32 cheapest = 0;
    for (u32 x = 1; x < width; ++x) {
        if (costs[x] < costs[cheapest]) cheapest = x;
    }
    return cheapest;
}

// -1, 0 or 1: the step to the cheapest of three neighbours. On flat ground it never goes straight up.
i32 StepTo(i32 left, i32 center, i32 right, MVThreadContext& random)
{
    if (left < center && left < right) return -1;
    if (right < left && right < center) return 1;
    if (center < left && center < right) return 0;
    const bool coin = DrawRandom(random) & 1;
    if (left == right) return coin ? -1 : 1;  // the center may be equal too
    if (left == center) return coin ? -1 : 0;
    return coin ? 0 : 1;
}

}  // namespace

void FindSeam(const CLImage<i32>& cost, ZLVArray<u32>& seam, MVThreadContext& random)
{
    const u32 width = cost.width, last = cost.height - 1;
    u32 x = CheapestColumn(cost.Row(last), width);
    seam[last] = x;
    for (u32 y = last; y-- > 0;) {
        const i32* const row = cost.Row(y);
        if (y >= kRowsAhead) __builtin_prefetch(cost.Row(y - kRowsAhead) + x);
        const i32 left = x > 0 ? row[x - 1] : kOutside, right = x + 1 < width ? row[x + 1] : kOutside;
        const i64 next = i64(x) + StepTo(left, row[x], right, random);
        x = next < 0 ? 0 : next >= i64(width) ? width - 1 : u32(next);
        seam[y] = x;
    }
}

}  // namespace zlv
