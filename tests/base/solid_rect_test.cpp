#include "base/solid_rect.h"

#include "plain/plain_solid_rect.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ProgressRecorder;
using zlvtest::Rows;

constexpr u32 kWidth = 9, kHeight = 6;

TEST(FillSolidRect, EqualsPlain)
{
    zlvtest::Random random(1);
    for (u32 i = 0; i < 600; ++i) {
        const u32 channels = i % 3 == 0 ? 1 : i % 3 + 2;
        const SolidRect rect = {random.Below(11), random.Below(8), random.Below(14), random.Below(9)};
        if (rect.right + 1 < rect.left || rect.bottom < rect.top) continue;
        const u32 color = i % 2 ? random.Next() : random.Below(256) * 0x01010101u;
        const u32 padding = i % 4 == 0 ? 2 : 0;
        for (const u32 flags : {0u, kSwapFirstAndThird}) {
            SCOPE(channels, rect.left, rect.top, rect.right, rect.bottom, color, padding, flags);
            const u32 stride = kWidth * channels + padding;
            Bytes wanted = zlvtest::RandomBytes(size_t(stride) * kHeight, i);
            Bytes got = wanted;
            PlainFillRect(wanted.data(), kWidth, kHeight, channels, stride, rect.left, rect.top, rect.right,
                          rect.bottom, color, flags != 0);
            EXPECT_EQ(MV40_FillSolidRect(got.data(), kWidth, kHeight, channels, stride, &rect, color, flags), 1u);
            EXPECT_EQ(got, wanted);
        }
    }
}

// A plane of 4 x 3; what is filled, row after row.
const struct {
    const char* shows;
    SolidRect rect;
    const char* filled;
} kRects[] = {
    {"right is included and bottom is not",
     {1, 0, 2, 2},
     ".##."
     ".##."
     "...."},
    {"right equal to left is one column",
     {2, 0, 2, 3},
     "..#."
     "..#."
     "..#."},
    {"bottom equal to top is nothing", {0, 1, 3, 1}, "............"},
    {"right one below left is nothing", {2, 0, 1, 3}, "............"},
    {"the right and bottom edges cut", {3, 2, 90, 90}, "...........#"},
    {"left at the edge is nothing", {4, 0, 9, 3}, "............"},
    {"top at the edge is nothing", {0, 3, 3, 9}, "............"},
    {"a negative left lies far to the right", {0xFFFFFFFF, 0, 2, 3}, "............"},
    {"a negative top lies far below", {0, 0xFFFFFFFE, 3, 3}, "............"},
    {"a rectangle turned over wraps and is cut", {2, 1, 0, 2}, "......##...."},
    {"a bottom above the top wraps and is cut", {0, 2, 0, 1}, "........#..."},
    {"a width of 2^32 is none", {0, 0, 0xFFFFFFFF, 3}, "............"},
    {"the whole plane", {0, 0, 3, 3}, "############"},
};

TEST(FillSolidRect, ByHand)
{
    for (const auto& row : kRects) {
        SCOPE(row.shows);
        Bytes image(12, 77), wanted(12, 77);
        for (u32 i = 0; i < 12; ++i) {
            if (row.filled[i] == '#') wanted[i] = 5;
        }
        EXPECT_EQ(MV40_FillSolidRect(image.data(), 4, 3, 1, 4, &row.rect, 0x11223305, 0), 1u);
        EXPECT_EQ(image, wanted);
    }
}

const struct {
    const char* shows;
    u32 channels, flags;
    Bytes pixel;
} kColors[] = {
    {"one channel takes the low byte", 1, 0, {0x11}},
    {"one channel does not swap", 1, kSwapFirstAndThird, {0x11}},
    {"three channels, low byte first", 3, 0, {0x11, 0x22, 0x33}},
    {"three channels, swapped", 3, kSwapFirstAndThird, {0x33, 0x22, 0x11}},
    {"four channels, low byte first", 4, 0, {0x11, 0x22, 0x33, 0x44}},
    {"four channels, swapped", 4, kSwapFirstAndThird, {0x33, 0x22, 0x11, 0x44}},
};

TEST(FillSolidRect, ColorsByHand)
{
    const SolidRect rect = {0, 0, 0, 1};
    for (const auto& row : kColors) {
        SCOPE(row.shows);
        Bytes image(row.channels);
        EXPECT_EQ(MV40_FillSolidRect(image.data(), 1, 1, row.channels, row.channels, &rect, 0x44332211, row.flags), 1u);
        EXPECT_EQ(image, row.pixel);
    }
}

