// Calls of the binary morphology, each with its plain twin beside it.
#pragma once

#include "plain/plain_bit_morphology.h"
#include "support/bytes.h"

#include "zlv40.h"

#include <functional>

namespace zlvtest {

using std::int32_t;
using std::uint32_t;
using std::uint8_t;

// The functions that take one element.
struct BitFunction {
    const char* name;
    uint32_t (*apply)(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcRowStride, uint8_t* dst,
                      uint32_t dstRowStride, const uint32_t* element, int32_t elementWidth, int32_t elementHeight,
                      uint32_t reserved);
    void (*plain)(const PlainBits& src, const PlainBitElement& element, const PlainBitsOut& dst);
    bool isComposed;
};

inline const BitFunction kBitFunctions[] = {
    {"dilation", ZLV40_MorphoDilation1Bit, PlainDilation, false},
    {"erosion", ZLV40_MorphoErosion1Bit, PlainErosion, false},
    {"opening", ZLV40_MorphoOpen1Bit, PlainBitOpen, true},
    {"closing", ZLV40_MorphoClose1Bit, PlainBitClose, true},
    {"boundary", ZLV40_MorphoBoundaryExtraction1Bit, PlainBoundary, true},
};

// Bits of which `density` in 256 are set, in stretches: most of them are as the one before.
inline Bytes RandomBits(std::size_t count, uint32_t density, uint64_t seed, uint32_t changesOf16 = 16)
{
    Random random(seed);
    Bytes bytes(count);
    bool bit = false;
    for (uint8_t& byte : bytes) {
        for (int i = 0; i < 8; ++i) {
            if (random.Below(16) < changesOf16) bit = random.Below(256) < density;
            byte = uint8_t(byte << 1 | bit);
        }
    }
    return bytes;
}

inline PlainBitElement Box(long long width, long long height, uint32_t value = 1)
{
    return {std::vector<uint32_t>(std::size_t(width * height), value), width, height};
}

// Entries of 0, 1 and 2.
inline PlainBitElement RandomElement(long long width, long long height, uint64_t seed)
{
    Random random(seed);
    PlainBitElement element = Box(width, height);
    for (uint32_t& entry : element.entries) entry = random.Below(3);
    return element;
}

inline PlainBitElement Diamond(long long side)
{
    PlainBitElement element = Box(side, side, 0);
    for (long long j = 0; j < side; ++j) {
        for (long long i = 0; i < side; ++i) {
            const bool isInside = std::abs(i - side / 2) + std::abs(j - side / 2) <= side / 2;
            element.entries[std::size_t(j * side + i)] = isInside;
        }
    }
    return element;
}

struct BitPicture {
    uint32_t width, height;
    uint32_t density = 128;
    uint32_t padding = 2;
    uint32_t changesOf16 = 16;

    uint32_t RowBytes() const { return (width + 7) / 8; }
    uint32_t SrcStride() const { return RowBytes() + padding; }
    uint32_t DstStride() const { return RowBytes() + 2 * padding; }
    // The bits behind a row's last pixel are noise too.
    Bytes Source() const
    {
        return RandomBits(std::size_t(SrcStride()) * height, density, width * 7 + height, changesOf16);
    }
    Bytes Destination() const { return RandomBytes(std::size_t(DstStride()) * height, 3); }
    PlainBits View(const Bytes& src) const { return {src.data(), width, height, SrcStride()}; }

    void ExpectPlain(const BitFunction& function, const PlainBitElement& element) const
    {
        SCOPE(function.name, width, "x", height, "density", density, "element", element.width, "x", element.height);
        const Bytes src = Source();
        Bytes wanted = Destination(), got = wanted;
        function.plain(View(src), element, {wanted.data(), DstStride()});
        EXPECT_EQ(function.apply(src.data(), width, height, SrcStride(), got.data(), DstStride(),
                                 element.entries.data(), int32_t(element.width), int32_t(element.height), 0),
                  1u);
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
    }

    void ExpectPlainHitOrMiss(const PlainBitElement& hit, const PlainBitElement& miss) const
    {
        SCOPE("hit-or-miss", width, "x", height, "density", density, "elements", hit.width, "x", hit.height, "and",
              miss.width, "x", miss.height);
        const Bytes src = Source();
        Bytes wanted = Destination(), got = wanted;
        PlainHitOrMiss(View(src), hit, miss, {wanted.data(), DstStride()});
        EXPECT_EQ(ZLV40_MorphoHitOrMiss1Bit(src.data(), width, height, SrcStride(), got.data(), DstStride(),
                                            hit.entries.data(), int32_t(hit.width), int32_t(hit.height),
                                            miss.entries.data(), int32_t(miss.width), int32_t(miss.height), 0),
                  1u);
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
    }
};

}  // namespace zlvtest
