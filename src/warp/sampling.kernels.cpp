// Sampling at points between pixels: nearest, bilinear and bicubic.
//
// Everything is tested as a number before it becomes an index, and every test fails for NaN: such a point is outside.
// The channels of a pixel go side by side, four at a time; the order of operations within one is part of the result.
#include "warp/sampling.kernels.h"

#include "base/kernel_vectors.h"
#include "warp/kernel_pixel_quad.h"

namespace zlv {
namespace {

// The whole part of a coordinate that lies within the image.
u32 Whole(f64 coordinate) { return u32(i64(coordinate)); }

// Below and above the picture everything rounds down, zero comes out positive.
f64 FloorOf(f64 x)
{
    if (!(-0x1p52 < x && x < 0x1p52)) return x;
    const f64 whole = f64(i64(x));
    return whole > x ? whole - 1 : whole;
}

u32 OffsetOf(const SampledRun& run, u32 column, u32 row) { return row * run.srcStride + column * run.channels; }

// A pixel's channels c to c + count - 1 before it is written.
class Fill {
public:
    Fill(const SampledRun& run, const u8* to) : run_(run), to_(to) {}

    void Load(u32 c, u32 count, u8* four) const
    {
        four[0] = four[1] = four[2] = four[3] = 0;
        if (!run_.background) std::memcpy(four, to_ + c, count);
        else if (c == 0) std::memcpy(four, run_.background, 4);
    }

    void Write(u8* to) const
    {
        if (!run_.background) return;
        for (u32 c = 0; c < run_.channels; ++c) to[c] = c < 4 ? run_.background[c] : 0;
    }

private:
    const SampledRun& run_;
    const u8* const to_;
};

// Calls make(i, to) for every pixel of a run; kChannels is its count of channels, 0 when that is not known.
template <u32 kChannels, class Make>
void ForPixels(const SampledRun& run, Make make)
{
    u8* to = run.to;
    for (u32 i = 0; i < run.count; ++i, to += kChannels ? kChannels : run.channels) make(i, to);
}

// Calls make(c, count) for the channels of a pixel, four at a time.
template <u32 kChannels, class Make>
void ForQuads(const SampledRun& run, Make make)
{
    if constexpr (kChannels != 0) return make(0u, kChannels);
    for (u32 c = 0; c < run.channels; c += 4) make(c, run.channels - c < 4 ? run.channels - c : 4);
}

// ---- Nearest ----------------------------------------------------------------------------------------------------

// Any fraction above a rounding error selects the next pixel.
constexpr f64 kAlmostOne = 0.9999999999;

u32 NearestIndex(f64 coordinate, u32 size)
{
    const i64 index = i64(coordinate + kAlmostOne);
    return index > i64(size) - 1 ? size - 1 : u32(index);
}

template <u32 kChannels>
void Nearest(const SampledRun& run)
{
    const f64 width = run.width, height = run.height;
    ForPixels<kChannels>(run, [&](u32 i, u8* to) {
        const f64 x = run.x[i], y = run.y[i];
        if (run.isLost[i] || !(x >= 0 && y >= 0 && x <= width && y <= height)) return Fill(run, to).Write(to);
        const u32 offset = OffsetOf(run, NearestIndex(x, run.width), NearestIndex(y, run.height));
        std::memcpy(to, run.src + offset, kChannels ? kChannels : run.channels);
    });
}

// ---- Bilinear ---------------------------------------------------------------------------------------------------

// Along one axis: the indices before and behind the point, which of them are outside, and how far it is between them.
struct LinearTaps {
    u32 first = 0, second = 0;
    bool isFirstOut, isSecondOut;
    f64 fraction;

    LinearTaps(f64 coordinate, u32 size, bool isLost)
        : isFirstOut(isLost || !(coordinate >= 0 && coordinate < f64(size))),
          isSecondOut(isLost || !(coordinate > -1 && coordinate < f64(size) - 1))
    {
        const f64 floor = FloorOf(coordinate);
        fraction = coordinate - floor;
        if (!isFirstOut) first = Whole(floor);
        if (!isSecondOut) second = Whole(floor + 1);
    }

    // Neither NaN nor infinite.
    bool HasFraction() const { return fraction >= 0; }
};

template <u32 kChannels>
void Bilinear(const SampledRun& run)
{
    ForPixels<kChannels>(run, [&](u32 i, u8* to) {
        const LinearTaps columns(run.x[i], run.width, run.isLost[i]), rows(run.y[i], run.height, run.isLost[i]);
        const Fill filler(run, to);
        if (!columns.HasFraction() || !rows.HasFraction()) return filler.Write(to);
        const f64 fx = columns.fraction, fy = rows.fraction;
        const u32 offsets[] = {OffsetOf(run, columns.first, rows.first), OffsetOf(run, columns.second, rows.first),
                               OffsetOf(run, columns.second, rows.second), OffsetOf(run, columns.first, rows.second)};
        const bool isInside = !(columns.isFirstOut | columns.isSecondOut | rows.isFirstOut | rows.isSecondOut);
        const bool areOut[] = {columns.isFirstOut || rows.isFirstOut, columns.isSecondOut || rows.isFirstOut,
                               columns.isSecondOut || rows.isSecondOut, columns.isFirstOut || rows.isSecondOut};
        ForQuads<kChannels>(run, [&](u32 c, u32 count) {
            Quad taps[4];
            if (isInside) {
                for (u32 t = 0; t < 4; ++t) taps[t] = LoadQuad(run.src, run.srcBytes, u64(offsets[t]) + c, count);
            } else {
                u8 fill[4] = {};
                filler.Load(c, count, fill);
                for (u32 t = 0; t < 4; ++t) {
                    taps[t] = areOut[t] ? Quad::Of(fill) : LoadQuad(run.src, run.srcBytes, u64(offsets[t]) + c, count);
                }
            }
            const Quad sum =
                taps[0] * (1 - fx) * (1 - fy) + taps[1] * fx * (1 - fy) + taps[2] * fx * fy + taps[3] * (1 - fx) * fy;
            sum.Write(to + c, count);
        });
    });
}

// ---- Bicubic ----------------------------------------------------------------------------------------------------

// Along one axis: the indices of four neighbours, which of them are inside, and how far the point is from the second
// of them to the third.
struct CubicTaps {
    u32 indices[4] = {};
    bool areInside[4];
    f64 fraction = 0;

