// Hugo noise: value noise of several octaves, each with an integer hash of its own, dealt out anew at each call.
//
// Along a row of the lattice a pixel's blend of its two neighbours stays the same for all rows of the image that lie
// below it, so each octave keeps these blends for the two rows of the lattice around the present one. Hashes are
// multiples of 2^-30 and are smoothed by powers of two: they are summed as integers, in any order, without rounding.
// Source of the hash: H. Elias, "Perlin noise" (1998).
#include "generators/hugo_noise.kernels.h"
#include "runtime/array.h"
#include "runtime/frame.h"
#include "runtime/math.h"
#include "runtime/random.h"

#include "zlv40.h"

#include <algorithm>
#include <utility>

using namespace zlv;

namespace {

struct HugoHash {
    u32 a, b, c;

    // The hash at a point of the lattice, in units of 2^-30: -2^30 + 1 to 2^30.
    i64 At(i64 x, i64 y) const
    {
        const u32 n = u32(u64(y) * 57 + u64(x));
        const u32 m = n ^ (n << 13);
        return (i64(1) << 30) - i64(((m * m * a + b) * m + c) & 0x7FFFFFFF);
    }

    // One column of the smoothing: the point twice, and those above and below it.
    i64 SumOfColumn(i64 x, i64 y) const { return At(x, y - 1) + 2 * At(x, y) + At(x, y + 1); }
};

constexpr i32 kHashCount = 8;
constexpr HugoHash kHashes[kHashCount] = {
    {15731, 789221, u32(-771171059)}, {19979, 685511, 901034347},       {18133, 741467, 992952869},
    {10627, 784789, 901027397},       {18757, 685511, u32(-771171059)}, {18133, 784789, 87623533},
    {15731, 685511, 992952869},       {19979, 784789, u32(-771171059)},
};
constexpr f64 kSmoothingUnit = 0x1p-34;  // of a hash, over the 16 parts of the smoothing

// A coordinate as the point of the lattice towards zero, and what is left.
struct LatticePlace {
    i64 point = 0;
    f64 rest;

    explicit LatticePlace(f64 coordinate) : rest(coordinate - coordinate)
    {
        constexpr f64 kLargest = 0x1p62;  // larger numbers are whole; where they lie in the lattice tells nobody apart
        if (!(-kLargest < coordinate && coordinate < kLargest)) return;
        point = i64(coordinate);
        rest = coordinate - f64(point);
    }
};

// 3.141596 and not pi: the blends do not quite reach the second point.
constexpr f64 kHalfTurn = 3.141596;
constexpr f64 WeightOf(f64 cosine) { return (1.0 - cosine) * 0.5; }

// The smoothed hashes of a row of the lattice, at a point and at the one behind it.
class SmoothedPair {
public:
    SmoothedPair(const HugoHash& hash, i64 y) : hash_(hash), y_(y) {}

    void MoveTo(i64 x)
    {
        if (isPlaced_ && x == x_) return;
        if (isPlaced_ && x == x_ + 1) {
            std::copy(sums_ + 1, sums_ + 4, sums_);
            sums_[3] = hash_.SumOfColumn(x + 2, y_);
        } else {
            for (i64 i = 0; i < 4; ++i) sums_[i] = hash_.SumOfColumn(x - 1 + i, y_);
        }
        isPlaced_ = true;
        x_ = x;
        first_ = Smoothed(0);
        second_ = Smoothed(1);
    }

    f64 First() const { return first_; }
    f64 Second() const { return second_; }

private:
    f64 Smoothed(size_t i) const { return f64(sums_[i] + 2 * sums_[i + 1] + sums_[i + 2]) * kSmoothingUnit; }

    const HugoHash hash_;
    const i64 y_;
    bool isPlaced_ = false;
    i64 x_ = 0;
    i64 sums_[4] = {};  // of the columns x - 1 to x + 2
    f64 first_ = 0, second_ = 0;
};

class HugoOctave {
public:
    // False without memory.
    [[nodiscard]] bool Prepare(const HugoHash& hash, f64 scale, f64 frequency, f64 amplitude, u32 width)
    {
        hash_ = hash;
        scale_ = scale;
        frequency_ = frequency;
        amplitude_ = amplitude;
        if (!weights_.Resize(width) || !blends_[0].Resize(width) || !blends_[1].Resize(width)) return false;
        for (u32 x = 0; x < width; ++x) weights_[x] = PlaceOf(x).rest * kHalfTurn;
        CosArray(weights_.GetData(), weights_.GetData(), width);
        for (u32 x = 0; x < width; ++x) weights_[x] = WeightOf(weights_[x]);
        return true;
    }

