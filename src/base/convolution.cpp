// Convolution: every row of the source is widened by its borders and put once into the form that the sums are made of,
// doubles or pairs of integers; a ring keeps as many rows as the kernel is high.
#include "base/convolution.h"

#include "base/channel_list.h"
#include "base/convolution.kernels.h"
#include "base/convolution_box.h"
#include "base/image_view.h"
#include "base/row_ring.h"
#include "base/sample.h"

#include <algorithm>

namespace zlv {

namespace {

struct Kernel {
    const f64* entries;
    u32 width, height;

    u64 Count() const { return u64(width) * height; }
};

// A kernel as whole numbers in units of a power of two: 0.25 is 1 in units of 0.25.
struct IntegerKernel {
    MVBuffer<u32> pairs;  // the weights of two columns, the left one in the lower half
    u64 pairsPerRow = 0;
    f64 unit = 1;
    i32 sum = 0;
};

constexpr f64 kSmallestUnit = 1.0 / (1 << 20);
constexpr f64 kLargestEntry = 2147483647;
constexpr f64 kLargestWeight = 32767;  // of pairs

// The largest power of two, up to 1, that every entry is a multiple of; 0 if there is none that serves.
f64 FindUnit(const Kernel& kernel)
{
    f64 unit = 1;
    for (u64 i = 0; i < kernel.Count(); ++i) {
        const f64 entry = kernel.entries[i];
        if (!(entry >= -kLargestEntry && entry <= kLargestEntry)) return 0;  // also what is no number
        while (entry / unit != f64(i64(entry / unit))) {
            unit /= 2;
            if (unit < kSmallestUnit) return 0;
        }
    }
    return unit;
}

// With entries m * unit, every product and every partial sum in double precision is a whole number of units. When the
// absolute values of m add up to at most 2^31 / top, none of these numbers reaches 2^31: doubles hold them all without
// rounding, and integers of 32 bits give the same sums in any order.
bool IsExactInIntegers(const Kernel& kernel, f64 unit, u32 top)
{
    if (unit == 0) return false;
    const i64 limit = 0x7FFFFFFF / i64(top);
    i64 sum = 0;
    for (u64 i = 0; i < kernel.Count(); ++i) {
        const i64 weight = i64(kernel.entries[i] / unit);
        if (weight > i64(kLargestWeight) || weight < -i64(kLargestWeight)) return false;
        sum += weight < 0 ? -weight : weight;
        if (sum > limit) return false;
    }
    return true;
}

[[nodiscard]] bool MakeIntegerKernel(const Kernel& kernel, f64 unit, IntegerKernel& made)
{
    made.unit = unit;
    made.pairsPerRow = (u64(kernel.width) + 1) / 2;
    if (!made.pairs.Resize(made.pairsPerRow * kernel.height)) return false;
    u32* pair = made.pairs.GetData();
    for (u64 j = 0; j < kernel.height; ++j) {
        const f64* const row = kernel.entries + j * kernel.width;
        for (u64 i = 0; i < kernel.width; i += 2) {
            const i32 left = i32(row[i] / unit);
            const i32 right = i + 1 < kernel.width ? i32(row[i + 1] / unit) : 0;
            *pair++ = u32(left & 0xFFFF) | u32(right) << 16;
            made.sum += left + right;
        }
    }
    return true;
}

void MakeDoubles(const u8* from, size_t n, f64* to) { Kernels<ConvolutionKernels>().toDoubles8(from, n, to); }
void MakeDoubles(const u16* from, size_t n, f64* to) { Kernels<ConvolutionKernels>().toDoubles16(from, n, to); }
void MakePairs(const u8* from, size_t n, size_t step, u32* to)
{
    Kernels<ConvolutionKernels>().toPairs8(from, n, step, to);
}
void MakePairs(const u16* from, size_t n, size_t step, u32* to)
{
    Kernels<ConvolutionKernels>().toPairs16(from, n, step, to);
}
void Compute(const DoubleWindow& window, size_t n, u8* to) { Kernels<ConvolutionKernels>().doubleRow8(window, n, to); }
void Compute(const DoubleWindow& window, size_t n, u16* to)
{
    Kernels<ConvolutionKernels>().doubleRow16(window, n, to);
}
void Compute(const PairWindow& window, size_t n, u8* to) { Kernels<ConvolutionKernels>().pairRow8(window, n, to); }
void Compute(const PairWindow& window, size_t n, u16* to) { Kernels<ConvolutionKernels>().pairRow16(window, n, to); }

// The sums in double precision.
template <class T>
class DoubleSums {
public:
    using Form = f64;

