#include "plain/plain_push.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "warp/warp_support.h"

#include <climits>

namespace zlvtest {
namespace {

struct PushImage {
    std::uint32_t width, height, channels, padding = 0;

    std::uint32_t Stride() const { return width * channels + padding; }
    std::size_t Size() const { return std::size_t(height) * Stride(); }
    Bytes Samples() const { return RandomBytes(Size(), width * 31 + height * 7 + channels); }
};

std::uint32_t Push(const PushImage& image, const std::uint8_t* src, std::uint8_t* dst, point from, point to)
{
    return ZLV40_PushImage(src, image.width, image.height, image.channels, image.Stride(), dst, &from, &to);
}

Bytes Plain(const PushImage& image, const Bytes& src, Bytes dst, point from, point to, std::uint32_t lastReport = 4)
{
    PlainPush({src.data(), image.width, image.height, image.channels, image.Stride()}, dst.data(),
              {double(from.x), double(from.y)}, {double(to.x), double(to.y)},
              [&](std::uint32_t current, std::uint32_t) { return current != lastReport; });
    return dst;
}

// Between pages that fault, on both ends in turn.
void ExpectEqualsPlain(const PushImage& image, point from, point to)
{
    SCOPE(image.width, "x", image.height, "x", image.channels, "+", image.padding, "from", from.x, from.y, "to", to.x,
          to.y);
    const Bytes src = image.Samples(), wanted = Plain(image, src, Bytes(image.Size()), from, to);
    for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
        GuardedBuffer in(src.size(), flush), out(src.size(), flush, 0x5A);
        std::copy(src.begin(), src.end(), in.Data());
        EXPECT_EQ(Push(image, in.Data(), out.Data(), from, to), 1u);
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        EXPECT_EQ(Difference(wanted.data(), out.Data(), wanted.size()), "");
        EXPECT_EQ(Difference(src.data(), in.Data(), src.size()), "");
    }
}

constexpr PushImage kImages[] = {
    {1, 1, 3}, {1, 7, 1}, {7, 1, 4, 3}, {2, 2, 1},  {3, 3, 3},  {4, 4, 2, 1}, {5, 4, 1},  {6, 6, 1},
    {7, 7, 1}, {9, 8, 5}, {13, 9, 9},   {20, 5, 3}, {21, 8, 4}, {30, 30, 3},  {40, 3, 1},
};

TEST(PushImage, EveryTargetEqualsPlain)
{
    OnEveryTarget([] {
        for (const PushImage& image : kImages) {
            Random random(image.width * 100 + image.height);
            const auto anywhere = [&](std::uint32_t size) { return std::int32_t(random.Below(3 * size)) - int(size); };
            for (int i = 0; i < 20; ++i) {
                ExpectEqualsPlain(image, {anywhere(image.width), anywhere(image.height)},
                                  {anywhere(image.width), anywhere(image.height)});
            }
        }
    });
}

// More columns than go down together.
TEST(PushImage, EveryTargetEqualsPlainOnWideImages)
{
    OnEveryTarget([] {
        for (const std::uint32_t width : {127u, 128u, 129u, 256u, 400u}) {
            ExpectEqualsPlain({width, 6, 3}, {150, 3}, {50, 2});
            ExpectEqualsPlain({width, 6, 1, 2}, {-150, 3}, {0, 2});
            ExpectEqualsPlain({width, 6, 4}, {3, 3}, {INT_MIN, 2});
        }
    });
}

TEST(PushImage, TheSamePointGivesACopyAndNoReport)
{
    const PushImage image = {9, 5, 3, 4};
    const Bytes src = image.Samples();
    for (const point at : {point{4, 2}, point{0, 0}, point{-7, 100}, point{INT_MIN, INT_MAX}}) {
        ProgressRecorder recorder;
        ZLV40_SetCallback(recorder.Function, recorder.Data());
        Bytes dst(src.size());
        EXPECT_EQ(Push(image, src.data(), dst.data(), at, at), 1u);
        ZLV40_SetCallback(nullptr, 0);
        EXPECT_EQ(dst, src) << "the padding, too, of the last row as well";
        EXPECT_TRUE(recorder.reports.empty());
    }
}

TEST(PushImage, PointsOneApartChangeAPatchOfFourByFour)
{
    const PushImage image = {12, 12, 1};
    const Bytes src = image.Samples();
    for (const point from : {point{5, 6}, point{7, 6}, point{6, 5}, point{6, 7}, point{7, 7}}) {
        SCOPE(from.x, from.y);
        Bytes dst(src.size());
        ASSERT_EQ(Push(image, src.data(), dst.data(), from, {6, 6}), 1u);
        EXPECT_NE(dst, src);
        for (std::uint32_t y = 0; y < 12; ++y) {
            for (std::uint32_t x = 0; x < 12; ++x) {
                const bool isInPatch = x >= 4 && x < 8 && y >= 4 && y < 8;
                if (!isInPatch) {
                    EXPECT_EQ(dst[y * 12 + x], src[y * 12 + x]) << x << ' ' << y;
                }
            }
        }
    }
}

TEST(PushImage, ThePointBecomesTheOneItIsPushedFrom)
{
    const PushImage image = {30, 30, 3};
    const Bytes src = image.Samples();
    Bytes dst(src.size());
    ASSERT_EQ(Push(image, src.data(), dst.data(), {12, 19}, {17, 14}), 1u);
    for (std::uint32_t c = 0; c < 3; ++c) EXPECT_EQ(dst[14 * 90 + 17 * 3 + c], src[19 * 90 + 12 * 3 + c]);
}

// The distance is 5, the square goes from (5, 4) to (24, 23): no seam.
TEST(PushImage, PixelsOnTheSquaresEdgeStay)
{
    const PushImage image = {30, 30, 1};
    const Bytes src = image.Samples();
    Bytes dst(src.size());
    ASSERT_EQ(Push(image, src.data(), dst.data(), {12, 18}, {15, 14}), 1u);
    for (std::uint32_t i = 0; i < 20; ++i) {
        EXPECT_EQ(dst[(4 + i) * 30 + 5], src[(4 + i) * 30 + 5]) << "left " << i;
        EXPECT_EQ(dst[4 * 30 + 5 + i], src[4 * 30 + 5 + i]) << "above " << i;
    }
    EXPECT_NE(dst, src);
}

// The squares are clipped, and the quadrilaterals' outer corners with them.
TEST(PushImage, NearACornerNothingOutsideIsRead)
{
    OnEveryTarget([] {
        for (const PushImage& image : kImages) {
            const std::int32_t right = std::int32_t(image.width) - 1, bottom = std::int32_t(image.height) - 1;
            for (const point corner : {point{0, 0}, point{right, 0}, point{0, bottom}, point{right, bottom}}) {
                ExpectEqualsPlain(image, {right / 2 + 1, bottom / 2 + 1}, corner);
                ExpectEqualsPlain(image, corner, {right / 2 + 1, bottom / 2});
            }
        }
    });
}

TEST(PushImage, APointOutsideLeavesQuartersEmptyThatReportAllTheSame)
{
    const PushImage image = {12, 10, 3};
    const Bytes src = image.Samples();
    for (const point to : {point{-1, 5}, point{12, 5}, point{5, -3}, point{5, 10}, point{-9, -9}, point{200, 200}}) {
        SCOPE(to.x, to.y);
        ExpectEqualsPlain(image, {6, 6}, to);
        ProgressRecorder recorder;
        ZLV40_SetCallback(recorder.Function, recorder.Data());
        Bytes dst(src.size());
        EXPECT_EQ(Push(image, src.data(), dst.data(), {6, 6}, to), 1u);
        ZLV40_SetCallback(nullptr, 0);
        EXPECT_EQ(recorder.reports, (std::vector<Report>{{1, 4}, {2, 4}, {3, 4}, {4, 4}}));
    }
}

TEST(PushImage, TheFarthestPointsAreTaken)
{
    OnEveryTarget([] {
        for (const PushImage& image : {PushImage{5, 4, 3}, PushImage{1, 1, 1}, PushImage{11, 9, 2}}) {
            for (const std::int32_t a : {INT_MIN, INT_MAX, 2}) {
                for (const std::int32_t b : {INT_MIN, INT_MAX, 1}) {
                    for (const std::int32_t c : {INT_MIN, INT_MAX, 0}) {
                        for (const std::int32_t d : {INT_MIN, INT_MAX, 3}) ExpectEqualsPlain(image, {a, b}, {c, d});
                    }
                }
            }
        }
    });
}

// Behind the last pixel but one, that one stands for its neighbours: the last one is read by places on it alone.
TEST(PushImage, PlacesBeforeTheLastPixelDoNotReadIt)
{
    const PushImage image = {4, 1, 1};
    const Bytes src = {100, 100, 100, 0};
    Bytes dst(4);
    // The lower right quarter takes all of the image, and its upper edge goes from (2, 0) to (4, 0): the places are 2,
    // 2.5, 3 and 3.5, which is moved to 3.
    ASSERT_EQ(Push(image, src.data(), dst.data(), {2, 0}, {0, 0}), 1u);
    EXPECT_EQ(dst, (Bytes{100, 100, 0, 0}));
}

TEST(PushImage, ReportsFourQuartersAndCancelsAfterEach)
{
    const PushImage image = {20, 18, 3};
    const Bytes src = image.Samples();
    for (std::uint32_t cancelAt = 1; cancelAt <= 4; ++cancelAt) {
        SCOPE(cancelAt);
        ProgressRecorder recorder;
        recorder.cancelAt = cancelAt;
        ZLV40_SetCallback(recorder.Function, recorder.Data());
        Bytes dst(src.size());
        EXPECT_EQ(Push(image, src.data(), dst.data(), {7, 12}, {10, 8}), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_CANCELLED));
        ZLV40_SetCallback(nullptr, 0);
        ASSERT_EQ(recorder.reports.size(), cancelAt);
        EXPECT_EQ(recorder.reports.back(), (Report{cancelAt, 4}));
        EXPECT_EQ(dst, Plain(image, src, Bytes(src.size()), {7, 12}, {10, 8}, cancelAt));
    }
}

