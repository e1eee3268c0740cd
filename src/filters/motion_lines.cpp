// Motion blur along straight lines.
//
// A step moves every pixel of the image by the same offset, so it adds stretches of rows to each other. The offset is
// added to a coordinate in double and truncated: that is the coordinate and the whole part of the offset, but for the
// roundings, which a Shift knows. A pixel that has left the image never comes back, and those that leave a row go from
// its ends: what is left is one stretch. Long lines along an axis have a way of their own (motion_axes.cpp).
#include "base/image_view.h"
#include "filters/motion.kernels.h"
#include "filters/motion_blur.h"
#include "runtime/math.h"

#include <algorithm>
#include <cstring>

namespace zlv {

namespace {

// How a step moves a coordinate of an image.
struct Shift {
    i64 first, end;  // the positions that come to lie inside; none if end <= first
    i64 whole;       // they move by so much
    i64 carry;       // from here on by 1 more: the sum with an offset just below a whole number is rounded to it

    bool operator==(const Shift&) const = default;

    bool IsEmpty() const { return end <= first; }
    // What comes to lie between -1 and 0 is truncated to 0.
    i64 FirstUntruncated() const { return -whole; }
    i64 Move(i64 position) const
    {
        return position < FirstUntruncated() ? 0 : position + whole + (position >= carry ? 1 : 0);
    }
    bool Holds(i64 position) const { return position >= first && position < end; }
};

// Further from a whole number no sum of the offset and a coordinate, a number below 2^32, is rounded to one.
constexpr f64 kRoundedFraction = 1 - 0x1p-20;

// The first position from `first` on whose sum with the offset is rounded up to a whole number: the larger a sum, the
// coarser it is rounded.
i64 FirstRoundedUp(f64 offset, i64 whole, i64 first, i64 size)
{
    i64 low = first, high = size;
    while (low < high) {
        const i64 middle = low + (high - low) / 2;
        if (f64(middle) + offset >= f64(middle + whole + 1)) high = middle;
        else low = middle + 1;
    }
    return low;
}

Shift ShiftBy(f64 offset, i64 size)
{
    if (!(offset > f64(-size) && offset < f64(size))) return {0, 0, 0, 0};
    const f64 floor = Floor(offset), fraction = offset - floor;
    const i64 whole = i64(floor);
    const i64 start = std::max<i64>(0, -whole);
    const i64 carry = fraction > kRoundedFraction ? FirstRoundedUp(offset, whole, start, size) : size;
    const i64 first = fraction > 0 ? std::max<i64>(0, start - 1) : start;
    const i64 end = size - whole - (carry < size - whole ? 1 : 0);
    return {first, std::min(end, size), whole, carry};
}

// Steps that follow each other and move every pixel alike.
struct Step {
    Shift x, y;
    u64 weight;
};

// The steps of a walk in their order, until no pixel of the image is left inside.
class LineWalk {
public:
    LineWalk(const MotionImages& images, f64 sine, f64 cosine, f64 amount, i32 steps)
        : width_(images.src.width),
          height_(images.src.height),
          sine_(sine),
          cosine_(cosine),
          amount_(amount),
          end_(steps)
    {
    }

    [[nodiscard]] bool Next(Step& step)
    {
        if (next_ == end_) return false;
        step = StepAt(next_);
        if (step.x.IsEmpty() || step.y.IsEmpty()) return false;
        const i64 behind = EndOfSame(step);
        step.weight = u64(behind - next_);
        next_ = behind;
        return true;
    }

private:
    Step StepAt(i64 i) const
    {
        const f64 distance = f64(i) * amount_;
        return {ShiftBy(distance * sine_, width_), ShiftBy(distance * cosine_, height_), 1};
    }

    bool IsSame(i64 i, const Step& step) const
    {
        const Step other = StepAt(i);
        return other.x == step.x && other.y == step.y;
    }

    // The first step behind next_ that moves pixels elsewhere. Positions only ever go on in one direction, so steps
    // that move alike have no others between them: strides are doubled, then halved.
    i64 EndOfSame(const Step& step) const
    {
        i64 same = next_, stride = 1;
        while (same + stride < end_ && IsSame(same + stride, step)) {
            same += stride;
            stride *= 2;
        }
        for (stride /= 2; stride > 0; stride /= 2) {
            if (same + stride < end_ && IsSame(same + stride, step)) same += stride;
        }
        return same + 1;
    }

    i64 width_, height_;
    f64 sine_, cosine_, amount_;
    i64 end_;
    i64 next_ = 0;
};

// A walk whose beginning is kept. Most are kept whole.
class KeptWalk {
public:
    explicit KeptWalk(const LineWalk& walk) : rest_(walk)
    {
        while (count_ < kKept && rest_.Next(kept_[count_])) ++count_;
        ForSteps([this](const Step& step) {
            length_ += step.weight;
            return true;
        });
    }

    // Samples on it, at most.
    u64 Length() const { return length_; }

