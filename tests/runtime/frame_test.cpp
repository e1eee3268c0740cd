#include "runtime/frame.h"

#include "base/table_pass.h"
#include "support/bytes.h"
#include "support/progress_recorder.h"

#include <array>

namespace zlv {
namespace {

using zlvtest::ProgressRecorder;
using zlvtest::Report;
using zlvtest::Rows;

// Installs a recorder as the client's callback for a test.
class Client {
public:
    Client() { ZLV40_SetCallback(recorder.Function, recorder.Data()); }
    ~Client() { ZLV40_SetCallback(nullptr, 0); }
    ProgressRecorder recorder;
};

struct Counters {
    u32 nestCount, callDepth, openFrames;
    bool operator==(const Counters&) const = default;
};

Counters CountersNow()
{
    const ZLVThreadContext& context = *exportedContexts.Get();
    return {context.nestCount, context.callDepth, context.openFrames};
}

std::array<u8, 256> Complement()
{
    std::array<u8, 256> table;
    for (u32 i = 0; i < 256; ++i) table[i] = u8(255 - i);
    return table;
}

// A base function with `rows` rows to report.
u32 RunBasePass(u32 rows)
{
    static const std::array<u8, 256> table = Complement();
    static const void* const set[] = {table.data()};
    std::vector<u8> image(rows);
    return MV40_ApplyLUTsToImage(image.data(), 1, rows, 1, 1, set, 0);
}

const struct {
    const char* shows;
    FrameKind kind;
    bool clearsError;
    u32 nestCount, callDepth;
    bool holdsBaseCallback;
} kKinds[] = {
    {"the full frame", FrameKind::Full, true, 1, 1, true},
    {"without nestCount", FrameKind::NoNestCount, true, 0, 1, true},
    {"without callDepth", FrameKind::NoCallDepth, false, 1, 0, true},
    {"the error slot only", FrameKind::ErrorSlotOnly, true, 0, 0, false},
};

TEST(CallFrame, EveryKindRaisesWhatItSaysAndRestoresIt)
{
    for (const auto& row : kKinds) {
        for (const u32 result : {0u, 1u}) {
            SCOPE(row.shows, result);
            ProgressRecorder base;
            MV40_SetCallback(base.Function, base.Data());
            ZLVSetLastError(u32(Error::TimeOut));
            const u32 returned = InFrame(row.kind, [&](CallFrame& frame) -> u32 {
                EXPECT_EQ(frame.Context().lastError, row.clearsError ? Error::None : Error::TimeOut);
                EXPECT_EQ(CountersNow(), (Counters{row.nestCount, row.callDepth, 1}));
                u64 data = 77;
                const ZLVProgressCallback held = MV40_GetCallback(&data);
                EXPECT_EQ(held, row.holdsBaseCallback ? nullptr : base.Function);
                EXPECT_EQ(data, row.holdsBaseCallback ? 0 : base.Data());
                return result ? 1 : frame.Fail(Error::BadArgument);
            });
            EXPECT_EQ(returned, result);
            EXPECT_EQ(CountersNow(), (Counters{0, 0, 0}));
            u64 data = 0;
            EXPECT_EQ(MV40_GetCallback(&data), base.Function);
            EXPECT_EQ(data, base.Data());
            MV40_SetCallback(nullptr, 0);
            const u32 kept = row.clearsError ? 0 : u32(Error::TimeOut);
            EXPECT_EQ(ZLV40_GetLastError(), result ? kept : u32(Error::BadArgument));
        }
    }
}

TEST(CallFrame, TemporariesAreGoneBeforeTheFrameRestores)
{
    struct Temporary {
        ~Temporary() { atEnd = CountersNow(); }
        Counters& atEnd;
    };
    Counters atEnd = {};
    EXPECT_EQ(InFrame(FrameKind::Full,
                      [&](CallFrame& frame) -> u32 {
                          const Temporary temporary{atEnd};
                          return frame.Fail(Error::OutOfMemory);
                      }),
              0u);
    EXPECT_EQ(atEnd, (Counters{1, 1, 1}));
}

TEST(CallFrame, ReportsItsStagesToTheClient)
{
    Client client;
    EXPECT_EQ(InFrame(FrameKind::Full,
                      [](CallFrame& frame) -> u32 {
                          for (u32 stage = 0; stage < 3; ++stage) {
                              if (!frame.Report(stage, 3)) return 0;
                          }
                          return 1;
                      }),
              1u);
    EXPECT_EQ(client.recorder.reports, Rows(3, 3));
}

TEST(CallFrame, ACancelEndsWithItsCodeAndEverythingBack)
{
    for (const size_t cancelAt : {1u, 3u}) {  // 3 is the last stage: it still counts
        SCOPE(cancelAt);
        Client client;
        client.recorder.cancelAt = cancelAt;
        ProgressRecorder base;
        MV40_SetCallback(base.Function, base.Data());
        u32 stages = 0;
        EXPECT_EQ(InFrame(FrameKind::Full,
                          [&](CallFrame& frame) -> u32 {
                              for (; stages < 3; ++stages) {
                                  if (!frame.Report(stages, 3)) return 0;
                              }
                              return 1;
                          }),
                  0u);
        EXPECT_EQ(stages, cancelAt - 1);
        EXPECT_EQ(client.recorder.reports.size(), cancelAt);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_CANCELLED));
        EXPECT_EQ(CountersNow(), (Counters{0, 0, 0}));
        u64 data = 0;
        EXPECT_EQ(MV40_GetCallback(&data), base.Function);
        EXPECT_EQ(data, base.Data());
        MV40_SetCallback(nullptr, 0);
    }
}

