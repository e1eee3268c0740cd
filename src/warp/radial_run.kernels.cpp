// The arithmetic around a centre. Most rows of a picture have few points near it, or many next to each other: the
// others are passed over by vectors, and before any square root is taken.
#include "warp/radial_run.kernels.h"

#include "warp/kernel_lane_bits.h"

namespace zlv {
namespace {

Reals Root(Reals squares)
{
#if defined(ZLV_PORTABLE)
    for (u32 lane = 0; lane < kRealLanes; ++lane) squares[lane] = __builtin_sqrt(squares[lane]);
    return squares;
#elif defined(ZLV_TARGET_avx512)
    return _mm512_maskz_sqrt_pd(0xFF, squares);
#elif defined(ZLV_TARGET_avx2)
    return _mm256_sqrt_pd(squares);
#else
    return _mm_sqrt_pd(squares);
#endif
}

bool IsAnyLost(const bool* isLost)
{
    u8 flags[kRealLanes];
    __builtin_memcpy(flags, isLost, kRealLanes);
    u8 any = 0;
    for (const u8 flag : flags) any |= flag;
    return any != 0;
}

class Finder {
public:
    Finder(const RadialArea& area, TouchedPoints& touched)
        : area_(area), touched_(touched), enough_(area.radius * area.radius * (1 + 0x1p-40))
    {
    }

    void FindInVector(const f64* x, const f64* y, const bool* isLost, u32 i)
    {
        const Reals dx = Load<Reals>(x + i) - area_.centerX, dy = Load<Reals>(y + i) - area_.centerY;
        const Reals squares = dx * dx + dy * dy;
        if (BitsOf(squares > enough_) == kAllLanes) return;
        const Reals radii = Root(squares);
        RealLanes isTouched = radii <= area_.radius;
        if (!area_.hasCenter) isTouched &= radii > 0;
        const u32 bits = BitsOf(isTouched);
        if (bits == 0) return;
        if (bits != kAllLanes || IsAnyLost(isLost + i)) return FindOneByOne(x, y, isLost, i, i + kRealLanes);
        const u32 to = touched_.count;
        Store(touched_.dx + to, dx);
        Store(touched_.dy + to, dy);
        Store(touched_.radii + to, radii);
        for (u32 lane = 0; lane < kRealLanes; ++lane) touched_.indices[to + lane] = i + lane;
        touched_.count += kRealLanes;
    }

    void FindOneByOne(const f64* x, const f64* y, const bool* isLost, u32 from, u32 end)
    {
        for (u32 i = from; i < end; ++i) {
            const f64 dx = x[i] - area_.centerX, dy = y[i] - area_.centerY;
            const f64 radius = __builtin_sqrt(dx * dx + dy * dy);
            const u32 to = touched_.count;
            touched_.indices[to] = i;
            touched_.dx[to] = dx;
            touched_.dy[to] = dy;
            touched_.radii[to] = radius;
            touched_.count += !isLost[i] & (radius <= area_.radius) & (area_.hasCenter | (radius > 0));
        }
    }

private:
    const RadialArea area_;
    TouchedPoints& touched_;
    // Squares above this belong to points outside, however they are rounded.
    const f64 enough_;
};

void FindTouched(const f64* x, const f64* y, const bool* isLost, u32 count, const RadialArea& area,
                 TouchedPoints& touched)
{
    Finder finder(area, touched);
    u32 i = 0;
    for (; i + kRealLanes <= count; i += kRealLanes) finder.FindInVector(x, y, isLost, i);
    finder.FindOneByOne(x, y, isLost, i, count);
}

void FindSlopes(const TouchedPoints& touched, f64* slopes)
{
    for (u32 i = 0; i < touched.count; ++i) {
        const bool isZero = touched.dx[i] == 0;
        const f64 slope = touched.dy[i] / (isZero ? 1 : touched.dx[i]);
        slopes[i] = isZero ? 0 : slope;
    }
}

// kTurnsZero: whether points straight above and below the centre are turned round, too.
template <bool kTurnsZero>
void Place(const TouchedPoints& touched, const f64* radii, const RadialPlace& place, f64* newX, f64* newY)
{
    for (u32 i = 0; i < touched.count; ++i) {
        const f64 x = newX[i] * radii[i], y = newY[i] * radii[i];
        const bool isTurned = kTurnsZero ? !(touched.dx[i] > 0) : touched.dx[i] < 0;
        newX[i] = ((isTurned ? -x : x) + place.centerX) + place.offsetX;
        newY[i] = ((isTurned ? -y : y) + place.centerY) + place.offsetY;
    }
}

}  // namespace

namespace ZLV_TARGET {

constinit const RadialRunKernels kRadialRunKernels = {FindTouched, FindSlopes, Place<false>, Place<true>};

}  // namespace ZLV_TARGET
}  // namespace zlv
