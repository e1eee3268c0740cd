// Binary morphology of packed rows, said plainly: pixel by pixel, step by step, with an image for every step. Slow on
// purpose; includes nothing of the library.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

struct PlainBitElement {
    std::vector<std::uint32_t> entries;
    long long width, height;

    std::uint32_t At(long long i, long long j) const { return entries[std::size_t(j * width + i)]; }
};

struct PlainBits {
    const std::uint8_t* data;
    long long width, height, stride;

    bool IsSet(long long x, long long y) const { return (data[y * stride + x / 8] & (128 >> (x % 8))) != 0; }
    bool IsSetNear(long long x, long long y) const
    {
        return IsSet(std::clamp(x, 0LL, width - 1), std::clamp(y, 0LL, height - 1));
    }
    bool AreEmpty(long long byte, long long count) const
    {
        return std::all_of(data + byte, data + byte + count, [](std::uint8_t value) { return value == 0; });
    }
};

struct PlainBitsOut {
    std::uint8_t* data;
    long long stride;

    void Set(long long x, long long y, bool value) const
    {
        std::uint8_t& byte = data[y * stride + x / 8];
        const int mask = 128 >> (x % 8);
        byte = std::uint8_t(value ? byte | mask : byte & ~mask);
    }
};

inline long long PlainRowBytes(long long width) { return (width + 7) / 8; }

inline bool PlainDilatedPixel(const PlainBits& src, const PlainBitElement& element, long long x, long long y)
{
    for (long long j = 0; j < element.height; ++j) {
        for (long long i = 0; i < element.width; ++i) {
            const bool isSet = src.IsSetNear(x + i - element.width / 2, y + j - element.height / 2);
            if (element.At(i, j) == 1 && isSet) return true;
        }
    }
    return false;
}

inline bool PlainErodedPixel(const PlainBits& src, const PlainBitElement& element, long long x, long long y)
{
    for (long long j = 0; j < element.height; ++j) {
        for (long long i = 0; i < element.width; ++i) {
            const bool isSet = src.IsSetNear(x + i - element.width / 2, y + j - element.height / 2);
            if (element.At(i, j) != 0 && !isSet) return false;
        }
    }
    return true;
}

inline void PlainDilation(const PlainBits& src, const PlainBitElement& element, const PlainBitsOut& dst)
{
    for (long long y = 0; y < src.height; ++y) {
        for (long long x = 0; x < src.width; ++x) dst.Set(x, y, PlainDilatedPixel(src, element, x, y));
    }
}

inline void PlainErosion(const PlainBits& src, const PlainBitElement& element, const PlainBitsOut& dst)
{
    const bool maySkip = element.At(element.width / 2, element.height / 2) != 0;
    for (long long y = 0; y < src.height; ++y) {
        for (long long x = 0; x < src.width; ++x) {
            const long long byte = y * src.stride + x / 8;
            if (!maySkip || src.data[byte] != 0) dst.Set(x, y, PlainErodedPixel(src, element, x, y));
            else if (x < src.width - 32 && src.AreEmpty(byte, 4)) x = x / 32 * 32 + 32;
            else if (x < src.width - 16 && src.AreEmpty(byte, 2)) x = x / 16 * 16 + 16;
            else x = x / 8 * 8 + 8;
            // The loop's own step comes on top.
        }
    }
}

// An image of its own that begins cleared.
class PlainWork {
public:
    PlainWork(long long width, long long height, long long stride)
        : bytes_(std::size_t(stride * height)), width_(width), height_(height), stride_(stride)
    {
    }
    PlainBits Image() const { return {bytes_.data(), width_, height_, stride_}; }
    PlainBitsOut Out() { return {bytes_.data(), stride_}; }
    std::uint8_t* Data() { return bytes_.data(); }
    std::vector<std::uint8_t>& Bytes() { return bytes_; }

private:
    std::vector<std::uint8_t> bytes_;
    long long width_, height_, stride_;
};

inline PlainWork PlainDenseWork(const PlainBits& src) { return {src.width, src.height, PlainRowBytes(src.width)}; }

inline void PlainBitOpen(const PlainBits& src, const PlainBitElement& element, const PlainBitsOut& dst)
{
    PlainWork work = PlainDenseWork(src);
    PlainErosion(src, element, work.Out());
    PlainDilation(work.Image(), element, dst);
}

inline void PlainBitClose(const PlainBits& src, const PlainBitElement& element, const PlainBitsOut& dst)
{
    PlainWork work = PlainDenseWork(src);
    PlainDilation(src, element, work.Out());
    PlainErosion(work.Image(), element, dst);
}

inline void PlainHitOrMiss(const PlainBits& src, const PlainBitElement& hitElement, const PlainBitElement& missElement,
                           const PlainBitsOut& dst)
{
    PlainWork hit = PlainDenseWork(src), miss = PlainDenseWork(src);
    PlainWork complement(src.width, src.height, src.stride);
    const long long rowBytes = PlainRowBytes(src.width);
    PlainErosion(src, hitElement, hit.Out());
    for (long long y = 0; y < src.height; ++y) {
        for (long long i = 0; i < rowBytes; ++i) {
            complement.Data()[y * src.stride + i] = std::uint8_t(~src.data[y * src.stride + i]);
        }
    }
    PlainErosion(complement.Image(), missElement, miss.Out());
    for (long long y = 0; y < src.height; ++y) {
        for (long long i = 0; i < rowBytes; ++i) {
            dst.data[y * dst.stride + i] = hit.Data()[y * rowBytes + i] & miss.Data()[y * rowBytes + i];
        }
    }
}

inline void PlainBoundary(const PlainBits& src, const PlainBitElement& element, const PlainBitsOut& dst)
{
    PlainWork work = PlainDenseWork(src);
    PlainErosion(src, element, work.Out());
    for (std::uint8_t& byte : work.Bytes()) byte = std::uint8_t(~byte);
    const long long whole = src.width / 8;
    for (long long y = 0; y < src.height; ++y) {
        const std::uint8_t* const a = work.Data() + y * PlainRowBytes(src.width);
        const std::uint8_t* const b = src.data + y * src.stride;
        for (long long i = 0; i < whole; ++i) dst.data[y * dst.stride + i] = a[i] & b[i];
        for (long long i = 0; i < src.width % 8; ++i) {
            dst.Set(i, y, (a[whole] & b[whole] & (128 >> i)) != 0);  // in the row's first byte
        }
    }
}

// Images of whole rows: height * stride bytes.
inline void PlainThinning(const PlainBits& src, std::uint8_t* dst, const std::vector<PlainBitElement>& hits,
                          const std::vector<PlainBitElement>& misses, long long iterations)
{
    PlainWork current(src.width, src.height, src.stride), matches(src.width, src.height, src.stride);
    PlainBits image = src;
    const std::size_t size = current.Bytes().size();
    for (long long n = 0; n < iterations; ++n) {
        for (std::size_t k = 0; k < hits.size(); ++k) {
            PlainHitOrMiss(image, hits[k], misses[k], matches.Out());
            for (std::size_t i = 0; i < size; ++i) {
                current.Data()[i] = std::uint8_t(image.data[i] & ~matches.Data()[i]);
            }
            image = current.Image();
        }
        if (std::equal(current.Data(), current.Data() + size, dst)) return;
        std::copy(current.Data(), current.Data() + size, dst);
    }
}
