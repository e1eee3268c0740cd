// Calls with each of their allocations failing, one after the other.
#pragma once

#include "support/bytes.h"
#include "support/test_hooks.h"

#include <utility>

#include "zlv40.h"

namespace zlvtest {

// Runs call() with the first use of the platform's function failing, then with the second, ..., until none fails, and
// check(result, failed, succeeding) behind each. `atATime` uses fail in a run, or all that come. Returns how many runs
// had a failure.
template <class Call, class Check>
std::uint32_t WithEachFailing(FailingCalls::Of function, Call call, Check check,
                              std::uint32_t atATime = FailingCalls::kAlways)
{
    for (std::uint32_t succeeding = 0; succeeding < 1000; ++succeeding) {
        SCOPE("succeeding", succeeding);
        auto run = [&] {
            const FailingCalls failing(function, succeeding, atATime);
            const auto result = call();
            return std::pair(result, failing.Failed());
        };
        const auto [result, failed] = run();
        check(result, failed, succeeding);
        if (!failed) return succeeding;
    }
    ADD_FAILURE() << "there is no end of failures";
    return 0;
}

// Every allocation that call(dst) lacks is code 1, and leaves `before` in dst. Returns how many it has.
template <class Samples, class Call>
std::uint32_t ExpectCodeOneWithoutMemory(const Samples& before, Call call)
{
    Samples dst = before;
    return WithEachFailing(
        FailingCalls::Of::Allocate,
        [&] {
            dst = before;
            return call(dst);
        },
        [&](std::uint32_t result, std::uint32_t failed, std::uint32_t) {
            EXPECT_EQ(result, failed ? 0u : 1u);
            EXPECT_EQ(ZLV40_GetLastError(), failed ? std::uint32_t(ZLV40_ERROR_OUT_OF_MEMORY) : 0u);
            EXPECT_TRUE(!failed || dst == before) << "something was written";
        });
}

}  // namespace zlvtest
