// Every described export, every argument broken in turn.
#include "boundary/described_call.h"
#include "support/progress_recorder.h"

#include <thread>

namespace zlvtest {
namespace {

// Runs test(effect, channels) after a success: some effects leave an earlier code as it is.
template <class Test>
void ForEachEffect(Test test)
{
    std::size_t seen = 0;
    for (const DescribedEffect& effect : DescribedEffects()) {
        for (const std::uint32_t channels : effect.channels) {
            SCOPE(effect.name, "with", channels, "channels");
            std::uint8_t sample = 0;
            EXPECT_EQ(ZLV40_InvertImage(&sample, 1, 1, 1, 1, 0), 1u);
            test(effect, channels);
            ++seen;
        }
    }
    EXPECT_GT(seen, 0u) << "the description is empty";
}

TEST(BoundarySweep, EveryAcceptedChannelCountWorksInsideItsBuffers)
{
    ForEachEffect([](const DescribedEffect& effect, std::uint32_t channels) {
        for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
            const DescribedCall call(effect, channels, flush);
            EXPECT_EQ(call.Run(), 1u);
            EXPECT_EQ(ZLV40_GetLastError(), 0u);
            EXPECT_TRUE(call.IsPaddingUntouched());
            EXPECT_TRUE(call.AreSourcesUntouched());
            EXPECT_FALSE(call.IsUntouched()) << "nothing was done";
        }
    });
}

TEST(BoundarySweep, EveryRefusalSetsItsCodeAndWritesNothing)
{
    ForEachEffect([](const DescribedEffect& effect, std::uint32_t channels) {
        std::size_t seen = 0;
        ForEachRefusal(effect, channels, [&](const DescribedCall& call, const std::string& what, std::uint32_t error) {
            SCOPE(what);
            EXPECT_EQ(call.Run(), 0u);
            EXPECT_EQ(ZLV40_GetLastError(), error);
            EXPECT_TRUE(call.IsUntouched());
            ++seen;
        });
        EXPECT_GT(seen, 0u) << "nothing of it can be refused";
    });
}

TEST(BoundarySweep, SizesOfZeroThatAreNothingToDoSucceed)
{
    ForEachEffect([](const DescribedEffect& effect, std::uint32_t channels) {
        for (std::size_t i = 0; i < effect.arguments.size(); ++i) {
            if (effect.arguments[i].zero != Zero::Nothing) continue;
            SCOPE(effect.arguments[i].name);
            DescribedCall call(effect, channels);
            call.values[i].integer = 0;
            EXPECT_EQ(call.Run(), 1u);
            EXPECT_EQ(ZLV40_GetLastError(), 0u);
            EXPECT_TRUE(call.IsUntouched());
        }
    });
}

TEST(BoundarySweep, AClientThatCancelsStopsWhatCanBeCancelled)
{
    ForEachEffect([](const DescribedEffect& effect, std::uint32_t channels) {
        ProgressRecorder recorder;
        recorder.cancelAt = 1;
        ZLV40_SetCallback(recorder.Function, recorder.Data());
        const DescribedCall call(effect, channels);
        EXPECT_EQ(call.Run(), effect.canCancel ? 0u : 1u);
        EXPECT_EQ(ZLV40_GetLastError(), effect.canCancel ? effect.cancelError : 0u);
        ZLV40_SetCallback(nullptr, 0);
        EXPECT_EQ(!recorder.reports.empty(), effect.reports);
        if (effect.canCancel) {
            EXPECT_EQ(recorder.reports.size(), 1u);
        }
    });
}

// On fresh threads: the random generator is the thread's own and starts with it.
TEST(BoundarySweep, TheSameInputGivesTheSameBytes)
{
    ForEachEffect([](const DescribedEffect& effect, std::uint32_t channels) {
        if (!effect.repeats) return;
        const DescribedCall first(effect, channels, Flush::ToStart), second(effect, channels, Flush::ToEnd);
        for (const DescribedCall* call : {&first, &second}) {
            std::thread([&] { EXPECT_EQ(call->Run(), 1u); }).join();
        }
        EXPECT_EQ(first.Pixels(), second.Pixels());
    });
}

}  // namespace
}  // namespace zlvtest
