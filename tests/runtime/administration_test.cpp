#include "runtime/contexts.h"
#include "support/bytes.h"
#include "support/progress_recorder.h"

#include <atomic>
#include <cstring>
#include <thread>

#include "zlv40.h"

namespace zlv {
namespace {

// A step of a warp list that counts how many of its kind live.
class CountedStep : public CXFormer {
public:
    CountedStep() { ++alive; }
    ~CountedStep() override { --alive; }
    bool MapPoint(f64, f64, f64*, f64*) override { return true; }
    static std::atomic<int> alive;
};

std::atomic<int> CountedStep::alive = 0;

void AddSteps(int count)
{
    for (int i = 0; i < count; ++i) ASSERT_TRUE(exportedContexts.Get()->transforms.Append(new CountedStep));
}

template <class Work>
void OnFreshThread(Work work)
{
    std::thread(work).join();
}

TEST(GetLibVersion, WritesExactlyTwentyBytesTheLastEightZero)
{
    char buffer[32];
    std::memset(buffer, 0x7E, sizeof buffer);
    EXPECT_EQ(ZLV40_GetLibVersion(buffer), buffer);
    EXPECT_EQ(std::memcmp(buffer, "ZLV 4.0.10.3\0\0\0\0\0\0\0\0", 20), 0);
    for (int i = 20; i < 32; ++i) EXPECT_EQ(buffer[i], 0x7E) << i;
}

TEST(GetLibVersion, NullWritesNothing) { EXPECT_EQ(ZLV40_GetLibVersion(nullptr), nullptr); }

TEST(GetLastError, IsZeroOnAFreshThreadAndIsNotCleared)
{
    OnFreshThread([] {
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        EXPECT_EQ(ZLV40_InvertImage(nullptr, 1, 1, 1, 1, 0), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
    });
}

TEST(GetLastError, BelongsToItsThread)
{
    EXPECT_EQ(ZLV40_InvertImage(nullptr, 1, 1, 1, 1, 0), 0u);
    OnFreshThread([] { EXPECT_EQ(ZLV40_GetLastError(), 0u); });
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
}

TEST(SetCallback, KeepsTheLastError)
{
    EXPECT_EQ(ZLV40_InvertImage(nullptr, 1, 1, 1, 1, 0), 0u);
    ZLV40_SetCallback(nullptr, 0);
    u64 data = 0;
    (void)ZLV40_GetCallback(&data);
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
}

TEST(SetCallback, BelongsToItsThread)
{
    zlvtest::ProgressRecorder recorder;
    ZLV40_SetCallback(recorder.Function, 0xFEDCBA9876543210u);
    OnFreshThread([] {
        u64 data = 1;
        EXPECT_EQ(ZLV40_GetCallback(&data), nullptr);
        EXPECT_EQ(data, 0u);
    });
    u64 data = 0;
    EXPECT_EQ(ZLV40_GetCallback(&data), recorder.Function);
    EXPECT_EQ(data, 0xFEDCBA9876543210u);
    EXPECT_EQ(ZLV40_GetCallback(nullptr), recorder.Function);
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_EQ(ZLV40_GetCallback(&data), nullptr);
    EXPECT_EQ(data, 0u);
}

TEST(ThreadExit, OnAThreadThatNeverUsedTheLibraryCreatesNothing)
{
    OnFreshThread([] {
        ZLV40_ThreadExit();
        EXPECT_EQ(exportedContexts.Find(), nullptr);
    });
}

TEST(ThreadExit, DestroysTheWarpListAndTheRecord)
{
    OnFreshThread([] {
        zlvtest::ProgressRecorder recorder;
        ZLV40_SetCallback(recorder.Function, 1);
        AddSteps(20);
        EXPECT_EQ(CountedStep::alive, 20);
        ZLV40_ThreadExit();
        EXPECT_EQ(CountedStep::alive, 0);
        EXPECT_EQ(exportedContexts.Find(), nullptr);
        ZLV40_ThreadExit();  // the second one does nothing
        EXPECT_EQ(exportedContexts.Find(), nullptr);
        EXPECT_EQ(ZLV40_GetCallback(nullptr), nullptr) << "a new record has no callback";
    });
}

TEST(ThreadExit, HappensByItselfWhenAThreadEnds)
{
    const u32 before = exportedContexts.CountRecords();
    OnFreshThread([] { AddSteps(5); });
    EXPECT_EQ(CountedStep::alive, 0);
    EXPECT_EQ(exportedContexts.CountRecords(), before);
}

TEST(Exit, EmptiesTheWarpListAndKeepsRecordAndCallback)
{
    OnFreshThread([] {
        zlvtest::ProgressRecorder recorder;
        ZLV40_SetCallback(recorder.Function, 8);
        AddSteps(3);
        const ZLVThreadContext* const context = exportedContexts.Get();
        EXPECT_EQ(ZLV40_InvertImage(nullptr, 1, 1, 1, 1, 0), 0u);
        ZLV40_Exit();
        EXPECT_EQ(CountedStep::alive, 0);
        EXPECT_EQ(exportedContexts.Find(), context);
        EXPECT_EQ(ZLV40_GetLastError(), 0u) << "the last error is cleared";
        u64 data = 0;
        EXPECT_EQ(ZLV40_GetCallback(&data), recorder.Function);
        EXPECT_EQ(data, 8u);
    });
}

TEST(Exit, OnAFreshThreadDoesNothing)
{
    OnFreshThread([] {
        ZLV40_Exit();
        EXPECT_EQ(exportedContexts.Find(), nullptr);
    });
}

}  // namespace
}  // namespace zlv
