#include "platform/float_environment.h"

#include "runtime/frame.h"
#include "support/progress_recorder.h"

#include <gtest/gtest.h>

#include <cfenv>

namespace zlv {
namespace {

// The rounding that arithmetic in double precision meets now, told by the last digit of a tenth. (std::fegetround tells
// of the x87 unit, which the library leaves alone.)
int Rounding()
{
    volatile f64 one = 1, ten = 10;
    const bool growsAbove = one / ten == 0x1.999999999999Ap-4;
    const bool growsBelow = -one / ten == -0x1.999999999999Ap-4;
    if (growsAbove) return growsBelow ? FE_TONEAREST : FE_UPWARD;
    return growsBelow ? FE_DOWNWARD : FE_TOWARDZERO;
}

class HostModes : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(std::fegetenv(&before_), 0); }
    // Not every C run-time on Windows restores the modes of the vector unit.
    void TearDown() override
    {
        std::fesetenv(&before_);
        platform::SetStandardFloatEnvironment();
    }

private:
    std::fenv_t before_;
};

using FloatEnvironment = HostModes;

TEST_F(FloatEnvironment, IsTheStandardOneInsideACallAndTheHostsAfterIt)
{
    std::fesetround(FE_UPWARD);
    ASSERT_EQ(Rounding(), FE_UPWARD);
    for (const FrameKind kind :
         {FrameKind::Full, FrameKind::NoNestCount, FrameKind::NoCallDepth, FrameKind::ErrorSlotOnly}) {
        EXPECT_EQ(InFrame(kind, [](CallFrame&) { return Rounding(); }), FE_TONEAREST);
        EXPECT_EQ(Rounding(), FE_UPWARD);
    }
}

TEST_F(FloatEnvironment, ANestedCallLeavesItStandard)
{
    std::fesetround(FE_DOWNWARD);
    InFrame(FrameKind::Full, [](CallFrame&) -> u32 {
        (void)InFrame(FrameKind::Full, [](CallFrame&) -> u32 { return 1; });
        EXPECT_EQ(Rounding(), FE_TONEAREST);
        return 1;
    });
    EXPECT_EQ(Rounding(), FE_DOWNWARD);
}

TEST_F(FloatEnvironment, TheCallbackRunsInTheHosts)
{
    zlvtest::ProgressRecorder recorder;
    int seen = -1;
    recorder.atReport = [&] {
        seen = Rounding();
        (void)InFrame(FrameKind::Full, [](CallFrame&) -> u32 {
            EXPECT_EQ(Rounding(), FE_TONEAREST) << "a call from inside the callback";
            return 1;
        });
        EXPECT_EQ(Rounding(), FE_UPWARD);
    };
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    std::fesetround(FE_UPWARD);
    InFrame(FrameKind::Full, [](CallFrame& frame) -> u32 {
        EXPECT_TRUE(frame.Report(0, 1));
        EXPECT_EQ(Rounding(), FE_TONEAREST) << "after the callback";
        return 1;
    });
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_EQ(seen, FE_UPWARD);
    EXPECT_EQ(Rounding(), FE_UPWARD);
}

TEST_F(FloatEnvironment, WhatTheCallbackSetsIsTheHostsFromThenOn)
{
    zlvtest::ProgressRecorder recorder;
    recorder.atReport = [] { std::fesetround(FE_TOWARDZERO); };
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    InFrame(FrameKind::Full, [](CallFrame& frame) -> u32 {
        EXPECT_TRUE(frame.Report(0, 1));
        EXPECT_EQ(Rounding(), FE_TONEAREST);
        return 1;
    });
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_EQ(Rounding(), FE_TOWARDZERO);
}

TEST_F(FloatEnvironment, TheHostsRaisedFlagsAreItsOwn)
{
    std::feclearexcept(FE_ALL_EXCEPT);
    std::feraiseexcept(FE_OVERFLOW);
    std::fesetround(FE_UPWARD);  // so that the call has something to switch
    InFrame(FrameKind::Full, [](CallFrame&) -> u32 { return Rounding() == FE_TONEAREST; });
    EXPECT_TRUE(std::fetestexcept(FE_OVERFLOW));
}

#if defined(__x86_64__) && !defined(ZLV_PORTABLE)
TEST_F(FloatEnvironment, UnmaskedExceptionsAndFlushToZeroDoNotReachTheCall)
{
    constexpr u32 kFlushToZero = 0x8000, kDenormalsAreZero = 0x40, kInvalidMask = 0x80;
    const u32 host = (platform::kStandardFloatModes | kFlushToZero | kDenormalsAreZero) & ~kInvalidMask;
    platform::WriteFloatEnvironment(host);
    const f64 smallest = InFrame(FrameKind::Full, [](CallFrame&) {
        volatile f64 zero = 0, tiny = 0x1p-1074;
        volatile f64 invalid = zero / zero;  // would trap in the host's environment
        (void)invalid;
        return tiny * 1.0;
    });
    const u32 after = platform::ReadFloatEnvironment();
    platform::WriteFloatEnvironment(platform::kStandardFloatModes);
    EXPECT_EQ(smallest, 0x1p-1074);
    EXPECT_EQ(after & ~platform::kFloatStatusBits, host);
}
#endif

}  // namespace
}  // namespace zlv
