// Every described export with its allocations failing one after the other.
#include "boundary/described_call.h"
#include "support/test_hooks.h"

#include <thread>

namespace zlvtest {
namespace {

// The calls run on fresh threads: the thread's own records are among what can't be had.
template <class Test>
void RunOnFreshThread(Test test)
{
    std::thread(test).join();
}

TEST(AllocationFailure, EveryOneIsCodeOneAndNothingElse)
{
    std::uint32_t failures = 0;
    for (const DescribedEffect& effect : DescribedEffects()) {
        for (const std::uint32_t channels : effect.channels) {
            for (const FailingCalls::Of function : {FailingCalls::Of::Allocate, FailingCalls::Of::SetSlot}) {
                for (std::uint32_t succeeding = 0;; ++succeeding) {
                    SCOPE(effect.name, channels, int(function), succeeding);
                    ASSERT_LT(succeeding, 1000u);
                    std::uint32_t failed = 0;
                    RunOnFreshThread([&] {
                        const DescribedCall call(effect, channels);
                        std::uint32_t result = 0, error = 0;
                        {
                            const FailingCalls failing(function, succeeding);
                            result = call.Run();
                            error = ZLV40_GetLastError();
                            failed = failing.Failed();
                        }
                        EXPECT_EQ(result, failed ? 0u : 1u);
                        EXPECT_EQ(error, failed ? std::uint32_t(ZLV40_ERROR_OUT_OF_MEMORY) : 0u);
                        EXPECT_EQ(call.Run(), 1u) << "with memory again";
                    });
                    failures += failed;
                    if (!failed) break;
                }
            }
        }
    }
    EXPECT_GT(failures, 0u) << "the hook was never reached";
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
