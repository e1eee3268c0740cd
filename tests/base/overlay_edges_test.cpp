// What MV40_OverlayImage refuses and reports, what a cancel leaves, and memory that its images share.
#include "base/overlay.h"

#include "base/overlay_support.h"
#include "support/test_hooks.h"

#include <limits>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ForTargetsAndWidths;
using zlvtest::Rows;

constexpr f64 kNaN = std::numeric_limits<f64>::quiet_NaN();

// Pointers by letters: b is the base's memory, o the overlay's, 0 is null.
const struct {
    const char* shows;
    char base, overlay;
    u32 overlayWidth;
    f64 opacity, parameter;
    u32 mode;
    u32 result;
    Error error;
} kEdges[] = {
    {"a null base", '0', 'o', 2, 1, 0, 5, 0, Error::BadArgument},
    {"a null overlay", 'b', '0', 2, 1, 0, 5, 0, Error::BadArgument},
    {"a null overlay with nothing to draw", 'b', '0', 0, 1, 0, 5, 0, Error::BadArgument},
    {"an image over itself", 'b', 'b', 2, 1, 0, 5, 0, Error::BadArgument},
    {"an unknown mode", 'b', 'o', 2, 1, 0, 31, 0, Error::BadArgument},
    {"the largest mode", 'b', 'o', 2, 0.5, 0, 0xFFFFFFFF, 0, Error::BadArgument},
    {"an unknown mode at no opacity", 'b', 'o', 2, 0, 0, 31, 0, Error::BadArgument},
    {"an unknown mode with nothing to draw", 'b', 'o', 0, 1, 0, 31, 1, Error::None},
    {"an opacity that is no number", 'b', 'o', 2, kNaN, 0, 5, 0, Error::BadArgument},
    {"an opacity that is no number, with nothing to draw", 'b', 'o', 0, kNaN, 0, 5, 1, Error::None},
    {"a threshold that is no number", 'b', 'o', 2, 1, kNaN, 9, 0, Error::BadArgument},
    {"a lower threshold that is no number", 'b', 'o', 2, 1, kNaN, 10, 0, Error::BadArgument},
    {"a factor that is no number", 'b', 'o', 2, 1, kNaN, 13, 0, Error::BadArgument},
    {"a bias that is no number", 'b', 'o', 2, 1, kNaN, 15, 0, Error::BadArgument},
    {"a bias of differences that is no number", 'b', 'o', 2, 1, kNaN, 16, 0, Error::BadArgument},
    {"replacing at no opacity", 'b', 'o', 2, 0, 0, 0, 1, Error::None},
    {"replacing exactly at no opacity", 'b', 'o', 2, 0, 0, 1, 1, Error::None},
};

TEST(OverlayImage, EdgesTouchNothingAndReportNothing)
{
    for (const u32 flags : {0u, kOverlaySixteenBit}) {
        for (const auto& row : kEdges) {
            SCOPE(row.shows, flags);
            Bytes base = zlvtest::RandomBytes(64, 1), overlay = zlvtest::RandomBytes(64, 2);
            const Bytes before = base;
            const auto pointer = [&](char name) {
                return name == '0' ? nullptr : name == 'b' ? base.data() : overlay.data();
            };
            const zlvtest::Recording recording;
            EXPECT_EQ(MV40_OverlayImage(pointer(row.base), 4, 4, 1, 8, pointer(row.overlay), row.overlayWidth, 2, 8, 1,
                                        1, row.opacity, row.parameter, row.mode, flags),
                      row.result);
            EXPECT_EQ(MV40_GetLastError(), u32(row.error));
            EXPECT_EQ(base, before);
            EXPECT_TRUE(recording.recorder.reports.empty());
            EXPECT_EQ(baseContexts.Get()->nestCount, 0u);
        }
    }
}

TEST(OverlayImage, AParameterThatIsNoNumberIsNotReadByOtherModes)
{
    GuardedLayer<u8> base(5, 2, 3, 0, 1), same(5, 2, 3, 0, 1), overlay(5, 2, 3, 0, 2);
    EXPECT_EQ(CallOverlay(base, overlay, 0, 0, {1, kNaN, 12}), 1u);
    EXPECT_EQ(CallOverlay(same, overlay, 0, 0, {1, 0, 12}), 1u);
    EXPECT_EQ(base.Copy(), same.Copy());
}

