#include "base/gaussian_recursive.h"

#include "base/gaussian_coefficients.h"
#include "base/gaussian_lines.kernels.h"
#include "base/repeated_columns.h"
#include "runtime/array.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace zlv {

namespace {

constexpr u64 kAlignment = 64;

constexpr size_t RoundUpToGroup(size_t lines) { return (lines + kLineGroup - 1) / kLineGroup * kLineGroup; }

// The image between the passes: rows of 16-bit integers, padded to whole groups of columns. A group more keeps the rows
// of a column, at the usual widths, from sharing a few sets of the cache. Rows that repeat the one above them are kept
// and filtered once: shadows and frames consist of little else.
class WorkPlane {
public:
    [[nodiscard]] bool Resize(u64 width, u64 height)
    {
        if (width == 0 || height == 0) return false;
        width_ = width;
        stride_ = RoundUpToGroup(width) + (width > kLineGroup ? kLineGroup : 0);
        if (height > SIZE_MAX / stride_) return false;
        return places_.Resize(height) && values_.Resize(stride_ * height, kAlignment);
    }

    // The kept rows, and the one of them that row y of the image is.
    void SetPlace(u32 y, u32 kept) { places_[y] = kept; }
    u16* KeptRow(u32 kept) { return values_.GetData() + size_t(kept) * stride_; }
    u16* Row(u32 y) { return KeptRow(places_[y]); }
    size_t Width() const { return width_; }
    size_t Stride() const { return stride_; }

private:
    MVBuffer<u32> places_;
    MVAlignedArray<u16> values_;
    size_t width_ = 0;
    size_t stride_ = 0;
};

template <class Real, class T>
class RecursiveBlur {
public:
    RecursiveBlur(BaseWork& work, const BlurImages<T>& images, f32 sigma)
        : work_(work),
          kernels_(Kernels<GaussianLineKernels>()),
          images_(images),
          width_(images.source.width),
          height_(images.source.height),
          filter_(MakeRecursiveGaussian<Real>(sigma))
    {
    }

    // For spans of `count` channels.
    [[nodiscard]] bool Resize(u32 count)
    {
        const u64 samples = u64(width_) * count;
        blockStep_ = std::min(kColumnBlock, RoundUpToGroup(samples));
        const u64 blockSize = std::max(samples * kLineGroup, height_ * blockStep_);
        return plane_.Resize(samples, height_) && repeated_.Resize(samples) && block_.Resize(blockSize, kAlignment) &&
               lineWork_.Resize(std::max<u64>(width_, height_) * kLineGroup, kAlignment);
    }

    // False after a cancel.
    bool Blur(const ChannelSpan& span) { return BlurRows(span) && BlurColumns(span); }

private:
    bool BlurRows(const ChannelSpan& span)
    {
        kept_ = 0;
        u32 blurred = 0, reported = 0;
        for (u32 y = 0; y < height_; ++y) {
            if (!RepeatsRow(y, span)) ReadRow(y, kept_++, span);
            plane_.SetPlace(y, kept_ - 1);
            if (kept_ - blurred < kLineGroup && y + 1 < height_) continue;
            BlurGroupOfRows(blurred, kept_ - blurred, span.count);
            blurred = kept_;
            for (; reported <= y; ++reported) {
                if (!work_.Report(reported, height_)) return false;
            }
        }
        return true;
    }

    bool RepeatsRow(u32 y, const ChannelSpan& span) const
    {
        const ImageView<const T>& source = images_.source;
        if (y == 0 || span.count < source.channels) return false;
        return std::memcmp(source.Row(y), source.Row(y - 1), source.SamplesPerRow() * sizeof(T)) == 0;
    }

    // Lanes without a row keep what they have: no other lane sees it.
    void BlurGroupOfRows(u32 kept, u32 rows, u32 count)
    {
        if (rows == 0) return;
        u16* const block = block_.GetData();
        if (rows < kLineGroup) std::fill_n(block, plane_.Width() * kLineGroup, u16{0});
        kernels_.transpose(plane_.KeptRow(kept), plane_.Stride(), block, kLineGroup, rows, plane_.Width());
        for (u32 c = 0; c < count; ++c) FirstPass(block + c * kLineGroup, count * kLineGroup);
        kernels_.transpose(block, kLineGroup, plane_.KeptRow(kept), plane_.Stride(), plane_.Width(), rows);
    }

    // Blocks of columns are copied out of the plane, which is then read once and by whole cache lines.
    bool BlurColumns(const ChannelSpan& span)
    {
        if (BlurRepeatedColumns(span)) return true;
        for (size_t x = 0; x < plane_.Width(); x += kColumnBlock) {
            const size_t columns = std::min(kColumnBlock, plane_.Width() - x);
            u16* const block = block_.GetData();
            const size_t lanes = RoundUpToGroup(columns);
            for (size_t y = 0; y < height_; ++y) std::copy_n(plane_.Row(u32(y)) + x, lanes, block + y * blockStep_);
            for (size_t i = 0; i < columns; i += kLineGroup) SecondPass(block + i);
            if (!WriteColumns(x, columns, span)) return false;
        }
        return true;
    }

