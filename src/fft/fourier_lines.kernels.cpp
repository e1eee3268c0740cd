// Fourier transforms of lines, one line a lane.
//
// Radix-2, decimation in time (Cooley and Tukey 1965). Within a line every butterfly has its operands and its order of
// operations; what is free is the order of the butterflies. So two stages go over the memory in one pass, and the
// first stages run block by block, in blocks that stay in the first-level cache.
#include "fft/fourier_lines.kernels.h"

#include "fft/kernel_complex.h"

namespace zlv::ZLV_TARGET {

namespace {

constexpr size_t kValue = 2 * kLanes;           // doubles of one value of all lines
constexpr size_t kValuesOfVector = kLanes / 2;  // of one line
constexpr u32 kCachedStages = 8;                // blocks of 64 values: 8 KB of the widest lanes

struct Complex {
    Reals re, im;
};

// Lines in `work`: a strip of kLanes lines behind the other; of a strip, value after value the real parts of its lines
// and then their imaginary parts.
Complex LoadValue(const f64* from) { return {Load<Reals>(from), Load<Reals>(from + kLanes)}; }

void StoreValue(f64* to, const Complex& value)
{
    Store(to, value.re);
    Store(to + kLanes, value.im);
}

Complex LoadTwiddle(const f64* from) { return {InEachLane(from[0]), InEachLane(from[1])}; }

void Butterfly(Complex& a, Complex& b, const Complex& u)
{
    const Reals re = u.re * b.re - u.im * b.im;
    const Reals im = u.re * b.im + u.im * b.re;
    b = {a.re - re, a.im - im};
    a = {a.re + re, a.im + im};
}

// The twiddle factors of the stage with that half-span.
const f64* TwiddlesOf(const FourierStages& stages, size_t half) { return stages.twiddles + 2 * (half - 1); }

void OneStage(f64* values, size_t length, size_t half, const FourierStages& stages)
{
    const f64* const twiddles = TwiddlesOf(stages, half);
    for (size_t start = 0; start < length; start += 2 * half) {
        f64* first = values + start * kValue;
        for (size_t j = 0; j < half; ++j, first += kValue) {
            f64* const second = first + half * kValue;
            Complex a = LoadValue(first), b = LoadValue(second);
            Butterfly(a, b, LoadTwiddle(twiddles + 2 * j));
            StoreValue(first, a);
            StoreValue(second, b);
        }
    }
}

// The stages with that half-span and with twice that.
void TwoStages(f64* values, size_t length, size_t half, const FourierStages& stages)
{
    const f64* const near = TwiddlesOf(stages, half);
    const f64* const far = TwiddlesOf(stages, 2 * half);
    const size_t step = half * kValue;
    for (size_t start = 0; start < length; start += 4 * half) {
        f64* at = values + start * kValue;
        for (size_t j = 0; j < half; ++j, at += kValue) {
            Complex a = LoadValue(at), b = LoadValue(at + step);
            Complex c = LoadValue(at + 2 * step), d = LoadValue(at + 3 * step);
            const Complex u = LoadTwiddle(near + 2 * j);
            Butterfly(a, b, u);
            Butterfly(c, d, u);
            Butterfly(a, c, LoadTwiddle(far + 2 * j));
            Butterfly(b, d, LoadTwiddle(far + 2 * (j + half)));
            StoreValue(at, a);
            StoreValue(at + step, b);
            StoreValue(at + 2 * step, c);
            StoreValue(at + 3 * step, d);
        }
    }
}

void RunStages(f64* values, size_t length, u32 from, u32 to, const FourierStages& stages)
{
    if ((to - from) % 2) OneStage(values, length, size_t(1) << from++, stages);
    for (; from < to; from += 2) TwoStages(values, length, size_t(1) << from, stages);
}

void RunAllStages(f64* work, const FourierStages& stages)
{
    const u32 cached = stages.count < kCachedStages ? stages.count : kCachedStages;
    const size_t block = size_t(1) << cached;
    for (size_t start = 0; start < stages.length; start += block) {
        RunStages(work + start * kValue, block, 0, cached, stages);
    }
    RunStages(work, stages.length, cached, stages.count, stages);
}

template <size_t distance = 1>
[[gnu::always_inline]] inline void Transpose(Reals (&rows)[kLanes])
{
    for (size_t i = 0; i < kLanes; ++i) {
        if (!(i & distance)) Exchange<distance>(rows[i], rows[i + distance]);
    }
    if constexpr (2 * distance < kLanes) Transpose<2 * distance>(rows);
}

void GatherRows(const FourierLines& lines, const FourierStages& stages, f64* work)
{
    for (size_t i = 0; i < stages.length; i += kValuesOfVector) {
        Reals numbers[kLanes];
        for (size_t row = 0; row < kLanes; ++row) {
            numbers[row] = Load<Reals>(lines.first + row * lines.lineStep + 2 * i);
        }
        Transpose(numbers);
        for (size_t k = 0; k < kValuesOfVector; ++k) {
            StoreValue(work + stages.places[i + k] * kValue, {numbers[2 * k], numbers[2 * k + 1]});
        }
    }
}

void ScatterRows(const f64* work, const FourierStages& stages, const FourierLines& lines)
{
    const Reals scale = InEachLane(stages.scale);
    for (size_t i = 0; i < stages.length; i += kValuesOfVector) {
        Reals numbers[kLanes];
        for (size_t k = 0; k < kLanes; ++k) numbers[k] = Load<Reals>(work + i * kValue + k * kLanes) * scale;
        Transpose(numbers);
        for (size_t row = 0; row < kLanes; ++row) {
            Store(lines.first + row * lines.lineStep + 2 * i, numbers[row]);
        }
    }
}

// The columns stand in the lanes in another order than in the grid: ScatterColumns puts them back.
void GatherColumns(const FourierLines& lines, const FourierStages& stages, f64* work)
{
    const size_t strip = stages.length * kValue;
    for (size_t i = 0; i < stages.length; ++i) {
        const f64* from = lines.first + i * lines.valueStep;
        const f64* const end = from + 2 * lines.count;
        for (f64* to = work + stages.places[i] * kValue; from != end; from += kValue, to += strip) {
            Complex value = LoadValue(from);
            Exchange<1>(value.re, value.im);
            StoreValue(to, value);
        }
    }
}

void ScatterColumns(const f64* work, const FourierStages& stages, const FourierLines& lines)
{
    const Reals scale = InEachLane(stages.scale);
    const size_t strip = stages.length * kValue;
    for (size_t i = 0; i < stages.length; ++i) {
        f64* to = lines.first + i * lines.valueStep;
        const f64* const end = to + 2 * lines.count;
        for (const f64* from = work + i * kValue; to != end; from += strip, to += kValue) {
            const Complex value = LoadValue(from);
            Complex scaled = {value.re * scale, value.im * scale};
            Exchange<1>(scaled.re, scaled.im);
            StoreValue(to, scaled);
        }
    }
}

// Fewer lines than lanes, or short ones. Lanes without a line compute with zeros.
void GatherAny(const FourierLines& lines, const FourierStages& stages, f64* work)
{
    for (size_t i = 0; i < stages.length; ++i) {
        f64* const to = work + stages.places[i] * kValue;
        StoreValue(to, Complex{});
        for (size_t line = 0; line < lines.count; ++line) {
            const f64* const from = lines.first + line * lines.lineStep + i * lines.valueStep;
            to[line] = from[0];
            to[kLanes + line] = from[1];
        }
    }
}

void ScatterAny(const f64* work, const FourierStages& stages, const FourierLines& lines)
{
    for (size_t i = 0; i < stages.length; ++i) {
        const f64* const from = work + i * kValue;
        for (size_t line = 0; line < lines.count; ++line) {
            f64* const to = lines.first + line * lines.lineStep + i * lines.valueStep;
            to[0] = from[line] * stages.scale;
            to[1] = from[kLanes + line] * stages.scale;
        }
    }
}

// Columns of several strips are read and written together: so few bytes of a row that lies far from the next one would
// use the memory badly.
void TransformColumns(const FourierLines& lines, const FourierStages& stages, f64* work)
{
    GatherColumns(lines, stages, work);
    for (size_t line = 0; line < lines.count; line += kLanes) {
        RunAllStages(work + line * 2 * stages.length, stages);
    }
    ScatterColumns(work, stages, lines);
}

void TransformRows(const FourierLines& lines, const FourierStages& stages, f64* work)
{
    for (size_t line = 0; line < lines.count; line += kLanes) {
        const FourierLines strip = {lines.first + line * lines.lineStep, lines.valueStep, lines.lineStep, kLanes};
        GatherRows(strip, stages, work);
        RunAllStages(work, stages);
        ScatterRows(work, stages, strip);
    }
}

void TransformAny(const FourierLines& lines, const FourierStages& stages, f64* work)
{
    for (size_t line = 0; line < lines.count; line += kLanes) {
        const size_t count = lines.count - line < kLanes ? lines.count - line : kLanes;
        const FourierLines strip = {lines.first + line * lines.lineStep, lines.valueStep, lines.lineStep, count};
        GatherAny(strip, stages, work);
        RunAllStages(work, stages);
        ScatterAny(work, stages, strip);
    }
}

void Transform(const FourierLines& lines, const FourierStages& stages, f64* work)
{
    const bool isFull = lines.count % kLanes == 0;
    if (isFull && lines.lineStep == 2) TransformColumns(lines, stages, work);
    else if (isFull && stages.length >= kValuesOfVector) TransformRows(lines, stages, work);
    else TransformAny(lines, stages, work);
}

}  // namespace

extern const FourierKernels kFourierKernels;
const FourierKernels kFourierKernels = {kLanes, Transform};

}  // namespace zlv::ZLV_TARGET
