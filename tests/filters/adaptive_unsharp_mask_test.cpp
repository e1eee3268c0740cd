#include "filters/adaptive_cases.h"
#include "runtime/frame.h"
#include "support/guarded_buffer.h"
#include "support/test_hooks.h"

#include <limits>

namespace zlv {
namespace {

using namespace zlvtest;

struct Mask {
    u32 threshold = 8;
    f64 amount = 0.7;
    i32 flags = 0;
};

u32 Apply(const AdaptiveShape& shape, const u8* src, u8* dst, const Mask& mask)
{
    return ZLV40_AdaptiveUnsharpMask(src, shape.width, shape.height, i32(shape.channels), shape.SrcStride(),
                                     shape.DstStride(), dst, mask.threshold, mask.amount, i8(mask.flags));
}

Bytes PlainResult(const AdaptiveShape& shape, const Bytes& src, const Mask& mask)
{
    Bytes wanted = shape.Target();
    PlainUnsharpMask(shape.Plain(src, wanted), mask.threshold, mask.amount, mask.flags, GoOn);
    return wanted;
}

void ExpectPlain(const AdaptiveShape& shape, const Mask& mask)
{
    SCOPE(shape.width, 'x', shape.height, 'x', shape.channels, "threshold", mask.threshold, "amount", mask.amount,
          "flags", mask.flags);
    const Bytes src = shape.Source(), wanted = PlainResult(shape, src, mask);
    Bytes got = shape.Target();
    EXPECT_EQ(Apply(shape, src.data(), got.data(), mask), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
}

constexpr i32 kSets[] = {0, ZLV40_UNSHARP_FOUR_KERNELS, ZLV40_UNSHARP_EIGHT_KERNELS};

TEST(AdaptiveUnsharpMask, EveryTargetEqualsPlain)
{
    OnEveryTarget([] {
        for (u32 width = 1; width <= 140; width += width < 36 ? 1 : 13) {
            for (const i32 set : kSets) {
                ExpectPlain({width, 3, 1, 2, 1}, {8, 0.7, set});
                ExpectPlain({width, 2, 3, 0, 3}, {0, -1.3, set});
                ExpectPlain({width, 3, 4, 1, 0}, {20, 2.5, set | ZLV40_UNSHARP_KEEP_ALPHA});
            }
        }
    });
}

TEST(AdaptiveUnsharpMask, EveryNumberOfChannelsEqualsPlain)
{
    for (u32 channels = 1; channels <= 9; ++channels) {
        for (const i32 set : kSets) {
            ExpectPlain({17, 4, channels, 1, 2}, {5, 1.1, set});
            ExpectPlain({17, 4, channels, 1, 2}, {5, 1.1, set | ZLV40_UNSHARP_KEEP_ALPHA});
        }
    }
    ExpectPlain({3, 2, 5000}, {5, 1.1, ZLV40_UNSHARP_KEEP_ALPHA});
}

// Longer than the pieces in which colours are done.
TEST(AdaptiveUnsharpMask, WideImagesEqualPlain)
{
    for (const u32 width : {1023u, 1024u, 1025u, 1026u, 2049u, 3000u}) {
        ExpectPlain({width, 2, 4}, {8, 0.7, ZLV40_UNSHARP_EIGHT_KERNELS | ZLV40_UNSHARP_KEEP_ALPHA});
    }
}

TEST(AdaptiveUnsharpMask, EveryDifferenceOfTwoSamples)
{
    const AdaptiveShape shape = {2, 65536, 1};
    Bytes src;
    for (u32 i = 0; i < 65536; ++i) {
        src.push_back(u8(i >> 8));
        src.push_back(u8(i));
    }
    OnEveryTarget([&] {
        for (const Mask& mask : {Mask{0, 0.3}, Mask{0, -0.3}, Mask{40, 1}, Mask{126, 1e300}, Mask{0, -1e300}}) {
            SCOPE(mask.threshold, mask.amount);
            const Bytes wanted = PlainResult(shape, src, mask);
            Bytes got = shape.Target();
            Apply(shape, src.data(), got.data(), mask);
            EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
        }
    });
}

// A rise of 100 adds 50. A fall of 99 takes 49.5, truncated, as far as 0. A fall of 11 is not above the threshold of
// 11.
TEST(AdaptiveUnsharpMask, ByHand)
{
    const Bytes src = {10, 110, 110, 11, 0, 255};
    Bytes dst(6);
    EXPECT_EQ(Apply({6, 1, 1}, src.data(), dst.data(), {11, 0.5, 2}), 1u);
    EXPECT_EQ(dst, (Bytes{10, 160, 110, 0, 0, 255}));
    EXPECT_EQ(Apply({6, 1, 1}, src.data(), dst.data(), {10, -0.5, 2}), 1u);
    EXPECT_EQ(dst, (Bytes{10, 60, 110, 60, 5, 192})) << "63.5 of the limited 127 is truncated";
}

TEST(AdaptiveUnsharpMask, AThresholdOf255LeavesAllSamples)
{
    const AdaptiveShape shape = {40, 6, 3};
    const Bytes src = shape.Source();
    for (const u32 threshold : {127u, 128u, 255u, 256u, 0xFFFFFFFFu}) {
        Bytes dst = shape.Target();
        EXPECT_EQ(Apply(shape, src.data(), dst.data(), {threshold, 5, 1}), 1u);
        EXPECT_EQ(dst, src);
    }
}

TEST(AdaptiveUnsharpMask, AllSetsOfKernelsSharpenAlike)
{
    const AdaptiveShape shape = {30, 6, 3};
    const Bytes src = shape.Source();
    Bytes two = shape.Target(), four = two, eight = two;
    Apply(shape, src.data(), two.data(), {3, 0.9, 0});
    Apply(shape, src.data(), four.data(), {3, 0.9, 1});
    Apply(shape, src.data(), eight.data(), {3, 0.9, 2});
    EXPECT_EQ(two, four);
    EXPECT_EQ(two, eight);
}

// 127 + 50 - 20, and 127 in the last column.
TEST(AdaptiveUnsharpMask, TwoKernelsLeaveTheSecondResponseInAlpha)
{
    const Bytes src = {1, 2, 3, 50, 4, 5, 6, 20};
    for (const bool isWatched : {false, true}) {
        Bytes dst(8, kFill);
        ClientProgress client;
        if (!isWatched) ZLV40_SetCallback(nullptr, 0);
        EXPECT_EQ(Apply({2, 1, 4}, src.data(), dst.data(), {255, 1, ZLV40_UNSHARP_KEEP_ALPHA}), 1u);
        EXPECT_EQ(dst, (Bytes{1, 2, 3, 157, 4, 5, 6, 127}));
    }
}

TEST(AdaptiveUnsharpMask, MoreKernelsLeaveAlphaUntouched)
{
    const AdaptiveShape shape = {9, 3, 4};
    const Bytes src = shape.Source();
    Bytes dst = shape.Target();
    Apply(shape, src.data(), dst.data(), {3, 1, ZLV40_UNSHARP_FOUR_KERNELS | ZLV40_UNSHARP_KEEP_ALPHA});
    for (size_t i = 3; i < dst.size(); i += 4) EXPECT_EQ(dst[i], kFill);
}

TEST(AdaptiveUnsharpMask, WorksInPlace)
{
    OnEveryTarget([] {
        for (const u32 channels : {1u, 3u, 4u, 5u}) {
            for (const i32 flags : {0, 1, 2, 4, 5, 6}) {
                for (const bool isWatched : {false, true}) {
                    SCOPE(channels, flags, isWatched);
                    const AdaptiveShape shape = {70, 4, channels, 2, 2};
                    Bytes wanted = shape.Source(), got = wanted;
                    PlainUnsharpMask(shape.Plain(wanted, wanted), 6, 0.8, flags, GoOn);
                    ClientProgress client;
                    if (!isWatched) ZLV40_SetCallback(nullptr, 0);
                    EXPECT_EQ(Apply(shape, got.data(), got.data(), {6, 0.8, flags}), 1u);
                    EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
                }
            }
        }
    });
}

TEST(AdaptiveUnsharpMask, StaysInsideItsBuffers)
{
    OnEveryTarget([] {
        for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
            for (const u32 channels : {1u, 3u, 4u}) {
                const AdaptiveShape shape = {67, 3, channels};
                GuardedBuffer src(shape.Source().size(), flush, 9), dst(src.Size(), flush, kFill);
                EXPECT_EQ(Apply(shape, src.Data(), dst.Data(), {0, 1, ZLV40_UNSHARP_KEEP_ALPHA}), 1u);
            }
        }
    });
}

// ---- Calls --------------------------------------------------------------------------------------------------------

struct RefusedRow {
    const char* shows;
    bool hasSrc = true, hasDst = true;
    u32 width = 4, height = 3;
    i32 channels = 3;
    u32 srcStride = 12, dstStride = 12;
    f64 amount = 1;
    i32 flags = 0;
};
const RefusedRow kRefused[] = {
    {.shows = "no source", .hasSrc = false},
    {.shows = "no destination", .hasDst = false},
    {.shows = "no width", .width = 0},
    {.shows = "no height", .height = 0},
    {.shows = "no channels", .channels = 0},
    {.shows = "fewer channels than none", .channels = -1},
    {.shows = "a source stride of 0", .srcStride = 0},
    {.shows = "a destination stride of 0", .dstStride = 0},
    {.shows = "an amount that is not a number", .amount = std::numeric_limits<f64>::quiet_NaN()},
    {.shows = "an infinite amount", .amount = -std::numeric_limits<f64>::infinity()},
    {.shows = "four and eight kernels", .flags = 3},
    {.shows = "four and eight kernels without alpha", .flags = 7},
    {.shows = "four and eight kernels and all other bits", .flags = -1},
};

TEST(AdaptiveUnsharpMask, RefusesWithNothingWritten)
{
    for (const RefusedRow& row : kRefused) {
        SCOPE(row.shows);
        const Bytes src = RandomBytes(36, 1);
        Bytes dst(36, kFill);
        ClearLastError();
        EXPECT_EQ(ZLV40_AdaptiveUnsharpMask(row.hasSrc ? src.data() : nullptr, row.width, row.height, row.channels,
                                            row.srcStride, row.dstStride, row.hasDst ? dst.data() : nullptr, 1,
                                            row.amount, i8(row.flags)),
                  0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(dst, Bytes(36, kFill));
    }
}

TEST(AdaptiveUnsharpMask, RefusesOneImageWithTwoStrides)
{
    const Bytes before = RandomBytes(40, 1);
    Bytes image = before;
    EXPECT_EQ(ZLV40_AdaptiveUnsharpMask(image.data(), 4, 3, 3, 12, 13, image.data(), 1, 1, 0), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
    EXPECT_EQ(image, before);
}

TEST(AdaptiveUnsharpMask, ReportsEachKernelAndTheEnd)
{
    const AdaptiveShape shape = {5, 4, 3};
    const Bytes src = shape.Source();
    for (const i32 set : kSets) {
        const u32 total = 2u << set;
        Bytes dst = shape.Target();
        ClientProgress client;
        EXPECT_EQ(Apply(shape, src.data(), dst.data(), {3, 1, set}), 1u);
        EXPECT_EQ(client.recorder.reports, Rows(total + 1, total));
    }
}

TEST(AdaptiveUnsharpMask, ACancelAtAnyReportKeepsWhatIsWritten)
{
    const AdaptiveShape shape = {5, 4, 4, 1, 2};
    const Bytes src = shape.Source();
    for (const i32 flags : {0, 1, 2, 4, 5, 6}) {
        for (size_t at = 1; at <= (2u << (flags & 3)) + 1; ++at) {
            SCOPE(flags, at);
            Bytes wanted = shape.Target(), got = wanted;
            PlainProgress plain(at);
            EXPECT_FALSE(PlainUnsharpMask(shape.Plain(src, wanted), 3, 1, flags,
                                          [&](u32 current, u32 total) { return plain(current, total); }));
            ClientProgress client(at);
            EXPECT_EQ(Apply(shape, src.data(), got.data(), {3, 1, flags}), 0u);
            EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_CANCELLED));
            EXPECT_EQ(client.recorder.reports, plain.reports);
            EXPECT_EQ(got, wanted);
        }
    }
}

TEST(AdaptiveUnsharpMask, WithoutMemoryNothingIsWrittenInPlace)
{
    const AdaptiveShape shape = {5, 4, 3};
    const Bytes before = shape.Source();
    Bytes image = before;
    ClearLastError();
    {
        const FailingCalls failing(FailingCalls::Of::Allocate, 0);
        EXPECT_EQ(Apply(shape, image.data(), image.data(), {3, 1, 0}), 0u);
        EXPECT_EQ(failing.Failed(), 1u);
    }
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_OUT_OF_MEMORY));
    EXPECT_EQ(image, before);
}

TEST(AdaptiveUnsharpMask, OtherwiseNeedsNoMemory)
{
    const AdaptiveShape shape = {5, 4, 4};
    const Bytes src = shape.Source();
    Bytes dst = shape.Target();
    ClearLastError();
    const FailingCalls failing(FailingCalls::Of::Allocate, 0);
    for (const i32 flags : {0, 1, 2, 4, 5, 6}) {
        EXPECT_EQ(Apply(shape, src.data(), dst.data(), {3, 1, flags}), 1u);
    }
    EXPECT_EQ(failing.Failed(), 0u);
}

}  // namespace
}  // namespace zlv
