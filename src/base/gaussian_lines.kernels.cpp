// Lines through the recursive Gaussian, one line a lane.
//
// The recursion waits for its own last result, so along a line nothing can go side by side. Across lines everything
// can: each lane runs its line in the prescribed order, and two vectors take turns so that one computes while the
// other waits.
#include "base/gaussian_lines.kernels.h"

#include "base/kernel_vectors.h"

namespace zlv::ZLV_TARGET {

namespace {

constexpr size_t kVectors = 2;  // that take turns
constexpr size_t kOrder = 4;    // samples that the recursion looks back

// Toward zero. What no i32 holds becomes the lowest one, as the processors that we are used on do it.
template <class Real>
typename Lanes<Real>::Ints Truncate(RealsOf<Real> value)
{
#ifdef ZLV_PORTABLE
    constexpr Real kLowest = -2147483648.0;
    value = (value >= kLowest && value < -kLowest) ? value : RealsOf<Real>{} + kLowest;
#endif
    return __builtin_convertvector(value, typename Lanes<Real>::Ints);
}

template <class Real>
void StoreInts(u16* to, typename Lanes<Real>::Ints value)
{
    Store(to, __builtin_convertvector(value, typename Lanes<Real>::Words));
}

// What differs between the passes: how samples are read, and how results are kept.
template <class Number>
struct FirstPass {
    using Real = Number;

    static RealsOf<Real> Read(const u16* from)
    {
        const auto words = Load<typename Lanes<Real>::Words>(from);
        return __builtin_convertvector(__builtin_convertvector(words, typename Lanes<Real>::Ints), RealsOf<Real>);
    }
    void Write(u16* to, RealsOf<Real> value) const { StoreInts<Real>(to, Truncate<Real>(value)); }
};

template <class Number>
struct SecondPass {
    using Real = Number;

    static RealsOf<Real> Read(const u16* from)
    {
        const auto words = Load<typename Lanes<Real>::SignedWords>(from);
        return __builtin_convertvector(__builtin_convertvector(words, typename Lanes<Real>::Ints), RealsOf<Real>);
    }
    void Write(u16* to, RealsOf<Real> value) const
    {
        const RealsOf<Real> bottom = {};
        value = value < bottom ? bottom : value;
        value = value > top ? top : value;
        StoreInts<Real>(to, Truncate<Real>(value));
    }

    RealsOf<Real> top;
};

// One direction of the filter: weights of four samples and of the four results before, the latest first.
template <class Real>
struct Recursion {
    Real weights[kOrder];
    Real feedback[kOrder];
    Real boundary[kOrder];
    Real start;  // result for a first sample of 1
};

// Forward, the latest sample is the result's own.
template <class Real>
Recursion<Real> Forward(const RecursiveGaussianCoefficients<Real>& filter)
{
    Recursion<Real> recursion;
    Real sum = 0;
    for (size_t j = 0; j < kOrder; ++j) {
        recursion.weights[j] = filter.n[j];
        recursion.feedback[j] = filter.d[j + 1];
        recursion.boundary[j] = filter.forwardBoundary[j + 1];
        sum += filter.n[j + 1] - filter.forwardBoundary[j + 1];
    }
    recursion.start = filter.n[0] + sum;
    return recursion;
}

// Backward, it is the one after that.
template <class Real>
Recursion<Real> Backward(const RecursiveGaussianCoefficients<Real>& filter)
{
    Recursion<Real> recursion;
    recursion.start = 0;
    for (size_t j = 0; j < kOrder; ++j) {
        recursion.weights[j] = filter.m[j + 1];
        recursion.feedback[j] = filter.d[j + 1];
        recursion.boundary[j] = filter.backwardBoundary[j + 1];
        recursion.start += filter.m[j + 1] - filter.backwardBoundary[j + 1];
    }
    return recursion;
}

// A vector of lines on their way: the four latest samples and results, the latest first.
template <class Real>
struct Lines {
    using Reals = RealsOf<Real>;

