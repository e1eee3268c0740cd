// A progress callback for as long as the object lives: counts the reports and says no to one of them.
#pragma once

#include "fuzz/input.h"
#include "runtime/base_call.h"

#include "zlv40.h"

namespace zlvtest {

// Whether a report may be so; `heard` counts those before it.
using ReportRule = bool (*)(std::uint32_t current, std::uint32_t total, std::uint32_t heard);

inline bool IsBelowTotal(std::uint32_t current, std::uint32_t total, std::uint32_t) { return current < total; }
inline bool IsUpToTotal(std::uint32_t current, std::uint32_t total, std::uint32_t) { return current <= total; }

// What the two layers call differently.
struct CallbackSlot {
    void (*set)(ZLVProgressCallback callback, std::uint64_t data);
    ZLVProgressCallback (*get)(std::uint64_t* data);
    bool isOfExports;
};
inline constexpr CallbackSlot kExports = {ZLV40_SetCallback, ZLV40_GetCallback, true};
inline constexpr CallbackSlot kBaseLayer = {zlv::MV40_SetCallback, zlv::MV40_GetCallback, false};

// What was installed before comes back with the end.
class KeptCallback {
public:
    explicit KeptCallback(const CallbackSlot& slot) : slot_(slot), callback_(slot.get(&data_)) {}
    ~KeptCallback() { slot_.set(callback_, data_); }
    KeptCallback(const KeptCallback&) = delete;
    KeptCallback& operator=(const KeptCallback&) = delete;

private:
    const CallbackSlot& slot_;
    std::uint64_t data_ = 0;
    const ZLVProgressCallback callback_;
};

class Listener {
public:
    // Says no to report number `cancelAt`, from 1 on; 0 is none. A picture without pixels may have billions of rows:
    // there is an end to what it listens to.
    Listener(Input& input, const CallbackSlot& slot, std::uint64_t cancelAt, ReportRule rule = IsBelowTotal)
        : kept_(slot), input_(input), isOfExports_(slot.isOfExports), cancelAt_(cancelAt), rule_(rule)
    {
        slot.set(Hear, reinterpret_cast<std::uint64_t>(this));
    }

    bool HasCancelled() const { return hasCancelled_; }

private:
    static constexpr std::uint32_t kMostReports = 1 << 20;

    const KeptCallback kept_;
    Input& input_;
    const bool isOfExports_;
    const std::uint64_t cancelAt_;
    const ReportRule rule_;
    std::uint32_t heard_ = 0;
    bool hasCancelled_ = false;

    static std::uint32_t Hear(std::uint32_t current, std::uint32_t total, std::uint64_t data)
    {
        Listener& self = *reinterpret_cast<Listener*>(data);
        Require(self.rule_(current, total, self.heard_));
        ++self.heard_;
        if (self.isOfExports_) self.input_.GetHost().AtReport(total);
        self.hasCancelled_ = self.hasCancelled_ || self.heard_ == self.cancelAt_ || self.heard_ == kMostReports;
        return !self.hasCancelled_;
    }
};

}  // namespace zlvtest
