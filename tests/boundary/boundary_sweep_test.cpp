// Every export: that it works, and what its description says of refusals, sizes of zero, cancels and repeats.
#include "boundary/described_call.h"
#include "support/progress_recorder.h"

#include <thread>

namespace zlvtest {
namespace {

constexpr Outcome kDone = {true, 0};

// Runs test(effect, channels) after a success: some exports leave an earlier code as it is.
template <class Test>
void ForEachExport(Test test)
{
    std::size_t seen = 0;
    for (const DescribedEffect& effect : DescribedExports()) {
        for (const std::uint32_t channels : ChannelCounts(effect)) {
            SCOPE(effect.name, "with", channels, "channels");
            ClearLastError();
            test(effect, channels);
            ++seen;
        }
    }
    EXPECT_GT(seen, 0u) << "the description is empty";
}

TEST(BoundarySweep, EveryAcceptedChannelCountWorksInsideItsBuffers)
{
    ForEachExport([](const DescribedEffect& effect, std::uint32_t channels) {
        for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
            DescribedCall call(effect, channels, flush);
            EXPECT_EQ(call.RunWhole(), kDone);
            EXPECT_TRUE(call.IsPaddingUntouched());
            EXPECT_TRUE(call.AreSourcesUntouched());
            EXPECT_TRUE(call.Written().empty() || !call.IsUntouched()) << "nothing was done";
        }
    });
}

TEST(BoundarySweep, EveryRefusalSetsItsCodeAndWritesNothing)
{
    ForEachExport([](const DescribedEffect& effect, std::uint32_t channels) {
        if (RowOf(effect.name).manners & kHasRefusalsOfItsOwn) return;
        std::size_t seen = 0;
        ForEachRefusal(effect, channels, [&](DescribedCall& call, const std::string& what, std::uint32_t error) {
            SCOPE(what);
            EXPECT_EQ(call.RunWhole(), (Outcome{false, error}));
            EXPECT_TRUE(call.IsUntouched());
            ++seen;
        });
        EXPECT_TRUE(seen > 0 || !effect.isSwept) << "nothing of it can be refused";
    });
}

TEST(BoundarySweep, SizesOfZeroThatAreNothingToDoSucceed)
{
    ForEachExport([](const DescribedEffect& effect, std::uint32_t channels) {
        for (std::size_t i = 0; i < effect.arguments.size(); ++i) {
            if (effect.arguments[i].zero != Zero::Nothing) continue;
            SCOPE(effect.arguments[i].name);
            DescribedCall call(effect, channels);
            call.values[i].integer = 0;
            call.Remember();
            EXPECT_EQ(call.RunWhole(), kDone);
            EXPECT_TRUE(call.IsPaddingUntouched()) << "there are no pixels";
            EXPECT_TRUE(call.IsUntouched() || !effect.isSwept) << "numbers may be answered";
        }
    });
}

TEST(BoundarySweep, AClientThatCancelsStopsWhatCanBeCancelled)
{
    ForEachExport([](const DescribedEffect& effect, std::uint32_t channels) {
        ProgressRecorder recorder;
        recorder.cancelAt = 1;
        ZLV40_SetCallback(recorder.Function, recorder.Data());
        DescribedCall call(effect, channels);
        EXPECT_EQ(call.RunWhole(), effect.canCancel ? (Outcome{false, effect.cancelError}) : kDone);
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
    ForEachExport([](const DescribedEffect& effect, std::uint32_t channels) {
        if (!effect.repeats || effect.answer != Answer::Status) return;
        const auto run = [&](Flush flush) {
            Bytes written;
            std::thread([&] {
                DescribedCall call(effect, channels, flush);
                EXPECT_EQ(call.RunWhole(), kDone);
                written = call.Written();
            }).join();
            return written;
        };
        EXPECT_EQ(run(Flush::ToStart), run(Flush::ToEnd));
    });
}

}  // namespace
}  // namespace zlvtest
