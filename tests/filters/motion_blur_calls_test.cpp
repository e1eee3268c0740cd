// Motion blur as a call: strides, buffers, reports, refusals.
#include "filters/motion_blur_cases.h"
#include "runtime/contexts.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"

#include <algorithm>
#include <limits>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ProgressRecorder;

constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();
constexpr f64 kNaN = std::numeric_limits<f64>::quiet_NaN();

TEST(MotionBlur, AnyStrideOfTheSourceWorks)
{
    for (const u32 stride : {0u, 1u, 20u, 100u}) {
        for (const i32 mode : {0, 1, 2}) {
            SCOPE(stride, mode);
            const Bytes src = zlvtest::RandomBytes(stride * 6 + 60, stride);
            Bytes wanted(60 * 7), got(60 * 7);
            PlainMotionBlur({src.data(), 20, 7, stride, 3}, wanted.data(), 60, {30, 1, 9, mode, kMotionMath});
            EXPECT_EQ(ZLV40_MotionBlur(src.data(), 20, 7, stride, got.data(), 60, 3, 30, 1, 9, mode), 1u);
            EXPECT_EQ(got, wanted);
        }
    }
}

// Rows of the result that share memory are written one after the other.
TEST(MotionBlur, AnyStrideOfTheResultWorks)
{
    for (const u32 stride : {0u, 1u, 20u}) {
        for (const i32 mode : {0, 1, 2}) {
            SCOPE(stride, mode);
            const Bytes src = zlvtest::RandomBytes(60 * 7, stride);
            Bytes wanted(stride * 6 + 60), got = wanted;
            PlainMotionBlur({src.data(), 20, 7, 60, 3}, wanted.data(), stride, {30, 1, 9, mode, kMotionMath});
            EXPECT_EQ(ZLV40_MotionBlur(src.data(), 20, 7, 60, got.data(), stride, 3, 30, 1, 9, mode), 1u);
            EXPECT_EQ(got, wanted);
        }
    }
}

TEST(MotionBlur, StaysInsideItsBuffers)
{
    zlvtest::OnEveryTarget([] {
        for (const zlvtest::Flush flush : {zlvtest::Flush::ToStart, zlvtest::Flush::ToEnd}) {
            for (const u32 channels : {1u, 3u, 4u, 5u}) {
                for (const i32 width : {1, 33, 65}) {
                    for (const i32 mode : {0, 1, 2}) {
                        for (const f64 angle : {45.0, 225.0}) {
                            SCOPE(int(flush), channels, width, mode, angle);
                            const u32 row = u32(width) * channels;
                            zlvtest::GuardedBuffer src(size_t(row) * 9, flush, 200), dst(size_t(row) * 9, flush);
                            EXPECT_EQ(ZLV40_MotionBlur(src.Data(), width, 9, row, dst.Data(), row, channels, angle, 1.3,
                                                       12, mode),
                                      1u);
                            EXPECT_EQ(std::count(dst.Data(), dst.Data() + dst.Size(), 200), std::ptrdiff_t(dst.Size()));
                        }
                    }
                }
            }
        }
    });
}

TEST(MotionBlur, ReportsEveryRow)
{
    for (const i32 mode : {0, 1, 2}) {
        for (const i32 steps : {-5, 0, 1, 15, 300}) {
            SCOPE(mode, steps);
            const MotionImage image = {10, 6, 3};
            const Bytes src = zlvtest::RandomBytes(image.Size(image.SrcStride()), 1);
            Bytes dst(src.size());
            ProgressRecorder recorder;
            ZLV40_SetCallback(recorder.Function, recorder.Data());
            EXPECT_EQ(Call(image, src, dst, {45, 1, steps, mode}), 1u);
            ZLV40_SetCallback(nullptr, 0);
            EXPECT_EQ(recorder.reports, zlvtest::Rows(6, 6));
            EXPECT_EQ(dst, Plainly(image, src, {45, 1, steps, mode}));
        }
    }
}

