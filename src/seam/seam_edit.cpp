#include "seam/seam_edit.h"

#include <algorithm>
#include <cstring>

namespace zlv {

namespace {

constexpr u32 kLargestEnergy = 65535;
constexpr u32 kEnergyChannels = 3;

constexpr bool IsEditable(u32 channels) { return channels == 1 || channels == 3 || channels == 4; }

// Truncated towards zero.
template <class T>
T MeanOf(T a, T b)
{
    return T((i64(a) + b) / 2);
}

i32 Absolute(i32 value) { return value < 0 ? -value : value; }

// Where the three taps of a direction stand, the edge standing for what is outside.
struct Taps {
    u32 before, at, after;
};

Taps TapsAt(u32 at, u32 count) { return {at > 0 ? at - 1 : at, at, at + 1 < count ? at + 1 : at}; }

}  // namespace

template <class T>
void RemovePixel(CLImage<T>& image, u32 x, u32 y, bool blends)
{
    const size_t channels = image.channels;
    if (x >= image.width || !IsEditable(image.channels)) return;
    T* const row = image.Row(y);
    T* const pixel = row + x * channels;
    const bool hasNext = (size_t(x) + 2) * channels <= image.rowStride;
    T old[4] = {}, merged[4] = {};
    std::copy_n(pixel, channels, old);
    std::copy_n(hasNext ? pixel + channels : pixel, channels, merged);
    for (size_t c = 0; c < channels; ++c) merged[c] = MeanOf(old[c], merged[c]);
    std::memmove(pixel, pixel + channels, (image.width - x - 1) * channels * sizeof(T));
    if (blends) std::copy_n(merged, channels, pixel);
}

template <class T>
void InsertPixel(CLImage<T>& image, u32 x, u32 y)
{
    const size_t channels = image.channels;
    if (x >= image.width || !IsEditable(image.channels)) return;
    T* const pixel = image.Row(y) + x * channels;
    const T* const neighbour = x > 0 ? pixel - channels : pixel;
    T merged[4] = {};
    for (size_t c = 0; c < channels; ++c) merged[c] = MeanOf(pixel[c], neighbour[c]);
    std::memmove(pixel + channels, pixel, (image.width - x) * channels * sizeof(T));
    std::copy_n(merged, channels, pixel);
}

template void RemovePixel(CLImage<u8>& image, u32 x, u32 y, bool blends);
template void RemovePixel(CLImage<u16>& image, u32 x, u32 y, bool blends);
template void RemovePixel(CLImage<i32>& image, u32 x, u32 y, bool blends);
template void InsertPixel(CLImage<u8>& image, u32 x, u32 y);
template void InsertPixel(CLImage<u16>& image, u32 x, u32 y);
template void InsertPixel(CLImage<i32>& image, u32 x, u32 y);

u32 EnergyAt(const CLImage<u8>& image, u32 x, u32 y)
{
    const Taps column = TapsAt(x, image.width), line = TapsAt(y, image.height);
    const u8 *const above = image.Row(line.before), *const middle = image.Row(line.at),
                    *const below = image.Row(line.after);
    const size_t left = size_t(column.before) * image.channels, right = size_t(column.after) * image.channels;
    const size_t center = size_t(x) * image.channels;
    u32 sum = 0;
    for (size_t c = 0; c < kEnergyChannels; ++c) {
        const i32 falling = above[left + c] - below[right + c], rising = below[left + c] - above[right + c];
        const i32 gx = 2 * (middle[left + c] - middle[right + c]) + falling + rising;
        const i32 gy = 2 * (above[center + c] - below[center + c]) + falling - rising;
        sum += u32(Absolute(gx) + Absolute(gy));  // ends at 2040
    }
    return sum / kEnergyChannels;
}

void RemoveSeam(const SeamImages& images, const ZLVArray<u32>& seam)
{
    const u32 height = images.working.height, width = images.working.width - 1;
    const bool hasBias = !images.bias.IsEmpty();
    for (u32 y = 0; y < height; ++y) {
        RemovePixel(images.working, seam[y], y, true);
        RemovePixel(images.energy, seam[y], y, true);
        if (hasBias) RemovePixel(images.bias, seam[y], y, false);
    }
    images.working.width = images.energy.width = width;
    if (hasBias) images.bias.width = width;
    for (u32 y = 0; y < height; ++y) {
        const u32 x = seam[y];
        u16* const energy = images.energy.Row(y);
        if (x + 1 < width) energy[x] = u16(EnergyAt(images.working, x, y));
        if (x + 2 < width) energy[x + 1] = u16(EnergyAt(images.working, x + 1, y));
    }
}

void InsertSeam(const SeamImages& images, const ZLVArray<u32>& seam, u16 penalty)
{
    const u32 height = images.working.height, width = images.working.width + 1;
    const bool hasBias = !images.bias.IsEmpty();
    for (u32 y = 0; y < height; ++y) {
        InsertPixel(images.working, seam[y], y);
        InsertPixel(images.energy, seam[y], y);
        if (hasBias) InsertPixel(images.bias, seam[y], y);
    }
    images.working.width = images.energy.width = width;
    if (hasBias) images.bias.width = width;
    for (u32 y = 0; y < height; ++y) {
        const u32 x = seam[y];
        u16* const energy = images.energy.Row(y);
        for (u32 at = x > 0 ? x - 1 : x; at <= x + 1 && at < width; ++at) {
            energy[at] = u16(std::min(EnergyAt(images.working, at, y) + penalty, kLargestEnergy));
        }
    }
}

}  // namespace zlv
