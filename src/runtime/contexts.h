// The two records that each thread has: one for the exported layer, one for the base layer.
#pragma once

#include "platform/float_environment.h"
#include "runtime/array.h"
#include "runtime/error.h"
#include "runtime/error_log.h"
#include "runtime/thread_context_slot.h"
#include "runtime/transform.h"

#include "zlv40.h"

namespace zlv {

struct ZLVThreadContext {
    ZLVProgressCallback callback = nullptr;
    u32 nestCount = 0;  // a report reaches the client only while it is exactly 1
    u64 callbackData = 0;
    u32 callDepth = 0;  // raised and lowered by the frames; nothing depends on it
    Error lastError = Error::None;
    MVPtrVector<CXFormer> transforms;

    u32 openFrames = 0;        // calls in progress on this thread: the record must outlive them
    bool isComputing = false;  // the standard floating-point environment is set, the host's is kept below
    platform::FloatEnvironment hostFloatEnvironment = {};
};

struct MVThreadContext {
    ZLVProgressCallback callback = nullptr;
    u32 nestCount = 0;  // a report is made only while it is exactly 1
    u64 callbackData = 0;
    Error lastError = Error::None;
    i32 reportHold = 0;  // above 0, MVReportError does nothing at all
    ErrorLog errorLog;

    u32 randomState = 1;  // of the run-time random generator; lives on through ZLV40_ThreadExit
};

extern ThreadContextSlot<ZLVThreadContext> exportedContexts;
extern ThreadContextSlot<MVThreadContext> baseContexts;

}  // namespace zlv
