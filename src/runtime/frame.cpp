#include "runtime/frame.h"

namespace zlv {

namespace {

struct FrameTraits {
    bool clearsError;
    bool raisesNestCount;
    bool raisesCallDepth;
    bool holdsBaseCallback;
};

constexpr FrameTraits TraitsOf(FrameKind kind)
{
    switch (kind) {
    case FrameKind::Full: return {true, true, true, true};
    case FrameKind::NoNestCount: return {true, false, true, true};
    case FrameKind::NoCallDepth: return {false, true, false, true};
    case FrameKind::ErrorSlotOnly: break;
    }
    return {true, false, false, false};
}

u32 CallClient(ZLVThreadContext& context, u32 current, u32 total)
{
    const ClientFloatEnvironment environment(context);
    return context.callback(current, total, context.callbackData);
}

}  // namespace

void ZLVSetLastError(u32 code)
{
    if (ZLVThreadContext* const context = exportedContexts.Get()) context->lastError = Error(code);
}

u32 ZLVForwardProgress(u32 current, u32 total, u64)
{
    ZLVThreadContext* const context = exportedContexts.Get();
    if (!context || context->nestCount != 1 || !context->callback) return 1;
    return CallClient(*context, current, total);
}

u32 RefuseCall(Error code)
{
    ZLVSetLastError(u32(code));
    return 0;
}

ClientFloatEnvironment::ClientFloatEnvironment(ZLVThreadContext& context)
    : context_(context), wasComputing_(context.isComputing)
{
    if (wasComputing_) platform::WriteFloatEnvironment(context_.hostFloatEnvironment);
    context_.isComputing = false;
}

ClientFloatEnvironment::~ClientFloatEnvironment()
{
    context_.isComputing = wasComputing_;
    if (!wasComputing_) return;
    context_.hostFloatEnvironment = platform::ReadFloatEnvironment();
    platform::SetStandardFloatEnvironment();
}

CallFrame::CallFrame(FrameKind kind) : context_(exportedContexts.Get()), kind_(kind)
{
    if (!context_) return;
    const FrameTraits traits = TraitsOf(kind);
    if (traits.clearsError) SetLastError(Error::None);
    // Without a base record no base function works: better to say so now than to return with nothing done.
    if (!baseContexts.Get()) {
        SetLastError(Error::OutOfMemory);
        return;
    }
    isOpen_ = true;
    ++context_->openFrames;
    hasCallback_ = context_->callback != nullptr;
    if (!context_->isComputing) {
        setFloatEnvironment_ = true;
        context_->isComputing = true;
        context_->hostFloatEnvironment = platform::ReadFloatEnvironment();
        platform::SetStandardFloatEnvironment();
    }
    if (traits.raisesNestCount) ++context_->nestCount;
    if (traits.raisesCallDepth) ++context_->callDepth;
    if (traits.holdsBaseCallback) {
        baseCallback_ = MV40_GetCallback(&baseCallbackData_);
        MV40_SetCallback(nullptr, 0);
    }
}

CallFrame::~CallFrame()
{
    if (!isOpen_) return;
    const FrameTraits traits = TraitsOf(kind_);
    if (traits.holdsBaseCallback) MV40_SetCallback(baseCallback_, baseCallbackData_);
    if (traits.raisesCallDepth) --context_->callDepth;
    if (traits.raisesNestCount) --context_->nestCount;
    if (setFloatEnvironment_) {
        platform::WriteFloatEnvironment(context_->hostFloatEnvironment);
        context_->isComputing = false;
    }
    --context_->openFrames;
}

bool CallFrame::Report(u32 current, u32 total)
{
    if (!MayReport() || !context_->callback) return true;
    if (CallClient(*context_, current, total) != 0) return true;
    SetLastError(Error::Cancelled);
    return false;
}

ForwardingSpan::ForwardingSpan(CallFrame& frame) : frame_(frame)
{
    baseCallback_ = MV40_GetCallback(&baseCallbackData_);
    MV40_SetCallback(frame.MayReport() ? ZLVForwardProgress : nullptr, frame.Context().callbackData);
}

}  // namespace zlv
