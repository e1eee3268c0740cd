// The frame of an exported call: what is raised, saved and cleared on entry, and put back on every way out.
//
//     return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
//         if (!image) return frame.Fail(Error::BadArgument);
//         ...
//         return 1;
//     });
//
// Temporaries live in the body, so they are gone before the frame restores what it found.
#pragma once

#include "runtime/base_call.h"
#include "runtime/contexts.h"

namespace zlv {

enum class FrameKind : u8 {
    Full,
    NoNestCount,    // exports called as steps run at nestCount 1 and report by themselves
    NoCallDepth,    // arguments are checked ahead of it (see RefuseCall), and an earlier error code stays
    ErrorSlotOnly,  // the last error and nothing else; with a ForwardingSpan inside, a callback span
};

// Writes this thread's last error.
void ZLVSetLastError(u32 code);

// The forwarder that stands for the client's callback in the base layer. The third argument is not used: the client's
// value always comes from the thread's record.
u32 ZLVForwardProgress(u32 current, u32 total, u64 ignored);

// A check that failed ahead of the frame: nothing has been raised or saved yet.
u32 RefuseCall(Error code);

// Destroys the steps of this thread's warp list, first to last.
inline void ClearTransforms(ZLVThreadContext& context) { context.transforms.DeleteAll(); }

// While it lives, the client's floating-point environment is set: code of his is about to run, and may change it.
class ClientFloatEnvironment {
public:
    explicit ClientFloatEnvironment(ZLVThreadContext& context);
    ~ClientFloatEnvironment();
    ClientFloatEnvironment(const ClientFloatEnvironment&) = delete;
    ClientFloatEnvironment& operator=(const ClientFloatEnvironment&) = delete;

private:
    ZLVThreadContext& context_;
    const bool wasComputing_;
};

class CallFrame {
public:
    explicit CallFrame(FrameKind kind);
    ~CallFrame();
    CallFrame(const CallFrame&) = delete;
    CallFrame& operator=(const CallFrame&) = delete;

    // False when this thread's records can't be had: memory is out.
    bool IsOpen() const { return isOpen_; }

    u32 Fail(Error code)
    {
        SetLastError(code);
        return 0;
    }
    void SetLastError(Error code) { context_->lastError = code; }
    Error LastError() const { return context_->lastError; }

    // Tells the client. False means cancelled: the code is set, the effect leaves its loop and returns 0.
    [[nodiscard]] bool Report(u32 current, u32 total);

    // Whether any report of this call can reach anybody: without one, the work may be done in any grouping.
    bool MayReport() const { return hasCallback_ && context_->nestCount == 1; }

    ZLVThreadContext& Context() { return *context_; }

private:
    ZLVThreadContext* const context_;
    const FrameKind kind_;
    bool isOpen_ = false;
    bool hasCallback_ = false;
    bool setFloatEnvironment_ = false;
    ZLVProgressCallback baseCallback_ = nullptr;
    u64 baseCallbackData_ = 0;
};

// While it lives, progress of the base layer is progress of this effect. Where it can reach nobody the base layer is
// told so, and need not stop after each row.
class ForwardingSpan {
public:
    explicit ForwardingSpan(CallFrame& frame);
    ~ForwardingSpan() { MV40_SetCallback(baseCallback_, baseCallbackData_); }
    ForwardingSpan(const ForwardingSpan&) = delete;
    ForwardingSpan& operator=(const ForwardingSpan&) = delete;

    // Hands the base layer's code on to the client. To be called before the span ends, which clears that code.
    void KeepBaseError() { frame_.SetLastError(Error(MV40_GetLastError())); }

private:
    CallFrame& frame_;
    ZLVProgressCallback baseCallback_ = nullptr;
    u64 baseCallbackData_ = 0;
};

// While it lives, an export called as a step reports as if the client had called it.
class ReportingStep {
public:
    explicit ReportingStep(CallFrame& frame) : context_(frame.Context()) { --context_.nestCount; }
    ~ReportingStep() { ++context_.nestCount; }
    ReportingStep(const ReportingStep&) = delete;
    ReportingStep& operator=(const ReportingStep&) = delete;

private:
    ZLVThreadContext& context_;
};

namespace detail {

// Not inlined: the compiler must not move the body's arithmetic in front of the switch of the floating-point
// environment.
template <class Result, class Body>
[[gnu::noinline]] Result RunBody(Body& body, CallFrame& frame)
{
    return body(frame);
}

}  // namespace detail

// Runs the body inside a frame. Its result is the export's: 1 or 0, or a handle; zero when the frame can't open.
template <class Body>
auto InFrame(FrameKind kind, Body body)
{
    using Result = decltype(body(*static_cast<CallFrame*>(nullptr)));
    CallFrame frame(kind);
    return frame.IsOpen() ? detail::RunBody<Result>(body, frame) : Result{};
}

}  // namespace zlv
