// Extremes of bytes, in vectors.
//
// An extreme taken twice is the same extreme: what is left behind the last whole vector is done with one that begins
// earlier, over what has been done already, also where the output is an input.
#include "base/running_extremes.kernels.h"

#include "base/kernel_vectors.h"

namespace zlv::ZLV_TARGET {

namespace {

using Vector = RealsOf<u8>;

struct Largest {
    template <class V>
    static V Of(V a, V b)
    {
        return a < b ? b : a;
    }
};

struct Smallest {
    template <class V>
    static V Of(V a, V b)
    {
        return b < a ? b : a;
    }
};

// Calls make.operator()<V>(i) for i up to count, where V is the type of what begins there: a vector or a byte.
template <class Make>
void ForBytes(size_t count, Make make)
{
    if (count < kVectorBytes) {
        for (size_t i = 0; i < count; ++i) make.template operator()<u8>(i);
        return;
    }
    size_t i = 0;
    for (; i + kVectorBytes <= count; i += kVectorBytes) make.template operator()<Vector>(i);
    if (i < count) make.template operator()<Vector>(count - kVectorBytes);
}

template <class Op, size_t kRows>
void OfRowCount(const u8* const* rows, size_t count, u8* out)
{
    ForBytes(count, [=]<class V>(size_t i) {
        V found = Load<V>(rows[0] + i);
#pragma GCC unroll 8
        for (size_t j = 1; j < kRows; ++j) found = Op::Of(found, Load<V>(rows[j] + i));
        Store(out + i, found);
    });
}

template <class Op>
void OfRows(const u8* const* rows, size_t rowCount, size_t count, u8* out)
{
    switch (rowCount) {
    case 1: return OfRowCount<Op, 1>(rows, count, out);
    case 3: return OfRowCount<Op, 3>(rows, count, out);
    default: return OfRowCount<Op, kMostRowsAtOnce>(rows, count, out);
    }
}

template <class Op>
void OfTwo(const u8* a, const u8* b, size_t count, u8* out)
{
    ForBytes(count, [=]<class V>(size_t i) { Store(out + i, Op::Of(Load<V>(a + i), Load<V>(b + i))); });
}

template <class Op>
void Join(const u8* rest, u8* soFar, const u8* next, size_t count, u8* out)
{
    ForBytes(count, [=]<class V>(size_t i) {
        const V found = Op::Of(Load<V>(soFar + i), Load<V>(next + i));
        Store(soFar + i, found);
        Store(out + i, Op::Of(found, Load<V>(rest + i)));
    });
}

template <class Op>
void OfThree(const u8* a, const u8* b, const u8* c, size_t count, u8* out)
{
    ForBytes(count, [=]<class V>(size_t i) {
        Store(out + i, Op::Of(Op::Of(Load<V>(a + i), Load<V>(b + i)), Load<V>(c + i)));
    });
}

template <class Op>
void OfFour(const u8* a, const u8* b, const u8* c, const u8* d, size_t count, u8* out)
{
    ForBytes(count, [=]<class V>(size_t i) {
        const V left = Op::Of(Load<V>(a + i), Load<V>(b + i));
        Store(out + i, Op::Of(left, Op::Of(Load<V>(c + i), Load<V>(d + i))));
    });
}

// Extremes of 4, 16, 64, ... neighbours first. Up to four of the last kind, which may overlap, make the window.
template <class Op>
void Span(u8* samples, u8* work, size_t count, size_t window, size_t step, u8* out)
{
    size_t done = 1;
    for (; 4 * done <= window; done *= 4) {
        const size_t next = done * step;
        OfFour<Op>(samples, samples + next, samples + 2 * next, samples + 3 * next, count + (window - 4 * done) * step,
                   work);
        u8* const made = work;
        work = samples;
        samples = made;
    }
    const u8* const last = samples + (window - done) * step;
    const size_t next = done * step;
    if (window <= 2 * done) OfTwo<Op>(samples, last, count, out);
    else if (window <= 3 * done) OfThree<Op>(samples, samples + next, last, count, out);
    else OfFour<Op>(samples, samples + next, samples + 2 * next, last, count, out);
}

template <class Op>
constexpr RunningExtremesKernels::Operation kOperation = {OfRows<Op>, OfTwo<Op>, Join<Op>, Span<Op>};

}  // namespace

extern const RunningExtremesKernels kRunningExtremesKernels;
const RunningExtremesKernels kRunningExtremesKernels = {kOperation<Largest>, kOperation<Smallest>};

}  // namespace zlv::ZLV_TARGET
