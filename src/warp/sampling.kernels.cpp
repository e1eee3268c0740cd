// Sampling at points between pixels: nearest, bilinear and bicubic.
//
// Everything is tested as a number before it becomes an index, and every test fails for NaN: such a point is outside.
// The channels of a pixel go side by side, four at a time; the order of operations within one is part of the result.
#include "warp/sampling.kernels.h"

#include "warp/kernel_lane_bits.h"
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

constexpr u32 kPointsTogether = 64;
constexpr i32 kOutside = -1;

// Along one axis, the pixels of some points: kOutside, or an index of an image that a 32-bit integer can count.
void FindNearest(const f64* coordinates, u32 count, f64 size, i32* indices)
{
    for (u32 i = 0; i < count; ++i) {
        const f64 v = coordinates[i], up = v + kAlmostOne, limited = up > size - 1 ? size - 1 : up;
        const bool isInside = (v >= 0) & (v <= size);
        indices[i] = i32(isInside ? limited : f64(kOutside));
    }
}

u32 NearestIndex(f64 coordinate, u32 size)
{
    const i64 index = i64(coordinate + kAlmostOne);
    return index > i64(size) - 1 ? size - 1 : u32(index);
}

// Images of any size, point by point.
template <u32 kChannels>
void NearestOneByOne(const SampledRun& run)
{
    const f64 width = run.width, height = run.height;
    ForPixels<kChannels>(run, [&](u32 i, u8* to) {
        const f64 x = run.x[i], y = run.y[i];
        if (run.isLost[i] || !(x >= 0 && y >= 0 && x <= width && y <= height)) return Fill(run, to).Write(to);
        const u32 offset = OffsetOf(run, NearestIndex(x, run.width), NearestIndex(y, run.height));
        std::memcpy(to, run.src + offset, kChannels ? kChannels : run.channels);
    });
}

template <u32 kChannels>
void Nearest(const SampledRun& run)
{
    constexpr u32 kCountable = 0x7FFFFFFF;
    if (run.width > kCountable || run.height > kCountable) return NearestOneByOne<kChannels>(run);
    const u32 channels = kChannels ? kChannels : run.channels;
    u8* to = run.to;
    for (u32 from = 0; from < run.count; from += kPointsTogether) {
        const u32 count = run.count - from < kPointsTogether ? run.count - from : kPointsTogether;
        i32 columns[kPointsTogether], rows[kPointsTogether];
        FindNearest(run.x + from, count, run.width, columns);
        FindNearest(run.y + from, count, run.height, rows);
        for (u32 i = 0; i < count; ++i, to += channels) {
            if (run.isLost[from + i] | ((columns[i] | rows[i]) < 0)) Fill(run, to).Write(to);
            else std::memcpy(to, run.src + OffsetOf(run, u32(columns[i]), u32(rows[i])), channels);
        }
    }
}

// ---- Points amid the picture ------------------------------------------------------------------------------------

// A whole number added to a larger one may be rounded to the next pixel's.
constexpr f64 kMostFraction = 1 - 0x1p-20;

// No offset wraps, and the coordinates of all pixels are far less precise than these fractions.
bool IsCountable(const SampledRun& run)
{
    return run.srcBytes <= u64(1) << 32 && run.width < 1u << 31 && run.height < 1u << 31;
}

// Along one axis, of some points: the pixel before each, or kOutside where not all of the pixels from kBefore before
// the point to kBehind behind it are inside, and how far it is from there.
template <i32 kPixelsBefore, i32 kPixelsBehind>
struct AmidPlaces {
    static constexpr i32 kBefore = kPixelsBefore, kBehind = kPixelsBehind;

    i32 pixels[kPointsTogether];
    f64 fractions[kPointsTogether];

    AmidPlaces(const f64* coordinates, u32 count, u32 size)
    {
        const f64 end = f64(size) - kBehind;
        for (u32 i = 0; i < count; ++i) {
            const f64 v = coordinates[i];
            const bool isAmid = (v >= kBefore) & (v < end);
            const f64 place = isAmid ? v : 0;
            const i32 pixel = i32(place);
            fractions[i] = place - pixel;
            pixels[i] = (isAmid & (fractions[i] <= kMostFraction)) ? pixel : kOutside;
        }
    }
};