TEST(CallFrame, ACallbackSetDuringTheCallIsNotReportedToByThatCall)
{
    ProgressRecorder recorder;
    EXPECT_EQ(InFrame(FrameKind::Full,
                      [&](CallFrame& frame) -> u32 {
                          ZLV40_SetCallback(recorder.Function, recorder.Data());
                          return frame.Report(0, 1);
                      }),
              1u);
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_TRUE(recorder.reports.empty());
}

TEST(CallFrame, ACallbackRemovedDuringTheCallIsNotCalledAnyMore)
{
    Client client;
    client.recorder.atReport = [] { ZLV40_SetCallback(nullptr, 0); };
    EXPECT_EQ(
        InFrame(FrameKind::Full, [](CallFrame& frame) -> u32 { return frame.Report(0, 2) && frame.Report(1, 2); }), 1u);
    EXPECT_EQ(client.recorder.reports, Rows(1, 2));
}

u32 ReportingStepEffect(u32 rows)
{
    return InFrame(FrameKind::Full, [=](CallFrame& frame) -> u32 {
        for (u32 row = 0; row < rows; ++row) {
            if (!frame.Report(row, rows)) return 0;
        }
        return 1;
    });
}

TEST(Nesting, AnExportCalledAsAStepIsSilentAndCannotBeCancelled)
{
    Client client;
    client.recorder.cancelAt = 1;
    EXPECT_EQ(InFrame(FrameKind::Full, [](CallFrame&) { return ReportingStepEffect(4); }), 1u);
    EXPECT_TRUE(client.recorder.reports.empty());
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
}

TEST(Nesting, AStepForWhichTheCountWasLoweredReportsAndCancels)
{
    Client client;
    client.recorder.cancelAt = 3;
    u32 nestCountAfter = 0;
    EXPECT_EQ(InFrame(FrameKind::Full,
                      [&](CallFrame& frame) {
                          u32 done = 0;
                          {
                              const ReportingStep step(frame);
                              done = ReportingStepEffect(4);
                          }
                          nestCountAfter = frame.Context().nestCount;
                          return done;
                      }),
              0u);
    EXPECT_EQ(client.recorder.reports, Rows(3, 4));
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_CANCELLED));
    EXPECT_EQ(nestCountAfter, 1u);
}

TEST(Nesting, StepsOfAFrameWithoutNestCountReportByThemselves)
{
    Client client;
    EXPECT_EQ(InFrame(FrameKind::NoNestCount, [](CallFrame&) { return ReportingStepEffect(2); }), 1u);
    EXPECT_EQ(client.recorder.reports, Rows(2, 2));
}

TEST(Nesting, AnExportCalledFromTheCallbackReportsNothing)
{
    Client client;
    u32 nestCountInside = 0;
    client.recorder.atReport = [&] {
        if (client.recorder.reports.size() > 1) return;
        EXPECT_EQ(InFrame(FrameKind::Full,
                          [&](CallFrame& frame) -> u32 {
                              nestCountInside = frame.Context().nestCount;
                              return frame.Report(0, 9);
                          }),
                  1u);
    };
    EXPECT_EQ(ReportingStepEffect(2), 1u);
    EXPECT_EQ(nestCountInside, 2u);
    EXPECT_EQ(client.recorder.reports, Rows(2, 2));
}

TEST(ForwardingSpan, MakesRowsOfTheBaseLayerTheEffectsOwn)
{
    Client client;
    EXPECT_EQ(InFrame(FrameKind::Full,
                      [](CallFrame& frame) {
                          const ForwardingSpan span(frame);
                          return RunBasePass(3);
                      }),
              1u);
    EXPECT_EQ(client.recorder.reports, Rows(3, 3));
}

