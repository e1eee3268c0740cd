// What the tests of the adaptive filters share: images of awkward shapes, and comparisons with the plain twins.
#pragma once

#include "plain/plain_adaptive.h"
#include "support/bytes.h"
#include "support/last_error.h"
#include "support/progress_recorder.h"
#include "support/targets.h"

#include "zlv40.h"

namespace zlvtest {

inline constexpr std::uint8_t kFill = 0xA7;

struct AdaptiveShape {
    std::uint32_t width, height, channels;
    std::uint32_t srcPadding = 0, dstPadding = 0;

    std::uint32_t SrcStride() const { return width * channels + srcPadding; }
    std::uint32_t DstStride() const { return width * channels + dstPadding; }
    Bytes Target() const { return Bytes(std::size_t(DstStride()) * height, kFill); }

    // `levels` neighbouring levels from `lowest` on.
    Bytes Source(std::uint32_t lowest = 0, std::uint32_t levels = 256) const
    {
        Random random(width * 131 + height * 17 + channels + levels);
        Bytes src(std::size_t(SrcStride()) * height);
        for (std::uint8_t& sample : src) sample = std::uint8_t(lowest + random.Below(levels));
        return src;
    }
    PlainAdaptiveImages Plain(const Bytes& src, Bytes& dst) const
    {
        return {src.data(), int(width), int(height), int(channels), SrcStride(), dst.data(), DstStride()};
    }
};

inline bool GoOn(std::uint32_t, std::uint32_t) { return true; }

// While it lives, the client hears of progress, and may cancel.
class ClientProgress {
public:
    explicit ClientProgress(std::size_t cancelAt = 0)
    {
        recorder.cancelAt = cancelAt;
        ZLV40_SetCallback(recorder.Function, recorder.Data());
    }
    ~ClientProgress() { ZLV40_SetCallback(nullptr, 0); }
    ClientProgress(const ClientProgress&) = delete;
    ClientProgress& operator=(const ClientProgress&) = delete;

    ProgressRecorder recorder;
};

// A twin's reports, until the one that cancels.
class PlainProgress {
public:
    explicit PlainProgress(std::size_t cancelAt) : cancelAt_(cancelAt) {}
    bool operator()(std::uint32_t current, std::uint32_t total)
    {
        reports.push_back({current, total});
        return reports.size() != cancelAt_;
    }
    std::vector<Report> reports;

private:
    std::size_t cancelAt_;
};

}  // namespace zlvtest
