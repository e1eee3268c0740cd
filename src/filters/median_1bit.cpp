// The median of a 1-bit image: the majority of each window.
//
// The window's side is odd, so there is no tie.
#include "base/row_ring.h"
#include "filters/median_bits.kernels.h"
#include "runtime/array.h"
#include "runtime/frame.h"

#include "zlv40.h"

#include <algorithm>
#include <cstring>
#include <iterator>

using namespace zlv;

namespace {

constexpr u32 kLargestSide = 46339;      // its square is the last odd one that a signed number of 32 bits holds
constexpr u32 kLargestNarrowSide = 255;  // and one of 16 bits, without a sign

struct BitImage {
    const u8* src;
    u8* dst;
    u32 width, height, srcStride, dstStride;

    size_t Words() const { return (size_t(width) + kPixelsPerWord - 1) / kPixelsPerWord; }
    const u8* Row(u32 y) const { return src + size_t(y) * srcStride; }
    // The row at `place`, or the nearest that there is.
    u32 Nearest(i64 place) const { return u32(std::clamp<i64>(place, 0, i64(height) - 1)); }
};

// ---- Rows ----

u64 FromBytes(u64 bytes) { return __builtin_bswap64(bytes); }

// Whether the pixel is set, in all bits.
u64 Spread(const u8* row, u32 x) { return row[x / 8] & (0x80u >> x % 8) ? ~u64(0) : 0; }

// A row as words; what follows the last pixel, and the word at either end, repeat the pixels of the border.
void TakeRow(const BitImage& image, u32 y, u64* words)
{
    const u8* const row = image.Row(y);
    const size_t count = image.Words(), bytes = (size_t(image.width) + 7) / 8;
    for (size_t i = 0; i + 1 < count; ++i) {
        u64 eight;
        std::memcpy(&eight, row + 8 * i, sizeof eight);
        words[i] = FromBytes(eight);
    }
    u64 rest = 0;
    std::memcpy(&rest, row + 8 * (count - 1), bytes - 8 * (count - 1));
    const u64 after = image.width % kPixelsPerWord ? ~u64(0) >> image.width % kPixelsPerWord : 0;
    const u64 last = Spread(row, image.width - 1);
    words[count - 1] = (FromBytes(rest) & ~after) | (last & after);
    words[-1] = Spread(row, 0);
    words[count] = last;
}

// The bits behind the last pixel keep what they are.
void PutRow(const BitImage& image, u32 y, const u64* words)
{
    u8* const row = image.dst + size_t(y) * image.dstStride;
    const size_t bytes = image.width / 8, whole = bytes / 8;
    for (size_t i = 0; i < whole; ++i) {
        const u64 eight = FromBytes(words[i]);
        std::memcpy(row + 8 * i, &eight, sizeof eight);
    }
    if (image.width % kPixelsPerWord == 0) return;
    const u64 rest = FromBytes(words[whole]);
    std::memcpy(row + 8 * whole, &rest, bytes % 8);
    if (image.width % 8 == 0) return;
    const u8 lastByte = u8(words[whole] >> (56 - 8 * (bytes % 8)));
    const u8 kept = u8(0xFF >> image.width % 8);
    row[bytes] = u8((row[bytes] & kept) | (lastByte & ~kept));
}

// ---- Majorities of a row's windows ----

// Windows of 1, 3 or 5 rows.
class SmallMajorities {
public:
    static constexpr u32 kLargestHalf = 2;

    SmallMajorities(const BitImage& image, u32 half) : image_(image), half_(half) {}

    // False when memory is out.
    [[nodiscard]] bool Prepare()
    {
        return rows_.Resize(2 * u64(half_) + 1, image_.Words() + 2) && majorities_.Resize(image_.Words());
    }

    // The majorities of row y: of all rows, one after the other.
    const u64* Next(u32 y)
    {
        for (; taken_ < image_.height && taken_ <= u64(y) + half_; ++taken_) {
            TakeRow(image_, taken_, rows_.Row(taken_) + 1);
        }
        const u64* window[2 * kLargestHalf + 1];  // a smaller window has fewer rows, and nobody looks at the others
        for (u32 i = 0; i < std::size(window); ++i) window[i] = rows_.Row(image_.Nearest(i64(y) + i - half_)) + 1;
        const MedianBitKernels& kernels = Kernels<MedianBitKernels>();
        if (half_ == 0) return window[0];
        (half_ == 1 ? kernels.majorities3 : kernels.majorities5)(window, image_.Words(), majorities_.GetData());
        return majorities_.GetData();
    }

private:
    const BitImage& image_;
    const u32 half_;
    u32 taken_ = 0;
    RowRing<u64> rows_;
    MVBuffer<u64> majorities_;
};

// Windows of any size: counts of the columns' pixels, and their sum that slides along the row.
class LargeMajorities {
public:
    LargeMajorities(const BitImage& image, u32 half)
        : image_(image), half_(half), margin_(size_t(std::min(half, image.width)) + 1)
    {
    }

