// One call of the base layer: the wrapper's shape, the nesting counter, progress and the error slot.
#pragma once

#include "runtime/contexts.h"
#include "runtime/linkage.h"
#include "runtime/report_error.h"

namespace zlv {

inline constexpr u32 kSixteenBitSamples = 512;

// The callback of this thread's base layer. Both report success first, and so clear the base layer's last error.
ZLV_BASE void MV40_SetCallback(ZLVProgressCallback callback, u64 callbackData);
ZLV_BASE ZLVProgressCallback MV40_GetCallback(u64* callbackData);
ZLV_BASE u32 MV40_GetLastError();

// A worker at work: it begins with a clean error slot one nesting level deeper, and every exit leads back.
class BaseWork {
public:
    BaseWork(MVThreadContext& context, Error& error)
        : context_(context), error_(error), hasCallback_(context.callback != nullptr)
    {
        error_ = Error::None;
        ++context_.nestCount;
    }
    ~BaseWork() { --context_.nestCount; }
    BaseWork(const BaseWork&) = delete;
    BaseWork& operator=(const BaseWork&) = delete;

    // False ends the work: the code is set.
    [[nodiscard]] bool Report(u32 current, u32 total)
    {
        if (!hasCallback_ || context_.nestCount != 1 || !context_.callback) return true;
        if (context_.callback(current, total, context_.callbackData) != 0) return true;
        error_ = Error::Cancelled;
        return false;
    }

    // Whether any report of this work can reach anybody: without one, rows may be done in any grouping.
    bool MayReport() const { return hasCallback_ && context_.nestCount == 1; }

    u32 Fail(Error code)
    {
        error_ = code;
        return 0;
    }

    // For a worker that calls another one as a step.
    MVThreadContext& Context() { return context_; }

private:
    MVThreadContext& context_;
    Error& error_;
    const bool hasCallback_;
};

// The shape of every MV40_ function. The worker takes (MVThreadContext&, Error&) and returns 1 or 0.
template <class Worker>
u32 InBaseCall(const char* name, Worker worker)
{
    MVThreadContext* const context = baseContexts.Get();
    if (!context) return 0;
    Error error = Error::None;
    const u32 result = worker(*context, error);
    ReportBaseError(*context, error, name, nullptr);
    return result;
}

}  // namespace zlv