    DoubleSums(const Kernel& kernel, size_t channels, const ConvolutionResult& result)
        : kernel_(kernel), channels_(channels), result_(result)
    {
    }

    void MakeRow(const T* samples, size_t count, f64* row) const { MakeDoubles(samples, count, row); }

    void Compute(const f64* const* rows, const f64* centre, size_t count, T* out) const
    {
        const DoubleWindow window = {rows, kernel_.entries, kernel_.height, kernel_.width, channels_, centre, result_};
        zlv::Compute(window, count, out);
    }

private:
    const Kernel& kernel_;
    const size_t channels_;
    const ConvolutionResult result_;
};

// The same sums in integers.
template <class T>
class IntegerSums {
public:
    using Form = u32;

    IntegerSums(const IntegerKernel& kernel, u32 height, size_t channels, const ConvolutionResult& result)
        : kernel_(kernel), height_(height), channels_(channels), result_(result)
    {
    }

    void MakeRow(const T* samples, size_t count, u32* row) const { MakePairs(samples, count, channels_, row); }

    void Compute(const u32* const* rows, const u32* centre, size_t count, T* out) const
    {
        const PairWindow window = {rows,          kernel_.pairs.GetData(),
                                   height_,       kernel_.pairsPerRow,
                                   2 * channels_, centre,
                                   kFlip,         u32(i32(kFlip) * kernel_.sum),
                                   kernel_.unit,  result_};
        zlv::Compute(window, count, out);
    }

private:
    static constexpr u32 kFlip = sizeof(T) == 1 ? 0 : 0x8000;