TEST(OverlayImage, ReportsVisibleRows)
{
    for (const PlainBlend& blend :
         {PlainBlend{1, 0, 0}, {0.5, 0, 0}, {0.5, 0, 1}, {1, 0, 12}, {0.5, 0, 12}, {0, 0, 12}}) {
        SCOPE(blend.opacity, blend.mode);
        GuardedLayer<u8> base(9, 7, 3, 0, 1), overlay(9, 20, 3, 0, 2);
        const zlvtest::Recording recording;
        EXPECT_EQ(CallOverlay(base, overlay, 2, -15, blend), 1u);  // rows 15 to 19 of the overlay
        EXPECT_EQ(recording.recorder.reports, Rows(5, 5));
    }
}

TEST(OverlayImage, ACancelKeepsTheRowsDone)
{
    for (const PlainBlend& blend : {PlainBlend{1, 0, 0}, {0.5, 0, 0}, {0.7, 0, 1}, {1, 0, 14}, {0.5, 100, 9}}) {
        for (const u32 cancelAt : {1u, 3u, 4u}) {
            SCOPE(blend.opacity, blend.mode, cancelAt);
            GuardedLayer<u8> base(9, 6, 3, 2, 1), overlay(9, 5, 3, 0, 2);
            std::vector<u8> wanted = base.Copy();
            PlainOverlay<u8>(base.PlainOver(wanted), overlay.Plain(), -1, 2, blend, cancelAt);
            const zlvtest::Recording recording(cancelAt);
            EXPECT_EQ(CallOverlay(base, overlay, -1, 2, blend), 0u);
            EXPECT_EQ(MV40_GetLastError(), u32(Error::Cancelled));
            EXPECT_EQ(recording.recorder.reports, Rows(cancelAt, 4));
            EXPECT_EQ(zlvtest::Difference(wanted.data(), base.Data(), base.Size()), "");
            EXPECT_EQ(baseContexts.Get()->nestCount, 0u);
        }
    }
}

TEST(OverlayImage, InsideAnotherWorkerItNeverReports)
{
    GuardedLayer<u8> base(9, 6, 3, 0, 1), overlay(9, 5, 3, 0, 2);
    const zlvtest::Recording recording(1);
    baseContexts.Get()->nestCount = 1;
    EXPECT_EQ(CallOverlay(base, overlay, 0, 0, {0.5, 0, 0}), 1u);
    baseContexts.Get()->nestCount = 0;
    EXPECT_TRUE(recording.recorder.reports.empty());
}

TEST(OverlayImage, NeedsNoMemory)
{
    (void)MV40_GetLastError();  // makes the thread's record
    const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, 0);
    ForTargetsAndWidths([]<class T>() {
        GuardedLayer<T> base(9, 6, 3, 0, 1), overlay(9, 5, 3, 0, 2);
        for (u32 mode = 0; mode < kOverlayModes; ++mode)
            EXPECT_EQ(CallOverlay(base, overlay, 0, 0, {0.4, 1, mode}), 1u);
    });
}

TEST(OverlayImage, PartsOfOnePictureMayLieSideBySide)
{
    zlvtest::OnEveryTarget([&] {
        Bytes picture = zlvtest::RandomBytes(200 * 4, 3);
        Bytes wanted = picture;
        PlainOverlay<u8>({wanted.data(), 100, 4, 1, 200}, {wanted.data() + 100, 100, 4, 1, 200}, 0, 0, {1, 0, 4}, 4);
        EXPECT_EQ(
            MV40_OverlayImage(picture.data(), 100, 4, 1, 200, picture.data() + 100, 100, 4, 200, 0, 0, 1, 0, 4, 0), 1u);
        EXPECT_EQ(picture, wanted);
    });
}

TEST(OverlayImage, OverlappingRowsAreBlendedSampleAfterSample)
{
    ForTargetsAndWidths([]<class T>() {
        for (const PlainBlend& blend : {PlainBlend{1, 0, 4}, {0.5, 0, 12}, {0.5, 0, 0}, {0.7, 0, 1}, {0.5, 9, 9}}) {
            for (const int shift : {-3, -1, 1, 2, 40}) {
                SCOPE(blend.mode, shift);
                GuardedLayer<T> memory(300, 1, 1, 0, 5);
                std::vector<T> wanted = memory.Copy();
                PlainOverlay<T>({wanted.data() + 50, 200, 1, 1, 200}, {wanted.data() + 50 + shift, 200, 1, 1, 200}, 0,
                                0, blend, 1);
                EXPECT_EQ(MV40_OverlayImage(memory.Data() + 50, 200, 1, 1, 200, memory.Data() + 50 + shift, 200, 1, 200,
                                            0, 0, blend.opacity, blend.parameter, blend.mode, kWordFlag<T>),
                          1u);
                EXPECT_EQ(zlvtest::Difference(wanted.data(), memory.Data(), memory.Size()), "");
            }
        }
    });
}

}  // namespace
}  // namespace zlv
