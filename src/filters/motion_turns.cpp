// Motion blur along arcs around the image's centre and along rays towards it.
//
// Pixels of a row walk together, up to kMotionPixels of them. On a ray all of them are in the same row at each step,
// and their columns are in order, so those inside are one stretch. On an arc step i turns all of them by one angle:
// they lie on a straight line, and what is inside of it is one stretch, too.
#include "base/image_view.h"
#include "filters/motion.kernels.h"
#include "filters/motion_arcs.h"
#include "filters/motion_blur.h"
#include "filters/motion_pixels.h"

#include <algorithm>
#include <cstring>

namespace zlv {

namespace {

// Channels that are summed in one go. More of them walk again.
constexpr size_t kChannelsAtOnce = 16;

// The rays. Step i leaves a pixel a share of its distance to the centre.
class Rays {
public:
    Rays(const MotionImages& images, f64 amount, i32) : images_(images), centre_(images), amount_(amount) {}

    void Begin(u32 x, u32 y, size_t)
    {
        dx_ = x - centre_.x;
        dy_ = y - centre_.y;
    }

    // Step i of the pixels of a stretch: where they stand, and which of them are inside. Columns are in order, so the
    // ends of the stretch tell.
    bool Walk(i32 i, Stretch& stretch, size_t* offsets)
    {
        factor_ = 1.0 - (i * amount_) / 100.0;
        const f64 y = dy_ * factor_ + centre_.y;
        if (!IsInside(y, images_.src.height)) stretch = {0, 0};
        while (!stretch.IsEmpty() && !IsColumnInside(stretch.low)) ++stretch.low;
        while (!stretch.IsEmpty() && !IsColumnInside(stretch.high - 1)) --stretch.high;
        if (stretch.IsEmpty()) return true;
        const size_t row = size_t(i32(y)) * images_.src.stride;
        if (HasShortOffsets(images_.src)) {
            Kernels<MotionKernels>().zoom(
                {dx_ + f64(stretch.low), factor_, centre_.x, stretch.Count(), images_.src.channels, row},
                offsets + stretch.low);
            return true;
        }
        for (size_t k = stretch.low; k < stretch.high; ++k) {
            offsets[k] = row + size_t(i32(ColumnOf(k))) * images_.src.channels;
        }
        return true;
    }

private:
    f64 ColumnOf(size_t k) const { return (dx_ + f64(k)) * factor_ + centre_.x; }
    bool IsColumnInside(size_t k) const { return IsInside(ColumnOf(k), images_.src.width); }

    const MotionImages& images_;
    const Centre centre_;
    const f64 amount_;
    f64 dx_ = 0, dy_ = 0, factor_ = 1;
};

// Walks of a row's pixels along a path, and their means.
template <class Path, class Sum>
class CentredBlur {
public:
    CentredBlur(const MotionImages& images, f64 amount, i32 steps)
        : images_(images), steps_(steps), path_(images, amount, steps)
    {
    }

    void BlurRow(u32 y)
    {
        const size_t channels = images_.src.channels;
        for (u32 x = 0; x < images_.src.width; x += kMotionPixels) {
            const size_t count = std::min<size_t>(kMotionPixels, images_.src.width - x);
            for (size_t c = 0; c < channels; c += kChannelsAtOnce) {
                channel_ = c;
                channels_ = std::min(kChannelsAtOnce, channels - c);
                if (Blur(x, y, count)) continue;
                // One pixel is always a stretch.
                for (u32 k = 0; k < count; ++k) (void)Blur(x + k, y, 1);
            }
        }
    }

private:
    // False when these pixels cannot walk together.
    bool Blur(u32 x, u32 y, size_t count)
    {
        path_.Begin(x, y, count);
        to_ = images_.dst.Row(y) + size_t(x) * images_.dst.channels + channel_;
        TakeOwnSamples(images_.src.Row(y) + size_t(x) * images_.src.channels + channel_, count);
        inside_ = {0, count};
        added_ = 1;
        firstPending_ = endPending_ = 0;
        for (i32 i = 1; i < steps_; ++i) {
            if (endPending_ == kMotionSteps) {
                AddPending();
                firstPending_ = endPending_ = 0;
            }
            Stretch next = inside_;
            if (!path_.Walk(i, next, offsets_ + endPending_ * kMotionPixels)) return false;
            if (next.IsEmpty()) break;
            if (next != inside_) LeaveAllBut(next);
            ++endPending_;
        }
        AddPending();
        WriteMeans(inside_);
        return true;
    }