    Reals x[kOrder];
    Reals y[kOrder];

    // Samples before the first one are equal to it.
    void Begin(Reals first)
    {
        for (Reals& sample : x) sample = first;
    }
    void PushSample(Reals sample) { x[3] = x[2], x[2] = x[1], x[1] = x[0], x[0] = sample; }
    void PushResult(Reals result) { y[3] = y[2], y[2] = y[1], y[1] = y[0], y[0] = result; }

    Reals Weighted(const Recursion<Real>& recursion) const
    {
        const Real* const w = recursion.weights;
        return w[0] * x[0] + w[1] * x[1] + w[2] * x[2] + w[3] * x[3];
    }

    // Result number i of the first four. What came before the first sample is in the boundaries.
    Reals Early(const Recursion<Real>& recursion, size_t i, Reals first) const
    {
        if (i == 0) return first * recursion.start;
        Reals result = Weighted(recursion);
        for (size_t j = 0; j < kOrder; ++j) {
            result -= j < i ? recursion.feedback[j] * y[j] : recursion.boundary[j] * first;
        }
        return result;
    }

    Reals Next(const Recursion<Real>& recursion) const
    {
        const Real* const d = recursion.feedback;
        return Weighted(recursion) - d[0] * y[0] - d[1] * y[1] - d[2] * y[2] - d[3] * y[3];
    }
};

// From the start of `kVectors` vectors of lines to their end. Keeps the results in `work`.
template <class Pass, class Real = typename Pass::Real>
void RunForward(const Recursion<Real>& recursion, const u16* samples, size_t step, size_t length, Real* work)
{
    using Reals = RealsOf<Real>;
    constexpr size_t kLanes = Lanes<Real>::kCount;
    Lines<Real> lines[kVectors];
    const auto run = [&](size_t i, size_t v, auto result) {
        lines[v].PushSample(Pass::Read(samples + i * step + v * kLanes));
        const Reals y = result(lines[v]);
        lines[v].PushResult(y);
        Store(work + (i * kVectors + v) * kLanes, y);
    };
    const size_t early = length < kOrder ? length : kOrder;
    for (size_t v = 0; v < kVectors; ++v) {
        const Reals first = Pass::Read(samples + v * kLanes);
        lines[v].Begin(first);
        for (size_t i = 0; i < early; ++i) run(i, v, [&](const auto& line) { return line.Early(recursion, i, first); });
    }
    for (size_t i = early; i < length; ++i) {
        for (size_t v = 0; v < kVectors; ++v) run(i, v, [&](const auto& line) { return line.Next(recursion); });
    }
}

// From the end of the lines to their start; adds what RunForward left and writes the lines.
template <class Pass, class Real = typename Pass::Real>
void RunBackward(const Pass& pass, const Recursion<Real>& recursion, u16* samples, size_t step, size_t length,
                 const Real* work)
{
    using Reals = RealsOf<Real>;
    constexpr size_t kLanes = Lanes<Real>::kCount;
    Lines<Real> lines[kVectors];
    const auto run = [&](size_t i, size_t v, auto result) {
        u16* const at = samples + i * step + v * kLanes;
        const Reals z = result(lines[v]);
        lines[v].PushResult(z);
        lines[v].PushSample(Pass::Read(at));
        pass.Write(at, Load<Reals>(work + (i * kVectors + v) * kLanes) + z);
    };
    const size_t early = length < kOrder ? length : kOrder;
    for (size_t v = 0; v < kVectors; ++v) {
        const Reals last = Pass::Read(samples + (length - 1) * step + v * kLanes);
        lines[v].Begin(last);
        for (size_t i = 0; i < early; ++i) {
            run(length - 1 - i, v, [&](const auto& line) { return line.Early(recursion, i, last); });
        }
    }
    for (size_t i = length - early; i-- > 0;) {
        for (size_t v = 0; v < kVectors; ++v) run(i, v, [&](const auto& line) { return line.Next(recursion); });
    }
}

template <class Pass, class Real = typename Pass::Real>
void RunGroup(const Pass& pass, const RecursiveGaussianCoefficients<Real>& filter, u16* lines, size_t step,
              size_t length, Real* work)
{
    constexpr size_t kTogether = kVectors * Lanes<Real>::kCount;
    static_assert(kLineGroup % kTogether == 0);
    const Recursion<Real> forward = Forward(filter), backward = Backward(filter);
    for (size_t line = 0; line < kLineGroup; line += kTogether) {
        RunForward<Pass>(forward, lines + line, step, length, work);
        RunBackward(pass, backward, lines + line, step, length, work);
    }
}

template <class Real>
void RunFirstPass(const RecursiveGaussianCoefficients<Real>& filter, u16* lines, size_t step, size_t length, Real* work)
{
    RunGroup(FirstPass<Real>{}, filter, lines, step, length, work);
}

template <class Real>
void RunSecondPass(const RecursiveGaussianCoefficients<Real>& filter, u16* lines, size_t step, size_t length,
                   Real* work, u32 top)
{
    RunGroup(SecondPass<Real>{RealsOf<Real>{} + Real(top)}, filter, lines, step, length, work);
}

constexpr size_t kTile = 8;
using TileRow __attribute__((vector_size(kTile * sizeof(u16)))) = u16;

// Each round moves every element one bit of its place further; three rounds exchange the row's bits for the column's.
void TransposeTile(const u16* from, size_t fromStep, u16* to, size_t toStep)
{
    TileRow rows[kTile];
    for (size_t y = 0; y < kTile; ++y) rows[y] = Load<TileRow>(from + y * fromStep);
    for (size_t round = 0; round < 3; ++round) {
        TileRow mixed[kTile];
        for (size_t i = 0; i < kTile / 2; ++i) {
            const TileRow a = rows[i], b = rows[i + kTile / 2];
            mixed[2 * i] = __builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11);
            mixed[2 * i + 1] = __builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15);
        }
        for (size_t i = 0; i < kTile; ++i) rows[i] = mixed[i];
    }
    for (size_t x = 0; x < kTile; ++x) Store(to + x * toStep, rows[x]);
}

