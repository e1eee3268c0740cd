#include "runtime/base_call.h"

#include "support/bytes.h"
#include "support/progress_recorder.h"
#include "support/test_hooks.h"

#include <thread>

namespace zlv {
namespace {

using zlvtest::ProgressRecorder;
using zlvtest::Rows;

u32 CountRows(MVThreadContext& context, Error& error, u32 rows)
{
    BaseWork work(context, error);
    for (u32 row = 0; row < rows; ++row) {
        if (!work.Report(row, rows)) return 0;
    }
    return 1;
}

u32 CallCountRows(u32 rows)
{
    return InBaseCall("CountRows",
                      [=](MVThreadContext& context, Error& error) { return CountRows(context, error, rows); });
}

TEST(BaseCall, ReportsItsCodeAlsoOnSuccess)
{
    MVReportError(u32(Error::CouldNotRun), "Somebody", nullptr);
    EXPECT_EQ(CallCountRows(2), 1u);
    EXPECT_EQ(MV40_GetLastError(), 0u);
}

TEST(BaseCall, CallbackFunctionsReportSuccessFirst)
{
    MVReportError(u32(Error::CouldNotRun), "Somebody", nullptr);
    u64 data = 0;
    (void)MV40_GetCallback(&data);
    EXPECT_EQ(MV40_GetLastError(), 0u);
    MVReportError(u32(Error::CouldNotRun), "Somebody", nullptr);
    MV40_SetCallback(nullptr, 0);
    EXPECT_EQ(MV40_GetLastError(), 0u);
}

TEST(BaseCall, KeepsACallbackAndItsValue)
{
    ProgressRecorder recorder;
    MV40_SetCallback(recorder.Function, 0x123456789ABCDEF0u);
    u64 data = 0;
    EXPECT_EQ(MV40_GetCallback(&data), recorder.Function);
    EXPECT_EQ(data, 0x123456789ABCDEF0u);
    EXPECT_EQ(MV40_GetCallback(nullptr), recorder.Function) << "the value need not be asked for";
    MV40_SetCallback(nullptr, 0);
}

TEST(BaseCall, ReportsAtNestingOneOnly)
{
    ProgressRecorder recorder;
    MV40_SetCallback(recorder.Function, recorder.Data());
    EXPECT_EQ(CallCountRows(3), 1u);
    EXPECT_EQ(recorder.reports, Rows(3, 3));
    recorder.reports.clear();
    const u32 outer = InBaseCall("Outer", [](MVThreadContext& context, Error& error) {
        const BaseWork work(context, error);
        Error inner = Error::None;
        return CountRows(context, inner, 3);
    });
    MV40_SetCallback(nullptr, 0);
    EXPECT_EQ(outer, 1u);
    EXPECT_TRUE(recorder.reports.empty());
}

TEST(BaseCall, ACancelSetsTheSlotAndLowersTheCount)
{
    ProgressRecorder recorder;
    recorder.cancelAt = 2;
    MV40_SetCallback(recorder.Function, recorder.Data());
    EXPECT_EQ(CallCountRows(3), 0u);
    EXPECT_EQ(MV40_GetLastError(), u32(Error::Cancelled));
    EXPECT_EQ(baseContexts.Get()->nestCount, 0u);
    MV40_SetCallback(nullptr, 0);
    EXPECT_EQ(recorder.reports, Rows(2, 3));
}

TEST(BaseCall, ACallbackSetDuringTheWorkIsNotReportedTo)
{
    ProgressRecorder recorder;
    (void)InBaseCall("Work", [&](MVThreadContext& context, Error& error) {
        BaseWork work(context, error);
        MV40_SetCallback(recorder.Function, recorder.Data());
        EXPECT_FALSE(work.MayReport());
        return u32(work.Report(0, 1));
    });
    MV40_SetCallback(nullptr, 0);
    EXPECT_TRUE(recorder.reports.empty());
}

TEST(BaseCall, WithoutARecordNothingIsDone)
{
    std::thread([] {
        const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::SetSlot, 0);
        bool hasRun = false;
        const u32 result = InBaseCall("Work", [&](MVThreadContext&, Error&) {
            hasRun = true;
            return 1u;
        });
        EXPECT_EQ(result, 0u);
        EXPECT_FALSE(hasRun);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::NoBaseContext));
        u64 data = 3;
        EXPECT_EQ(MV40_GetCallback(&data), nullptr);
        MV40_SetCallback(nullptr, 0);
        MVReportError(5, "Somebody", nullptr);
    }).join();
}

}  // namespace
}  // namespace zlv
