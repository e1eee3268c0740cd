// The fill of padded masks, pixel by pixel through a queue.
#include "platform/platform.h"
#include "tone/hsv_flood.h"

#include <algorithm>
#include <cstring>

namespace zlv {

namespace {

// A ring that grows.
class PixelQueue {
public:
    PixelQueue() = default;
    ~PixelQueue() { platform::Free(ring_); }
    PixelQueue(const PixelQueue&) = delete;
    PixelQueue& operator=(const PixelQueue&) = delete;

    [[nodiscard]] bool Push(PixelPlace place)
    {
        if (count_ == capacity_ && !Grow()) return false;
        ring_[(first_ + count_++) & (capacity_ - 1)] = place;
        return true;
    }

    bool IsEmpty() const { return count_ == 0; }

    PixelPlace Pop()
    {
        const PixelPlace place = ring_[first_];
        first_ = (first_ + 1) & (capacity_ - 1);
        --count_;
        return place;
    }

private:
    // Called when the ring is full: its contents begin at first_ and go on at its start.
    bool Grow()
    {
        const size_t larger = capacity_ ? capacity_ * 2 : 256;
        PixelPlace* const ring = static_cast<PixelPlace*>(platform::Allocate(larger * sizeof(PixelPlace)));
        if (!ring) return false;
        std::copy(ring_ + first_, ring_ + capacity_, ring);
        std::copy(ring_, ring_ + first_, ring + (capacity_ - first_));
        platform::Free(ring_);
        ring_ = ring;
        capacity_ = larger;
        first_ = 0;
        return true;
    }

    PixelPlace* ring_ = nullptr;
    size_t capacity_ = 0;  // a power of two
    size_t first_ = 0;
    size_t count_ = 0;
};

// Looks at the neighbours of a pixel that has just been marked: below, above, right, left.
[[nodiscard]] bool PushNeighbours(PixelQueue& queue, const HsvImage& image, const u8* marked, PixelPlace at)
{
    const auto [x, y] = at;
    if (y + 1 < image.height && marked[image.width] == 0 && !queue.Push({x, y + 1})) return false;
    if (y > 0 && *(marked - image.width) == 0 && !queue.Push({x, y - 1})) return false;
    if (x + 1 < image.width && marked[1] == 0 && !queue.Push({x + 1, y})) return false;
    return !(x > 0 && *(marked - 1) == 0) || queue.Push({x - 1, y});
}

}  // namespace

Error FillPaddedMask(const HsvImage& image, const MatchMask& mask, const HsvMatch& match, PixelPlace seed)
{
    std::memset(mask.data, 0, size_t(image.height) * mask.stride);
    const auto& kernels = Kernels<HsvMatchKernels>();
    PixelQueue queue;
    if (!queue.Push(seed)) return Error::OutOfMemory;
    while (!queue.IsEmpty()) {
        const PixelPlace at = queue.Pop();
        u8* const byte = mask.data + size_t(at.y) * mask.stride + at.x;
        if (*byte != 0 || !kernels.findMatches(image.Pixel(at.x, at.y), 1, match)) continue;
        *byte = mask.mark;
        if (!PushNeighbours(queue, image, byte, at)) return Error::OutOfMemory;
    }
    return Error::None;
}

}  // namespace zlv
