// Coverage by counting samples.
//
// The polygon is filled at `samples` times the size, in a plane of samples that start at 0 and become 255 or what the
// opacity makes of that; a pixel's coverage is the mean of its samples. The plane is never there: a span is added to
// the sums of the pixels that it begins and ends in, which also keep what the pixels from there on have in common. So a
// row of samples costs its spans and not its width, and a row of pixels is painted in runs.
#include "base/polygon_mask.h"

#include "base/polygon_bounds.h"
#include "base/polygon_painters.h"
#include "base/polygon_painting.h"
#include "base/table_pass.kernels.h"
#include "runtime/base_tables.h"

#include <bit>

namespace zlv {

namespace {

constexpr u8 kCovered = 255;

// The bounding rectangle without its right column and its bottom row, which are not painted.
struct PaintableRect {
    u32 left, top, width, height;
};

// One row of pixels on its way from spans of samples to coverages.
class CoverageRow {
public:
    CoverageRow(u32 width, u32 samples) : width_(width), shift_(u32(std::countr_zero(samples))) {}

    [[nodiscard]] bool Prepare()
    {
        // One more than there are pixels: spans end before a pixel, which may be the one after the last.
        const u64 count = u64(width_) + 1, words = count / kBits + 1;
        if (!sums_.Resize(count) || !touched_.Resize(words)) return false;
        std::fill_n(sums_.GetData(), count, PixelSum{});
        std::fill_n(touched_.GetData(), words, u64(0));
        return true;
    }

    // Adds `value` for every sample from `begin` up to and without `end`.
    void Add(u64 begin, u64 end, i32 value)
    {
        const u64 first = begin >> shift_, last = end >> shift_;
        const i32 whole = value << shift_;
        sums_[first].step += whole;
        sums_[first].part -= i32(begin - (first << shift_)) * value;
        sums_[last].step -= whole;
        sums_[last].part += i32(end - (last << shift_)) * value;
        touched_[first / kBits] |= u64(1) << first % kBits;
        touched_[last / kBits] |= u64(1) << last % kBits;
    }

    // Calls paint(first, count, coverage) for runs of pixels that are covered alike, and starts afresh.
    template <class Paint>
    void Finish(Paint paint)
    {
        i32 whole = 0;
        u64 done = 0;
        for (u64 word = 0; word < touched_.GetCount(); ++word) {
            for (u64& bits = touched_[word]; bits != 0; bits &= bits - 1) {
                const u64 x = word * kBits + u64(std::countr_zero(bits));
                if (x > done && whole != 0) paint(u32(done), u32(x - done), CoverageOf(whole));
                whole += sums_[x].step;
                const u8 coverage = CoverageOf(whole + sums_[x].part);
                if (coverage != 0) paint(u32(x), 1u, coverage);
                sums_[x] = {};
                done = x + 1;
            }
        }
    }

private:
    static constexpr u64 kBits = 64;

    struct PixelSum {
        i32 step = 0;  // what the sum of whole pixels changes by here
        i32 part = 0;  // what this pixel has besides
    };

    u8 CoverageOf(i32 sum) const { return u8(sum >> (2 * shift_)); }

    const u32 width_;
    const u32 shift_;
    MVBuffer<PixelSum> sums_;
    MVBuffer<u64> touched_;  // a bit for each pixel in which a span begins or ends
};

// Paints runs of pixels with a colour through one coverage, as MV40_AlphaBlendColor does pixel by pixel.
class RunPainter {
public:
    RunPainter(const ImageView<u8>& image, const PixelBytes& pixel) : image_(image), pixel_(pixel), solid_(image, pixel)
    {
    }

    void Paint(u32 row, u32 left, u32 count, u8 coverage)
    {
        const bool isSolid = coverage == kCovered && image_.channels == kColors;
        if (isSolid) solid_.Paint(row, left, left + (count - 1), 1);
        else if (count < kShortRun) PaintPixels(row, left, count, coverage);
        else PaintByTables(row, left, count, coverage);
    }

private:
    static constexpr u32 kColors = 3;  // a fourth channel is left alone
    static constexpr u32 kShortRun = 32;

    u8* PixelAt(u32 row, u32 x) const { return image_.Row(row) + size_t(x) * image_.channels; }

    void PaintPixels(u32 row, u32 left, u32 count, u8 coverage) const
    {
        const u8 *const under = baseTables.product[kCovered - coverage], *const over = baseTables.product[coverage];
        u8* pixel = PixelAt(row, left);
        for (u32 i = 0; i < count; ++i, pixel += image_.channels) {
            for (u32 c = 0; c < kColors; ++c) pixel[c] = u8(under[pixel[c]] + over[pixel_.bytes[c]]);
        }
    }

    void PaintByTables(u32 row, u32 left, u32 count, u8 coverage) const
    {
        const u8 *const under = baseTables.product[kCovered - coverage], *const over = baseTables.product[coverage];
        u8 painted[kColors][256];
        for (u32 c = 0; c < kColors; ++c) {
            const u8 share = over[pixel_.bytes[c]];
            for (u32 i = 0; i < 256; ++i) painted[c][i] = u8(under[i] + share);
        }
        const void* const tables[] = {painted[0], painted[1], painted[2], nullptr};
        Kernels<TablePassKernels>().mapPixels(PixelAt(row, left), count, image_.channels, tables);
    }