TEST(PushImage, RefusesWithNothingWritten)
{
    const Bytes src(12, 1);
    Bytes dst(12, 7);
    const point from = {0, 0}, to = {1, 1};
    const struct {
        const char* shows;
        const std::uint8_t* src;
        std::uint32_t width, height, channels;
        std::uint8_t* dst;
        const point *from, *to;
    } rows[] = {
        {"no source", nullptr, 2, 2, 3, dst.data(), &from, &to},
        {"no width", src.data(), 0, 2, 3, dst.data(), &from, &to},
        {"no height", src.data(), 2, 0, 3, dst.data(), &from, &to},
        {"no channels", src.data(), 2, 2, 0, dst.data(), &from, &to},
        {"no destination", src.data(), 2, 2, 3, nullptr, &from, &to},
        {"no point to push from", src.data(), 2, 2, 3, dst.data(), nullptr, &to},
        {"no point to push to", src.data(), 2, 2, 3, dst.data(), &from, nullptr},
    };
    for (const auto& row : rows) {
        SCOPE(row.shows);
        EXPECT_EQ(ZLV40_PushImage(row.src, row.width, row.height, row.channels, 6, row.dst, row.from, row.to), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(dst, Bytes(12, 7));
    }
}

}  // namespace
}  // namespace zlvtest
