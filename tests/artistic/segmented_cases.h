// What the tests of the segmented colourise share: pictures, and a call of it beside its plain twin.
#pragma once

#include "plain/plain_segmented.h"
#include "support/bytes.h"

#include "zlv40.h"

namespace zlvtest {

// Patches of a few colours with specks of others.
inline Bytes PatchedPicture(std::uint32_t width, std::uint32_t height, std::uint64_t seed)
{
    Random random(seed);
    Bytes colors(3 * 12), picture;
    for (std::uint8_t& component : colors) component = random.Byte();
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < width; ++x) {
            const std::uint32_t patch = (x / 9 + 2 * (y / 6) + (x + y) / 13) % 7;
            const std::uint32_t color = random.Below(5) == 0 ? random.Below(12) : patch;
            for (std::uint32_t c = 0; c < 3; ++c) picture.push_back(colors[3 * color + c]);
        }
    }
    return picture;
}

// A call and where its results go.
struct SegmentCase {
    std::uint32_t width, height, colors, mode, filterSize;
    std::uint32_t padding = 3;

    std::uint32_t Stride() const { return width + padding; }
    Bytes Source() const { return PatchedPicture(width, height, width * 31 + height); }
};

struct SegmentResult {
    Bytes image, palette;

    explicit SegmentResult(const SegmentCase& c)
        : image(RandomBytes(std::size_t(c.Stride()) * c.height, 3)), palette(RandomBytes(1024, 4))
    {
    }
    bool operator==(const SegmentResult&) const = default;
};

inline std::uint32_t Apply(const SegmentCase& c, const Bytes& source, SegmentResult& result)
{
    return ZLV40_SegmentedColorizeRGBImage(source.data(), c.width, c.height, 0, result.image.data(),
                                           std::int32_t(c.Stride()), result.palette.data(), c.colors, c.mode,
                                           c.filterSize, 0);
}

inline PlainSegmentCall PlainCallOf(const SegmentCase& c, const Bytes& source, SegmentResult& result)
{
    return {source.data(),         c.width,  c.height, result.image.data(), c.Stride(),
            result.palette.data(), c.colors, c.mode,   c.filterSize};
}

inline void ExpectSame(const SegmentResult& wanted, const SegmentResult& got)
{
    EXPECT_EQ(Difference(wanted.image.data(), got.image.data(), got.image.size()), "");
    EXPECT_EQ(Difference(wanted.palette.data(), got.palette.data(), got.palette.size()), "");
}

inline void ExpectPlain(const SegmentCase& c)
{
    SCOPE(c.width, "x", c.height, "colours", c.colors, "mode", c.mode, "filter size", c.filterSize);
    const Bytes source = c.Source();
    SegmentResult wanted(c), got(c);
    PlainSegmentedColorize(PlainCallOf(c, source, wanted));
    EXPECT_EQ(Apply(c, source, got), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    ExpectSame(wanted, got);
}

}  // namespace zlvtest