    // Columns that repeat their neighbour are filtered once. False when there are too few of them, or when somebody
    // wants to hear of each.
    bool BlurRepeatedColumns(const ChannelSpan& span)
    {
        if (work_.MayReport() || span.count < images_.destination.channels) return false;
        // Distinct columns wait at the beginnings of their rows, which no other row may reach.
        if (images_.destination.stride < images_.destination.SamplesPerRow()) return false;
        if (!repeated_.Find(kept_, span.count, [&](u32 kept) { return plane_.KeptRow(kept); })) return false;
        const ImageView<T>& image = images_.destination;
        u16* const block = block_.GetData();
        for (size_t first = 0; first < repeated_.Count(); first += blockStep_) {
            const size_t count = std::min(blockStep_, repeated_.Count() - first);
            for (u32 y = 0; y < height_; ++y) repeated_.Gather(plane_.Row(y), first, count, block + y * blockStep_);
            for (size_t i = 0; i < count; i += kLineGroup) SecondPass(block + i);
            for (u32 y = 0; y < height_; ++y) {
                T* const to = image.Row(y) + first;
                for (size_t i = 0; i < count; ++i) to[i] = T(block[y * blockStep_ + i]);
            }
        }
        repeated_.Spread(image, reinterpret_cast<T*>(block));
        return true;
    }

    // With somebody who may cancel, no column is written before the report of the one before it.
    bool WriteColumns(size_t x, size_t columns, const ChannelSpan& span)
    {
        if (work_.MayReport()) {
            for (size_t i = 0; i < columns; ++i) {
                WriteBlock(x + i, block_.GetData() + i, 1, span);
                if (!work_.Report(u32(x + i), width_)) return false;
            }
        } else {
            WriteBlock(x, block_.GetData(), columns, span);
        }
        return true;
    }

    // Writes the block from column x of the span on.
    void WriteBlock(size_t x, const u16* from, size_t columns, const ChannelSpan& span)
    {
        const ImageView<T>& image = images_.destination;
        const size_t step = span.count < image.channels ? image.channels : 1;
        T* to = image.data + span.first + x * step;
        if (sizeof(T) == 1 && step == 1 && columns > 1) {
            kernels_.narrow(from, blockStep_, reinterpret_cast<u8*>(to), image.stride, height_, columns);
            return;
        }
        for (u32 y = 0; y < height_; ++y, from += blockStep_, to += image.stride) {
            for (size_t i = 0; i < columns; ++i) to[i * step] = T(from[i]);
        }
    }

    void FirstPass(u16* lines, size_t step)
    {
        if constexpr (std::is_same_v<Real, f32>) {
            kernels_.firstPass32(filter_, lines, step, width_, lineWork_.GetData());
        } else {
            kernels_.firstPass64(filter_, lines, step, width_, lineWork_.GetData());
        }
    }

    void SecondPass(u16* lines)
    {
        if constexpr (std::is_same_v<Real, f32>) {
            kernels_.secondPass32(filter_, lines, blockStep_, height_, lineWork_.GetData(), kTop<T>);
        } else {
            kernels_.secondPass64(filter_, lines, blockStep_, height_, lineWork_.GetData(), kTop<T>);
        }
    }

    void ReadRow(u32 y, u32 kept, const ChannelSpan& span)
    {
        const T* const from = images_.source.Row(y) + span.first;
        u16* const to = plane_.KeptRow(kept);
        const size_t channels = images_.source.channels;
        if (span.count < channels) {
            for (size_t x = 0; x < width_; ++x) to[x] = from[x * channels];
        } else if constexpr (sizeof(T) == 1) {
            kernels_.widen(from, to, plane_.Width());
        } else {
            std::copy_n(from, plane_.Width(), to);
        }
        std::fill(to + plane_.Width(), to + plane_.Stride(), u16{0});
    }

    BaseWork& work_;
    const GaussianLineKernels& kernels_;
    const BlurImages<T> images_;
    const u32 width_, height_;
    const RecursiveGaussianCoefficients<Real> filter_;
    WorkPlane plane_;
    u32 kept_ = 0;  // rows of the plane
    RepeatedColumns repeated_;
    MVAlignedArray<u16> block_;      // a group of rows, turned, or a block of columns
    size_t blockStep_ = 0;           // from one row of a block of columns to the next
    MVAlignedArray<Real> lineWork_;  // what the kernels keep between the directions
};

}  // namespace

template <class Real, class T>
u32 BlurRecursively(BaseWork& work, const BlurImages<T>& images, f32 sigma, u32 flags)
{
    RecursiveBlur<Real, T> blur(work, images, sigma);
    const u32 channels = images.source.channels;
    const u32 together = ChannelsTogether(flags, channels, !work.MayReport());
    if (!blur.Resize(together)) return work.Fail(Error::OutOfMemory);
    return ForEachSpan(flags, channels, together, [&](const ChannelSpan& span) { return blur.Blur(span); });
}

template u32 BlurRecursively<f32>(BaseWork&, const BlurImages<u8>&, f32, u32);
template u32 BlurRecursively<f32>(BaseWork&, const BlurImages<u16>&, f32, u32);
template u32 BlurRecursively<f64>(BaseWork&, const BlurImages<u8>&, f32, u32);
template u32 BlurRecursively<f64>(BaseWork&, const BlurImages<u16>&, f32, u32);

}  // namespace zlv
