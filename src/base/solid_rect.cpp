#include "base/solid_rect.h"

#include "base/image_view.h"

#include <algorithm>
#include <cstring>

namespace zlv {

namespace {

// The pixels of an image that a rectangle covers.
struct CoveredPixels {
    u32 left, top;
    size_t columns, rows;
};

CoveredPixels Cover(const ImageView<u8>& image, const SolidRect& rect)
{
    if (rect.left >= image.width || rect.top >= image.height) return {};
    // Differences of unsigned coordinates: a rectangle turned over wraps to a large one and is cut, a width of 2^32
    // to none.
    const u32 columns = rect.right - rect.left + 1;
    const u32 rows = rect.bottom - rect.top;
    return {rect.left, rect.top, std::min(columns, image.width - rect.left), std::min(rows, image.height - rect.top)};
}

class Color {
public:
    Color(u32 color, u32 channels, u32 flags) : channels_(channels)
    {
        for (u32 c = 0; c < 4; ++c) bytes_[c] = u8(color >> (8 * c));
        if (flags & kSwapFirstAndThird) std::swap(bytes_[0], bytes_[2]);
        if (channels == 1) bytes_[0] = u8(color);
    }

    bool IsOneByte() const
    {
        return std::all_of(bytes_, bytes_ + channels_, [&](u8 byte) { return byte == bytes_[0]; });
    }
    u8 FirstByte() const { return bytes_[0]; }

    void Fill(u8* pixel, size_t count) const
    {
        for (size_t i = 0; i < count * channels_; i += channels_) {
            for (u32 c = 0; c < channels_; ++c) pixel[i + c] = bytes_[c];
        }
    }

private:
    const u32 channels_;
    u8 bytes_[4];
};

u32 FillRect(MVThreadContext& context, Error& error, const ImageView<u8>& image, const SolidRect* rect, u32 color,
             u32 flags)
{
    BaseWork work(context, error);
    const bool isChannelCountGood = image.channels == 1 || image.channels == 3 || image.channels == 4;
    if (!image.data || !isChannelCountGood || !rect) return work.Fail(Error::BadArgument);
    const CoveredPixels covered = Cover(image, *rect);
    if (covered.columns == 0 || covered.rows == 0) return 1;

    const Color fill(color, image.channels, flags);
    const size_t rowBytes = covered.columns * image.channels;
    const bool isWholeImage = covered.columns == image.width && covered.rows == image.height && image.IsContiguous();
    if (fill.IsOneByte() && isWholeImage && image.channels != 1) {
        std::memset(image.data, fill.FirstByte(), rowBytes * covered.rows);
        return 1;
    }
    u8* const first = image.Row(covered.top) + size_t(covered.left) * image.channels;
    for (size_t y = 0; y < covered.rows; ++y) {
        u8* const row = first + y * image.stride;
        if (fill.IsOneByte()) std::memset(row, fill.FirstByte(), rowBytes);
        else fill.Fill(row, covered.columns);
        if (!work.Report(u32(y), u32(covered.rows))) return 0;
    }
    return 1;
}

}  // namespace

u32 MV40_FillSolidRect(u8* image, u32 width, u32 height, u32 channels, u32 stride, const SolidRect* rect, u32 color,
                       u32 flags)
{
    return InBaseCall("MV40_FillSolidRect", [&](MVThreadContext& context, Error& error) {
        return FillRect(context, error, {image, width, height, channels, stride}, rect, color, flags);
    });
}

}  // namespace zlv