    void MoveTo(u32 row)
    {
        const LatticePlace place = PlaceOf(row);
        weight_ = WeightOf(Cos(place.rest * kHalfTurn));
        if (isPlaced_ && place.point == row_) return;
        const bool isNext = isPlaced_ && place.point == row_ + 1;
        if (isNext) upper_ ^= 1;
        else Blend(place.point, blends_[upper_].GetData());
        Blend(place.point + 1, blends_[upper_ ^ 1].GetData());
        isPlaced_ = true;
        row_ = place.point;
    }

    // Adds the noise of the present row, from column `first` on.
    void AddTo(f64* total, u32 first, size_t count) const
    {
        Kernels<HugoKernels>().addOctave(blends_[upper_].GetData() + first, blends_[upper_ ^ 1].GetData() + first,
                                         weight_, amplitude_, total, count);
    }

private:
    LatticePlace PlaceOf(u32 i) const { return LatticePlace(i * scale_ * frequency_); }

    // A row of the lattice, blended along x for each pixel.
    void Blend(i64 row, f64* blended) const
    {
        SmoothedPair pair(hash_, row);
        for (u32 x = 0; x < weights_.GetCount(); ++x) {
            pair.MoveTo(PlaceOf(x).point);
            blended[x] = (1.0 - weights_[x]) * pair.First() + weights_[x] * pair.Second();
        }
    }

    HugoHash hash_ = {};
    f64 scale_ = 0, frequency_ = 0, amplitude_ = 0;
    MVBuffer<f64> weights_;    // of the second point, for each column
    MVBuffer<f64> blends_[2];  // of the rows of the lattice above and below the present one
    size_t upper_ = 0;
    bool isPlaced_ = false;
    i64 row_ = 0;
    f64 weight_ = 0;
};

class HugoNoiseState {
public:
    HugoNoiseState(MVThreadContext& context, u32 seed)
    {
        SeedRandom(context, seed);
        for (u32 i = 0; i < kHashCount; ++i) noiseFunctions_[i] = kHashes[i];
        for (u32 i = 1; i < kHashCount; ++i)
            std::swap(noiseFunctions_[i], noiseFunctions_[DrawRandom(context) % (i + 1)]);
    }

    // One octave fewer than is asked for. False without memory.
    [[nodiscard]] bool Prepare(i32 octaves, f64 persistence, f64 scale, u32 width)
    {
        count_ = octaves > kHashCount ? kMostOctaves : octaves > 1 ? u32(octaves) - 1 : 0;
        for (u32 i = 0; i < count_; ++i) {
            if (!octaves_[i].Prepare(noiseFunctions_[i], scale, Pow(2.0, i), Pow(persistence, i), width)) return false;
        }
        return true;
    }

    void FillRow(u32 row, u8* out, u32 width)
    {
        for (u32 i = 0; i < count_; ++i) octaves_[i].MoveTo(row);
        for (u32 x = 0; x < width;) {
            const u32 count = std::min(width - x, kBlock);
            f64 total[kBlock];
            std::fill_n(total, count, 0.0);
            for (u32 i = 0; i < count_; ++i) octaves_[i].AddTo(total, x, count);
            Kernels<HugoKernels>().toBytes(total, out + x, count);
            x += count;
        }
    }

private:
    static constexpr u32 kMostOctaves = kHashCount - 1;
    static constexpr u32 kBlock = 256;

    HugoHash noiseFunctions_[kHashCount];
    HugoOctave octaves_[kMostOctaves];
    u32 count_ = 0;
};

}  // namespace

ZLV_EXPORT u32 ZLV40_GenerateHugoNoise(u8* dst, u32 width, u32 height, u32 rowStride, i32 octaves, f64 persistence,
                                       f64 scale)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!dst || width == 0 || height == 0) return frame.Fail(Error::BadArgument);
        HugoNoiseState noise(*baseContexts.Get(), platform::TickCount());
        if (!noise.Prepare(octaves, persistence, scale, width)) return frame.Fail(Error::OutOfMemory);
        for (u32 y = 0; y < height; ++y) {
            noise.FillRow(y, dst + size_t(y) * rowStride, width);
            if (!frame.Report(y, height)) return 0;
        }
        return 1;
    });
}
