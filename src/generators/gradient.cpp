#include "generators/gradient.h"

#include "generators/gradient.kernels.h"
#include "generators/pixel_words.h"
#include "runtime/math.h"

#include <algorithm>
#include <limits>

namespace zlv {

namespace {

constexpr u32 kBytesOfColor = 4;
constexpr u32 kOneSided = 1;
constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();
constexpr f64 kNaN = std::numeric_limits<f64>::quiet_NaN();

f64 ByteOf(u32 color, u32 channel) { return (color >> (8 * channel)) & 255; }

GradientBlend BlendBetween(u32 low, u32 high)
{
    GradientBlend blend;
    for (u32 c = 0; c < kBytesOfColor; ++c) {
        blend.first[c] = ByteOf(low, c);
        blend.change[c] = ByteOf(high, c) - ByteOf(low, c);
    }
    return blend;
}

// With any fraction: what leaves the range is limited to it, and NaN is 0.
u32 LimitedBlend(const GradientBlend& blend, f64 fraction)
{
    u32 color = 0;
    for (u32 c = 0; c < kBytesOfColor; ++c) {
        const f64 byte = blend.first[c] + blend.change[c] * fraction;
        if (byte > 0) color |= (byte < 255 ? u32(byte) : 255) << (8 * c);
    }
    return color;
}

}  // namespace

bool CZLVGradient::CGradientBase::SetStops(CallFrame& frame, f64 length, const StopArray& stops, f64 gamma)
{
    valid_ = false;
    if (stops.GetCount() < 2 || length == 0) return frame.Fail(Error::BadArgument);
    const u32 count = u32(stops.GetCount());
    MVBuffer<u32> order;
    if (!order.Resize(count) || !stops_.Resize(count)) return frame.Fail(Error::OutOfMemory);

    for (u32 i = 0; i < count; ++i) order[i] = i;
    std::sort(order.GetData(), order.GetData() + count, [&](u32 a, u32 b) {
        return stops[a].position < stops[b].position || (stops[a].position == stops[b].position && a < b);
    });
    for (u32 i = 0; i < count; ++i) stops_[i] = stops[order[i]];
    gamma_ = gamma;
    length_ = length < 0 ? -length : length;
    valid_ = true;
    return true;
}

CZLVGradient::CGradientBase::Segment CZLVGradient::CGradientBase::SegmentOf(f64 percent) const
{
    const ColorStop* const begin = stops_.GetData();
    const ColorStop* const last = begin + stops_.GetCount() - 1;
    if (percent < begin->position) return {-kInfinity, begin->position, *begin, *begin};
    if (percent >= last->position) return {last->position, kInfinity, *last, *last};
    if (percent != percent) {
        const ColorStop none = {last[-1].position == last->position ? last->color : 0, kNaN};
        return {kNaN, kNaN, none, none};
    }
    const ColorStop* const high =
        std::upper_bound(begin, last, percent, [](f64 p, const ColorStop& stop) { return p < stop.position; });
    return {high[-1].position, high->position, high[-1], *high};
}

void CZLVGradient::CGradientBase::ColorsOfSegment(const Segment& segment, const f64* percents, size_t count,
                                                  u32 channels, u32* colors) const
{
    const f64 span = segment.high.position - segment.low.position;
    if (!(span > 0)) {
        std::fill_n(colors, count, segment.high.color);
        return;
    }
    const GradientKernels& kernels = Kernels<GradientKernels>();
    const GradientBlend blend = BlendBetween(segment.low.color, segment.high.color);
    f64 fractions[kGradientBlock];
    kernels.fractions(percents, segment.low.position, span, fractions, count);
    if (gamma_ != 1.0) PowArray(fractions, gamma_, fractions, count);
    // Powers above 0 leave fractions between 0 and 1, and blends between the two colours.
    if (gamma_ > 0) kernels.blend(fractions, blend, channels, colors, count);
    else std::transform(fractions, fractions + count, colors, [&](f64 t) { return LimitedBlend(blend, t); });
}

void CZLVGradient::CGradientBase::ColorsOf(const f64* percents, size_t count, u32 channels, u32* colors) const
{
    constexpr size_t kStep = 32;  // percentages that are looked at together
    for (size_t i = 0; i < count;) {
        const Segment segment = SegmentOf(percents[i]);
        const auto isInside = [&](f64 p) { return (p >= segment.from) & (p < segment.to); };
        size_t end = i + 1;
        while (end + kStep <= count) {
            u32 inside = 0;
            for (size_t k = 0; k < kStep; ++k) inside += isInside(percents[end + k]);
            if (inside < kStep) break;
            end += kStep;
        }
        while (end < count && isInside(percents[end])) ++end;
        ColorsOfSegment(segment, percents + i, end - i, channels, colors + i);
        i = end;
    }
}

u32 CZLVGradient::CGradientBase::InterpolateColor(f64 percent) const
{
    u32 color = 0;
    ColorsOf(&percent, 1, kBytesOfColor, &color);
    return color;
}

u32 CZLVGradient::CGradientBase::ColorAt(u32 x, u32 y) const
{
    if (!valid_) return 0;
    f64 percent = 0;
    PercentsOfRow(x, y, &percent, 1);
    return InterpolateColor(percent);
}

void CZLVGradient::CGradientBase::PercentsOfRow(u32, u32, f64* percents, size_t count) const
{
    std::fill_n(percents, count, kFirstStop);
}

u32 CZLVGradient::CGradientBase::Fill(CallFrame& frame, u8* image, u32 width, u32 height, u32 bytesPerPixel,
                                      u32 rowStride) const
{
    if (width == 0 && !frame.MayReport()) return 1;  // however many rows there are
    for (u32 y = 0; y < height; ++y) {
        u8* const row = image + size_t(y) * rowStride;
        for (u32 x = 0; x < width;) {
            const u32 count = std::min(width - x, u32(kGradientBlock));
            f64 percents[kGradientBlock];
            u32 colors[kGradientBlock] = {};
            PercentsOfRow(x, y, percents, count);
            if (valid_) ColorsOf(percents, count, bytesPerPixel, colors);
            StorePixels(colors, count, bytesPerPixel, row + size_t(x) * bytesPerPixel);
            x += count;
        }
        if (!frame.Report(y, height)) return 0;
    }
    return 1;
}

bool CZLVGradient::CLinearGradient2::Set(CallFrame& frame, Point start, Point end, u32 mode, const StopArray& stops,
                                         f64 gamma)
{
    if (start == end) return frame.Fail(Error::BadArgument);
    mode_ = mode;
    start_ = start;
    end_ = end;
    const f64 dx = end.x - start.x, dy = end.y - start.y;
    if (dx == 0) {
        lineEnd_ = {start.x + 100.0, start.y};
    } else if (dy == 0) {
        lineEnd_ = {start.x, start.y + 100.0};
    } else {
        const f64 m = -1.0 / (dy / dx);
        lineEnd_.x = start.x == 0 ? 100.0 : 0.0;
        lineEnd_.y = m * lineEnd_.x + (start.y - start.x * m);
    }
    const f64 lineX = lineEnd_.x - start.x, lineY = lineEnd_.y - start.y;
    lineLength_ = Sqrt(lineX * lineX + lineY * lineY);
    return SetStops(frame, Sqrt(dx * dx + dy * dy), stops, gamma);
}

void CZLVGradient::CLinearGradient2::PercentsOfRow(u32 x, u32 y, f64* percents, size_t count) const
{
    const f64 lineX = lineEnd_.x - start_.x, lineY = lineEnd_.y - start_.y;
    LinearRow row;
    row.slopeX = lineY;
    row.startX = start_.x;
    row.shift = (y - start_.y) * lineX;
    row.lineLength = lineLength_;
    row.length = Length();
    row.isOneSided = mode_ == kOneSided;
    row.isNegativeSide = lineX * (end_.y - start_.y) - lineY * (end_.x - start_.x) > 0;
    Kernels<GradientKernels>().linearPercents(row, x, percents, count);

    // The two points of the line have the first colour, even where another stop lies at 0 percent too.
    for (const Point& point : {start_, lineEnd_}) {
        if (point.y == y && point.x >= x && point.x - x < f64(count) && point.x == Floor(point.x)) {
            percents[size_t(point.x - x)] = kFirstStop;
        }
    }
}

bool CZLVGradient::CRadialGradient::Set(CallFrame& frame, f64 radius, i32 centerX, i32 centerY, u32 mode,
                                        const StopArray& stops, f64 gamma)
{
    if (radius <= 0) return frame.Fail(Error::BadArgument);
    centerX_ = centerX;
    centerY_ = centerY;
    mode_ = mode;
    return SetStops(frame, radius, stops, gamma);
}

void CZLVGradient::CRadialGradient::PercentsOfRow(u32 x, u32 y, f64* percents, size_t count) const
{
    Kernels<GradientKernels>().radialPercents(x - u32(centerX_), y - u32(centerY_), Length(), percents, count);
}

}  // namespace zlv
