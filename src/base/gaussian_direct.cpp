#include "base/gaussian_direct.h"

#include "base/gaussian_blur.h"
#include "base/gaussian_coefficients.h"
#include "base/gaussian_taps.kernels.h"
#include "base/inside_entries.h"
#include "runtime/array.h"

#include <algorithm>

namespace zlv {

namespace {

// The rows of the first pass: all of them where the passes are reported one by one, otherwise a ring of those that the
// second pass still needs.
class FloatRows {
public:
    [[nodiscard]] bool Resize(u64 width, u64 capacity)
    {
        if (width == 0 || capacity > SIZE_MAX / width) return false;
        width_ = width;
        capacity_ = capacity;
        return values_.Resize(width * capacity);
    }

    f32* Row(u64 y) { return values_.GetData() + size_t(y % capacity_) * width_; }

private:
    MVBuffer<f32> values_;
    size_t width_ = 0;
    u64 capacity_ = 0;
};

template <class T>
class DirectBlur {
public:
    DirectBlur(BaseWork& work, const BlurImages<T>& images, f32 rounding)
        : work_(work),
          kernels_(Kernels<GaussianTapKernels>()),
          images_(images),
          rounding_(rounding),
          width_(images.source.width),
          height_(images.source.height)
    {
    }

    // For spans of `count` channels.
    [[nodiscard]] bool Resize(f64 sigma, u32 count)
    {
        if (!kernel_.Make(sigma)) return false;
        const u64 size = 2 * u64(kernel_.Radius()) + 1;
        const u64 samples = u64(width_) * count;
        const u64 rowsKept = work_.MayReport() ? u64(height_) : std::min<u64>(height_, size);
        return rows_.Resize(samples, rowsKept) && line_.Resize(samples) &&
               under_.Resize(std::min<u64>(size, std::max<u64>(width_, height_)));
    }

    // False after a cancel.
    bool Blur(const ChannelSpan& span)
    {
        u64 rowsDone = 0;
        const auto doRowsTo = [&](u64 end) {
            for (; rowsDone < std::min<u64>(end, height_); ++rowsDone) BlurRow(u32(rowsDone), span);
        };
        const u32 passes = 2 * images_.source.channels;
        if (work_.MayReport()) {
            doRowsTo(height_);
            if (!work_.Report(2 * span.first, passes)) return false;
        }
        for (u32 y = 0; y < height_; ++y) {
            doRowsTo(u64(y) + kernel_.Radius() + 1);
            BlurColumnsAt(y, span);
        }
        return work_.Report(2 * span.first + 1, passes);
    }

private:
    // Where the kernel reaches out of the line, what lies inside is scaled up to the whole weight.
    void BlurRow(u32 y, const ChannelSpan& span)
    {
        ReadRow(y, span);
        const size_t radius = kernel_.Radius();
        f32* const to = rows_.Row(y);
        if (width_ <= 2 * radius) {
            BlurNearBorder(to, 0, width_, span.count);
            return;
        }
        const size_t inside = width_ - 2 * radius;
        BlurNearBorder(to, 0, radius, span.count);
        for (size_t k = 0; k < 2 * radius + 1; ++k) under_[k] = line_.GetData() + k * span.count;
        kernels_.weigh(under_.GetData(), kernel_.Entries(), 2 * radius + 1, to + radius * span.count,
                       inside * span.count);
        BlurNearBorder(to, radius + inside, width_, span.count);
    }

    void BlurNearBorder(f32* to, size_t start, size_t end, u32 count)
    {
        for (size_t x = start; x < end; ++x) {
            const InsideEntries inside(x, width_, kernel_.Radius());
            const f32* const entries = kernel_.Entries() + inside.first;
            const f32 weight = Weight(inside);
            for (size_t c = 0; c < count; ++c) {
                const f32* const samples = line_.GetData() + inside.start * count + c;
                f32 sum = 0;
                for (size_t k = 0; k < inside.count; ++k) sum += samples[k * count] * entries[k];
                to[x * count + c] = sum / weight;
            }
        }
    }

