#include "warp/sampled_pixels.h"

#include <algorithm>
#include <cstring>

namespace zlv {

namespace {

auto KernelOf(Sampling sampling)
{
    const SamplingKernels& kernels = Kernels<SamplingKernels>();
    switch (sampling) {
    case Sampling::Nearest: return kernels.nearest;
    case Sampling::Bilinear: return kernels.bilinear;
    case Sampling::Bicubic: break;
    }
    return kernels.bicubic;
}

bool HasLost(const PointRun& run) { return std::memchr(run.isLost, 1, run.count) != nullptr; }

// How many of `count` pixels begin before their 32-bit offset wraps. It never does in images below 4 GB.
u32 PixelsBeforeWrap(u32 offset, u32 channels, u32 count)
{
    const u64 room = (u64(1) << 32) - offset;
    return u32(std::min<u64>(count, (room + channels - 1) / channels));
}

}  // namespace

PixelSampler::PixelSampler(const WarpedImages& images, Sampling sampling, const u32* background)
    : images_(images), sample_(KernelOf(sampling)), hasBackground_(background != nullptr)
{
    if (background) {
        for (u32 c = 0; c < 4; ++c) background_[c] = u8(*background >> (8 * c));
    }
}

// Points on their own pixels sample just that, with every method. Warps leave large parts of a picture so.
void PixelSampler::Write(const PointRun& run, u32 x, u32 y) const
{
    const ImageView<u8>& dst = images_.dst;
    const SamplingKernels& kernels = Kernels<SamplingKernels>();
    const bool hasLost = HasLost(run);
    for (u32 done = 0; done < run.count;) {
        const u32 offset = y * dst.stride + (x + done) * dst.channels;
        const u32 count = PixelsBeforeWrap(offset, dst.channels, run.count - done);
        u8* const to = dst.data + offset;
        const f64 *const fromX = run.x + done, *const fromY = run.y + done;
        const u32 home = hasLost ? 0 : kernels.countAtHome(fromX, fromY, count, f64(x) + done, y);
        if (home > 0) CopyPixels(x + done, y, home, to);
        done += home;
        if (home > 0) continue;
        const u32 away = hasLost ? count : kernels.countAway(fromX, fromY, count, f64(x) + done, y);
        WriteSampled(run, done, away, to);
        done += away;
    }
}

void PixelSampler::CopyPixels(u32 x, u32 y, u32 count, u8* to) const
{
    const ImageView<const u8>& src = images_.src;
    for (u32 done = 0; done < count;) {
        const u32 offset = y * src.stride + (x + done) * src.channels;
        const u32 together = PixelsBeforeWrap(offset, src.channels, count - done);
        std::memcpy(to + size_t(done) * src.channels, src.data + offset, size_t(together) * src.channels);
        done += together;
    }
}

void PixelSampler::WriteSampled(const PointRun& run, u32 from, u32 count, u8* to) const
{
    const ImageView<const u8>& src = images_.src;
    sample_({src.data, BytesOf(src), src.width, src.height, src.stride, src.channels, run.x + from, run.y + from,
             run.isLost + from, count, to, hasBackground_ ? background_ : nullptr});
}

}  // namespace zlv