TEST(MotionBlur, ACancelKeepsTheRowsDone)
{
    for (const i32 mode : {0, 1, 2}) {
        for (const i32 steps : {0, 15}) {
            for (u32 cancelAt = 1; cancelAt <= 5; ++cancelAt) {
                SCOPE(mode, steps, cancelAt);
                const MotionImage image = {30, 5, 3, 0, 2};
                const Bytes src = zlvtest::RandomBytes(image.Size(image.SrcStride()), 4);
                Bytes wanted = Plainly(image, src, {30, 1, steps, mode});
                const size_t written = size_t(image.DstStride()) * (cancelAt - 1) + image.Row();
                std::fill(wanted.begin() + std::ptrdiff_t(written), wanted.end(), kMotionFill);
                Bytes dst(wanted.size(), kMotionFill);
                ProgressRecorder recorder;
                recorder.cancelAt = cancelAt;
                ZLV40_SetCallback(recorder.Function, recorder.Data());
                EXPECT_EQ(Call(image, src, dst, {30, 1, steps, mode}), 0u);
                EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_CANCELLED));
                ZLV40_SetCallback(nullptr, 0);
                EXPECT_EQ(recorder.reports, zlvtest::Rows(cancelAt, 5));
                EXPECT_EQ(dst, wanted);
                EXPECT_EQ(exportedContexts.Get()->nestCount, 0u);
            }
        }
    }
}

const struct {
    const char* shows;
    bool hasSrc, hasDst;
    i32 width, height;
    u32 channels;
    MotionSettings motion;
    bool isRefused;
} kArguments[] = {
    {"a null source is refused", false, true, 2, 2, 3, {}, true},
    {"a null destination is refused", true, false, 2, 2, 3, {}, true},
    {"a width of 0 is refused", true, true, 0, 2, 3, {}, true},
    {"a height of 0 is refused", true, true, 2, 0, 3, {}, true},
    {"a negative width is refused", true, true, -1, 2, 3, {}, true},
    {"a negative height is refused", true, true, 2, INT32_MIN, 3, {}, true},
    {"no channels are refused", true, true, 2, 2, 0, {}, true},
    {"no channels are refused without steps, too", true, true, 2, 2, 0, {0, 1, 0, 0}, true},
    {"an angle that is not a number is refused", true, true, 2, 2, 3, {kNaN, 1, 2, 0}, true},
    {"an infinite angle is refused", true, true, 2, 2, 3, {-kInfinity, 1, 2, 0}, true},
    {"an amount that is not a number is refused", true, true, 2, 2, 3, {0, kNaN, 2, 0}, true},
    {"an infinite amount is refused", true, true, 2, 2, 3, {0, kInfinity, 2, 0}, true},
    {"so it is on an arc", true, true, 2, 2, 3, {0, -kInfinity, 2, 1}, true},
    {"and on a ray", true, true, 2, 2, 3, {0, kNaN, 2, 2}, true},
    {"an arc has no angle to look at", true, true, 2, 2, 3, {kNaN, 1, 2, 1}, false},
    {"a ray has none either", true, true, 2, 2, 3, {kInfinity, 1, 2, 2}, false},
    {"one step looks at nothing", true, true, 2, 2, 3, {kNaN, kNaN, 1, 0}, false},
    {"no step looks at nothing", true, true, 2, 2, 3, {kNaN, kNaN, 0, 1}, false},
    {"an arc of more steps than their sum can hold is refused", true, true, 2, 2, 3, {0, 0, 8421505, 1}, true},
    {"a ray of so many is refused", true, true, 2, 2, 3, {0, 0, INT32_MAX, 2}, true},
    {"an arc of as many steps as their sum can hold", true, true, 1, 1, 1, {0, 0, 8421504, 1}, false},
    {"a ray of as many steps", true, true, 1, 1, 1, {0, 0, 8421504, 2}, false},
};

TEST(MotionBlur, RefusesWithNothingWritten)
{
    for (const auto& row : kArguments) {
        SCOPE(row.shows);
        const Bytes src = zlvtest::RandomBytes(12, 4);
        Bytes dst(12, kMotionFill);
        EXPECT_EQ(ZLV40_MotionBlur(row.hasSrc ? src.data() : nullptr, row.width, row.height, 6,
                                   row.hasDst ? dst.data() : nullptr, 6, row.channels, row.motion.angle,
                                   row.motion.amount, row.motion.steps, row.motion.mode),
                  row.isRefused ? 0u : 1u);
        EXPECT_EQ(ZLV40_GetLastError(), row.isRefused ? u32(ZLV40_ERROR_BAD_ARGUMENT) : 0u);
        if (row.isRefused) {
            EXPECT_EQ(dst, Bytes(12, kMotionFill));
        }
    }
}

}  // namespace
}  // namespace zlv
