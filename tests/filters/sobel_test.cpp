#include "plain/plain_sobel.h"
#include "runtime/base_call.h"
#include "support/base_watch.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/last_error.h"
#include "support/progress_recorder.h"
#include "support/targets.h"
#include "support/test_hooks.h"

#include <algorithm>
#include <thread>

#include "zlv40.h"

namespace zlv {
namespace {

using zlvtest::BaseWatch;
using zlvtest::Bytes;
using zlvtest::FailingCalls;
using zlvtest::ProgressRecorder;
using Words = std::vector<u16>;

constexpr u32 kCombined = ZLV40_COMBINED, kThreads = ZLV40_COMBINED | ZLV40_WORKER_THREADS;
constexpr u16 kFill = 0x5AA5;

struct Shape {
    u32 width, height, channels, srcPadding = 0, dstPadding = 0;

    u32 SrcStride() const { return width * channels + srcPadding; }
    u32 DstStride(u32 flags) const { return width * (flags & kCombined ? 1 : channels) + dstPadding; }
    size_t Magnitudes(u32 flags) const { return size_t(DstStride(flags)) * height; }
};

u32 Filter(const Shape& shape, const u8* src, u16* dst, u32 flags)
{
    return ZLV40_SobelFilter(src, shape.width, shape.height, shape.channels, shape.SrcStride(), dst,
                             shape.DstStride(flags), flags);
}

bool Plain(const Shape& shape, const u8* src, u16* dst, u32 flags, const PlainSobelReport& report)
{
    return PlainSobel({src, int(shape.width), int(shape.height), int(shape.channels), shape.SrcStride(), dst,
                       shape.DstStride(flags), flags},
                      report);
}

Words PlainResult(const Shape& shape, const u8* src, u32 flags)
{
    Words wanted(shape.Magnitudes(flags), kFill);
    Plain(shape, src, wanted.data(), flags, [](u32, u32) { return true; });
    return wanted;
}

void ExpectPlain(const Shape& shape, u32 flags)
{
    SCOPE(shape.width, 'x', shape.height, 'x', shape.channels, "flags", flags);
    const Bytes src = zlvtest::RandomBytes(size_t(shape.SrcStride()) * shape.height, shape.width);
    const Words wanted = PlainResult(shape, src.data(), flags);
    Words got(wanted.size(), kFill);
    EXPECT_EQ(Filter(shape, src.data(), got.data(), flags), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
}

TEST(Sobel, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([] {
        for (u32 width = 2; width <= 100; width += width < 40 ? 1 : 13) {
            for (const u32 height : {2u, 3u, 7u}) {
                ExpectPlain({width, height, 1, 2, 1}, 1);
                ExpectPlain({width, height, 3, 0, 3}, 7);
                ExpectPlain({width, height, 3, 1, 0}, kCombined);
                ExpectPlain({width, height, 4, 3, 2}, kCombined);
            }
        }
    });
}

// Rows that are longer than the pieces in which they are done.
TEST(Sobel, WideImagesEqualPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const u32 width : {1023u, 1024u, 1025u, 1365u, 1366u, 4096u, 4097u, 4098u, 9000u}) {
            ExpectPlain({width, 2, 1}, 1);
            ExpectPlain({width, 2, 3}, 5);
            ExpectPlain({width, 2, 3}, kCombined);
            ExpectPlain({width, 2, 4}, kCombined);
        }
    });
}

TEST(Sobel, EveryChannelCountAndMaskEqualsPlain)
{
    for (const u32 channels : {1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 32u}) {
        for (const u32 mask : {0u, 1u, 2u, 5u, 0x80u, 0xAAu, 0xFFu}) ExpectPlain({13, 5, channels, 1, 2}, mask);
    }
}

TEST(Sobel, AFlatImageHasNoGradients)
{
    const Bytes src(40 * 10 * 3, 200);
    for (const u32 flags : {7u, kCombined, kThreads}) {
        SCOPE(flags);
        const Shape shape = {40, 10, 3};
        Words dst(shape.Magnitudes(flags), kFill);
        Filter(shape, src.data(), dst.data(), flags);
        EXPECT_EQ(dst, Words(dst.size(), 0));
    }
}

// In the middle gx = gy = 2 * 255 + 255. At the corner those above and to the left are the corner itself: only the
// black sample below and to the right counts, once in each direction.
TEST(Sobel, ACornerByHand)
{
    const Bytes src = {
        255, 255, 0,  //
        255, 0,   0,  //
        0,   0,   0,
    };
    Words dst(9);
    EXPECT_EQ(Filter({3, 3, 1}, src.data(), dst.data(), 1), 1u);
    EXPECT_EQ(dst[4], 1530);
    EXPECT_EQ(dst[0], 510);
    EXPECT_EQ(dst[8], 0);
}

