// Bevel: a frame of rings around an image, each side in a shade of its own.
//
// A shade is a percentage, and 100 changes nothing. Without a blur only the frame's pixels are touched.
#include "base/gaussian_blur.h"
#include "base/image_view.h"
#include "base/table_pass.kernels.h"
#include "runtime/array.h"
#include "runtime/clamp.h"
#include "runtime/frame.h"

#include "zlv40.h"

#include <algorithm>
#include <cstring>

using namespace zlv;

namespace {

constexpr u8 kFlat = 100;
constexpr u32 kColours = 3;
constexpr u32 kColoursAndAlpha = 4;

struct Shades {
    u8 left, top, right, bottom;
};

bool IsNumber(f64 value) { return value == value; }

u8 ShadeOf(f64 shade)
{
    const f64 lowest = 0, highest = 255;
    return u8(ClampDouble(shade, &lowest, &highest));
}

// A stretch of a row in one shade.
struct ShadeRun {
    u32 count;
    u8 shade;
};

// The frame as it is before a blur. Rings are laid from the outermost inwards; each lays its top and bottom over the
// ends of its own columns, so the top and the bottom own the corners.
class Frame {
public:
    static constexpr u32 kMostRuns = 3;

    Frame(u32 width, u32 height, u32 bevelWidth, const Shades& shades)
        : width_(width), height_(height), bevelWidth_(bevelWidth), shades_(shades)
    {
    }

    // The row from left to right, in three stretches that may be empty.
    void RunsOf(u32 y, ShadeRun (&runs)[kMostRuns]) const
    {
        const u32 below = height_ - 1 - y;
        const u32 depth = std::min({y, below, bevelWidth_});
        const u8 middle = depth == bevelWidth_ ? kFlat : y < below ? shades_.top : shades_.bottom;
        runs[0] = {depth, shades_.left};
        runs[1] = {width_ - 2 * depth, middle};
        runs[2] = {depth, shades_.right};
    }

    void FillRow(u32 y, u8* row) const
    {
        ShadeRun runs[kMostRuns];
        RunsOf(y, runs);
        for (const ShadeRun& run : runs) {
            std::memset(row, run.shade, run.count);
            row += run.count;
        }
    }

private:
    const u32 width_, height_, bevelWidth_;
    const Shades shades_;
};

// Multiplies pixels by shades: a table a shade, made when it is first met.
class Shader {
public:
    [[nodiscard]] bool Prepare(const ImageView<u8>& image, bool protectsAlpha)
    {
        channels_ = image.channels;
        shadedChannels_ = protectsAlpha && channels_ == kColoursAndAlpha ? kColours : channels_;
        return tables_.Resize(u64(256) * 256);
    }

    void Shade(u8* pixels, u32 count, u8 shade)
    {
        if (shade == kFlat) return;
        const u8* const table = TableOf(shade);
        const TablePassKernels& kernels = Kernels<TablePassKernels>();
        if (shadedChannels_ == channels_) return kernels.mapSamples(pixels, size_t(count) * channels_, table);
        const void* const tables[kColoursAndAlpha] = {table, table, table, nullptr};
        kernels.mapPixels(pixels, count, channels_, tables);
    }

    void ShadeRow(u8* pixels, const u8* shades, u32 width)
    {
        for (u32 x = 0; x < width;) {
            const u32 start = x;
            while (x < width && shades[x] == shades[start]) ++x;
            Shade(pixels + size_t(start) * channels_, x - start, shades[start]);
        }
    }

private:
    const u8* TableOf(u8 shade)
    {
        u8* const table = tables_.GetData() + size_t(shade) * 256;
        if (isMade_[shade]) return table;
        isMade_[shade] = true;
        const f64 k = shade / 100.0;
        const f64 lowest = 0, highest = 255;
        for (u32 v = 0; v < 256; ++v) table[v] = u8(ClampDouble(v * k, &lowest, &highest));
        return table;
    }

    u32 channels_ = 0, shadedChannels_ = 0;
    MVBuffer<u8> tables_;
    bool isMade_[256] = {};
};

// Calls shadeRow(row, y) for every row and reports it.
template <class ShadeRow>
u32 ShadeRows(CallFrame& frame, const ImageView<u8>& image, ShadeRow shadeRow)
{
    for (u32 y = 0; y < image.height; ++y) {
        shadeRow(image.Row(y), y);
        if (!frame.Report(y, image.height)) return 0;
    }
    return 1;
}

u32 ShadeSharply(CallFrame& frame, const ImageView<u8>& image, const Frame& shades, Shader& shader)
{
    return ShadeRows(frame, image, [&](u8* row, u32 y) {
        ShadeRun runs[Frame::kMostRuns];
        shades.RunsOf(y, runs);
        for (const ShadeRun& run : runs) {
            shader.Shade(row, run.count, run.shade);
            row += size_t(run.count) * image.channels;
        }
    });
}

u32 ShadeBlurred(CallFrame& frame, const ImageView<u8>& image, const Frame& shades, Shader& shader, f64 sigma)
{
    MVBuffer<u8> sharp, blurred;
    const u64 pixels = u64(image.width) * image.height;
    if (!sharp.Resize(pixels) || !blurred.Resize(pixels)) return frame.Fail(Error::OutOfMemory);
    for (u32 y = 0; y < image.height; ++y) shades.FillRow(y, sharp.GetData() + size_t(y) * image.width);
    const bool isBlurred = MV40_GaussianBlurImage(sharp.GetData(), image.width, image.height, 1, image.width,
                                                  blurred.GetData(), image.width, sigma, 1);
    if (!isBlurred) return frame.Fail(Error(MV40_GetLastError()));
    return ShadeRows(frame, image, [&](u8* row, u32 y) {
        shader.ShadeRow(row, blurred.GetData() + size_t(y) * image.width, image.width);
    });
}

}  // namespace

ZLV_EXPORT u32 ZLV40_ShadeBevelEdge(u8* image, u32 width, u32 height, u32 rowStride, u32 bevelWidth, u32 bytesPerPixel,
                                    u32 flags, f64 leftShade, f64 topShade, f64 rightShade, f64 bottomShade, f64 blur)
{
    return InFrame(FrameKind::NoNestCount, [&](CallFrame& frame) -> u32 {
        if (!image || u64(bevelWidth) * 2 > std::min(width, height)) return frame.Fail(Error::BadArgument);
        const bool areNumbers =
            IsNumber(leftShade) && IsNumber(topShade) && IsNumber(rightShade) && IsNumber(bottomShade);
        if (!areNumbers) return frame.Fail(Error::BadArgument);
        const ImageView<u8> view = {image, width, height, bytesPerPixel, rowStride};
        Shader shader;
        const bool isEmpty = width == 0 || height == 0;
        if (isEmpty || !shader.Prepare(view, flags & ZLV40_PROTECT_ALPHA)) return frame.Fail(Error::OutOfMemory);
        if (bytesPerPixel == 0 && !frame.MayReport()) return 1;
        const Shades shades = {ShadeOf(leftShade), ShadeOf(topShade), ShadeOf(rightShade), ShadeOf(bottomShade)};
        const Frame bevel(width, height, bevelWidth, shades);
        return blur == 0 ? ShadeSharply(frame, view, bevel, shader)
                         : ShadeBlurred(frame, view, bevel, shader, blur / 100.0);
    });
}
