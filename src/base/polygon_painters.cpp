#include "base/polygon_painters.h"

#include "base/opacity.kernels.h"
#include "base/table_pass.kernels.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace zlv {

namespace {

struct Pixels {
    u8* data;
    size_t count;
};

// Those of the columns that the image has.
Pixels PixelsOf(const ImageView<u8>& image, u32 row, u32 left, u32 right)
{
    const size_t end = std::min(size_t(right) + 1, size_t(image.width));
    return {image.Row(row) + size_t(left) * image.channels, end - left};
}

bool IsOneByte(const PixelBytes& pixel, u32 channels)
{
    return std::all_of(pixel.bytes, pixel.bytes + channels, [&](u8 byte) { return byte == pixel.bytes[0]; });
}

// Calls paint(bytes, count) for stretches that are not longer than a tile.
template <class Paint>
void ForTiles(u8* bytes, size_t count, Paint paint)
{
    for (size_t done = 0; done < count; done += PixelTile::kBytes) {
        paint(bytes + done, std::min(PixelTile::kBytes, count - done));
    }
}

// Strict: among equals the lowest index is the nearest.
u8 NearestEntry(const FillPalette& palette, i32 first, i32 second, i32 third)
{
    i32 best = std::numeric_limits<i32>::max();
    u32 nearest = 0;
    for (u32 i = 0; i < palette.count; ++i) {
        const u8* const entry = palette.entries[i].bytes;
        const i32 d0 = first - entry[2], d1 = second - entry[1], d2 = third - entry[0];
        const i32 distance = d0 * d0 + d1 * d1 + d2 * d2;
        if (distance >= best) continue;
        best = distance;
        nearest = i;
    }
    return u8(nearest);
}

}  // namespace

PixelTile::PixelTile(const PixelBytes& pixel, u32 channels)
{
    std::memcpy(bytes_, pixel.bytes, channels);
    for (size_t done = channels; done < kBytes; done *= 2) {
        std::memcpy(bytes_ + done, bytes_, std::min(done, kBytes - done));
    }
}

ByteMap ByteMap::Repeated(u64 times) const
{
    ByteMap power = *this, result;
    for (u32 i = 0; i < 256; ++i) result.to_[i] = u8(i);
    for (; times > 0; times /= 2) {
        if (times % 2) {
            for (u8& value : result.to_) value = power[value];
        }
        const ByteMap once = power;
        for (u8& value : power.to_) value = once[value];
    }
    return result;
}

ByteMap MixingMap(u8 color, f64 opacity)
{
    ByteMap map;
    const u8 over = u8(i32(color * opacity));
    for (i32 i = 0; i < 256; ++i) map.Set(u8(i), u8(u8(i32(i * (1 - opacity))) + over));
    return map;
}

bool IsMixable(f64 opacity)
{
    constexpr f64 kLargest = std::numeric_limits<i32>::max();
    return std::abs(255 * opacity) <= kLargest && std::abs(255 * (1 - opacity)) <= kLargest;
}

SolidPainter::SolidPainter(const ImageView<u8>& image, const PixelBytes& pixel)
    : image_(image), tile_(pixel, image.channels), isOneByte_(IsOneByte(pixel, image.channels))
{
}

void SolidPainter::Paint(u32 row, u32 left, u32 right, u64)
{
    const Pixels pixels = PixelsOf(image_, row, left, right);
    const size_t bytes = pixels.count * image_.channels;
    // memmove: compilers make a string instruction of a memcpy whose size is bounded, and that is slow to start.
    if (isOneByte_) std::memset(pixels.data, tile_.Data()[0], bytes);
    else ForTiles(pixels.data, bytes, [&](u8* to, size_t count) { std::memmove(to, tile_.Data(), count); });
}

bool SolidPainter::IsSettled(u32 row, u32 column) const
{
    if (column == image_.width) return true;
    return std::memcmp(image_.Row(row) + size_t(column) * image_.channels, tile_.Data(), image_.channels) == 0;
}

MixPainter::MixPainter(const ImageView<u8>& image, const PixelBytes& pixel, f64 opacity)
    : image_(image), tile_(pixel, image.channels), hasShares_(opacity >= 0 && opacity <= 1)
{
    if (hasShares_) shares_.Set(opacity);
    for (u32 c = 0; c < image.channels; ++c) maps_[c] = MixingMap(pixel.bytes[c], opacity);
}