    [[nodiscard]] bool Prepare()
    {
        const size_t words = image_.Words();
        return row_.Resize(words + 2) && majorities_.Resize(words) &&
               counts_.Resize(words * kPixelsPerWord + 2 * margin_);
    }

    const u64* Next(u32 y)
    {
        if (y == 0) {
            CountFirstWindow();
        } else {
            AddRow(image_.Nearest(y - 1 - i64(half_)), u16(-1));
            AddRow(image_.Nearest(y + i64(half_)), 1);
        }
        RepeatBorders();
        const u16* const first = FirstCount();
        const u16* const leaving = first - margin_;
        const u16* const entering = first + margin_ - 1;
        const i64 side = 2 * i64(half_) + 1;
        const i64 start = FirstSum() - (side * side + 1) / 2 - (entering[0] - leaving[0]);
        const MedianBitKernels& kernels = Kernels<MedianBitKernels>();
        (side > kLargestNarrowSide ? kernels.wideMajorities : kernels.narrowMajorities)(
            leaving, entering, i32(start), image_.Words(), majorities_.GetData());
        return majorities_.GetData();
    }

private:
    u16* FirstCount() { return counts_.GetData() + margin_; }

    void AddRow(u32 y, u16 times)
    {
        TakeRow(image_, y, row_.GetData() + 1);
        Kernels<MedianBitKernels>().addRow(row_.GetData() + 1, image_.Words(), times, FirstCount());
    }

    void CountFirstWindow()
    {
        std::fill_n(counts_.GetData(), counts_.GetCount(), u16(0));
        const u32 last = image_.Nearest(half_);
        // The first row stands for those above the image, and the last one for those below.
        for (u32 y = 0; y <= last; ++y) AddRow(y, u16(1 + (y == 0 ? half_ : 0) + (y == last ? half_ - last : 0)));
    }

    // No window needs more of them than there are columns: those further away would be alike.
    void RepeatBorders()
    {
        u16* const first = FirstCount();
        u16* const end = first + image_.width;
        std::fill_n(first - margin_, margin_, first[0]);
        std::fill_n(end, margin_, end[-1]);
    }

    // Of the window around the first pixel.
    i64 FirstSum()
    {
        const u16* const first = FirstCount();
        const u32 last = std::min(half_, image_.width - 1);
        i64 sum = i64(half_) * first[0] + i64(half_ - last) * first[last];
        for (u32 x = 0; x <= last; ++x) sum += first[x];
        return sum;
    }

    const BitImage& image_;
    const u32 half_;
    const size_t margin_;
    MVBuffer<u64> row_;
    MVBuffer<u16> counts_;
    MVBuffer<u64> majorities_;
};

template <class Majorities>
u32 FilterRows(CallFrame& frame, const BitImage& image, Majorities&& majorities)
{
    if (!majorities.Prepare()) return frame.Fail(Error::OutOfMemory);
    for (u32 y = 0; y < image.height; ++y) {
        PutRow(image, y, majorities.Next(y));
        if (!frame.Report(y, image.height)) return 0;
    }
    return 1;
}

}  // namespace

ZLV_EXPORT u32 ZLV40_MedianFilter1Bit(const u8* src, u32 width, u32 height, u32 srcRowStride, u8* dst, u32 dstRowStride,
                                      u32 filterSize)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!src || !dst || src == dst || width == 0 || height == 0) return frame.Fail(Error::BadArgument);
        const u32 side = filterSize | 1;
        if (side > kLargestSide) return frame.Fail(Error::BadArgument);
        const BitImage image = {src, dst, width, height, srcRowStride, dstRowStride};
        const u32 half = side / 2;
        if (half <= SmallMajorities::kLargestHalf) return FilterRows(frame, image, SmallMajorities(image, half));
        return FilterRows(frame, image, LargeMajorities(image, half));
    });
}
