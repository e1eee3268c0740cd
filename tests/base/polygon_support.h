// What the tests of polygons share: polygons of many kinds, and images with padding between guard pages.
#pragma once

#include "plain/plain_polygon.h"
#include "support/base_layer.h"
#include "support/guarded_buffer.h"
#include "support/targets.h"
#include "support/test_hooks.h"

#include <initializer_list>
#include <limits>
#include <utility>

namespace zlv {

using Polygon = std::vector<PlainVertex>;

// Vertices as the library takes them.
class Vertices {
public:
    explicit Vertices(const Polygon& polygon)
    {
        for (const PlainVertex& vertex : polygon) {
            numbers_.push_back(vertex.x);
            numbers_.push_back(vertex.y);
        }
    }
    const f64* Data() const { return numbers_.data(); }
    u32 Count() const { return u32(numbers_.size() / 2); }

private:
    std::vector<f64> numbers_;
};

inline constexpr f64 kNaN = std::numeric_limits<f64>::quiet_NaN();
inline constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();
inline constexpr f64 kLowest = -2147483648.0, kHighest = 2147483647.0;

// Coordinates that no polygon may have.
inline constexpr f64 kBadCoordinates[] = {kNaN,         kInfinity,     -kInfinity, 2147483648.0, -2147483649.0,
                                          2147483647.5, -2147483648.5, 1e300,      -1e300};

// Polygons around an image of this size.
constexpr f64 kSceneWidth = 37, kSceneHeight = 23;

enum class PolygonKind {
    Anywhere,
    WholeNumbers,
    Halves,      // vertices on the rows of pixel centres and on pixel centres
    Around,      // sticks out on all sides
    Slivers,     // thin ones
    Tiny,        // some smaller than a pixel
    SameVertex,  // repeated vertices
    LongAbove,   // some thousand rows above the image
};
constexpr u32 kPolygonKinds = 8;

inline Polygon RandomPolygon(PolygonKind kind, u32 count, u64 seed)
{
    zlvtest::Random random(seed * kPolygonKinds + u64(kind));
    const auto real = [&](f64 low, f64 high) { return low + (high - low) * random.Next() / 4294967296.0; };
    Polygon polygon;
    for (u32 i = 0; i < count; ++i) {
        PlainVertex v = {real(0, kSceneWidth), real(0, kSceneHeight)};
        switch (kind) {
        case PolygonKind::Anywhere: break;
        case PolygonKind::WholeNumbers: v = {std::floor(v.x), std::floor(v.y)}; break;
        case PolygonKind::Halves: v = {std::floor(v.x) + 0.5 * random.Below(2), std::floor(v.y) + 0.5}; break;
        case PolygonKind::Around: v = {v.x * 3 - kSceneWidth, v.y * 3 - kSceneHeight}; break;
        case PolygonKind::Slivers: v.x = v.y * 1.3 + real(-0.4, 0.4); break;
        case PolygonKind::Tiny: v = {20 + real(0, 1.5), 10 + real(0, 1.5)}; break;
        case PolygonKind::SameVertex:
            if (i > 0 && random.Below(2)) v = polygon[random.Below(i)];
            break;
        case PolygonKind::LongAbove: v = {v.x * 3 - kSceneWidth, i % 2 ? v.y : -real(0, 3000)}; break;
        }
        polygon.push_back(v);
    }
    return polygon;
}

// Runs test(polygon) with many polygons of every kind.
template <class Test>
void ForPolygons(u32 eachKind, Test test)
{
    for (u32 kind = 0; kind < kPolygonKinds; ++kind) {
        for (u32 seed = 0; seed < eachKind; ++seed) {
            SCOPE("kind", kind, "seed", seed);
            test(RandomPolygon(PolygonKind(kind), 3 + seed % 9, seed));
            if (::testing::Test::HasFailure()) return;
        }
    }
}

// An image of random bytes with padded rows, whose last byte touches a guard page.
class Canvas {
public:
    Canvas(u32 width, u32 height, u32 channels, u32 padding, u64 seed = 1)
        : width_(width),
          height_(height),
          channels_(channels),
          stride_(width * channels + padding),
          buffer_(height == 0 ? 0 : size_t(stride_) * (height - 1) + size_t(width) * channels, zlvtest::Flush::ToEnd),
          before_(zlvtest::RandomBytes(buffer_.Size(), seed))
    {
        std::copy(before_.begin(), before_.end(), buffer_.Data());
    }

    u8* Data() { return buffer_.Data(); }
    u32 Width() const { return width_; }
    u32 Height() const { return height_; }
    u32 Channels() const { return channels_; }
    u32 Stride() const { return stride_; }
    const zlvtest::Bytes& Before() const { return before_; }

    std::string DifferenceTo(const zlvtest::Bytes& wanted)
    {
        return zlvtest::Difference(wanted.data(), Data(), wanted.size());
    }

private:
    u32 width_, height_, channels_, stride_;
    zlvtest::GuardedBuffer buffer_;
    zlvtest::Bytes before_;
};

}  // namespace zlv