void MixPainter::Paint(u32 row, u32 left, u32 right, u64 times)
{
    const Pixels pixels = PixelsOf(image_, row, left, right);
    if (times > 1) {
        ByteMap maps[4];
        for (u32 c = 0; c < image_.channels; ++c) maps[c] = maps_[c].Repeated(times);
        MapPixels(pixels.data, pixels.count, maps);
    } else if (hasShares_) {
        const auto mix = Kernels<OpacityKernels>().mixBytes;
        ForTiles(pixels.data, pixels.count * image_.channels,
                 [&](u8* to, size_t count) { mix(to, tile_.Data(), count, shares_); });
    } else {
        MapPixels(pixels.data, pixels.count, maps_);
    }
}

void MixPainter::MapPixels(u8* pixels, size_t count, const ByteMap* maps) const
{
    const void* tables[4];
    for (u32 c = 0; c < image_.channels; ++c) tables[c] = maps[c].Data();
    if (image_.channels == 1) Kernels<TablePassKernels>().mapSamples(pixels, count, maps[0].Data());
    else Kernels<TablePassKernels>().mapPixels(pixels, count, image_.channels, tables);
}

bool MixPainter::IsSettled(u32 row, u32 column) const
{
    if (column == image_.width) return true;
    const u8* const pixel = image_.Row(row) + size_t(column) * image_.channels;
    for (u32 c = 0; c < image_.channels; ++c) {
        if (maps_[c][pixel[c]] != pixel[c]) return false;
    }
    return true;
}

FillPalette::FillPalette(const u8* given, u32 givenCount) : count(std::min(givenCount, 256u))
{
    std::memcpy(entries, given, count * sizeof(PaletteEntry));
}

IndexMixPainter::IndexMixPainter(const ImageView<u8>& image, const FillPalette& palette, const PixelBytes& color,
                                 f64 opacity)
    : image_(image), palette_(palette)
{
    for (u32 c = 0; c < 3; ++c) components_[c] = MixingMap(color.bytes[c], opacity);
}

void IndexMixPainter::Learn(u8 index)
{
    const u8* const entry = palette_.entries[index].bytes;
    indices_.Set(index,
                 NearestEntry(palette_, components_[0][entry[2]], components_[1][entry[1]], components_[2][entry[0]]));
    isKnown_[index] = true;
}

void IndexMixPainter::LearnAll()
{
    for (u32 i = 0; i < 256; ++i) {
        if (!isKnown_[i]) Learn(u8(i));
    }
}

// An index is looked for when it is first met: most images hold few.
void IndexMixPainter::Paint(u32 row, u32 left, u32 right, u64 times)
{
    const Pixels pixels = PixelsOf(image_, row, left, right);
    if (times > 1) {
        LearnAll();
        const ByteMap repeated = indices_.Repeated(times);
        for (size_t x = 0; x < pixels.count; ++x) pixels.data[x] = repeated[pixels.data[x]];
        return;
    }
    for (size_t x = 0; x < pixels.count; ++x) {
        const u8 index = pixels.data[x];
        if (!isKnown_[index]) Learn(index);
        pixels.data[x] = indices_[index];
    }
}

bool IndexMixPainter::IsSettled(u32 row, u32 column) const
{
    if (column == image_.width) return true;
    const u8 index = image_.Row(row)[column];
    return isKnown_[index] && indices_[index] == index;
}

void TilePainter::BeginRows(u64 times)
{
    const u64 moves = hasBegun_ ? times : times - 1;
    hasBegun_ = true;
    if (tile_.height > 0) tileRow_ = u32((tileRow_ + moves) % tile_.height);
}

void TilePainter::Paint(u32 row, u32 left, u32 right, u64)
{
    const Pixels pixels = PixelsOf(image_, row, left, right);
    const size_t pixelBytes = image_.channels;
    const size_t period = tile_.width * pixelBytes, bytes = pixels.count * pixelBytes;
    // The tile goes on to the left as well: a rounded crossing may begin before the polygon's leftmost vertex.
    const i64 shift = (i64(left) - origin_) % i64(tile_.width);
    const size_t first = size_t(shift < 0 ? shift + tile_.width : shift) * pixelBytes;
    const u8* const from = tile_.data + size_t(tileRow_) * tile_.stride;

    const size_t head = std::min(bytes, period - first);
    std::memmove(pixels.data, from + first, head);
    size_t done = head;
    const size_t once = std::min(bytes - done, first);
    std::memmove(pixels.data + done, from, once);
    done += once;
    // One period is there: what follows repeats it.
    for (; done < bytes; done *= 2) std::memmove(pixels.data + done, pixels.data, std::min(done, bytes - done));
}

}  // namespace zlv