    CubicTaps(f64 v, u32 size, bool isLost)
    {
        const f64 limit = size;
        areInside[0] = !isLost && v < limit && v >= 1;
        areInside[1] = !isLost && v < limit && v >= 0;
        areInside[2] = !isLost && v < limit - 1 && v >= -1;
        areInside[3] = !isLost && v < limit - 2 && v >= -2;
        if (!HasAny()) return;
        for (i32 tap = 0; tap < 4; ++tap) {
            if (!areInside[tap]) continue;
            indices[tap] = Whole(v + (tap - 1));
            // The sum may have been rounded up to the size.
            areInside[tap] = indices[tap] < size;
        }
        if (v < 0) {
            const f64 magnitude = -v;
            const f64 whole = f64(i64(magnitude));
            v = (whole + 1) - (magnitude - whole);
        }
        fraction = v - f64(i64(v));
    }

    bool HasAny() const { return areInside[0] | areInside[1] | areInside[2] | areInside[3]; }
    bool HasAll() const { return areInside[0] & areInside[1] & areInside[2] & areInside[3]; }
};

template <u32 kChannels>
void Bicubic(const SampledRun& run)
{
    ForPixels<kChannels>(run, [&](u32 i, u8* to) {
        const CubicTaps columns(run.x[i], run.width, run.isLost[i]), rows(run.y[i], run.height, run.isLost[i]);
        const Fill filler(run, to);
        // Sixteen times the fill is the fill.
        if (!columns.HasAny() || !rows.HasAny()) return filler.Write(to);
        const CubicWeights across(columns.fraction), down(rows.fraction);
        const bool isInside = columns.HasAll() && rows.HasAll();
        ForQuads<kChannels>(run, [&](u32 c, u32 count) {
            u8 fill[4] = {};
            if (!isInside) filler.Load(c, count, fill);
            const auto tap = [&](u32 row, u32 column) {
                if (!isInside && !(rows.areInside[row] && columns.areInside[column])) return Quad::Of(fill);
                const u64 offset = u64(OffsetOf(run, columns.indices[column], rows.indices[row])) + c;
                return LoadQuad(run.src, run.srcBytes, offset, count);
            };
            Quad sums[4];
            for (u32 row = 0; row < 4; ++row) {
                sums[row] = across.Sum(tap(row, 0), tap(row, 1), tap(row, 2), tap(row, 3));
            }
            (down.Sum(sums[0], sums[1], sums[2], sums[3]) + 0.5).Write(to + c, count);
        });
    });
}

// ---- Points that have not moved ---------------------------------------------------------------------------------

#ifdef ZLV_PORTABLE
constexpr u32 kPointsAtOnce = 1;
#else
constexpr u32 kPointsAtOnce = Lanes<f64>::kCount;
#endif

// Bit i for point i.
u32 HomeBits(const f64* x, const f64* y, f64 homeX, f64 homeY)
{
    u32 bits = 0;
    for (u32 i = 0; i < kPointsAtOnce; ++i) bits |= u32((x[i] == homeX + i) & (y[i] == homeY)) << i;
    return bits;
}

// Up to the first point whose being at home differs from `isHome`.
template <bool isHome>
u32 CountWhile(const f64* x, const f64* y, u32 count, f64 homeX, f64 homeY)
{
    constexpr u32 kAll = (1u << kPointsAtOnce) - 1;
    u32 i = 0;
    for (; i + kPointsAtOnce <= count; i += kPointsAtOnce) {
        const u32 bits = HomeBits(x + i, y + i, homeX + i, homeY) ^ (isHome ? kAll : 0);
        if (bits) return i + u32(__builtin_ctz(bits));
    }
    for (; i < count; ++i) {
        if ((x[i] == homeX + i && y[i] == homeY) != isHome) return i;
    }
    return i;
}

// The counts that pictures have get a loop of their own.
template <template <u32> class Sampler>
void ForChannels(const SampledRun& run)
{
    switch (run.channels) {
    case 1: return Sampler<1>::Run(run);
    case 3: return Sampler<3>::Run(run);
    case 4: return Sampler<4>::Run(run);
    default: return Sampler<0>::Run(run);
    }
}

template <u32 kChannels>
struct NearestSampler {
    static void Run(const SampledRun& run) { Nearest<kChannels>(run); }
};
template <u32 kChannels>
struct BilinearSampler {
    static void Run(const SampledRun& run) { Bilinear<kChannels>(run); }
};
template <u32 kChannels>
struct BicubicSampler {
    static void Run(const SampledRun& run) { Bicubic<kChannels>(run); }
};

}  // namespace

namespace ZLV_TARGET {

constinit const SamplingKernels kSamplingKernels = {
    ForChannels<NearestSampler>, ForChannels<BilinearSampler>, ForChannels<BicubicSampler>, CountWhile<true>,
    CountWhile<false>,
};

}  // namespace ZLV_TARGET
}  // namespace zlv