// With nobody to tell the base layer has no callback, and need not stop after each row.
TEST(ForwardingSpan, ForwardsOnlyWhatCanReachTheClient)
{
    const struct {
        const char* shows;
        FrameKind kind;
        bool hasClient;
        u32 nestCount;
        bool forwards;
    } rows[] = {
        {"no client", FrameKind::Full, false, 0, false},
        {"a client's call", FrameKind::Full, true, 0, true},
        {"a step", FrameKind::Full, true, 1, false},
        {"a call that raises nothing", FrameKind::ErrorSlotOnly, true, 0, false},
        {"the same from within a callback", FrameKind::ErrorSlotOnly, true, 1, true},
    };
    for (const auto& row : rows) {
        SCOPE(row.shows);
        const Client client;
        if (!row.hasClient) ZLV40_SetCallback(nullptr, 0);
        exportedContexts.Get()->nestCount = row.nestCount;
        InFrame(row.kind, [&](CallFrame& frame) -> u32 {
            EXPECT_EQ(frame.MayReport(), row.forwards);
            const ForwardingSpan span(frame);
            u64 data = 0;
            EXPECT_EQ(MV40_GetCallback(&data), row.forwards ? ZLVForwardProgress : nullptr);
            return 1;
        });
        exportedContexts.Get()->nestCount = 0;
    }
}

TEST(ForwardingSpan, WithoutOneABaseFunctionIsSilent)
{
    Client client;
    EXPECT_EQ(InFrame(FrameKind::Full, [](CallFrame&) { return RunBasePass(3); }), 1u);
    EXPECT_TRUE(client.recorder.reports.empty());
}

TEST(ForwardingSpan, ACancelIsTheBaseLayersAndCanBeKept)
{
    Client client;
    client.recorder.cancelAt = 2;
    EXPECT_EQ(InFrame(FrameKind::Full,
                      [](CallFrame& frame) {
                          ForwardingSpan span(frame);
                          const u32 done = RunBasePass(3);
                          span.KeepBaseError();
                          return done;
                      }),
              0u);
    EXPECT_EQ(client.recorder.reports, Rows(2, 3));
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_CANCELLED));
}

TEST(ForwardingSpan, ReadAfterItsEndTheBaseErrorIsAlwaysClear)
{
    Client client;
    client.recorder.cancelAt = 1;
    EXPECT_EQ(InFrame(FrameKind::Full,
                      [](CallFrame&) {
                          u32 done = 0;
                          {
                              CallFrame inner(FrameKind::ErrorSlotOnly);
                              const ForwardingSpan span(inner);
                              done = RunBasePass(3);
                          }
                          ZLVSetLastError(MV40_GetLastError());
                          return done;
                      }),
              0u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
}

TEST(ForwardProgress, GoesOnWhenNobodyIsToBeAsked)
{
    ProgressRecorder recorder;
    EXPECT_EQ(ZLVForwardProgress(0, 1, 0), 1u) << "no callback";
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    EXPECT_EQ(ZLVForwardProgress(0, 1, 0), 1u) << "nestCount is 0";
    exportedContexts.Get()->nestCount = 2;
    EXPECT_EQ(ZLVForwardProgress(0, 1, 0), 1u) << "nestCount is 2";
    exportedContexts.Get()->nestCount = 0;
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_TRUE(recorder.reports.empty());
}

TEST(ForwardProgress, HandsTheClientsValueOnAndTheClientsAnswerBack)
{
    ProgressRecorder recorder;
    recorder.cancelAt = 2;
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    exportedContexts.Get()->nestCount = 1;
    EXPECT_EQ(ZLVForwardProgress(4, 9, 12345), 1u) << "the third argument is not the client's value";
    EXPECT_EQ(ZLVForwardProgress(5, 9, 0), 0u);
    exportedContexts.Get()->nestCount = 0;
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_EQ(recorder.reports, (std::vector<Report>{{4, 9}, {5, 9}}));
}

TEST(RefuseCall, SetsTheCodeAndNothingElse)
{
    EXPECT_EQ(RefuseCall(Error::BadArgument), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
    EXPECT_EQ(CountersNow(), (Counters{0, 0, 0}));
}

TEST(CallFrame, ThreadExitFromACallbackLeavesTheCallItsRecord)
{
    Client client;
    client.recorder.atReport = [] { ZLV40_ThreadExit(); };
    EXPECT_EQ(ReportingStepEffect(3), 1u);
    EXPECT_EQ(client.recorder.reports, Rows(3, 3));
    EXPECT_EQ(CountersNow(), (Counters{0, 0, 0}));
}

}  // namespace
}  // namespace zlv
