// Every export with its allocations, and whatever else the system may refuse, failing one after the other.
#include "boundary/described_call.h"
#include "runtime/base_call.h"
#include "runtime/contexts.h"
#include "support/failing_memory.h"
#include "support/progress_recorder.h"
#include "support/thread_hooks.h"

#include <algorithm>
#include <thread>

namespace zlvtest {
namespace {

using Of = FailingCalls::Of;

constexpr Outcome kDone = {true, 0};
constexpr Outcome kNoMemory = {false, ZLV40_ERROR_OUT_OF_MEMORY};

constexpr Outcome kBad = {false, ZLV40_ERROR_BAD_ARGUMENT};
constexpr Outcome kCouldNotRun = {false, ZLV40_ERROR_COULD_NOT_RUN};
constexpr Outcome kQuietRefusal = {false, 0};
constexpr Outcome kDoneWithoutMemory = {true, ZLV40_ERROR_OUT_OF_MEMORY};

// What else than code 1 a call may answer.
const struct Answers {
    const char* because;
    std::vector<std::string_view> exports;
    Of function;
    std::vector<Outcome> outcomes;
} kOtherAnswers[] = {
    {"the sharpened relief or its light is left out, and the code tells",
     {"ZLV40_CrackleRGB"},
     Of::Allocate,
     {kNoMemory, kDoneWithoutMemory}},
    {"a colour is left out, and the code is that of the last one",
     {"ZLV40_SegmentedColorizeRGBImage", "ZLV40_SegmentedColorizeRGB"},
     Of::Allocate,
     {kNoMemory, kDoneWithoutMemory, kDone}},
    {"the first pass tells its want as a bad argument, and the transform's end is no end of the call",
     {"ZLV40_DoFFT"},
     Of::Allocate,
     {kNoMemory, {true, ZLV40_ERROR_BAD_ARGUMENT}, kDoneWithoutMemory}},
    {"the first pass tells its want as a bad argument", {"ZLV40_DoFFTInverse"}, Of::Allocate, {kNoMemory, kBad}},
    {"nobody looks at the steps",
     {"ZLV40_OpenGray", "ZLV40_CloseGray", "ZLV40_TophatGray"},
     Of::Allocate,
     {kNoMemory, kDone}},
    {"a step that fails ends it, and only the base layer has the code",
     {"ZLV40_MorphoGradientGray"},
     Of::Allocate,
     {kNoMemory, kQuietRefusal}},
    {"a polygon without a table can't be used", {"ZLV40_AddPolygonTransform"}, Of::Allocate, {kNoMemory, kBad}},
    {"a polygon without a table can't be used",
     {"ZLV40_AddPolygonTransform"},
     Of::AllocateClientBlock,
     {kNoMemory, kBad}},
    {"the detail is measured without its threads, seams are not sought without theirs",
     {"ZLV40_SeamCarve"},
     Of::StartThread,
     {kCouldNotRun, kDone}},
    {"channels without a thread are left out", {"ZLV40_BilateralFilterImage"}, Of::StartThread, {kDone}},
};

bool IsRightAnswer(const DescribedEffect& effect, Of function, const Outcome& outcome)
{
    const auto has = [](const auto& list, const auto& item) {
        return std::find(list.begin(), list.end(), item) != list.end();
    };
    for (const Answers& answers : kOtherAnswers) {
        if (answers.function == function && has(answers.exports, std::string_view(effect.name))) {
            return has(answers.outcomes, outcome);
        }
    }
    return outcome == kNoMemory || effect.answer == Answer::Nothing;
}

void ExpectAnswer(const DescribedEffect& effect, Of function, const Outcome& outcome, std::uint32_t failed)
{
    const bool isRight = failed ? IsRightAnswer(effect, function, outcome) : outcome == kDone;
    EXPECT_TRUE(isRight) << failed << " failed, done is " << outcome.isDone << ", the code is " << outcome.code;
}

void ExpectDoneWithAllAgain(DescribedCall& call)
{
    ClearLastError();  // some leave an earlier code as it is
    EXPECT_EQ(call.RunWhole(), kDone) << "with all again";
}

// How many of the call's uses of the function failed, on a thread that never called before.
std::uint32_t FailOnFreshThread(const DescribedEffect& effect, Of function, std::uint32_t succeeding)
{
    std::uint32_t failed = 0;
    std::thread([&] {
        SCOPE(effect.name, int(function), succeeding);
        DescribedCall call(effect, ChannelCounts(effect).back());
        {
            const FailingCalls failing(function, succeeding);
            call.Run();
            failed = failing.Failed();
        }
        ExpectAnswer(effect, function, call.Ended(), failed);
        call.GiveBack();
        ExpectDoneWithAllAgain(call);
    }).join();
    return failed;
}

// The thread's own records are among what can't be had.
TEST(AllocationFailure, EveryOneIsCodeOneAndNothingElse)
{
    std::uint32_t failures = 0;
    for (const DescribedEffect& effect : DescribedExports()) {
        for (const Of function : {Of::Allocate, Of::SetSlot}) {
            std::uint32_t succeeding = 0;
            while (succeeding < 1000 && FailOnFreshThread(effect, function, succeeding) > 0) ++succeeding;
            EXPECT_LT(succeeding, 1000u) << effect.name;
            failures += succeeding;
        }
    }
    EXPECT_GT(failures, 0u) << "the hook was never reached";
}

// What a call must leave as it was.
struct ThreadState {
    zlv::u32 nestCount, callDepth, openFrames, baseNestCount;
    zlv::i32 reportHold;
    ZLVProgressCallback callback, baseCallback;
    std::uint64_t callbackData, baseCallbackData;
    bool operator==(const ThreadState&) const = default;