// What a fill of a 4 x 3 image reports.
const struct {
    const char* shows;
    u32 channels, padding;
    SolidRect rect;
    u32 color;
    u32 reports;
} kReports[] = {
    {"a plane reports even as a whole", 1, 0, {0, 0, 3, 3}, 0x05050505, 3},
    {"gray over the whole image is one fill", 3, 0, {0, 0, 3, 3}, 0x99050505, 0},
    {"gray cut to the whole image too", 3, 0, {0, 0, 90, 90}, 0x00050505, 0},
    {"padding needs rows", 3, 1, {0, 0, 3, 3}, 0x05050505, 3},
    {"a colour needs rows", 3, 0, {0, 0, 3, 3}, 0x00050506, 3},
    {"four equal bytes are one fill", 4, 0, {0, 0, 3, 3}, 0x05050505, 0},
    {"another alpha needs rows", 4, 0, {0, 0, 3, 3}, 0xFF050505, 3},
    {"two rows of three", 3, 0, {0, 1, 3, 3}, 0x05050505, 2},
    {"a column less", 3, 0, {0, 0, 2, 3}, 0x05050505, 3},
    {"nothing to fill", 3, 0, {0, 3, 3, 3}, 0x05050505, 0},
};

TEST(FillSolidRect, ReportsRowsOfTheRectangle)
{
    for (const auto& row : kReports) {
        SCOPE(row.shows);
        Bytes image(60, 77);
        ProgressRecorder recorder;
        MV40_SetCallback(recorder.Function, recorder.Data());
        EXPECT_EQ(MV40_FillSolidRect(image.data(), 4, 3, row.channels, 4 * row.channels + row.padding, &row.rect,
                                     row.color, 0),
                  1u);
        MV40_SetCallback(nullptr, 0);
        EXPECT_EQ(recorder.reports, Rows(row.reports, row.reports));
    }
}

TEST(FillSolidRect, ACancelKeepsTheRowsDoneAndLeavesTheRest)
{
    const SolidRect rect = {0, 1, 1, 4};
    for (const u32 cancelAt : {1u, 2u, 3u}) {
        SCOPE(cancelAt);
        Bytes image(12, 77), wanted(12, 77);
        std::fill_n(wanted.begin() + 3, 3 * cancelAt, u8(5));
        for (u32 y = 1; y <= cancelAt; ++y) wanted[y * 3 + 2] = 77;
        ProgressRecorder recorder;
        recorder.cancelAt = cancelAt;
        MV40_SetCallback(recorder.Function, recorder.Data());
        EXPECT_EQ(MV40_FillSolidRect(image.data(), 3, 4, 1, 3, &rect, 5, 0), 0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::Cancelled));
        MV40_SetCallback(nullptr, 0);
        EXPECT_EQ(recorder.reports, Rows(cancelAt, 3));
        EXPECT_EQ(image, wanted);
        EXPECT_EQ(baseContexts.Get()->nestCount, 0u);
    }
}

TEST(FillSolidRect, StaysInsideTheImage)
{
    for (const u32 channels : {1u, 3u, 4u}) {
        for (const u32 color : {0x05050505u, 0x01020304u}) {
            for (const zlvtest::Flush flush : {zlvtest::Flush::ToStart, zlvtest::Flush::ToEnd}) {
                SCOPE(channels, color, int(flush));
                zlvtest::GuardedBuffer image(size_t(5) * 4 * channels, flush);
                for (const SolidRect& rect : {SolidRect{0, 0, 4, 4}, SolidRect{1, 1, 99, 99}, SolidRect{3, 2, 1, 1}}) {
                    EXPECT_EQ(MV40_FillSolidRect(image.Data(), 5, 4, channels, 5 * channels, &rect, color, 0), 1u);
                }
            }
        }
    }
}

TEST(FillSolidRect, RefusalsWriteNothing)
{
    const SolidRect rect = {0, 0, 1, 2};
    Bytes image(20, 77);
    EXPECT_EQ(MV40_FillSolidRect(nullptr, 2, 2, 1, 2, &rect, 5, 0), 0u);
    EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
    EXPECT_EQ(MV40_FillSolidRect(image.data(), 2, 2, 1, 2, nullptr, 5, 0), 0u);
    EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
    for (const u32 channels : {0u, 2u, 5u, 0xFFFFFFFFu}) {
        EXPECT_EQ(MV40_FillSolidRect(image.data(), 2, 2, channels, 8, &rect, 5, 0), 0u) << channels;
        EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument)) << channels;
    }
    EXPECT_EQ(image, Bytes(20, 77));
}

}  // namespace
}  // namespace zlv
