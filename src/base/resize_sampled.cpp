// Resizing by samples of the source at positions between its pixels: bilinear and bicubic.
//
// What the pixels of a row look at is picked once for each row of the source, and kept as long as rows of the
// destination need it. Where all positions are whole, as when an image is halved, the results are the picked samples.
#include "base/resize_images.h"
#include "base/resize_rows.kernels.h"
#include "base/row_ring.h"

#include <algorithm>

namespace zlv {

namespace {

// Rows made from rows of the source: the latest ones, each made once while it is needed.
template <class T, u32 kRows>
class MadeRows {
public:
    [[nodiscard]] bool Resize(u64 rowLength) { return ring_.Resize(kRows, rowLength ? rowLength : 1); }

    // The row made from row y of the source, by make(y, row) if it is not there.
    template <class Make>
    const T* Row(u32 y, Make make)
    {
        T* const row = ring_.Row(y);
        u64& held = held_[y % kRows];
        if (held != u64(y) + 1) make(y, row);
        held = u64(y) + 1;
        return row;
    }

private:
    RowRing<T> ring_;
    u64 held_[kRows] = {};  // the rows that stand there, counted from 1
};

// When growing, the last pixel stops short of the source's last: shrinking it again gives back what was there.
f64 BilinearStep(u32 sourceSize, u32 destSize)
{
    const f64 ratio = f64(sourceSize) / destSize;
    return sourceSize < destSize ? (sourceSize - ratio) / destSize : ratio;
}

// A position between two pixels: the one at its whole part and the next one, both inside.
struct BilinearPosition {
    u32 near, next;
    f64 fraction;

    BilinearPosition(f64 position, u32 size)
        : near(TruncateTo(size - 1, position)),
          next(near + 1 < size ? near + 1 : size - 1),
          fraction(position - f64(u64(position)))
    {
    }
};

// Which columns the pixels of a row look at, and the fractions for each of their samples.
struct BilinearColumns {
    PickedColumns left, right;
    MVBuffer<f64> fractions;
    MVBuffer<f32> nearFractions;
    bool areWhole = true;

    template <class T>
    [[nodiscard]] bool Prepare(const ResizeImages<T>& images)
    {
        const u32 width = images.destination.width, channels = images.Channels();
        if (!left.Resize(width) || !right.Resize(width) || !ResizeForSamples(fractions, width, channels) ||
            !ResizeForSamples(nearFractions, width, channels)) {
            return false;
        }
        const f64 step = BilinearStep(images.source.width, width);
        for (u32 x = 0; x < width; ++x) {
            const BilinearPosition position(x * step, images.source.width);
            left[x] = position.near;
            right[x] = position.next;
            std::fill_n(fractions.GetData() + u64(x) * channels, channels, position.fraction);
            std::fill_n(nearFractions.GetData() + u64(x) * channels, channels, f32(position.fraction));
            areWhole = areWhole && position.fraction == 0;
        }
        left.Finish(images.source);
        right.Finish(images.source);
        return true;
    }
};

// A position with four pixels around it. It is limited to the source at its end only, and two pixels before that the
// last taps already fall together.
struct CubicPosition {
    u32 taps[kCubicTaps];
    f64 weights[kCubicTaps];
    f64 t;

    CubicPosition(f64 position, u32 size)
    {
        const f64 last = f64(size) - 1;
        const f64 x = position < last ? position : last;
        const u32 whole = u32(x);
        t = x - whole;
        weights[0] = -((1 - t) * t * (1 - t));
        weights[1] = 1 - 2 * t * t + t * t * t;
        weights[2] = (t + 1 - t * t) * t;
        weights[3] = (1 - t) * t * t;
        taps[0] = x < 1 ? 0 : whole - 1;
        taps[1] = x >= last ? size - 1 : whole;
        taps[2] = x >= last - 1 ? taps[1] : whole + 1;
        taps[3] = x >= last - 2 ? taps[2] : whole + 2;
    }
};

struct CubicColumns {
    PickedColumns taps[kCubicTaps];
    MVBuffer<f64> weights[kCubicTaps];
    bool areWhole = true;

    template <class T>
    [[nodiscard]] bool Prepare(const ResizeImages<T>& images)
    {
        const u32 width = images.destination.width, channels = images.Channels();
        for (size_t k = 0; k < kCubicTaps; ++k) {
            if (!taps[k].Resize(width) || !ResizeForSamples(weights[k], width, channels)) return false;
        }
        for (u32 x = 0; x < width; ++x) {
            const CubicPosition position(x * images.RatioX(), images.source.width);
            for (size_t k = 0; k < kCubicTaps; ++k) {
                taps[k][x] = position.taps[k];
                std::fill_n(weights[k].GetData() + u64(x) * channels, channels, position.weights[k]);
            }
            areWhole = areWhole && position.t == 0;
        }
        for (PickedColumns& tap : taps) tap.Finish(images.source);
        return true;
    }
};

// The rows of the source that bilinear rows lie between, as they are needed.
template <class T>
class BilinearSource {
public:
    explicit BilinearSource(const ResizeImages<T>& images)
        : source_(images.source), count_(images.destination.SamplesPerRow())
    {
    }

