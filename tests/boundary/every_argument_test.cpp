// Every export, every argument broken in turn, by every value that could surprise it.
#include "boundary/broken_arguments.h"
#include "boundary/described_call.h"

#include <algorithm>
#include <set>

namespace zlvtest {
namespace {

const char* const kExportNames[] = {
#include "export_names.inc"
};

// A picture of no columns may have billions of rows: a client would lose patience, too.
std::uint32_t BePatient(std::uint32_t current, std::uint32_t, std::uint64_t) { return current < 1 << 12; }

class PatientClient {
public:
    PatientClient() { ZLV40_SetCallback(BePatient, 0); }
    ~PatientClient() { ZLV40_SetCallback(nullptr, 0); }
};

bool IsCancel(const DescribedEffect& effect, std::uint32_t code)
{
    return effect.canCancel && (code == effect.cancelError || (code == 0 && effect.isCancelQuiet));
}

void ExpectLawful(const DescribedCall& call, bool mustBeRefused)
{
    const DescribedEffect& effect = call.Effect();
    const unsigned manners = call.Row().manners;
    const auto [isDone, code] = call.Ended();
    EXPECT_TRUE(call.AreSourcesUntouched());
    EXPECT_TRUE(call.IsPaddingUntouched());
    const bool isNamed = std::find(effect.errors.begin(), effect.errors.end(), code) != effect.errors.end();
    if (isDone) {
        EXPECT_TRUE(code == 0 || ((manners & kSucceedsWithCode) && isNamed)) << code;
        EXPECT_FALSE(mustBeRefused && !(manners & kHasRefusalsOfItsOwn));
        return;
    }
    if (IsCancel(effect, code) && !mustBeRefused) return;
    EXPECT_TRUE(isNamed || (code == 0 && (manners & kRefusesQuietly))) << code;
    if (mustBeRefused && !(manners & kHasRefusalsOfItsOwn)) {
        EXPECT_EQ(code, std::uint32_t(ZLV40_ERROR_BAD_ARGUMENT));
    }
    if (!(manners & kWritesThenRefuses)) {
        EXPECT_TRUE(call.IsUntouched());
    }
}

// What the export may return as a number.
void ExpectResult(const DescribedCall& call, std::uint64_t result)
{
    if (call.Effect().answer != Answer::Status) return;
    const bool mayBeACode = call.Row().manners & kHasRefusalsOfItsOwn;
    EXPECT_TRUE(result <= 1 || (mayBeACode && result == ZLV40_ERROR_BAD_ARGUMENT)) << result;
}

void RunBroken(const DescribedEffect& effect, std::uint32_t channels, const BrokenCase& broken)
{
    for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
        DescribedCall call(effect, channels, flush);
        for (const Setting& setting : broken.settings) call.Set(setting);
        ClearLastError();
        const PatientClient client;
        ExpectResult(call, call.Run());
        ExpectLawful(call, broken.mustBeRefused);
        call.GiveBack();
    }
}

// The fewest and the most channels: what is between differs in no check.
std::set<std::uint32_t> SomeChannelCounts(const DescribedEffect& effect)
{
    const std::vector<std::uint32_t> counts = ChannelCounts(effect);
    return {counts.front(), counts.back()};
}

TEST(EveryArgument, BrokenInTurnIsRefusedOrDoneWithinItsBuffers)
{
    std::set<std::string> driven;
    for (const DescribedEffect& effect : DescribedExports()) {
        for (const std::uint32_t channels : SomeChannelCounts(effect)) {
            SCOPE(effect.name, "with", channels, "channels");
            for (const DescribedArgument& argument : effect.arguments) {
                const std::vector<BrokenCase> cases = BrokenCases(effect, argument);
                EXPECT_FALSE(cases.empty()) << argument.name;
                for (const BrokenCase& broken : cases) {
                    SCOPE(broken.shows);
                    RunBroken(effect, channels, broken);
                }
            }
            RunBroken(effect, channels, {"as it is", {}, false});
        }
        driven.insert(effect.name);
    }
    EXPECT_EQ(driven, std::set<std::string>(std::begin(kExportNames), std::end(kExportNames)));
    EXPECT_EQ(driven.size(), 117u);
}

}  // namespace
}  // namespace zlvtest