    void LeaveAllBut(const Stretch& next)
    {
        AddPending();
        WriteMeans({inside_.low, next.low});
        WriteMeans({next.high, inside_.high});
        inside_ = next;
    }

    // Step 0.
    void TakeOwnSamples(const u8* from, size_t count)
    {
        std::memset(sums_, 0, count * channels_ * sizeof(Sum));
        const size_t step = images_.src.channels;
        if (channels_ == step) return kernels_.add(sums_, from, count * step, 1);
        for (size_t k = 0; k < count; ++k) kernels_.add(sums_ + k * channels_, from + k * step, channels_, 1);
    }

    // Adds the steps that have been walked.
    void AddPending()
    {
        const ImageView<const u8>& src = images_.src;
        const size_t steps = endPending_ - firstPending_;
        kernels_.addPixels(sums_ + inside_.low * channels_, {src.data + channel_, BytesOf(src) - channel_, channels_},
                           offsets_ + firstPending_ * kMotionPixels + inside_.low, steps, inside_.high - inside_.low);
        added_ = Sum(added_ + steps);
        firstPending_ = endPending_;
    }

    void WriteMeans(const Stretch& pixels)
    {
        const size_t step = images_.dst.channels;
        if (channels_ == step) {
            return kernels_.mean(sums_ + pixels.low * step, to_ + pixels.low * step, (pixels.high - pixels.low) * step,
                                 added_);
        }
        for (size_t k = pixels.low; k < pixels.high; ++k) {
            kernels_.mean(sums_ + k * channels_, to_ + k * step, channels_, added_);
        }
    }

    const MotionImages& images_;
    const i32 steps_;
    Path path_;
    const MotionSums<Sum>& kernels_ = Kernels<MotionKernels>().For<Sum>();
    size_t channel_ = 0, channels_ = 0;  // those that are summed now
    Stretch inside_ = {0, 0};
    Sum added_ = 0;                             // samples of each
    size_t firstPending_ = 0, endPending_ = 0;  // steps whose offsets stand below and are to be added
    size_t offsets_[kMotionSteps * kMotionPixels];
    u8* to_ = nullptr;
    Sum sums_[kMotionPixels * kChannelsAtOnce];
};

template <class Path, class Sum>
u32 BlurWithSums(CallFrame& frame, const MotionImages& images, f64 amount, i32 steps)
{
    CentredBlur<Path, Sum> blur(images, amount, steps);
    return BlurRows(frame, images, [&](u32 y) { blur.BlurRow(y); });
}

template <class Path>
u32 BlurAlong(CallFrame& frame, const MotionImages& images, f64 amount, i32 steps)
{
    if (u64(steps) <= kMostSummed<u16>) return BlurWithSums<Path, u16>(frame, images, amount, steps);
    return BlurWithSums<Path, u32>(frame, images, amount, steps);
}

}  // namespace

u32 BlurAlongArcs(CallFrame& frame, const MotionImages& images, f64 amount, i32 steps)
{
    return BlurAlong<Arcs>(frame, images, amount, steps);
}

u32 BlurAlongRays(CallFrame& frame, const MotionImages& images, f64 amount, i32 steps)
{
    return BlurAlong<Rays>(frame, images, amount, steps);
}

}  // namespace zlv
