// What every export leaves as it found it: the counters in its thread's records, and the callback of the base layer.
#pragma once

#include "runtime/base_call.h"
#include "runtime/contexts.h"
#include "support/bytes.h"
#include "support/progress_recorder.h"

namespace zlvtest {

// While it lives, the base layer of this thread has a callback that nobody should call.
class BaseWatch {
public:
    BaseWatch() { zlv::MV40_SetCallback(recorder_.Function, recorder_.Data()); }
    ~BaseWatch()
    {
        zlv::MV40_SetCallback(nullptr, 0);
        EXPECT_TRUE(recorder_.reports.empty());
    }
    BaseWatch(const BaseWatch&) = delete;
    BaseWatch& operator=(const BaseWatch&) = delete;

    // Behind a call.
    void ExpectUntouched()
    {
        zlv::u64 data = 0;
        EXPECT_EQ(zlv::MV40_GetCallback(&data), recorder_.Function);
        EXPECT_EQ(data, recorder_.Data());
        EXPECT_EQ(zlv::exportedContexts.Get()->nestCount, 0u);
        EXPECT_EQ(zlv::exportedContexts.Get()->callDepth, 0u);
        EXPECT_EQ(zlv::exportedContexts.Get()->openFrames, 0u);
        EXPECT_EQ(zlv::baseContexts.Get()->nestCount, 0u);
    }

private:
    ProgressRecorder recorder_;
};

}  // namespace zlvtest
