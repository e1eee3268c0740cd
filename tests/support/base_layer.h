// What tests of the base layer share: both sample widths, and a callback that is there for a while.
#pragma once

#include "base/sample.h"
#include "runtime/base_call.h"
#include "support/bytes.h"
#include "support/progress_recorder.h"
#include "support/targets.h"

namespace zlvtest {

// The flag that makes a base function take samples of this width.
template <class T>
constexpr zlv::u32 kWidthFlag = sizeof(T) == 2 ? zlv::kSixteenBitSamples : 0;

// Runs a callable that takes the sample type for both of them.
template <class Test>
void ForBothWidths(Test test)
{
    {
        SCOPE("8 bits");
        test.template operator()<zlv::u8>();
    }
    {
        SCOPE("16 bits");
        test.template operator()<zlv::u16>();
    }
}

// The same on every instruction set.
template <class Test>
void ForTargetsAndWidths(Test test)
{
    OnEveryTarget([&] { ForBothWidths(test); });
}

// While it lives, reports of the base layer on this thread go to the recorder, which may cancel.
class Recording {
public:
    explicit Recording(std::size_t cancelAt = 0)
    {
        recorder.cancelAt = cancelAt;
        zlv::MV40_SetCallback(recorder.Function, recorder.Data());
    }
    ~Recording() { zlv::MV40_SetCallback(nullptr, 0); }
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    ProgressRecorder recorder;
};

}  // namespace zlvtest
