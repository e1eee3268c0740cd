// Splines, in nanoseconds a point.
#include "bench_row.h"

#include "zlv40.h"

namespace zlvbench {

namespace {

constexpr u32 kControls = 50, kOrder = 4, kPoints = 100000;

std::vector<f64> Controls(u64 seed)
{
    RandomBytes random(seed);
    std::vector<f64> controls(kControls);
    for (f64& coordinate : controls) coordinate = random.Next() / 0x1p31;
    return controls;
}

// The usual loop: a triangle of linear interpolations between control points, at any parameter.
void DeBoor(const std::vector<f64> (&controls)[3], f64* out)
{
    const auto knot = [](u32 j) {
        return j < kOrder ? 0.0 : f64(j < kControls ? j - kOrder + 1 : kControls - kOrder + 1);
    };
    for (u32 point = 0; point < kPoints; ++point) {
        const f64 v = f64(kControls - kOrder + 1) * point / kPoints;
        const u32 span = kOrder - 1 + u32(v);
        f64 d[kOrder][3];
        for (u32 j = 0; j < kOrder; ++j) {
            for (u32 c = 0; c < 3; ++c) d[j][c] = controls[c][span - kOrder + 1 + j];
        }
        for (u32 r = 1; r < kOrder; ++r) {
            for (u32 j = kOrder - 1; j >= r; --j) {
                const f64 from = knot(span - kOrder + 1 + j), to = knot(span + 1 + j - r);
                const f64 alpha = (v - from) / (to - from);
                for (u32 c = 0; c < 3; ++c) d[j][c] = (1 - alpha) * d[j - 1][c] + alpha * d[j][c];
            }
        }
        for (u32 c = 0; c < 3; ++c) out[c * kPoints + point] = d[kOrder - 1][c];
    }
}

}  // namespace

std::vector<BenchRow> SplineRows()
{
    const std::vector<f64> x = Controls(1), y = Controls(2), z = Controls(3);
    const auto spline = [=](const Buffers& buffers) {
        f64* const out = reinterpret_cast<f64*>(buffers.output);
        ZLV40_Get3DSplinePoints(kPoints, kControls, kOrder, x.data(), y.data(), z.data(), out, out + kPoints,
                                out + 2 * kPoints);
    };
    const auto deBoor = [=](const Buffers& buffers) { DeBoor({x, y, z}, reinterpret_cast<f64*>(buffers.output)); };
    return {{"Get3DSplinePoints/50_controls_order_4/100000",
             {kPoints, 1, 1},
             3 * kPoints * sizeof(f64),
             spline,
             {"de Boor loop", deBoor, false},
             0,
             "point"}};
}

}  // namespace zlvbench