    const IntegerKernel& kernel_;
    const u32 height_;
    const size_t channels_;
    const ConvolutionResult result_;
};

// Row after row of the destination, with the rows of the source around it in a ring.
template <class T, class Sums>
u32 FilterRows(BaseWork& work, const ImageView<const T>& src, const ImageView<T>& dst, const ChannelList& channels,
               const Kernel& kernel, const Sums& sums)
{
    const size_t count = size_t(src.width) * channels.Count();
    const size_t marginX = kernel.width / 2, marginY = kernel.height / 2;
    const size_t wideCount = count + 2 * marginX * channels.Count();
    const size_t formCount = wideCount + kConvolutionBlock;
    MVBuffer<T> wide;
    RowRing<typename Sums::Form> ring;
    MVBuffer<const typename Sums::Form*> rows;
    MVBuffer<T> out;
    const bool hasMemory = wide.Resize(formCount + channels.Count()) &&
                           ring.Resize(std::min(kernel.height, src.height), formCount) && rows.Resize(kernel.height) &&
                           out.Resize(count);
    if (!hasMemory) return work.Fail(Error::OutOfMemory);
    std::fill(wide.GetData() + wideCount, wide.GetData() + wide.GetCount(), T(0));

    const u32 lastY = src.height - 1;
    u64 made = 0;
    for (u32 y = 0; y < src.height; ++y) {
        for (; made <= std::min<u64>(y + marginY, lastY); ++made) {
            channels.Gather(src.Row(u32(made)), src.width, wide.GetData() + marginX * channels.Count());
            ReplicateBorders(wide.GetData(), src.width, channels.Count(), marginX);
            sums.MakeRow(wide.GetData(), formCount, ring.Row(made));
        }
        for (u64 j = 0; j < kernel.height; ++j) {
            const u64 unclamped = y + j < marginY ? 0 : y + j - marginY;
            rows[j] = ring.Row(std::min<u64>(unclamped, lastY));
        }
        const auto* const centre = ring.Row(y) + marginX * channels.Count();
        T* const to = channels.IsAll() ? dst.Row(y) : out.GetData();
        sums.Compute(rows.GetData(), centre, count, to);
        if (!channels.IsAll()) channels.Scatter(out.GetData(), src.width, dst.Row(y));
        if (!work.Report(y, src.height)) return 0;
    }
    return 1;
}

// The same for a kernel whose windows slide.
template <class T>
u32 FilterRowsByBox(BaseWork& work, const ImageView<const T>& src, const ImageView<T>& dst, const ChannelList& channels,
                    const BoxKernel& kernel, const ConvolutionResult& result)
{
    BoxRows<T> rows(src, channels, kernel, result);
    MVBuffer<T> out;
    if (!rows.Prepare() || !out.Resize(src.width * u64(channels.Count()))) return work.Fail(Error::OutOfMemory);
    for (u32 y = 0; y < src.height; ++y) {
        rows.MakeRow(y, channels.IsAll() ? dst.Row(y) : out.GetData());
        if (!channels.IsAll()) channels.Scatter(out.GetData(), src.width, dst.Row(y));
        if (!work.Report(y, src.height)) return 0;
    }
    return 1;
}

bool IsGoodKernel(const Kernel& kernel)
{
    if (!kernel.entries || kernel.width % 2 == 0 || kernel.height % 2 == 0) return false;
    return kernel.Count() <= SIZE_MAX / 2 / sizeof(f64);
}

template <class T>
u32 Convolve(MVThreadContext& context, Error& error, const ImageView<const T>& src, const ImageView<T>& dst,
             const Kernel& kernel, f64 scale, u32 flags)
{
    BaseWork work(context, error);
    if (!src.data || !dst.data || src.data == dst.data) return work.Fail(Error::BadArgument);
    if (src.channels > kMaxMaskedChannels) return work.Fail(Error::BadArgument);
    if (!IsGoodKernel(kernel)) return work.Fail(Error::BadArgument);

    const ChannelList channels(flags, src.channels);
    if (src.width == 0 || channels.Count() == 0) {
        for (u32 y = 0; y < src.height; ++y) {
            if (!work.Report(y, src.height)) return 0;
        }
        return 1;
    }
    if (src.height == 0) return 1;

    const ConvolutionResult result = {scale, f64(kTop<T>), !(flags & kPlainSum)};
    const f64 unit = FindUnit(kernel);
    const BoxKernel box = FindBoxKernel(kernel.entries, kernel.width, kernel.height, unit, kTop<T>);
    if (box.IsBox()) return FilterRowsByBox(work, src, dst, channels, box, result);
    if (!IsExactInIntegers(kernel, unit, kTop<T>)) {
        const DoubleSums<T> sums(kernel, channels.Count(), result);
        return FilterRows(work, src, dst, channels, kernel, sums);
    }
    IntegerKernel integers;
    if (!MakeIntegerKernel(kernel, unit, integers)) return work.Fail(Error::OutOfMemory);
    const IntegerSums<T> sums(integers, kernel.height, channels.Count(), result);
    return FilterRows(work, src, dst, channels, kernel, sums);
}

}  // namespace

u32 MV40_ApplyConvolutionFilterToImage(const void* src, u32 width, u32 height, u32 channels, u32 srcRowStride,
                                       void* dst, u32 dstRowStride, u32 kernelWidth, u32 kernelHeight,
                                       const f64* kernel, f64 scale, u32 flags)
{
    return InBaseCall("MV40_ApplyConvolutionFilterToImage", [&](MVThreadContext& context, Error& error) {
        return WithSamples(src, flags, [&]<class T>(const T* data) {
            const ImageView<const T> from = {data, width, height, channels, srcRowStride};
            const ImageView<T> to = {static_cast<T*>(dst), width, height, channels, dstRowStride};
            return Convolve<T>(context, error, from, to, {kernel, kernelWidth, kernelHeight}, scale, flags);
        });
    });
}

}  // namespace zlv
