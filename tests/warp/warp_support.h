// A warp list and its plain twin side by side: what tests of warps run through the library and through the twin.
#pragma once

#include "plain/plain_warp.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/targets.h"

#include "zlv40.h"

#include <functional>
#include <string>

namespace zlvtest {

struct WarpImage {
    std::uint32_t width, height, channels;
    std::uint32_t srcPadding = 0, dstPadding = 0;

    std::uint32_t SrcStride() const { return width * channels + srcPadding; }
    std::uint32_t DstStride() const { return width * channels + dstPadding; }
    std::size_t Size(std::uint32_t stride) const
    {
        return height == 0 ? 0 : std::size_t(stride) * (height - 1) + std::size_t(width) * channels;
    }
};

inline constexpr WarpImage kWarpImages[] = {
    {1, 1, 3},        {1, 9, 1, 2, 0}, {9, 1, 3, 0, 3},  {2, 2, 4},   {3, 3, 1},   {13, 7, 3, 1, 5},
    {7, 20, 2, 0, 1}, {40, 9, 5},      {11, 8, 9, 2, 2}, {300, 4, 1}, {270, 5, 3},
};

// A warp as a client adds it, for pictures of this size, and what it does, said plainly.
struct WarpCase {
    std::string name;
    std::function<std::uint32_t(std::uint32_t width, std::uint32_t height)> add;
    std::function<PlainStep(std::uint32_t width, std::uint32_t height)> plain;
};

// Clears the list at its end, so that tests leave none behind.
struct WarpList {
    WarpList() { ZLV40_ClearAllTransforms(); }
    ~WarpList() { ZLV40_ClearAllTransforms(); }
    WarpList(const WarpList&) = delete;
    WarpList& operator=(const WarpList&) = delete;
};

// The list that stands, with these flags, against the plain one: pixels, padding and what is around the buffers.
inline void ExpectListEqualsPlain(const WarpImage& image, const std::vector<PlainStep>& steps, std::uint32_t flags)
{
    constexpr std::uint32_t kBackground = 0xC0804020u;
    SCOPE(image.width, "x", image.height, "x", image.channels, "flags", flags);
    const Bytes src = RandomBytes(image.Size(image.SrcStride()), image.width * 7 + image.height);
    const Bytes before = RandomBytes(image.Size(image.DstStride()), image.channels + flags);
    GuardedBuffer in(src.size(), Flush::ToEnd), out(before.size(), Flush::ToEnd);
    std::copy(src.begin(), src.end(), in.Data());
    std::copy(before.begin(), before.end(), out.Data());
    EXPECT_EQ(ZLV40_TransformProcess(in.Data(), image.width, image.height, image.SrcStride(), out.Data(),
                                     image.DstStride(), std::int32_t(image.channels), flags, kBackground),
              1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    Bytes wanted = before;
    PlainTransformProcess(steps, {src.data(), image.width, image.height, image.channels, image.SrcStride()},
                          wanted.data(), image.DstStride(), flags, kBackground);
    EXPECT_EQ(Difference(wanted.data(), out.Data(), wanted.size()), "");
    EXPECT_EQ(Difference(src.data(), in.Data(), src.size()), "");
}

// These warps, added in this order for each picture, with every way of sampling. (What the flags do together is shown
// by the tests of the list itself.)
inline void ExpectChainEqualsPlain(const std::vector<WarpCase>& cases, const WarpImage& image)
{
    const WarpList list;
    std::vector<PlainStep> steps;
    for (const WarpCase& one : cases) {
        SCOPE(one.name);
        ASSERT_EQ(one.add(image.width, image.height), 1u);
        steps.push_back(one.plain(image.width, image.height));
    }
    for (const std::uint32_t flags : {0u, 5u, 10u}) {
        ExpectListEqualsPlain(image, steps, flags);
    }
    PlainExtent got = {-1, -1, -1, -1};
    EXPECT_EQ(ZLV40_GetTransformDimensions(image.width, image.height, &got.minX, &got.minY, &got.maxX, &got.maxY), 1u);
    const PlainExtent wanted = PlainTransformExtent(steps, image.width, image.height);
    EXPECT_EQ(got.minX, wanted.minX);
    EXPECT_EQ(got.minY, wanted.minY);
    EXPECT_EQ(got.maxX, wanted.maxX);
    EXPECT_EQ(got.maxY, wanted.maxY);
}

// Each warp alone, on every target and on pictures of awkward shapes.
inline void ExpectEachEqualsPlain(const std::vector<WarpCase>& cases)
{
    OnEveryTarget([&] {
        for (const WarpCase& one : cases) {
            SCOPE(one.name);
            for (const WarpImage& image : kWarpImages) ExpectChainEqualsPlain({one}, image);
        }
    });
}

}  // namespace zlvtest
