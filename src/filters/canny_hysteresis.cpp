#include "filters/canny_hysteresis.h"

#include "runtime/math.h"

#include <algorithm>
#include <cstddef>

namespace zlv {

namespace {

constexpr u32 kMagnitudes = 32768;

struct Thresholds {
    i32 high;  // an edge begins here
    i32 low;   // and goes on above this
};

Thresholds FindThresholds(const MVBuffer<u32>& histogram, f32 lowFraction, f32 highFraction)
{
    i32 maximum = 0;
    u32 count = 0;
    for (i32 magnitude = 1; magnitude < i32(kMagnitudes); ++magnitude) {
        if (histogram[size_t(magnitude)]) maximum = magnitude;
        count += histogram[size_t(magnitude)];
    }
    const f64 highCount = Floor(f64(f32(count) * highFraction) + 0.5);
    i32 high = 1;
    u32 under = histogram[1];
    while (high < maximum - 1 && under < highCount) under += histogram[size_t(++high)];
    const f64 low = Floor(f64(f32(high) * lowFraction) + 0.5);
    return {high, i32(std::min<f64>(low, kMagnitudes))};
}

// Edges grow from seeds to their neighbours. What waits is kept in a stack of its own: no picture can exhaust that of
// the calling thread.
class Tracer {
public:
    Tracer(i16* ridges, size_t pitch, i32 low) : ridges_(ridges), pitch_(std::ptrdiff_t(pitch)), low_(low) {}

    // Every possible edge waits once at most.
    [[nodiscard]] bool Resize(u64 possibleEdges) { return waiting_.Resize(possibleEdges); }

    // The trace begins one pixel to the right of its seed: what lies to the seed's left is reached by other ways or
    // not at all.
    void Trace(size_t seed)
    {
        ridges_[seed] = kEdge;
        Push(seed + 1);
        while (count_ > 0) JoinNeighbours(waiting_[--count_]);
    }

private:
    void Push(size_t position) { waiting_[count_++] = position; }

    void JoinNeighbours(size_t position)
    {
        const std::ptrdiff_t offsets[] = {1, pitch_ + 1, pitch_, pitch_ - 1, -1, -pitch_ - 1, -pitch_, -pitch_ + 1};
        for (const std::ptrdiff_t offset : offsets) {
            const size_t neighbour = position + size_t(offset);
            if (ridges_[neighbour] <= low_) continue;  // nor what is an edge already, or none at all
            ridges_[neighbour] = kEdge;
            Push(neighbour);
        }
    }

    i16* const ridges_;
    const std::ptrdiff_t pitch_;
    const i32 low_;
    MVBuffer<size_t> waiting_;
    size_t count_ = 0;
};

}  // namespace

bool RidgePlane::Resize(u32 width, u32 height)
{
    width_ = width;
    height_ = height;
    pitch_ = size_t(width) + 2 * kThinningGroup;
    if (pitch_ > SIZE_MAX / height || !ridges_.Resize(pitch_ * height)) return false;
    if (!histogram_.Resize(kMagnitudes) || !found_.Resize(width)) return false;
    std::fill_n(ridges_.GetData(), ridges_.GetCount(), kNoEdge);
    std::fill_n(histogram_.GetData(), kMagnitudes, 0u);
    return true;
}

void RidgePlane::CountRidges(u32 y)
{
    const i16* const row = Row(y);
    const size_t count = Kernels<CannyKernels>().findRidges(row, width_, 1, found_.GetData());
    for (size_t i = 0; i < count; ++i) ++histogram_[size_t(row[found_[i]])];
}

bool RidgePlane::TraceEdges(f32 lowFraction, f32 highFraction)
{
    u64 possibleEdges = 0;
    for (u32 magnitude = 1; magnitude < kMagnitudes; ++magnitude) possibleEdges += histogram_[magnitude];
    if (possibleEdges == 0) return true;
    const Thresholds thresholds = FindThresholds(histogram_, lowFraction, highFraction);
    Tracer tracer(ridges_.GetData(), pitch_, thresholds.low);
    if (!tracer.Resize(possibleEdges)) return false;
    const auto findRidges = Kernels<CannyKernels>().findRidges;
    for (u32 y = 0; y < height_; ++y) {
        const i16* const row = Row(y);
        const size_t count = findRidges(row, width_, i16(thresholds.high), found_.GetData());
        for (size_t i = 0; i < count; ++i) {
            const u32 x = found_[i];
            if (row[x] != kEdge) tracer.Trace(y * pitch_ + x);
        }
    }
    return true;
}

}  // namespace zlv
