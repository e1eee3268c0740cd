// Kernels of Perlin noise: pieces of rows of a plane through the three-dimensional field, and of the plane's own field.
#pragma once

#include "generators/perlin.h"
#include "runtime/targets.h"

namespace zlv {

inline constexpr size_t kPerlinBlock = 256;  // points that are done at once, at most

// A plane at height z. With a = column * scale + offsetX - pivotX and b = row * scale + offsetY - pivotY it has the
// points (a * cosine + b * sine + pivotX, b * cosine - a * sine + pivotY, z).
struct PerlinPlane {
    f64 scale, z;
    f64 offsetX = 0, offsetY = 0;
    f64 cosine = 1, sine = 0;
    f64 pivotX = 0, pivotY = 0;
};

struct PerlinKernels {
    // The noise at `count` columns of a row from `column` on; at most kPerlinBlock. The tables are built.
    void (*row)(const PerlinNoise& noise, const PerlinPlane& plane, f64 row, f64 column, f64* out, size_t count);

    // The noise of the plane at points (x[i], y), whose x rise or fall steadily. The tables are built.
    void (*level)(const PerlinNoise& noise, const f64* x, f64 y, f64* out, size_t count);

    // noise * 128 + 127, truncated and limited to 0..255; 0 for NaN.
    void (*toBytes)(const f64* noise, u8* out, size_t count);
};

ZLV_DECLARE_KERNELS(PerlinKernels, kPerlinKernels);

}  // namespace zlv