TEST(Sobel, AMaskOfZeroSucceedsAndWritesNothing)
{
    const Bytes src = zlvtest::RandomBytes(75, 1);
    Words dst(75, kFill);
    EXPECT_EQ(Filter({5, 5, 3}, src.data(), dst.data(), 0), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    EXPECT_EQ(dst, Words(75, kFill));
}

// ---- Neighbours outside the image ---------------------------------------------------------------------------------

constexpr u32 kSides[] = {ZLV40_COLUMN_LEFT, ZLV40_COLUMN_RIGHT, ZLV40_ROWS_ABOVE, ZLV40_ROWS_BELOW};

TEST(Sobel, CombinedMagnitudesReadPromisedRowsAndColumns)
{
    zlvtest::OnEveryTarget([] {
        for (const u32 channels : {3u, 4u}) {
            // A part of a picture with a pixel around it.
            const u32 width = 40, height = 9, stride = (width + 2) * channels;
            const Bytes picture = zlvtest::RandomBytes(size_t(stride) * (height + 2), channels);
            const Shape shape = {width, height, channels, stride - width * channels};
            for (u32 sides = 0; sides < 16; ++sides) {
                u32 flags = kCombined;
                for (u32 i = 0; i < 4; ++i) flags |= sides >> i & 1 ? kSides[i] : 0;
                SCOPE(channels, flags);
                const u8* const src = picture.data() + stride + channels;
                const Words wanted = PlainResult(shape, src, flags);
                Words got(wanted.size(), kFill);
                EXPECT_EQ(Filter(shape, src, got.data(), flags), 1u);
                EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
            }
        }
    });
}

TEST(Sobel, OneColumnOrRowIsEnoughWhereTheNextOneIsThere)
{
    const Bytes picture = zlvtest::RandomBytes(9 * 3, 2);  // 3 x 3 pixels
    const u32 all = kCombined | ZLV40_COLUMN_LEFT | ZLV40_COLUMN_RIGHT | ZLV40_ROWS_ABOVE | ZLV40_ROWS_BELOW;
    for (const u32 flags : {all, all & ~u32(ZLV40_COLUMN_LEFT), all & ~u32(ZLV40_ROWS_ABOVE)}) {
        const Shape shape = {1, 1, 3, 6};
        const Words wanted = PlainResult(shape, &picture[12], flags);
        Words got(1, kFill);
        EXPECT_EQ(Filter(shape, &picture[12], got.data(), flags), 1u);
        EXPECT_EQ(got, wanted);
    }
}

TEST(Sobel, SingleChannelsIgnoreTheFlagsOfCombinedMagnitudes)
{
    const u32 flags = 7 | ZLV40_WORKER_THREADS | kSides[0] | kSides[1] | kSides[2] | kSides[3];
    const Shape shape = {20, 6, 3};
    zlvtest::GuardedBuffer src(shape.SrcStride() * shape.height, zlvtest::Flush::ToStart);
    const Bytes bytes = zlvtest::RandomBytes(src.Size(), 3);
    std::copy(bytes.begin(), bytes.end(), src.Data());
    const Words wanted = PlainResult(shape, src.Data(), 7);
    Words got(wanted.size(), kFill);
    const FailingCalls failing(FailingCalls::Of::StartThread, 0);
    EXPECT_EQ(Filter(shape, src.Data(), got.data(), flags), 1u);
    EXPECT_EQ(failing.Failed(), 0u);
    EXPECT_EQ(got, wanted);
}

TEST(Sobel, StaysInsideItsBuffers)
{
    zlvtest::OnEveryTarget([] {
        for (const auto flush : {zlvtest::Flush::ToStart, zlvtest::Flush::ToEnd}) {
            for (const u32 flags : {7u, 2u, kCombined, kThreads}) {
                const Shape shape = {66, 6, 3, 1, 3};
                const u32 row = flags & kCombined ? 66 : 198;
                zlvtest::GuardedBuffer src(shape.SrcStride() * 5 + 198, flush, 9);
                zlvtest::GuardedBuffer dst((shape.DstStride(flags) * 5 + row) * 2, flush, 0x5A);
                u16* const words = reinterpret_cast<u16*>(dst.Data());
                EXPECT_EQ(Filter(shape, src.Data(), words, flags), flags == kThreads ? 0u : 1u);
                for (size_t i = 0; i < dst.Size() / 2; ++i) {
                    const bool isWritten = i % shape.DstStride(flags) < row && (flags != 2 || i % 201 % 3 == 1);
                    ASSERT_EQ(words[i], isWritten ? 0 : 0x5A5A) << i;
                }
            }
        }
    });
}

// ---- Results and codes --------------------------------------------------------------------------------------------

struct ArgumentRow {
    const char* shows;
    bool hasSrc = true, hasDst = true;
    u32 width = 5, height = 5, channels = 3, srcStride = 15, dstStride = 15;
    bool isForThreads = true;  // refused there too
};
const ArgumentRow kRefused[] = {
    {.shows = "no source", .hasSrc = false},
    {.shows = "no destination", .hasDst = false},
    {.shows = "no width", .width = 0},
    {.shows = "no height", .height = 0},
    {.shows = "one column", .width = 1},
    {.shows = "one row", .height = 1},
    {.shows = "a source stride of 0", .srcStride = 0},
    {.shows = "a destination stride of 0", .dstStride = 0},
    {.shows = "no channels", .channels = 0, .isForThreads = false},
    {.shows = "33 channels", .channels = 33, .isForThreads = false},
};

TEST(Sobel, RefusesWithNothingWritten)
{
    for (const ArgumentRow& row : kRefused) {
        for (const u32 flags : {7u, kCombined, kThreads}) {
            if (flags == kThreads && !row.isForThreads) continue;
            SCOPE(row.shows, flags);
            const Bytes src = zlvtest::RandomBytes(75, 1);
            Words dst(75, kFill);
            zlvtest::ClearLastError();
            EXPECT_EQ(ZLV40_SobelFilter(row.hasSrc ? src.data() : nullptr, row.width, row.height, row.channels,
                                        row.srcStride, row.hasDst ? dst.data() : nullptr, row.dstStride, flags),
                      flags == kThreads ? u32(ZLV40_ERROR_BAD_ARGUMENT) : 0u);
            EXPECT_EQ(ZLV40_GetLastError(), flags == kThreads ? 0u : u32(ZLV40_ERROR_BAD_ARGUMENT));
            EXPECT_EQ(dst, Words(75, kFill));
        }
    }
}

TEST(Sobel, CombinedMagnitudesNeedThreeOrFourChannels)
{
    for (const u32 channels : {1u, 2u, 5u, 8u}) {
        SCOPE(channels);
        const Bytes src = zlvtest::RandomBytes(size_t(25) * channels, 1);
        Words dst(25, kFill);
        EXPECT_EQ(Filter({5, 5, channels}, src.data(), dst.data(), kCombined), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(dst, Words(25, kFill));
    }
}

TEST(Sobel, ReportsRows)
{
    const Bytes src = zlvtest::RandomBytes(75, 1);
    for (const u32 flags : {0u, 7u, kCombined}) {
        SCOPE(flags);
        ProgressRecorder recorder;
        ZLV40_SetCallback(recorder.Function, recorder.Data());
        Words dst(75);
        EXPECT_EQ(Filter({5, 5, 3}, src.data(), dst.data(), flags), 1u);
        ZLV40_SetCallback(nullptr, 0);
        EXPECT_EQ(recorder.reports, zlvtest::Rows(5, 5));
    }
}

TEST(Sobel, ACancelAtAnyRowKeepsWhatIsDone)
{
    const Shape shape = {6, 5, 3};
    const Bytes src = zlvtest::RandomBytes(90, 1);
    for (const u32 flags : {7u, 2u, kCombined}) {
        for (size_t at = 1; at <= 5; ++at) {
            SCOPE(flags, at);
            Words wanted(shape.Magnitudes(flags), kFill), got = wanted;
            size_t plainReports = 0;
            EXPECT_FALSE(
                Plain(shape, src.data(), wanted.data(), flags, [&](u32, u32) { return ++plainReports != at; }));
            ProgressRecorder recorder;
            recorder.cancelAt = at;
            ZLV40_SetCallback(recorder.Function, recorder.Data());
            EXPECT_EQ(Filter(shape, src.data(), got.data(), flags), 0u);
            ZLV40_SetCallback(nullptr, 0);
            EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_CANCELLED));
            EXPECT_EQ(recorder.reports, zlvtest::Rows(u32(at), 5));
            EXPECT_EQ(got, wanted);
        }
    }
}

