// Kernels of the modes of resizing that work row by row.
//
// Rows come with as many samples as the destination has in a row: the pixels that it looks at have been picked from the
// source. Tables of weights have an entry for each of these samples.
#pragma once

#include "platform/types.h"
#include "runtime/targets.h"

#include <cstddef>

namespace zlv {

// Which pixels of a row of the source a row of the destination looks at.
struct PixelPick {
    const u32* indexes;
    size_t count;
    size_t inside;  // of the first indexes, none is the row's last pixel
    size_t pixelBytes;
};

// How far a bilinear sample in single precision can be from the one in double precision. A row's mean of two has three
// roundings, of at most half a unit in the last place of 255 each: the fraction's, the product's and the sum's. Between
// two such rows come four more, with that of the difference.
inline constexpr f32 kBilinearTolerance = 8 * 255 * 0x1p-24f;

// Picked from two rows of the source, and the fractions of the position between them.
template <class T>
struct BilinearRow {
    const T* leftUpper;
    const T* rightUpper;
    const T* leftLower;
    const T* rightLower;
    const f64* fx;
    f64 fy;
    // Means of left and right in single precision; null where they would not decide enough, and for words.
    const f32* nearUpper;
    const f32* nearLower;
};

// Four taps, from left to right or from the top down; the last one is subtracted.
inline constexpr size_t kCubicTaps = 4;

template <class T>
struct CubicRow {
    const T* samples[kCubicTaps];
    const f64* weights[kCubicTaps];
};

struct CubicColumn {
    const f64* rows[kCubicTaps];
    f64 weights[kCubicTaps];
};

template <class T>
struct ResizeSampleKernels {
    // Returns whether most of the row had to be made twice.
    bool (*bilinear)(const BilinearRow<T>& row, size_t count, T* out);

    void (*cubicAcross)(const CubicRow<T>& row, size_t count, f64* out);
    void (*cubicDown)(const CubicColumn& column, size_t count, T* out);

    // sums += samples * (weights * rowWeight), and the quotient of the sums and norms * rowWeights.
    void (*addArea)(const T* samples, const f64* weights, f64 rowWeight, size_t count, f64* sums);
    void (*divideArea)(const f64* sums, const f64* norms, f64 rowWeights, size_t count, T* out);

    // sums += samples.
    void (*addRow)(const T* samples, size_t count, u32* sums);
};

struct ResizeRowKernels {
    // Copies the pixels to `out`, one after the other. Nothing is read outside the row.
    void (*pick)(const PixelPick& pixels, const void* row, void* out);

    // Means of 2 x 2 samples, for up to 4 channels; `count` counts samples of `out`.
    void (*halve)(const u8* upper, const u8* lower, size_t channels, size_t count, u8* out);

    // Means of left and right by the fractions of the position between them.
    void (*blend)(const u8* left, const u8* right, const f32* fx, size_t count, f32* near);

    ResizeSampleKernels<u8> bytes;
    ResizeSampleKernels<u16> words;
};

ZLV_DECLARE_KERNELS(ResizeRowKernels, kResizeRowKernels);

// Those of one sample width.
template <class T>
const ResizeSampleKernels<T>& SampleKernels()
{
    if constexpr (sizeof(T) == 1) return Kernels<ResizeRowKernels>().bytes;
    else return Kernels<ResizeRowKernels>().words;
}

}  // namespace zlv
