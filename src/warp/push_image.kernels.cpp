// Bicubic sampling along columns. Several columns go down together: rows are read and written from left to right.
#include "warp/push_image.kernels.h"

#include "warp/kernel_pixel_quad.h"

namespace zlv {
namespace {

// Along one axis of a row of places: the pixel at or before each, and the weights of its neighbours.
struct AxisPlaces {
    u32 pixels[PushedColumns::kMost];
    CubicWeightRows<PushedColumns::kMost> weights;

    // Places outside an axis of this size are moved to its edge.
    AxisPlaces(const f64* coordinates, u32 count, u32 size)
    {
        f64 fractions[PushedColumns::kMost];
        const f64 last = f64(size) - 1;
        for (u32 i = 0; i < count; ++i) {
            const f64 v = coordinates[i];
            const f64 place = v < 0 ? 0 : v > last ? last : v;
            pixels[i] = u32(i64(place));
            fractions[i] = place - f64(i64(place));
        }
        weights.Set(fractions, count);
    }
};

// The four neighbours of a pixel, itself the second one. Near the far edge one stands for the next ones: the last pixel
// is read by places on it alone.
struct EdgeTaps {
    u32 indices[4];

    EdgeTaps(u32 pixel, u32 size)
    {
        indices[0] = pixel >= 1 ? pixel - 1 : 0;
        indices[1] = pixel;
        indices[2] = i64(pixel) < i64(size) - 2 ? pixel + 1 : pixel;
        indices[3] = i64(pixel) < i64(size) - 3 ? pixel + 2 : indices[2];
    }

    // Whether all four are different, with this many more behind them.
    bool HasNeighbours(u32 size, u32 behind) const { return indices[1] >= 1 && u64(indices[1]) + 2 + behind < size; }
};

template <u32 kChannels>
class RowDrawer {
public:
    RowDrawer(const ImageView<const u8>& src, const PushedColumns& places)
        : src_(src),
          channels_(kChannels ? kChannels : src.channels),
          bytes_(u64(src.height - 1) * src.stride + u64(src.width) * src.channels),
          x_(places.x, places.count, src.width),
          y_(places.y, places.count, src.height)
    {
    }

    void Draw(u32 count, u8* to) const
    {
        const u32 behind = channels_ == 1 ? 3 : 1;  // what four channels are loaded from ends within the row
        for (u32 i = 0; i < count; ++i, to += channels_) {
            const EdgeTaps columns(x_.pixels[i], src_.width), rows(y_.pixels[i], src_.height);
            if (columns.HasNeighbours(src_.width, behind)) DrawPixel<true>(i, columns, rows, to);
            else DrawPixel<false>(i, columns, rows, to);
        }
    }

private:
    template <bool kIsInside>
    void DrawPixel(u32 i, const EdgeTaps& columns, const EdgeTaps& rows, u8* to) const
    {
        const CubicWeights across = x_.weights[i], down = y_.weights[i];
        for (u32 c = 0; c < channels_; c += 4) {
            const u32 count = channels_ - c < 4 ? channels_ - c : 4;
            Quad sums[4];
            for (u32 row = 0; row < 4; ++row) {
                const u64 start = u64(rows.indices[row]) * src_.stride + c;
                const auto tap = [&](u32 column) {
                    const u64 offset = start + u64(columns.indices[column]) * channels_;
                    return kIsInside ? Quad::Of(src_.data + offset) : LoadQuad(src_.data, bytes_, offset, count);
                };
                sums[row] = across.Sum(tap(0), tap(1), tap(2), tap(3));
            }
            (down.Sum(sums[0], sums[1], sums[2], sums[3]) + 0.5).Write(to + c, count);
        }
    }

    const ImageView<const u8>& src_;
    const u32 channels_;
    const u64 bytes_;
    AxisPlaces x_, y_;
};

template <u32 kChannels>
void DrawRows(const ImageView<const u8>& src, PushedColumns& columns, u32 rows, u8* to)
{
    for (u32 row = 0; row < rows; ++row, to += src.stride) {
        RowDrawer<kChannels>(src, columns).Draw(columns.count, to);
        for (u32 i = 0; i < columns.count; ++i) columns.x[i] += columns.stepX[i];
        for (u32 i = 0; i < columns.count; ++i) columns.y[i] += columns.stepY[i];
    }
}

void DrawColumns(const ImageView<const u8>& src, PushedColumns& columns, u32 rows, u8* to)
{
    switch (src.channels) {
    case 1: return DrawRows<1>(src, columns, rows, to);
    case 3: return DrawRows<3>(src, columns, rows, to);
    case 4: return DrawRows<4>(src, columns, rows, to);
    default: return DrawRows<0>(src, columns, rows, to);
    }
}

}  // namespace

namespace ZLV_TARGET {

constinit const PushImageKernels kPushImageKernels = {DrawColumns};

}  // namespace ZLV_TARGET
}  // namespace zlv