TEST(Sobel, LeavesCountersAndBaseCallbackAsTheyWere)
{
    BaseWatch base;
    const Bytes src = zlvtest::RandomBytes(75, 1);
    for (const u32 flags : {7u, kCombined, kThreads}) {
        Words dst(75);
        Filter({5, 5, 3}, src.data(), dst.data(), flags);
        base.ExpectUntouched();
    }
}

// ---- Threads ------------------------------------------------------------------------------------------------------

// Below four rows the first three strips are empty and the last one has all rows.
TEST(Sobel, StripsGiveWhatOneThreadGives)
{
    zlvtest::OnEveryTarget([] {
        for (u32 height = 2; height <= 21; ++height) {
            SCOPE(height);
            const Shape shape = {33, height, 3, 2, 1};
            zlvtest::GuardedBuffer src(shape.SrcStride() * (height - 1) + 99, zlvtest::Flush::ToEnd);
            const Bytes bytes = zlvtest::RandomBytes(src.Size(), height);
            std::copy(bytes.begin(), bytes.end(), src.Data());
            const Words wanted = PlainResult(shape, src.Data(), kCombined);
            Words got(wanted.size(), kFill);
            EXPECT_EQ(Filter(shape, src.Data(), got.data(), kThreads), 0u);
            EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
        }
    });
}

