// Resizing by the nearest pixel to the left and above.
#include "base/resize_images.h"
#include "base/resize_rows.kernels.h"

namespace zlv {

namespace {

// Fills a table with the source indices of the destination's, in integers. The products wrap at 32 bits: where both
// sizes are large, the image begins anew instead of going on.
template <class Indexes>
[[nodiscard]] bool MakeIndexes(u32 sourceSize, u32 destSize, Indexes& indexes)
{
    if (!indexes.Resize(destSize)) return false;
    u32 product = 0;
    for (u32 i = 0; i < destSize; ++i, product += sourceSize) indexes[i] = product / destSize;
    return true;
}

template <class T>
struct NearestImages {
    const ImageView<const T>& source;
    const ImageView<T>& destination;
    const PickedColumns& columns;
    const MVBuffer<u32>& rows;

    // All channels; rows that look at the same row of the source are copies of the first of them.
    void WriteAll() const
    {
        const size_t rowBytes = destination.SamplesPerRow() * sizeof(T);
        for (u32 y = 0; y < destination.height; ++y) {
            T* const out = destination.Row(y);
            if (y > 0 && rows[y] == rows[y - 1]) std::memcpy(out, destination.Row(y - 1), rowBytes);
            else columns.Pick(source.Row(rows[y]), out);
        }
    }

    void WriteChannel(u32 channel) const
    {
        if (source.channels == 3) WriteChannel(3, channel);
        else WriteChannel(source.channels, channel);
    }

private:
    [[gnu::always_inline]] void WriteChannel(size_t channels, u32 channel) const
    {
        for (u32 y = 0; y < destination.height; ++y) {
            const T* const from = source.Row(rows[y]) + channel;
            T* const to = destination.Row(y) + channel;
            for (u32 x = 0; x < destination.width; ++x) to[x * channels] = from[columns[x] * channels];
        }
    }
};

}  // namespace

template <class T>
u32 ResizeNearest(BaseWork& work, const ResizeImages<T>& images)
{
    if (!images.HasWholeRows()) return work.Fail(Error::BadArgument);
    if (CopyIfSameLayout(images)) return 1;

    PickedColumns columns;
    MVBuffer<u32> rows;
    if (!MakeIndexes(images.source.width, images.destination.width, columns) ||
        !MakeIndexes(images.source.height, images.destination.height, rows)) {
        return work.Fail(Error::OutOfMemory);
    }
    columns.Finish(images.source);
    const NearestImages<T> nearest = {images.source, images.destination, columns, rows};
    if (!work.MayReport()) {
        nearest.WriteAll();
        return 1;
    }
    for (u32 c = 0; c < images.Channels(); ++c) {
        nearest.WriteChannel(c);
        if (!work.Report(c, images.Channels())) return 0;
    }
    return 1;
}

template u32 ResizeNearest(BaseWork& work, const ResizeImages<u8>& images);
template u32 ResizeNearest(BaseWork& work, const ResizeImages<u16>& images);

}  // namespace zlv
