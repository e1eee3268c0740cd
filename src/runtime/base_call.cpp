#include "runtime/base_call.h"

namespace zlv {

void MV40_SetCallback(ZLVProgressCallback callback, u64 callbackData)
{
    MVThreadContext* const context = baseContexts.Get();
    if (!context) return;
    ReportBaseError(*context, Error::None, "MV40_SetCallback", nullptr);
    context->callback = callback;
    context->callbackData = callbackData;
}

ZLVProgressCallback MV40_GetCallback(u64* callbackData)
{
    MVThreadContext* const context = baseContexts.Get();
    if (!context) return nullptr;
    ReportBaseError(*context, Error::None, "MV40_GetCallback", nullptr);
    if (callbackData) *callbackData = context->callbackData;
    return context->callback;
}

u32 MV40_GetLastError()
{
    const MVThreadContext* const context = baseContexts.Get();
    return u32(context ? context->lastError : Error::NoBaseContext);
}

}  // namespace zlv
