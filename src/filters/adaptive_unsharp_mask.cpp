// The adaptive unsharp mask: samples move away from their left neighbour where they differ enough from it.
//
// The mask is made of two, four or eight directional kernels, whose responses are merged into the first one's. They are
// merged with an opacity of 0, which changes nothing: what decides is the first kernel alone, the difference from the
// left neighbour, in every set of kernels. Presets are tuned to that; a merge that showed would sharpen twice as much.
// The other kernels need not run, but for one: in the set of two, the second response passes through the destination.
#include "filters/adaptive_unsharp_mask.kernels.h"

#include "base/image_view.h"
#include "runtime/array.h"
#include "runtime/frame.h"

#include "zlv40.h"

#include <algorithm>
#include <cstring>
#include <iterator>

using namespace zlv;

namespace {

constexpr u32 kKernelSetBits = 3;
constexpr u32 kKernelsOfSet[] = {2, 4, 8};
constexpr u32 kKernelsWithScratch = 2;  // their second response passes through the destination
constexpr u32 kAlphaChannel = 3;
constexpr u32 kChannelsWithAlpha = 4;

bool IsFinite(f64 value) { return value - value == 0; }

struct Call {
    ImageView<const u8> src;
    ImageView<u8> dst;
    u32 threshold;
    f64 amount;
    u32 kernels;
    bool keepsAlpha;

    bool HasScratch() const { return kernels == kKernelsWithScratch; }
    bool IsInPlace() const { return src.data == dst.data; }
};

SharpeningSteps MakeSteps(u32 threshold, f64 amount)
{
    const f64 factor = amount < 0 ? -amount : amount;
    SharpeningSteps table;
    for (u32 d = 0; d <= kLargestDifference; ++d) {
        table.steps[d] = d > threshold ? u8(std::min(d * factor, 255.0)) : 0;
    }
    return table;
}

class UnsharpMask {
public:
    explicit UnsharpMask(const Call& call)
        : call_(call),
          steps_(MakeSteps(call.threshold, call.amount)),
          channels_(call.src.channels),
          count_(call.src.SamplesPerRow()),
          keepsAlpha_(call.keepsAlpha && channels_ > kAlphaChannel)
    {
    }

    // The second response takes the destination's place. In place, the samples that decide are kept elsewhere first.
    [[nodiscard]] bool WriteSecondResponse()
    {
        if (call_.IsInPlace() && !KeepOriginals()) return false;
        for (u32 y = 0; y < call_.src.height; ++y) {
            const u8* const row = call_.src.Row(y);
            u8* const to = call_.dst.Row(y);
            const size_t inside = count_ - channels_;
            Kernels<UnsharpMaskKernels>().responses(row, row + channels_, inside, to);
            std::memset(to + inside, int(kLargestDifference), channels_);
        }
        return true;
    }

    void WriteResult()
    {
        for (u32 y = 0; y < call_.src.height; ++y) WriteRow(y);
    }

    // Whether anybody can see the second response, if nobody can cancel: it stays as alpha, or is the source.
    bool ShowsSecondResponse() const { return call_.HasScratch() && (keepsAlpha_ || call_.IsInPlace()); }

private:
    // Samples that are made before the colours among them are copied: whole pixels.
    static constexpr size_t kPiece = 4096;

    [[nodiscard]] bool KeepOriginals()
    {
        if (count_ > SIZE_MAX / call_.src.height || !originals_.Resize(count_ * call_.src.height)) return false;
        for (u32 y = 0; y < call_.src.height; ++y) {
            std::memcpy(originals_.GetData() + y * count_, call_.src.Row(y), count_);
        }
        return true;
    }

    // From the last sample to the first: in place, the left neighbours are still there.
    void WriteRow(u32 y)
    {
        const u8* const samples = call_.src.Row(y);
        const u8* const deciding = originals_.GetData() ? originals_.GetData() + y * count_ : samples;
        u8* const to = call_.dst.Row(y);
        if (!keepsAlpha_) Sharpen(deciding, samples, channels_, count_, to + channels_);
        else if (channels_ == kChannelsWithAlpha) WriteColours(deciding, samples, to);
        else WriteAroundAlpha(deciding, samples, to);
        // The first pixel is its own left neighbour.
        for (u32 c = 0; c < channels_; ++c) {
            if (!keepsAlpha_ || c != kAlphaChannel) to[c] = samples[c];
        }
    }

    void WriteColours(const u8* deciding, const u8* samples, u8* to)
    {
        u8 piece[kPiece];
        for (size_t end = count_; end > channels_;) {
            const size_t start = end - std::min(kPiece, end - channels_);
            Sharpen(deciding, samples, start, end, piece);
            Kernels<UnsharpMaskKernels>().copyColours(piece, (end - start) / channels_, to + start);
            end = start;
        }
    }

    void WriteAroundAlpha(const u8* deciding, const u8* samples, u8* to)
    {
        for (size_t start = count_ - channels_; start > 0; start -= channels_) {
            const size_t alpha = start + kAlphaChannel;
            Sharpen(deciding, samples, alpha + 1, start + channels_, to + alpha + 1);
            Sharpen(deciding, samples, start, alpha, to + start);
        }
    }

    void Sharpen(const u8* deciding, const u8* samples, size_t start, size_t end, u8* to) const
    {
        const u8 *from = deciding + start, *subtracted = from - channels_;
        if (call_.amount < 0) std::swap(from, subtracted);
        Kernels<UnsharpMaskKernels>().sharpen(from, subtracted, samples + start, steps_, end - start, to);
    }

    const Call& call_;
    const SharpeningSteps steps_;
    const u32 channels_;
    const size_t count_;
    const bool keepsAlpha_;
    MVBuffer<u8> originals_;
};

u32 Run(CallFrame& frame, const Call& call)
{
    UnsharpMask mask(call);
    const u32 total = call.kernels;
    if (!frame.Report(0, total)) return 0;
    const bool needsResponse = mask.ShowsSecondResponse() || (call.HasScratch() && frame.MayReport());
    if (needsResponse && !mask.WriteSecondResponse()) return frame.Fail(Error::OutOfMemory);
    for (u32 step = 1; step < total; ++step) {
        if (!frame.Report(step, total)) return 0;
    }
    mask.WriteResult();
    return frame.Report(total, total);
}

}  // namespace

ZLV_EXPORT u32 ZLV40_AdaptiveUnsharpMask(const u8* src, u32 width, u32 height, i32 channels, u32 srcRowStride,
                                         u32 dstRowStride, u8* dst, u32 threshold, f64 amount, i8 flags)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!src || !dst || channels <= 0 || width == 0 || height == 0) return frame.Fail(Error::BadArgument);
        if (srcRowStride == 0 || dstRowStride == 0 || !IsFinite(amount)) return frame.Fail(Error::BadArgument);
        if (src == dst && srcRowStride != dstRowStride) return frame.Fail(Error::BadArgument);
        const u32 kernelSet = u32(flags) & kKernelSetBits;
        if (kernelSet >= std::size(kKernelsOfSet)) return frame.Fail(Error::BadArgument);

        return Run(frame, {{src, width, height, u32(channels), srcRowStride},
                           {dst, width, height, u32(channels), dstRowStride},
                           threshold,
                           amount,
                           kKernelsOfSet[kernelSet],
                           (flags & ZLV40_UNSHARP_KEEP_ALPHA) != 0});
    });
}