    static ThreadState Now()
    {
        const zlv::ZLVThreadContext& context = *zlv::exportedContexts.Get();
        const zlv::MVThreadContext& base = *zlv::baseContexts.Get();
        return {context.nestCount, context.callDepth, context.openFrames,   base.nestCount,   base.reportHold,
                context.callback,  base.callback,     context.callbackData, base.callbackData};
    }
};

// The texts in this thread's log of errors, which it keeps.
std::int64_t LoggedTexts()
{
    const zlv::ErrorLog& log = zlv::baseContexts.Get()->errorLog;
    std::int64_t texts = 0;
    for (zlv::u32 i = 0; i < log.GetCount(); ++i) texts += log[i].text.GetCount() > 0;
    return texts;
}

// What the library holds. The records of threads stay by design: ended ones wait for new threads.
struct Holdings {
    std::int64_t blocks, clientBlocks, handles;
    bool operator==(const Holdings&) const = default;

    static Holdings Now(const DescribedCall& call)
    {
        const std::int64_t records = zlv::exportedContexts.CountRecords() + zlv::baseContexts.CountRecords();
        return {LiveBlocks() - records - LoggedTexts(), LiveClientBlocks() - call.blocksFreed, OpenHandles()};
    }
};

std::ostream& operator<<(std::ostream& out, const Holdings& holdings)
{
    return out << holdings.blocks << " blocks, " << holdings.clientBlocks << " of clients, " << holdings.handles
               << " handles";
}

constexpr Of kWhatMayFail[] = {Of::Allocate, Of::AllocateClientBlock, Of::StartThread, Of::CreateEvent,
                               Of::CreateMutex};

// The base layer has a callback of its own from somebody who called before.
std::uint32_t BaseCallback(std::uint32_t, std::uint32_t, std::uint64_t) { return 1; }

void FailInTurn(const DescribedEffect& effect, std::uint32_t channels, const std::vector<Setting>& settings = {})
{
    ProgressRecorder recorder;
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    zlv::MV40_SetCallback(BaseCallback, 77);
    DescribedCall call(effect, channels);
    for (const Setting& setting : settings) call.Set(setting);
    EXPECT_EQ(call.RunWhole(), kDone) << "the first time";
    const std::vector<Report> reports = std::exchange(recorder.reports, {});
    const ThreadState state = ThreadState::Now();
    EXPECT_EQ(state.baseCallback, BaseCallback);
    const Holdings holdings = Holdings::Now(call);
    for (const Of function : kWhatMayFail) {
        for (const std::uint32_t atATime : {1u, FailingCalls::kAlways}) {
            SCOPE("function", int(function), "at a time", atATime);
            WithEachFailing(
                function,
                [&] {
                    call.Run();
                    return call.Ended();
                },
                [&](const Outcome& outcome, std::uint32_t failed, std::uint32_t) {
                    call.GiveBack();
                    ExpectAnswer(effect, function, outcome, failed);
                    EXPECT_EQ(ThreadState::Now(), state);
                    EXPECT_EQ(Holdings::Now(call), holdings);
                    recorder.reports.clear();
                    ExpectDoneWithAllAgain(call);
                    EXPECT_EQ(recorder.reports, reports);
                },
                atATime);
        }
    }
    EXPECT_EQ(ThreadState::Now(), state);
    ZLV40_SetCallback(nullptr, 0);
}

// On threads that have their records: then a call that fails leaves nothing behind.
TEST(AllocationFailure, LeavesThreadsAndMemoryAsTheyWere)
{
    for (const DescribedEffect& effect : DescribedExports()) {
        std::thread([&] {
            SCOPE(effect.name);
            FailInTurn(effect, ChannelCounts(effect).back());
        }).join();
    }
}

const struct {
    const char* name;
    std::vector<Setting> settings;
} kWithThreads[] = {
    {"ZLV40_BilateralFilterImage", {Number("flags", 255 | ZLV40_WORKER_THREADS)}},
    {"ZLV40_SeamCarve", {Number("flags", 0), Number("seamCount", -1)}},
};

TEST(AllocationFailure, LeavesThreadsAndMemoryAsTheyWereWithThreadsOfTheCallsOwn)
{
    std::size_t seen = 0;
    for (const auto& [name, settings] : kWithThreads) {
        for (const DescribedEffect& effect : DescribedExports()) {
            if (std::string_view(effect.name) != name) continue;
            ++seen;
            std::thread([&, &settings = settings] {
                SCOPE(effect.name, "with threads");
                FailInTurn(effect, ChannelCounts(effect).back(), settings);
            }).join();
        }
    }
    EXPECT_EQ(seen, std::size(kWithThreads));
}

TEST(AllocationFailure, ATableSetOfManyChannels)
{
    Bytes image = RandomBytes(20, 1);
    EXPECT_EQ(ZLV40_InvertImage(image.data(), 1, 1, 20, 20, 0), 1u);  // makes the thread's records
    const Bytes before = image;
    {
        const FailingCalls failing(FailingCalls::Of::Allocate, 0);
        EXPECT_EQ(ZLV40_InvertImage(image.data(), 1, 1, 20, 20, 0), 0u);
        EXPECT_EQ(failing.Failed(), 1u);
    }
    EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_OUT_OF_MEMORY));
    EXPECT_EQ(image, before);
}

}  // namespace
}  // namespace zlvtest
