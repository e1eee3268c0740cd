// The exports that belong to no effect: the callback, the last error, the version, the end of threads and process.
#include "runtime/frame.h"
#include "runtime/linkage.h"

#include <algorithm>

#include "zlv40.h"

using namespace zlv;

ZLV_EXPORT u32 ZLV40_GetLastError()
{
    const ZLVThreadContext* const context = exportedContexts.Get();
    return u32(context ? context->lastError : Error::OutOfMemory);
}

ZLV_EXPORT void ZLV40_SetCallback(ZLVProgressCallback callback, u64 callbackData)
{
    ZLVThreadContext* const context = exportedContexts.Get();
    if (!context) return;
    context->callback = callback;
    context->callbackData = callbackData;
}

ZLV_EXPORT ZLVProgressCallback ZLV40_GetCallback(u64* callbackData)
{
    const ZLVThreadContext* const context = exportedContexts.Get();
    if (callbackData) *callbackData = context ? context->callbackData : 0;
    return context ? context->callback : nullptr;
}

ZLV_EXPORT char* ZLV40_GetLibVersion(char* buffer)
{
    static constexpr char kVersion[ZLV40_VERSION_BYTES] = "ZLV 4.0.10.3";
    if (buffer) std::copy_n(kVersion, ZLV40_VERSION_BYTES, buffer);
    return buffer;
}

ZLV_EXPORT void ZLV40_ThreadExit()
{
    ZLVThreadContext* const context = exportedContexts.Find();
    // Inside a client's callback the record belongs to the call that is being made.
    if (!context || context->openFrames > 0) return;
    ClearTransforms(*context);
    exportedContexts.Release();
}

ZLV_EXPORT void ZLV40_Exit()
{
    ZLVThreadContext* const context = exportedContexts.Find();
    if (!context) return;
    context->lastError = Error::None;
    ClearTransforms(*context);
}