    const ImageView<u8> image_;
    const PixelBytes pixel_;
    SolidPainter solid_;
};

// Takes the spans of samples and paints a row of pixels whenever one is complete.
class CoveragePainter {
public:
    CoveragePainter(const ImageView<u8>& image, const PaintableRect& rect, const CoverageFill& fill)
        : rect_(rect),
          samples_(fill.samples),
          samplesARow_(rect.width * fill.samples),
          map_(MixingMap(kCovered, fill.opacity)),
          coverage_(rect.width, fill.samples),
          runs_(image, fill.pixel)
    {
    }

    // What lies above the rectangle is painted onto its first row of samples: then that row is kept sample by sample.
    [[nodiscard]] bool Prepare(bool hasRowsAbove)
    {
        if (!coverage_.Prepare()) return false;
        if (!hasRowsAbove) return true;
        if (!firstRow_.Resize(samplesARow_)) return false;
        std::fill_n(firstRow_.GetData(), samplesARow_, u8(0));
        hasFirstRow_ = true;
        return true;
    }

    static constexpr bool kCountsRows = false;
    void BeginRows(u64) {}

    void Paint(u32 row, u32 left, u32 right, u64 times)
    {
        if (left == samplesARow_) return;
        if (row != row_) GoTo(row);
        const u32 last = std::min(right, samplesARow_ - 1);
        if (row == 0 && hasFirstRow_) PaintFirstRow(left, last, times);
        else PaintOnce(left, last);
    }

    // Only rows above are asked for.
    bool IsSettled(u32, u32 column) const
    {
        return column == samplesARow_ || map_[firstRow_[column]] == firstRow_[column];
    }

    // Paints the last row of pixels.
    void Finish()
    {
        if (row_ == 0 && hasFirstRow_) AddFirstRow();
        PaintPixels();
    }

private:
    static constexpr u32 kNoColumn = 0xFFFFFFFF;

    void GoTo(u32 row)
    {
        if (row_ == 0 && hasFirstRow_) AddFirstRow();
        if (row / samples_ != row_ / samples_) PaintPixels();
        row_ = row;
        lastColumn_ = kNoColumn;
    }

    // Spans of a row come from left to right; the next one may begin with the sample that the last one ended with,
    // which is then painted once more.
    void PaintOnce(u32 left, u32 last)
    {
        if (left == lastColumn_) {
            const u8 painted = map_[lastSample_];
            coverage_.Add(left, left + u64(1), painted - lastSample_);
            lastSample_ = painted;
            if (left == last) return;
            ++left;
        }
        lastColumn_ = last;
        lastSample_ = map_[0];
        coverage_.Add(left, last + u64(1), lastSample_);
    }

    void PaintFirstRow(u32 left, u32 last, u64 times)
    {
        const ByteMap map = times == 1 ? map_ : map_.Repeated(times);
        for (u8* sample = firstRow_.GetData() + left; sample <= firstRow_.GetData() + last; ++sample) {
            *sample = map[*sample];
        }
    }

    void AddFirstRow()
    {
        for (u32 i = 0; i < samplesARow_; ++i) {
            if (firstRow_[i] != 0) coverage_.Add(i, i + u64(1), firstRow_[i]);
        }
    }

    void PaintPixels()
    {
        const u32 y = rect_.top + row_ / samples_;
        coverage_.Finish(
            [&](u32 first, u32 count, u8 coverage) { runs_.Paint(y, rect_.left + first, count, coverage); });
    }

    const PaintableRect rect_;
    const u32 samples_;
    const u32 samplesARow_;
    const ByteMap map_;
    CoverageRow coverage_;
    RunPainter runs_;
    MVBuffer<u8> firstRow_;
    bool hasFirstRow_ = false;
    u32 row_ = 0;
    u32 lastColumn_ = kNoColumn;  // of the last span in this row
    u8 lastSample_ = 0;           // what that column holds
};

bool FitsRowOfSamples(u32 pixels, u32 samples) { return pixels <= std::numeric_limits<u32>::max() / samples; }

}  // namespace

Error FillByCoverage(const ImageView<u8>& image, const f64* points, u32 count, const CoverageFill& fill)
{
    if (image.width == 0 || image.height == 0) return Error::OutOfMemory;
    const PolygonBounds bounds = BoundsOf(points, count, image);
    const PaintableRect rect = {bounds.left, bounds.top, bounds.right - bounds.left, bounds.bottom - bounds.top};
    const bool isEmpty = rect.width == 0 || rect.height == 0;
    if (isEmpty || !FitsRowOfSamples(rect.width, fill.samples) || !FitsRowOfSamples(rect.height, fill.samples)) {
        return Error::OutOfMemory;
    }
    if (!IsMixable(fill.opacity)) return Error::BadArgument;
    if (image.channels == 1) return Error::None;

    ScanConverter scan;
    const Error preparing = scan.Prepare(points, count, {f64(rect.left), f64(rect.top), f64(fill.samples)});
    if (preparing != Error::None) return preparing;
    CoveragePainter painter(image, rect, fill);
    if (!painter.Prepare(scan.Row() < 0)) return Error::OutOfMemory;
    PaintPolygon(scan, rect.width * fill.samples, rect.height * fill.samples, painter);
    painter.Finish();
    return Error::None;
}

}  // namespace zlv
