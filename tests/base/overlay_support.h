// What the tests of overlays and merges share: layers of samples between guard pages, and a recorded callback.
#pragma once

#include "base/overlay.h"
#include "plain/plain_overlay.h"
#include "support/base_layer.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/targets.h"

#include <algorithm>
#include <vector>

namespace zlv {

// An image of random samples whose last byte touches a guard page.
template <class T>
class GuardedLayer {
public:
    GuardedLayer(u32 width, u32 height, u32 channels, u32 padding, u64 seed)
        : width_(width),
          height_(height),
          channels_(channels),
          stride_(width * channels + padding),
          buffer_(height ? (size_t(stride_) * (height - 1) + size_t(width) * channels) * sizeof(T) : 0,
                  zlvtest::Flush::ToEnd)
    {
        zlvtest::Random random(seed);
        for (size_t i = 0; i < Size(); ++i) Data()[i] = T(random.Next() >> 8);
    }

    T* Data() { return reinterpret_cast<T*>(buffer_.Data()); }
    size_t Size() const { return buffer_.Size() / sizeof(T); }
    u32 Width() const { return width_; }
    u32 Height() const { return height_; }
    u32 Channels() const { return channels_; }
    u32 Stride() const { return stride_; }

    std::vector<T> Copy() { return {Data(), Data() + Size()}; }
    PlainLayer<const T> Plain() { return {Data(), width_, height_, channels_, stride_}; }
    // The same shape over another memory.
    PlainLayer<T> PlainOver(std::vector<T>& samples) const
    {
        return {samples.data(), width_, height_, channels_, stride_};
    }

private:
    u32 width_, height_, channels_, stride_;
    zlvtest::GuardedBuffer buffer_;
};

// A call on an image of bytes: it answers 1, or 0 with its code.
struct EdgeCall {
    const char* shows;
    u32 (*run)(u8* image);
    u32 result;
    Error error;
};

// Runs the call on an image of `size` bytes: it writes nothing and reports nothing.
inline void ExpectUntouched(const EdgeCall& call, size_t size)
{
    SCOPE(call.shows);
    zlvtest::Bytes image = zlvtest::RandomBytes(size, 3);
    const zlvtest::Bytes before = image;
    const zlvtest::Recording recording;
    EXPECT_EQ(call.run(image.data()), call.result);
    EXPECT_EQ(MV40_GetLastError(), u32(call.error));
    EXPECT_EQ(image, before);
    EXPECT_TRUE(recording.recorder.reports.empty());
}

// Sizes and positions of an overlay on a base.
struct Placement {
    const char* shows;
    u32 baseWidth, baseHeight, overlayWidth, overlayHeight;
    i32 x, y;
};

inline constexpr Placement kPlacements[] = {
    {"the same size", 23, 5, 23, 5, 0, 0},
    {"inside", 40, 9, 7, 4, 11, 3},
    {"cut at the top left", 30, 8, 19, 6, -5, -2},
    {"cut at the bottom right", 30, 8, 19, 6, 20, 5},
    {"larger on all sides", 13, 5, 40, 20, -9, -7},
    {"one pixel on one pixel", 1, 1, 1, 1, 0, 0},
    {"touching in one corner pixel", 17, 6, 5, 5, 16, 5},
    {"a long row", 311, 2, 307, 2, 2, 0},
    {"left of it", 10, 10, 4, 4, -4, 0},
    {"right of it", 10, 10, 4, 4, 10, 0},
    {"above it", 10, 10, 4, 4, 0, -4},
    {"below it", 10, 10, 4, 4, 0, 10},
    {"far away", 10, 10, 4, 4, 2147483647, -2147483647 - 1},
    {"an overlay without columns", 10, 10, 0, 4, 3, 3},
    {"an overlay without rows", 10, 10, 4, 0, 3, 3},
};

template <class T>
inline constexpr u32 kWordFlag = sizeof(T) == 2 ? kOverlaySixteenBit : 0;

template <class T>
u32 CallOverlay(GuardedLayer<T>& base, GuardedLayer<T>& overlay, i32 x, i32 y, const PlainBlend& blend, u32 flags = 0)
{
    return MV40_OverlayImage(base.Data(), base.Width(), base.Height(), base.Channels(), base.Stride(), overlay.Data(),
                             overlay.Width(), overlay.Height(), overlay.Stride(), x, y, blend.opacity, blend.parameter,
                             blend.mode, flags | kWordFlag<T>);
}

}  // namespace zlv
