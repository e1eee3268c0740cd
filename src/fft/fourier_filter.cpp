// Filters of a grid: every value is multiplied by a factor that depends on its distance from the frequency 0.
//
// The frequency 0 stands in the corners of the grid. Distances from the right and the lower edge are counted from the
// last column and row, one short of the true frequency: filters of one radius would change if that were "repaired".
#include "fft/fourier_filter.kernels.h"
#include "runtime/frame.h"
#include "runtime/math.h"

#include <algorithm>

#include "zlv40.h"

using namespace zlv;

namespace {

constexpr size_t kBlock = 256;  // factors that are computed at a time

bool IsKind(i32 kind) { return kind > 0 && kind <= ZLV40_FFT_HOMOMORPHIC; }

// The numbers between the filters of a grid and the homomorphic one belong to no filter. Without values to meet them
// they are no mistake.
bool IsUnusedKind(i32 kind) { return kind > ZLV40_FFT_GAUSSIAN_EMPHASIS && kind < ZLV40_FFT_HOMOMORPHIC; }

// Applies formula(number) to each number in place.
template <class Formula>
void ForEach(f64* numbers, size_t count, Formula formula)
{
    for (size_t i = 0; i < count; ++i) numbers[i] = formula(numbers[i]);
}

// exp(-d2 / (2 * radius * radius))
void GaussianFall(f64* squares, size_t count, f64 radius)
{
    const f64 divisor = 2.0 * (radius * radius);
    ForEach(squares, count, [=](f64 d2) { return -d2 / divisor; });
    ExpArray(squares, squares, count);
}

// (radius / distance) to the power 2 * order
void ButterworthRise(f64* squares, size_t count, f64 radius, f64 order)
{
    ForEach(squares, count, [=](f64 d2) { return radius / Sqrt(d2); });
    PowArray(squares, 2.0 * order, squares, count);
}

// Makes factors of squared distances. Reads no more parameters than the kind has.
void MakeFactors(f64* squares, size_t count, i32 kind, const f64* params)
{
    const auto forEach = [=](auto formula) { ForEach(squares, count, formula); };
    switch (kind) {
    case ZLV40_FFT_IDEAL_LOW_PASS:
        return forEach([limit = params[0] * params[0]](f64 d2) { return d2 > limit ? 0.0 : 1.0; });
    case ZLV40_FFT_IDEAL_HIGH_PASS:
        return forEach([limit = params[0] * params[0]](f64 d2) { return d2 < limit ? 0.0 : 1.0; });
    case ZLV40_FFT_IDEAL_BAND_PASS:
        return forEach([lower = params[0] * params[0], upper = params[1] * params[1]](f64 d2) {
            return d2 < lower || d2 > upper ? 0.0 : 1.0;
        });
    case ZLV40_FFT_POWER_LAW:
        forEach([](f64 d2) { return 1.0 / d2; });
        return PowArray(squares, params[0], squares, count);
    case ZLV40_FFT_BUTTERWORTH_LOW_PASS:
        forEach([radius = params[0]](f64 d2) { return Sqrt(d2) / radius; });
        PowArray(squares, 2.0 * params[1], squares, count);
        return forEach([](f64 power) { return 1.0 / (1.0 + power); });
    case ZLV40_FFT_BUTTERWORTH_HIGH_PASS:
        ButterworthRise(squares, count, params[0], params[1]);
        return forEach([](f64 power) { return 1.0 / (1.0 + power); });
    case ZLV40_FFT_GAUSSIAN_LOW_PASS: return GaussianFall(squares, count, params[0]);
    case ZLV40_FFT_GAUSSIAN_HIGH_PASS:
        GaussianFall(squares, count, params[0]);
        return forEach([](f64 fall) { return 1.0 - fall; });
    case ZLV40_FFT_BUTTERWORTH_EMPHASIS:
        // The order is the offset too.
        ButterworthRise(squares, count, params[0], params[1]);
        return forEach([offset = params[1], gain = params[2]](f64 power) { return offset + gain / (1.0 + power); });
    case ZLV40_FFT_GAUSSIAN_EMPHASIS:
        GaussianFall(squares, count, params[0]);
        return forEach([offset = params[1], gain = params[2]](f64 fall) { return offset + gain * (1.0 - fall); });
    default:  // ZLV40_FFT_HOMOMORPHIC
        forEach([sharpness = params[3], divisor = params[0] * params[0]](f64 d2) { return -sharpness * d2 / divisor; });
        ExpArray(squares, squares, count);
        return forEach([low = params[1], high = params[2]](f64 fall) { return (high - low) * (1.0 - fall) + low; });
    }
}

// The smooth filters, but for the homomorphic one, leave the frequency 0 as it is.
bool KeepsFrequencyZero(i32 kind) { return kind >= ZLV40_FFT_POWER_LAW && kind <= ZLV40_FFT_GAUSSIAN_EMPHASIS; }

// One side of a grid, 1 or longer. Distances run from 0 to length / 2; those below mirrorCount come back behind the
// middle.
struct Side {
    explicit Side(u32 theLength) : length(theLength), distances(length / 2 + 1), mirrorCount(length - distances) {}
    size_t MirrorOf(size_t distance) const { return length - 1 - distance; }

    size_t length, distances, mirrorCount;
};

// Factors of neighbouring columns of a row, and the same ones backwards for the mirrored columns.
struct FactorBlock {
    f64 factors[kBlock];
    f64 mirrored[kBlock];

    void Fill(i32 kind, const f64* params, u64 dx, u64 dy, size_t count)
    {
        for (size_t i = 0; i < count; ++i) factors[i] = f64((dx + i) * (dx + i) + dy * dy);
        MakeFactors(factors, count, kind, params);
        if (dx == 0 && dy == 0 && KeepsFrequencyZero(kind)) factors[0] = 1.0;
    }
    // The first `count` of them, which may be none.
    void Mirror(size_t count)
    {
        for (size_t i = 0; i < count; ++i) mirrored[count - 1 - i] = factors[i];
    }
};

void FilterGrid(f64* grid, u32 width, u32 height, i32 kind, const f64* params)
{
    const auto& kernels = Kernels<FourierFilterKernels>();
    const Side across(width), down(height);
    FactorBlock block;
    for (size_t dy = 0; dy < down.distances; ++dy) {
        for (size_t dx = 0; dx < across.distances; dx += kBlock) {
            const size_t count = std::min(kBlock, across.distances - dx);
            const size_t mirrorCount = dx < across.mirrorCount ? std::min(count, across.mirrorCount - dx) : 0;
            block.Fill(kind, params, dx, dy, count);
            block.Mirror(mirrorCount);
            const auto filterRow = [&](size_t y) {
                f64* const row = grid + 2 * y * width;
                kernels.multiply(row + 2 * dx, block.factors, count);
                kernels.multiply(row + 2 * (across.length - dx - mirrorCount), block.mirrored, mirrorCount);
            };
            filterRow(dy);
            if (dy < down.mirrorCount) filterRow(down.MirrorOf(dy));
        }
    }
}

}  // namespace

ZLV_EXPORT u32 ZLV40_FilterFFT(f64* grid, u32 width, u32 height, i32 kind, const f64* params)
{
    return InFrame(FrameKind::ErrorSlotOnly, [&](CallFrame& frame) -> u32 {
        if (!grid || !params || !IsKind(kind)) return frame.Fail(Error::BadArgument);
        if (width == 0 || height == 0) return 1;
        if (IsUnusedKind(kind)) return frame.Fail(Error::BadArgument);
        FilterGrid(grid, width, height, kind, params);
        return 1;
    });
}