    [[nodiscard]] bool Prepare(const ResizeImages<T>& images)
    {
        return columns_.Prepare(images) && picked_.Resize(2 * count_) && near_.Resize(count_);
    }

    void WriteRow(const BilinearPosition& y, T* out)
    {
        if (columns_.areWhole && y.fraction == 0) {
            columns_.left.Pick(source_.Row(y.near), out);
            return;
        }
        const T* const upper = Picked(y.near);
        const T* const lower = Picked(y.next);
        BilinearRow<T> row = {upper,      upper + count_, lower,  lower + count_, columns_.fractions.GetData(),
                              y.fraction, nullptr,        nullptr};
        if constexpr (sizeof(T) == 1) {
            if (exactRows_ == 0) {
                row.nearUpper = Near(y.near);
                row.nearLower = Near(y.next);
            } else {
                --exactRows_;
            }
        }
        // Flat areas lie on whole numbers, which only the exact sums decide. They are rarely one row high.
        if (SampleKernels<T>().bilinear(row, count_, out)) exactRows_ = kExactRows;
    }

private:
    static constexpr u32 kExactRows = 8;

    // The left pixels of a row, then the right ones.
    const T* Picked(u32 y)
    {
        return picked_.Row(y, [&](u32, T* row) {
            columns_.left.Pick(source_.Row(y), row);
            columns_.right.Pick(source_.Row(y), row + count_);
        });
    }

    const f32* Near(u32 y) requires(sizeof(T) == 1)
    {
        return near_.Row(y, [&](u32, f32* row) {
            const T* const left = Picked(y);
            Kernels<ResizeRowKernels>().blend(left, left + count_, columns_.nearFractions.GetData(), count_, row);
        });
    }

    const ImageView<const T>& source_;
    const size_t count_;
    BilinearColumns columns_;
    MadeRows<T, 2> picked_;
    MadeRows<f32, 2> near_;
    u32 exactRows_ = 0;  // how many more rows to try nothing else in
};

// Calls writeRow(y) for the rows of the destination and reports them.
template <class WriteRow>
u32 WriteRows(BaseWork& work, u32 height, WriteRow writeRow)
{
    for (u32 y = 0; y < height; ++y) {
        writeRow(y);
        if (!work.Report(y, height)) return 0;
    }
    return 1;
}

}  // namespace

template <class T>
u32 ResizeBilinear(BaseWork& work, const ResizeImages<T>& images)
{
    const ImageView<const T>& source = images.source;
    const ImageView<T>& destination = images.destination;
    if (!images.HasWholeRows()) return work.Fail(Error::BadArgument);
    if (CopyIfSameLayout(images)) return 1;

    BilinearSource<T> rows(images);
    if (!rows.Prepare(images)) return work.Fail(Error::OutOfMemory);
    const f64 step = BilinearStep(source.height, destination.height);
    return WriteRows(work, destination.height,
                     [&](u32 y) { rows.WriteRow(BilinearPosition(y * step, source.height), destination.Row(y)); });
}

template <class T>
u32 ResizeBicubic(BaseWork& work, const ResizeImages<T>& images)
{
    const ImageView<const T>& source = images.source;
    const ImageView<T>& destination = images.destination;
    if (source.data == destination.data) return work.Fail(Error::BadArgument);
    if (CopyIfSameLayout(images)) return 1;

    const size_t count = destination.SamplesPerRow();
    CubicColumns columns;
    MVBuffer<T> picked;
    MadeRows<f64, kCubicTaps> reduced;
    if (!columns.Prepare(images) || !ResizeForSamples(picked, count, kCubicTaps) || !reduced.Resize(count)) {
        return work.Fail(Error::OutOfMemory);
    }
    const auto reduce = [&](u32 y, f64* row) {
        CubicRow<T> across;
        for (size_t k = 0; k < kCubicTaps; ++k) {
            T* const samples = picked.GetData() + k * count;
            columns.taps[k].Pick(source.Row(y), samples);
            across.samples[k] = samples;
            across.weights[k] = columns.weights[k].GetData();
        }
        SampleKernels<T>().cubicAcross(across, count, row);
    };
    return WriteRows(work, destination.height, [&](u32 y) {
        const CubicPosition position(y * images.RatioY(), source.height);
        if (columns.areWhole && position.t == 0) {
            columns.taps[1].Pick(source.Row(position.taps[1]), destination.Row(y));
            return;
        }
        CubicColumn down;
        for (size_t k = 0; k < kCubicTaps; ++k) {
            down.rows[k] = reduced.Row(position.taps[k], reduce);
            down.weights[k] = position.weights[k];
        }
        SampleKernels<T>().cubicDown(down, count, destination.Row(y));
    });
}

template u32 ResizeBilinear(BaseWork& work, const ResizeImages<u8>& images);
template u32 ResizeBilinear(BaseWork& work, const ResizeImages<u16>& images);
template u32 ResizeBicubic(BaseWork& work, const ResizeImages<u8>& images);
template u32 ResizeBicubic(BaseWork& work, const ResizeImages<u16>& images);

}  // namespace zlv