    // Whether it goes from pixel to pixel along an axis, with as many steps on each. (How many does not matter then:
    // the mean is the same.)
    bool IsAxis(const MotionImages& images, AxisWalk& axis) const
    {
        if (count_ < 2) return false;
        const auto sign = [](i64 whole) { return i32(whole > 0) - i32(whole < 0); };
        axis = {sign(kept_[1].x.whole), sign(kept_[1].y.whole), 0};
        if ((axis.dx == 0) == (axis.dy == 0)) return false;
        bool isAxis = true;
        ForSteps([&](const Step& step) {
            const f64 distance = f64(axis.length++);
            isAxis = step.weight == kept_[0].weight && step.x == ShiftBy(distance * axis.dx, images.src.width) &&
                     step.y == ShiftBy(distance * axis.dy, images.src.height);
            return isAxis;
        });
        return isAxis;
    }

    // Calls visit(step) for each step while it answers true.
    template <class Visit>
    void ForSteps(Visit visit) const
    {
        for (size_t i = 0; i < count_; ++i) {
            if (!visit(kept_[i])) return;
        }
        LineWalk more = rest_;
        for (Step step; more.Next(step);) {
            if (!visit(step)) return;
        }
    }

private:
    static constexpr size_t kKept = 128;

    Step kept_[kKept];
    size_t count_ = 0;
    LineWalk rest_;
    u64 length_ = 0;
};

// The samples begin to end - 1 of a row, which walk together. Those that are still inside lie from low_ to high_ - 1.
template <class Sum>
class WalkingSamples {
public:
    static constexpr size_t kMost = 2048;

    WalkingSamples(const MotionImages& images, u32 y, size_t begin, size_t end)
        : images_(images), y_(y), begin_(begin), low_(begin), high_(end)
    {
        std::memset(sums_, 0, (end - begin) * sizeof(Sum));
    }

    // False when none is left.
    bool Take(const Step& step)
    {
        if (!step.y.Holds(y_)) return false;
        const size_t channels = images_.src.channels;
        Leave(std::max(size_t(step.x.first) * channels, low_), std::min(size_t(step.x.end) * channels, high_));
        if (low_ >= high_) return false;
        const u8* const row = images_.src.Row(u32(step.y.Move(y_)));
        const i64 whole = step.x.whole;
        const size_t untruncated = Bounded(step.x.FirstUntruncated());
        const size_t carry = std::max(untruncated, Bounded(step.x.carry));
        Add(row, low_, untruncated, whole + 1, step.weight);
        Add(row, untruncated, carry, whole, step.weight);
        Add(row, carry, high_, whole + 1, step.weight);
        total_ += step.weight;
        return true;
    }

    void Finish() { Leave(high_, high_); }

private:
    // The first sample of a pixel, as far as it is among those inside.
    size_t Bounded(i64 pixel) const
    {
        return std::clamp(size_t(std::max<i64>(pixel, 0)) * images_.src.channels, low_, high_);
    }

    void Add(const u8* row, size_t begin, size_t end, i64 pixels, u64 weight)
    {
        if (begin >= end) return;
        const u8* const from = row + (i64(begin) + pixels * i64(images_.src.channels));
        kernels_.add(sums_ + (begin - begin_), from, end - begin, Sum(weight));
    }

    // Only low to high - 1 stay; the means of the others are written.
    void Leave(size_t low, size_t high)
    {
        low = std::min(low, high_);
        WriteMeans(low_, low);
        low_ = low;
        high = std::max(high, low);
        WriteMeans(high, high_);
        high_ = high;
    }

    void WriteMeans(size_t begin, size_t end)
    {
        if (begin >= end) return;
        kernels_.mean(sums_ + (begin - begin_), images_.dst.Row(y_) + begin, end - begin, Sum(total_));
    }

    const MotionImages& images_;
    const MotionSums<Sum>& kernels_ = Kernels<MotionKernels>().For<Sum>();
    const u32 y_;
    const size_t begin_;
    size_t low_, high_;
    u64 total_ = 0;
    Sum sums_[kMost];
};

// From so many steps on, sliding windows beat sums of stretches (bench: MotionBlur/rgb8/1920x1080/linear90).
constexpr u64 kLongRow = 24;
constexpr u64 kLongColumn = 4;

template <class Sum>
u32 BlurWithSums(CallFrame& frame, const MotionImages& images, const KeptWalk& walk)
{
    constexpr size_t kMost = WalkingSamples<Sum>::kMost;
    const size_t samplesPerRow = images.src.SamplesPerRow();
    return BlurRows(frame, images, [&](u32 y) {
        for (size_t begin = 0; begin < samplesPerRow; begin += kMost) {
            WalkingSamples<Sum> samples(images, y, begin, std::min(begin + kMost, samplesPerRow));
            walk.ForSteps([&](const Step& step) { return samples.Take(step); });
            samples.Finish();
        }
    });
}

}  // namespace

u32 BlurAlongLines(CallFrame& frame, const MotionImages& images, f64 sine, f64 cosine, f64 amount, i32 steps)
{
    const KeptWalk walk(LineWalk(images, sine, cosine, amount, steps));
    AxisWalk axis;
    if (walk.IsAxis(images, axis) && axis.length >= (axis.dx != 0 ? kLongRow : kLongColumn)) {
        const AxisBlur blur = BlurAlongAxis(frame, images, axis);
        if (blur.isDone) return blur.result;
    }
    if (walk.Length() <= kMostSummed<u16>) return BlurWithSums<u16>(frame, images, walk);
    if (walk.Length() <= kMostSummed<u32>) return BlurWithSums<u32>(frame, images, walk);
    return BlurWithSums<u64>(frame, images, walk);
}

}  // namespace zlv
