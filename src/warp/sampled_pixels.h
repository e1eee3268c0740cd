// Pixels of a picture made by sampling another one.
#pragma once

#include "base/image_view.h"
#include "warp/sampling.kernels.h"

#include "runtime/transform.h"

namespace zlv {

enum class Sampling : u8 { Nearest, Bilinear, Bicubic };

// Two images of one shape; neither is empty.
struct WarpedImages {
    ImageView<const u8> src;
    ImageView<u8> dst;
};

class PixelSampler {
public:
    // `background` is the fill, its lowest byte channel 0; null when a pixel's fill is what it holds.
    PixelSampler(const WarpedImages& images, Sampling sampling, const u32* background);

    // Samples at the points of a run and writes the pixels of row y from column x on.
    void Write(const PointRun& run, u32 x, u32 y) const;

private:
    void WriteSampled(const PointRun& run, u32 from, u32 count, u8* to) const;
    void CopyPixels(u32 x, u32 y, u32 count, u8* to) const;

    const WarpedImages& images_;
    void (*const sample_)(const SampledRun&);
    const bool hasBackground_;
    u8 background_[4] = {};
};

}  // namespace zlv