// Writes a run of pixels. Points amid the picture, with kRead bytes to be read at the first pixel of each of their
// rows, go through make(columns, rows, i, first, to) with the places of some points, of which it is number i; all
// others through makeAny(i, to).
template <u32 kChannels, class Places, u32 kRead, class Make, class MakeAny>
void ForPointsAmid(const SampledRun& run, Make make, MakeAny makeAny)
{
    if (kChannels == 0 || !IsCountable(run)) return ForPixels<kChannels>(run, makeAny);
    constexpr i32 kBefore = Places::kBefore;
    const u64 reach = u64(kBefore + Places::kBehind) * run.srcStride + kRead;
    u8* to = run.to;
    for (u32 from = 0; from < run.count; from += kPointsTogether) {
        const u32 count = run.count - from < kPointsTogether ? run.count - from : kPointsTogether;
        const Places columns(run.x + from, count, run.width), rows(run.y + from, count, run.height);
        for (u32 i = 0; i < count; ++i, to += kChannels) {
            const i32 column = columns.pixels[i], row = rows.pixels[i];
            const u64 offset = u64(row - kBefore) * run.srcStride + u64(column - kBefore) * kChannels;
            const bool isAmid = !run.isLost[from + i] && (column | row) >= 0 && offset + reach <= run.srcBytes;
            if (isAmid) make(columns, rows, i, run.src + offset, to);
            else makeAny(from + i, to);
        }
    }
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

Quad MixLinear(const Quad taps[4], f64 fx, f64 fy)
{
    return taps[0] * (1 - fx) * (1 - fy) + taps[1] * fx * (1 - fy) + taps[2] * fx * fy + taps[3] * (1 - fx) * fy;
}

// Any point, with tests for each of its taps.
template <u32 kChannels>
[[gnu::noinline]] void WriteLinear(const SampledRun& run, u32 i, u8* to)
{
    const LinearTaps columns(run.x[i], run.width, run.isLost[i]), rows(run.y[i], run.height, run.isLost[i]);
    const Fill filler(run, to);
    if (!columns.HasFraction() || !rows.HasFraction()) return filler.Write(to);
    const u32 offsets[] = {OffsetOf(run, columns.first, rows.first), OffsetOf(run, columns.second, rows.first),
                           OffsetOf(run, columns.second, rows.second), OffsetOf(run, columns.first, rows.second)};
    const bool areOut[] = {columns.isFirstOut || rows.isFirstOut, columns.isSecondOut || rows.isFirstOut,
                           columns.isSecondOut || rows.isSecondOut, columns.isFirstOut || rows.isSecondOut};
    ForQuads<kChannels>(run, [&](u32 c, u32 count) {
        u8 fill[4] = {};
        filler.Load(c, count, fill);
        Quad taps[4];
        for (u32 t = 0; t < 4; ++t) {
            taps[t] = areOut[t] ? Quad::Of(fill) : LoadQuad(run.src, run.srcBytes, u64(offsets[t]) + c, count);
        }
        MixLinear(taps, columns.fraction, rows.fraction).Write(to + c, count);
    });
}

template <u32 kChannels>
void Bilinear(const SampledRun& run)
{
    using Places = AmidPlaces<0, 1>;
    constexpr u32 kRead = 8;
    const auto make = [&](const Places& columns, const Places& rows, u32 i, const u8* first, u8* to) {
        const u8* const below = first + run.srcStride;
        const Quad taps[4] = {Quad::Of(first), Quad::Of(first + kChannels), Quad::Of(below + kChannels),
                              Quad::Of(below)};
        MixLinear(taps, columns.fractions[i], rows.fractions[i]).Write(to, kChannels);
    };
    ForPointsAmid<kChannels, Places, kRead>(run, make, [&](u32 i, u8* to) { WriteLinear<kChannels>(run, i, to); });
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
};

// Any point, with tests for each of its taps.
template <u32 kChannels>
[[gnu::noinline]] void WriteCubic(const SampledRun& run, u32 i, u8* to)
{
    const CubicTaps columns(run.x[i], run.width, run.isLost[i]), rows(run.y[i], run.height, run.isLost[i]);
    const Fill filler(run, to);
    // Sixteen times the fill is the fill.
    if (!columns.HasAny() || !rows.HasAny()) return filler.Write(to);
    const CubicWeights across(columns.fraction), down(rows.fraction);
    ForQuads<kChannels>(run, [&](u32 c, u32 count) {
        u8 fill[4] = {};
        filler.Load(c, count, fill);
        const auto tap = [&](u32 row, u32 column) {
            if (!(rows.areInside[row] && columns.areInside[column])) return Quad::Of(fill);
            const u64 offset = u64(OffsetOf(run, columns.indices[column], rows.indices[row])) + c;
            return LoadQuad(run.src, run.srcBytes, offset, count);
        };
        Quad sums[4];
        for (u32 row = 0; row < 4; ++row) sums[row] = across.Sum(tap(row, 0), tap(row, 1), tap(row, 2), tap(row, 3));
        (down.Sum(sums[0], sums[1], sums[2], sums[3]) + 0.5).Write(to + c, count);
    });
}

struct CubicPlaces : AmidPlaces<1, 2> {
    CubicWeightRows<kPointsTogether> weights;

    CubicPlaces(const f64* coordinates, u32 count, u32 size) : AmidPlaces(coordinates, count, size)
    {
        weights.Set(fractions, count);
    }
};

template <u32 kChannels>
void Bicubic(const SampledRun& run)
{
    const auto make = [&](const CubicPlaces& columns, const CubicPlaces& rows, u32 i, const u8* first, u8* to) {
        const Quad sum = CubicSum<kChannels>(columns.weights[i], rows.weights[i], first, run.srcStride);
        (sum + 0.5).Write(to, kChannels);
    };
    ForPointsAmid<kChannels, CubicPlaces, kCubicRowBytes>(run, make,
                                                          [&](u32 i, u8* to) { WriteCubic<kChannels>(run, i, to); });
}

// ---- Points that have not moved ---------------------------------------------------------------------------------

Reals Counting()
{
    Reals counts;
    for (u32 lane = 0; lane < kRealLanes; ++lane) counts[lane] = lane;
    return counts;
}

// Up to the first point whose being at home differs from `isHome`.
template <bool isHome>
u32 CountWhile(const f64* x, const f64* y, u32 count, f64 homeX, f64 homeY)
{
    const Reals counting = Counting();
    u32 i = 0;
    for (; i + kRealLanes <= count; i += kRealLanes) {
        const RealLanes atHome = (Load<Reals>(x + i) == homeX + i + counting) & (Load<Reals>(y + i) == homeY);
        const u32 bits = BitsOf(atHome) ^ (isHome ? kAllLanes : 0);
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
