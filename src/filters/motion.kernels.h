// Kernels of the motion blur: sums of samples along walks, their means, and the pixels on arcs and rays.
#pragma once

#include "runtime/targets.h"

namespace zlv {

// Pixels of a row that walk together on arcs and rays, at most, and their steps that are added in one go.
inline constexpr size_t kMotionPixels = 64;
inline constexpr size_t kMotionSteps = 16;

// Sums of samples are words while they fit, and as wide as they must be for long walks: with the types below up to so
// many samples.
template <class Sum>
inline constexpr u64 kMostSummed = sizeof(Sum) == 2   ? 257
                                   : sizeof(Sum) == 4 ? 8421504
                                                      : u64(1) << 48;

// Samples of pixels that stand anywhere in an image: `channels` of them from first + offset on. The image ends `bytes`
// behind `first`.
struct PixelSource {
    const u8* first;
    size_t bytes;
    size_t channels;
};

// The kernels below find offsets in images of less than 2^32 bytes.

// Columns on a ray: column i of them is the whole part of (start + i) * factor + centre, which lies inside the row.
struct ZoomedColumns {
    f64 start, factor, centre;
    size_t count;
    size_t step;  // from one pixel's samples to the next
    size_t row;   // the offset of the row
};

// Positions on arcs, in 2^-fractionBits of a pixel: pixel i is turned to about (x + i * cosine, y + i * sine).
struct TurnedPixels {
    i32 x, y, cosine, sine;
    u32 fractionBits;
    i32 margin;  // the distance to a whole number within which a coordinate is in doubt
    i32 width, height;
    size_t count;
    size_t step, stride;  // from one pixel's samples to the next, and to those in the next row
};

// Positions on arcs by their definition: pixel i is at (cosines[i] * radii[i] + x, sines[i] * radii[i] + y).
struct PolarPixels {
    const f64 *cosines, *sines, *radii;
    f64 x, y;
    i32 width, height;
    size_t count;
    size_t step, stride;
};

// What may be special about pixels that are turned.
enum TurnFinding : u32 { kNothingSpecial = 0, kSomeOutside = 1, kSomeInDoubt = 2 };

template <class Sum>
struct MotionSums {
    // sums[i] += samples[i] * weight
    void (*add)(Sum* sums, const u8* samples, size_t count, Sum weight);
    // Adds a pixel of each step to the sums of each of count pixels. Offsets of steps are kMotionPixels apart.
    void (*addPixels)(Sum* sums, const PixelSource& source, const size_t* offsets, size_t steps, size_t count);
    // means[i] = sums[i] / total, for total from 1 to kMostSummed
    void (*mean)(const Sum* sums, u8* means, size_t count, Sum total);
};

struct MotionKernels {
    MotionSums<u16> words;
    MotionSums<u32> longs;
    MotionSums<u64> giants;

    // Writes the offsets of these columns.
    void (*zoom)(const ZoomedColumns& columns, size_t* offsets);

    // Write the offsets of these positions, which mean nothing outside the image, and return what is special about any
    // of them: a combination of TurnFinding.
    u32 (*turn)(const TurnedPixels& pixels, size_t* offsets);
    u32 (*place)(const PolarPixels& pixels, size_t* offsets);

    template <class Sum>
    const MotionSums<Sum>& For() const
    {
        if constexpr (sizeof(Sum) == 2) return words;
        else if constexpr (sizeof(Sum) == 4) return longs;
        else return giants;
    }
};

ZLV_DECLARE_KERNELS(MotionKernels, kMotionKernels);

}  // namespace zlv
