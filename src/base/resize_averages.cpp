// Resizing by averages of squares of whole pixels, which only shrinks.
#include "base/resize_images.h"
#include "base/resize_rows.kernels.h"
#include "base/sample.h"

#include <algorithm>

namespace zlv {

namespace {

// Copies an image that keeps its size, with as much of what follows the rows as both of them have.
template <class T>
void CopyRows(const ResizeImages<T>& images)
{
    const size_t count = std::min(images.source.stride, images.destination.stride);
    for (u32 y = 0; y < images.source.height; ++y) {
        std::memmove(images.destination.Row(y), images.source.Row(y), count * sizeof(T));
    }
}

// Where blocks begin: positions grow by addition, and so do their roundings.
class BlockStarts {
public:
    BlockStarts(f64 ratio, u32 sourceSize, u32 side) : ratio_(ratio), last_(sourceSize - side) {}

    u32 Next()
    {
        const u32 start = TruncateTo(last_, position_);
        position_ += ratio_;
        return start;
    }

private:
    const f64 ratio_;
    const u32 last_;
    f64 position_ = 0;
};

// Sums of the `side` rows from `top` on, then of `side` of their pixels.
template <class T>
class BlockSums {
public:
    BlockSums(const ImageView<const T>& source, u32 side) : source_(source), side_(side) {}

    [[nodiscard]] bool Prepare() { return ResizeForSamples(sums_, source_.width, source_.channels); }

    void AddRows(u32 top)
    {
        const size_t count = source_.SamplesPerRow();
        std::fill_n(sums_.GetData(), count, 0u);
        for (u32 j = 0; j < side_; ++j) SampleKernels<T>().addRow(source_.Row(top + j), count, sums_.GetData());
    }

    void WriteRow(const u32* starts, u32 width, T* out) const
    {
        if (source_.channels == 3) WritePixels(3, starts, width, out);
        else WritePixels(source_.channels, starts, width, out);
    }

private:
    [[gnu::always_inline]] void WritePixels(size_t channels, const u32* starts, u32 width, T* out) const
    {
        // The integer quotient: (sum + 0.5) / area is 0.5 / area or more away from every integer, and that is above
        // 2^-26; the two roundings are below 2^-36.
        const f64 inverseArea = 1.0 / (f64(side_) * side_);
        for (u32 x = 0; x < width; ++x) {
            const u32* const block = sums_.GetData() + starts[x] * channels;
            for (size_t c = 0; c < channels; ++c) {
                u32 sum = 0;
                for (u32 i = 0; i < side_; ++i) sum += block[i * channels + c];
                *out++ = T(u32((sum + 0.5) * inverseArea));
            }
        }
    }

    const ImageView<const T>& source_;
    const u32 side_;
    MVBuffer<u32> sums_;
};

template <class T>
bool IsHalving(const ResizeImages<T>& images)
{
    const u32 channels = images.Channels();
    return sizeof(T) == 1 && 1 <= channels && channels <= 4 && images.RatioX() == 2 && images.RatioY() == 2;
}

u32 HalveImage(BaseWork& work, const ResizeImages<u8>& images)
{
    const ImageView<u8>& destination = images.destination;
    for (u32 y = 0; y < destination.height; ++y) {
        const u8* const upper = images.source.Row(2 * y);
        Kernels<ResizeRowKernels>().halve(upper, upper + images.source.stride, images.Channels(),
                                          destination.SamplesPerRow(), destination.Row(y));
        if (!work.Report(y, destination.height)) return 0;
    }
    return 1;
}

}  // namespace

template <class T>
u32 ResizeBlockAverage(BaseWork& work, const ResizeImages<T>& images)
{
    const ImageView<T>& destination = images.destination;
    constexpr u32 kMostPixels = 0xFFFFFFFFu / kTop<T>;  // of a block: the sum of its samples fits 32 bits
    const f64 rx = images.RatioX(), ry = images.RatioY();
    if (images.IsGrowing() || rx * ry > kMostPixels) return work.Fail(Error::BadArgument);
    if (images.IsSameSize()) {
        CopyRows(images);
        return 1;
    }
    if constexpr (sizeof(T) == 1) {
        if (IsHalving(images)) return HalveImage(work, images);
    }
    // A square also where the ratios differ: some of the source is then skipped.
    const u32 side = std::min(u32(rx), u32(ry));
    BlockSums<T> sums(images.source, side);
    MVBuffer<u32> lefts;
    if (!sums.Prepare() || !lefts.Resize(destination.width)) return work.Fail(Error::OutOfMemory);
    BlockStarts columns(rx, images.source.width, side);
    for (u32 x = 0; x < destination.width; ++x) lefts[x] = columns.Next();
    BlockStarts rows(ry, images.source.height, side);
    for (u32 y = 0; y < destination.height; ++y) {
        sums.AddRows(rows.Next());
        sums.WriteRow(lefts.GetData(), destination.width, destination.Row(y));
        if (!work.Report(y, destination.height)) return 0;
    }
    return 1;
}

template u32 ResizeBlockAverage(BaseWork& work, const ResizeImages<u8>& images);
template u32 ResizeBlockAverage(BaseWork& work, const ResizeImages<u16>& images);

}  // namespace zlv