    // A piece of a row goes from its sums to samples before the next one is begun: it stays in the nearest cache.
    void BlurColumnsAt(u32 y, const ChannelSpan& span)
    {
        const InsideEntries inside(y, height_, kernel_.Radius());
        const bool isWhole = inside.count == 2 * kernel_.Radius() + 1;
        const f32 weight = isWhole ? 1 : Weight(inside);
        for (size_t k = 0; k < inside.count; ++k) under_[k] = rows_.Row(inside.start + k);
        const size_t samples = size_t(width_) * span.count;
        for (size_t start = 0; start < samples; start += kPiece) {
            const size_t count = std::min(kPiece, samples - start);
            kernels_.weigh(under_.GetData(), kernel_.Entries() + inside.first, inside.count, piece_, count);
            for (size_t k = 0; k < inside.count; ++k) under_[k] += count;
            for (size_t i = 0; i < count && !isWhole; ++i) piece_[i] /= weight;
            WritePiece(y, start, count, span);
        }
    }

    f32 Weight(const InsideEntries& inside) const
    {
        f32 weight = 0;
        for (size_t k = 0; k < inside.count; ++k) weight += kernel_.Entries()[inside.first + k];
        return weight;
    }

    void ReadRow(u32 y, const ChannelSpan& span)
    {
        const T* const from = images_.source.Row(y) + span.first;
        const size_t channels = images_.source.channels;
        f32* const to = line_.GetData();
        if (span.count < channels) {
            for (size_t x = 0; x < width_; ++x) to[x] = f32(from[x * channels]);
        } else if constexpr (sizeof(T) == 1) {
            kernels_.toFloats8(from, to, size_t(width_) * channels);
        } else {
            kernels_.toFloats16(from, to, size_t(width_) * channels);
        }
    }

    void WritePiece(u32 y, size_t start, size_t count, const ChannelSpan& span)
    {
        T* const row = images_.destination.Row(y) + span.first;
        const size_t channels = images_.destination.channels;
        if (span.count < channels) {
            T samples[kPiece];
            ToSamples(samples, count);
            for (size_t i = 0; i < count; ++i) row[(start + i) * channels] = samples[i];
        } else {
            ToSamples(row + start, count);
        }
    }

    void ToSamples(T* to, size_t count)
    {
        if constexpr (sizeof(T) == 1) kernels_.toSamples8(piece_, rounding_, to, count);
        else kernels_.toSamples16(piece_, rounding_, to, count);
    }

    static constexpr size_t kPiece = 1024;

    BaseWork& work_;
    const GaussianTapKernels& kernels_;
    const BlurImages<T> images_;
    const f32 rounding_;
    const u32 width_, height_;
    DirectGaussian kernel_;
    FloatRows rows_;
    MVBuffer<f32> line_;          // a row of the source
    MVBuffer<const f32*> under_;  // what each entry of the kernel is laid over
    f32 piece_[kPiece];           // of a row of both passes
};

}  // namespace

template <class T>
u32 BlurDirectly(BaseWork& work, const BlurImages<T>& images, f64 sigma, u32 flags)
{
    constexpr f32 kRounding = 0.5;
    DirectBlur<T> blur(work, images, flags & kBlurTruncates ? 0 : kRounding);
    const u32 together = ChannelsTogether(flags, images.source.channels, !work.MayReport());
    if (!blur.Resize(sigma, together)) return work.Fail(Error::OutOfMemory);
    return ForEachSpan(flags, images.source.channels, together,
                       [&](const ChannelSpan& span) { return blur.Blur(span); });
}

template u32 BlurDirectly(BaseWork&, const BlurImages<u8>&, f64, u32);
template u32 BlurDirectly(BaseWork&, const BlurImages<u16>&, f64, u32);

}  // namespace zlv