TEST(Sobel, ThreadsIgnoreMaskAndPromises)
{
    const Shape shape = {20, 9, 3};
    zlvtest::GuardedBuffer src(shape.SrcStride() * 9, zlvtest::Flush::ToStart, 0);
    for (size_t i = 0; i < src.Size(); ++i) src.Data()[i] = u8(i * i);
    const Words wanted = PlainResult(shape, src.Data(), kCombined);
    Words got(wanted.size(), kFill);
    EXPECT_EQ(Filter(shape, src.Data(), got.data(), kThreads | 5 | kSides[0] | kSides[1] | kSides[2] | kSides[3]), 0u);
    EXPECT_EQ(got, wanted);
}

// The pixels of a threaded run have three bytes, whatever its caller says.
TEST(Sobel, ThreadsTakeEveryImageAsThreeBytesAPixel)
{
    const Bytes src = zlvtest::RandomBytes(20 * 4 * 9, 4);
    const Words wanted = PlainResult({20, 9, 3, 20}, src.data(), kCombined);
    for (const u32 channels : {0u, 1u, 3u, 4u, 99u}) {
        SCOPE(channels);
        Words got(wanted.size(), kFill);
        EXPECT_EQ(ZLV40_SobelFilter(src.data(), 20, 9, channels, 80, got.data(), 20, kThreads), 0u);
        EXPECT_EQ(got, wanted);
    }
}

TEST(Sobel, ThreadsReturnZeroForSuccessAndLeaveTheLastErrorAlone)
{
    const Bytes src = zlvtest::RandomBytes(75, 1);
    Words dst(25);
    EXPECT_EQ(ZLV40_InvertImage(nullptr, 1, 1, 1, 1, 0), 0u);
    EXPECT_EQ(Filter({5, 5, 3}, src.data(), dst.data(), kThreads), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT)) << "of the call before";
    EXPECT_EQ(Filter({5, 5, 3}, nullptr, dst.data(), kThreads), u32(ZLV40_ERROR_BAD_ARGUMENT));
    zlvtest::ClearLastError();
    EXPECT_EQ(Filter({5, 5, 3}, nullptr, dst.data(), kThreads), u32(ZLV40_ERROR_BAD_ARGUMENT));
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
}

TEST(Sobel, ThreadsNeitherReportNorCancel)
{
    const Bytes src = zlvtest::RandomBytes(75, 1);
    ProgressRecorder recorder;
    recorder.cancelAt = 1;
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    Words dst(25);
    EXPECT_EQ(Filter({5, 5, 3}, src.data(), dst.data(), kThreads), 0u);
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_TRUE(recorder.reports.empty());
    EXPECT_EQ(dst, PlainResult({5, 5, 3}, src.data(), kCombined));
}

TEST(Sobel, AThreadThatCannotStartLeavesEverything)
{
    const Bytes src = zlvtest::RandomBytes(75, 1);
    for (u32 succeeding = 0; succeeding <= 4; ++succeeding) {
        SCOPE(succeeding);
        Words dst(25, kFill);
        const FailingCalls failing(FailingCalls::Of::StartThread, succeeding);
        EXPECT_EQ(Filter({5, 5, 3}, src.data(), dst.data(), kThreads), 0u);
        EXPECT_EQ(failing.Failed(), succeeding < 4 ? 1u : 0u) << "always four threads";
        EXPECT_EQ(dst == Words(25, kFill), succeeding < 4);
    }
}

TEST(Sobel, ManyClientsStartThreadsAtOnce)
{
    const Shape shape = {50, 40, 3};
    const Bytes src = zlvtest::RandomBytes(6000, 1);
    const Words wanted = PlainResult(shape, src.data(), kCombined);
    std::vector<Words> got(4, Words(wanted.size()));
    std::vector<std::thread> clients;
    for (Words& dst : got) {
        clients.emplace_back([&] {
            for (int i = 0; i < 20; ++i) Filter(shape, src.data(), dst.data(), kThreads);
        });
    }
    for (std::thread& client : clients) client.join();
    for (const Words& dst : got) EXPECT_EQ(dst, wanted);
}

}  // namespace
}  // namespace zlv
