// Extremes of a grid, and rows of real parts and magnitudes.
#include "fft/fourier_picture.kernels.h"

#include "fft/kernel_complex.h"

namespace zlv::ZLV_TARGET {

namespace {

// The tests are written so that a NaN loses them.
template <class Number>
Number Lower(Number value, Number lowest)
{
    return value < lowest ? value : lowest;
}
template <class Number>
Number Higher(Number value, Number highest)
{
    return value > highest ? value : highest;
}

template <class Number>
void TakeIn(Number re, Number im, Number& smallest, Number& largest, Number& largestSquare)
{
    smallest = Lower(re, smallest);
    largest = Higher(re, largest);
    largestSquare = Higher(re * re + im * im, largestSquare);
}

void FindExtremes(const f64* values, size_t count, FourierExtremes& extremes)
{
    Reals smallest = InEachLane(extremes.smallest), largest = InEachLane(extremes.largest);
    Reals largestSquare = InEachLane(extremes.largestSquare);
    size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        Reals re = Load<Reals>(values + 2 * i), im = Load<Reals>(values + 2 * i + kLanes);
        Exchange<1>(re, im);
        TakeIn(re, im, smallest, largest, largestSquare);
    }
    for (size_t lane = 0; lane < kLanes; ++lane) {
        extremes.smallest = Lower(f64(smallest[lane]), extremes.smallest);
        extremes.largest = Higher(f64(largest[lane]), extremes.largest);
        extremes.largestSquare = Higher(f64(largestSquare[lane]), extremes.largestSquare);
    }
    for (; i < count; ++i) {
        TakeIn(values[2 * i], values[2 * i + 1], extremes.smallest, extremes.largest, extremes.largestSquare);
    }
}

f64 RealPart(const f64* value) { return value[0]; }
f64 Magnitude(const f64* value) { return __builtin_sqrt(value[0] * value[0] + value[1] * value[1]); }

void Keep(f64 value, f64* to) { *to = value; }
// What is not a number is 0.
void Keep(f64 value, u8* to)
{
    const f64 positive = value > 0.0 ? value : 0.0;
    *to = u8(i32(positive < 255.0 ? positive : 255.0));
}

template <f64 (*Part)(const f64*), class Sample>
void WriteRow(const f64* __restrict values, size_t count, const FourierScale& scale, Sample* __restrict row)
{
    const FourierScale s = scale;
    for (size_t x = 0; x < count; ++x) Keep((Part(values + 2 * x) - s.offset) * s.factor / s.divisor, row + x);
}

}  // namespace

extern const FourierPictureKernels kFourierPictureKernels;
const FourierPictureKernels kFourierPictureKernels = {FindExtremes, WriteRow<RealPart, u8>, WriteRow<RealPart, f64>,
                                                      WriteRow<Magnitude, u8>, WriteRow<Magnitude, f64>};

}  // namespace zlv::ZLV_TARGET
