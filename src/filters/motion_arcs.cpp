// The arcs of the motion blur.
//
// An arc's coordinates are defined by the angle of the pixel, the sum of it with the step's angle, and that sum's sine
// and cosine. A rotation by the step's angle, two products and two sums, gives the same but for roundings. It decides
// wherever a coordinate is further from a whole number than these can be; elsewhere the definition is computed. (That
// is so for the step that does not turn at all: its coordinates are whole but for roundings, and truncated.) The same
// holds once more between the rotation and one in fixed point, which does most of the work: there the coordinates of a
// row grow by equal parts from pixel to pixel.
#include "filters/motion_arcs.h"

#include "runtime/math.h"

#include <algorithm>

namespace zlv {

namespace {

constexpr f64 kPi = 3.14159265358979323846;

// Stands for the offset of a position outside the image.
constexpr size_t kNowhere = ~size_t(0);
// Sizes up to which any coordinate stays within an i32.
constexpr u32 kLargestPlaced = 1 << 28;
// Beyond it most coordinates would be in doubt.
constexpr f64 kWidestBound = 0.125;
// With fewer, too.
constexpr u32 kFewestFractionBits = 10;
// The rounded sine or cosine adds up to half a unit for each pixel, and the start has half a unit. What is left is for
// the bound of the rotation.
constexpr i32 kFixedPointMargin = i32(kMotionPixels) / 2 + 2;

bool IsTurnedInside(const TurnedPixels& pixels, i32 i)
{
    const i32 x = (pixels.x + i * pixels.cosine) >> pixels.fractionBits;
    const i32 y = (pixels.y + i * pixels.sine) >> pixels.fractionBits;
    return x >= -1 && x < pixels.width && y >= -1 && y < pixels.height;
}

bool IsNextToWhole(f64 position, f64 bound)
{
    const f64 above = position - Floor(position);
    return above < bound || above > 1 - bound;
}

}  // namespace

Arcs::Arcs(const MotionImages& images, f64 amount, i32 steps)
    : images_(images), centre_(images), amount_(amount), unturned_(steps / 2), fractionBits_(FractionBits(Reach()))
{
    for (i32 i = 0; i < std::min(steps, kKeptTurns); ++i) kept_[i] = TurnAt(i);
}

void Arcs::Begin(u32 x, u32 y, size_t count)
{
    dx_ = x - centre_.x;
    dy_ = y - centre_.y;
    count_ = count;
    hasPolar_ = false;
    last_ = nullptr;
}

bool Arcs::Walk(i32 i, Stretch& stretch, size_t* offsets)
{
    const Turn turn = i < kKeptTurns ? kept_[i] : TurnAt(i);
    if (last_ && turn.angle == turnedBy_) {  // all of the stretch is still inside
        std::copy(last_ + stretch.low, last_ + stretch.high, offsets + stretch.low);
        last_ = offsets;
        return true;
    }
    last_ = offsets;
    turnedBy_ = turn.angle;
    if (TurnInFixedPoint(turn, stretch, offsets)) return true;
    if (!TurnByRotation(turn, stretch, offsets)) TurnByDefinition(turn.angle, stretch, offsets);
    while (!stretch.IsEmpty() && offsets[stretch.low] == kNowhere) ++stretch.low;
    while (!stretch.IsEmpty() && offsets[stretch.high - 1] == kNowhere) --stretch.high;
    const size_t *const first = offsets + stretch.low, *const end = offsets + stretch.high;
    return std::find(first, end, kNowhere) == end;
}

Arcs::Turn Arcs::TurnAt(i32 i) const
{
    const f64 angle = ((i - unturned_) * amount_) / kPi / 10.0;
    const f64 cosine = Cos(angle), sine = Sin(angle), bound = Bound(angle);
    const bool isFixedPoint = angle != 0 && HasShortOffsets(images_.src) && fractionBits_ >= kFewestFractionBits &&
                              bound * FixedPointScale() < 1;
    if (!isFixedPoint) return {angle, cosine, sine, bound, 0, 0, false};
    return {angle, cosine, sine, bound, ToFixedPoint(cosine), ToFixedPoint(sine), true};
}

// How far a coordinate of the rotation is from the definition's, at most. Their angles differ by the roundings of an
// arc tangent (up to pi) and of a sum, less than 2^-51 (|angle| + 8); that moves a pixel by as much times its distance
// to the centre. All other roundings, of sines, cosines, products and sums, are less than 2^-50 of that distance and of
// the size of the image together. Eight times that is cheap.
f64 Arcs::Bound(f64 angle) const { return Reach() * ((angle < 0 ? -angle : angle) + 16) * 0x1p-48; }

// As many as leave room for the coordinates of any turned pixel, twice over.
u32 Arcs::FractionBits(f64 reach)
{
    u32 bits = 0;
    while (bits < 20 && (2 * reach + 2 * kMotionPixels) * f64(u32(2) << bits) < 0x1p30) ++bits;
    return bits;
}

i32 Arcs::ToFixedPoint(f64 number) const { return i32(Floor(number * FixedPointScale() + 0.5)); }

// False when any of them is in doubt. Otherwise those inside are a stretch.
bool Arcs::TurnInFixedPoint(const Turn& turn, Stretch& stretch, size_t* offsets) const
{
    if (!turn.isFixedPoint) return false;
    const size_t low = stretch.low;
    const f64 dx = dx_ + f64(low);
    const TurnedPixels pixels = {ToFixedPoint(dx * turn.cosine + (centre_.x - dy_ * turn.sine)),
                                 ToFixedPoint(dx * turn.sine + (centre_.y + dy_ * turn.cosine)),
                                 turn.fixedCosine,
                                 turn.fixedSine,
                                 fractionBits_,
                                 kFixedPointMargin,
                                 i32(images_.src.width),
                                 i32(images_.src.height),
                                 stretch.Count(),
                                 images_.src.channels,
                                 images_.src.stride};
    const u32 found = Kernels<MotionKernels>().turn(pixels, offsets + low);
    if (found & kSomeInDoubt) return false;
    if (found & kSomeOutside) {
        while (!stretch.IsEmpty() && !IsTurnedInside(pixels, i32(stretch.low - low))) ++stretch.low;
        while (!stretch.IsEmpty() && !IsTurnedInside(pixels, i32(stretch.high - 1 - low))) --stretch.high;
    }
    return true;
}

// False when any of them is in doubt.
bool Arcs::TurnByRotation(const Turn& turn, const Stretch& stretch, size_t* offsets) const
{
    if (turn.angle == 0 || !(turn.bound < kWidestBound)) return false;
    const f64 x0 = centre_.x - dy_ * turn.sine, y0 = centre_.y + dy_ * turn.cosine;
    for (size_t k = stretch.low; k < stretch.high; ++k) {
        const f64 dx = dx_ + f64(k), x = dx * turn.cosine + x0, y = dx * turn.sine + y0;
        if (IsNextToWhole(x, turn.bound) || IsNextToWhole(y, turn.bound)) return false;
        offsets[k] = OffsetOf(x, y);
    }
    return true;
}

void Arcs::TurnByDefinition(f64 angle, const Stretch& stretch, size_t* offsets)
{
    if (!hasPolar_) FindPolar();
    f64 cosines[kMotionPixels], sines[kMotionPixels];
    const size_t low = stretch.low, count = stretch.Count();
    for (size_t k = 0; k < count; ++k) cosines[k] = angles_[low + k] + angle;
    SinArray(cosines, sines, count);
    CosArray(cosines, cosines, count);
    if (CanPlace(angle)) {
        const PolarPixels pixels = {cosines,
                                    sines,
                                    radii_ + low,
                                    centre_.x,
                                    centre_.y,
                                    i32(images_.src.width),
                                    i32(images_.src.height),
                                    count,
                                    images_.src.channels,
                                    images_.src.stride};
        if (Kernels<MotionKernels>().place(pixels, offsets + low) == kNothingSpecial) return;
    }
    for (size_t k = 0; k < count; ++k) {
        const f64 radius = radii_[low + k];
        offsets[low + k] = OffsetOf(cosines[k] * radius + centre_.x, sines[k] * radius + centre_.y);
    }
}

void Arcs::FindPolar()
{
    f64 x[kMotionPixels], y[kMotionPixels];
    for (size_t k = 0; k < count_; ++k) {
        x[k] = dx_ + f64(k);
        y[k] = dy_;
        radii_[k] = Sqrt(y[k] * y[k] + x[k] * x[k]);
    }
    Atan2Array(y, x, angles_, count_);
    hasPolar_ = true;
}

size_t Arcs::OffsetOf(f64 x, f64 y) const
{
    if (!IsInside(x, images_.src.width) || !IsInside(y, images_.src.height)) return kNowhere;
    return size_t(i32(y)) * images_.src.stride + size_t(i32(x)) * images_.src.channels;
}

// An angle that is not finite has no sine.
bool Arcs::CanPlace(f64 angle) const
{
    const bool isSmall = images_.src.width <= kLargestPlaced && images_.src.height <= kLargestPlaced;
    return angle - angle == 0 && isSmall && HasShortOffsets(images_.src);
}

}  // namespace zlv