void Transpose(const u16* from, size_t fromStep, u16* to, size_t toStep, size_t rows, size_t columns)
{
    const size_t wholeRows = rows - rows % kTile, wholeColumns = columns - columns % kTile;
    for (size_t x = 0; x < wholeColumns; x += kTile) {
        for (size_t y = 0; y < wholeRows; y += kTile) {
            TransposeTile(from + y * fromStep + x, fromStep, to + x * toStep + y, toStep);
        }
    }
    for (size_t x = 0; x < columns; ++x) {
        for (size_t y = x < wholeColumns ? wholeRows : 0; y < rows; ++y) to[x * toStep + y] = from[y * fromStep + x];
    }
}

void Widen(const u8* __restrict from, u16* __restrict to, size_t count)
{
    for (size_t i = 0; i < count; ++i) to[i] = from[i];
}

void NarrowRow(const u16* __restrict from, u8* __restrict to, size_t count)
{
    for (size_t i = 0; i < count; ++i) to[i] = u8(from[i]);
}

void Narrow(const u16* from, size_t fromStep, u8* to, size_t toStep, size_t rows, size_t columns)
{
    for (size_t y = 0; y < rows; ++y, from += fromStep, to += toStep) {
        if (columns == kColumnBlock) NarrowRow(from, to, kColumnBlock);
        else NarrowRow(from, to, columns);
    }
}

}  // namespace

extern const GaussianLineKernels kGaussianLineKernels;
const GaussianLineKernels kGaussianLineKernels = {
    RunFirstPass<f32>, RunFirstPass<f64>, RunSecondPass<f32>, RunSecondPass<f64>, Transpose, Widen, Narrow};

}  // namespace zlv::ZLV_TARGET
