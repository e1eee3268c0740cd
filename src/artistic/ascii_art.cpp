// ASCII art: a gray image as lines of text, one character a cell.
#include "artistic/recipe.h"
#include "base/image_view.h"
#include "base/resize.h"
#include "base/table_pass.h"

#include "zlv40.h"

#include <cstring>

using namespace zlv;

namespace {

constexpr char kDefaultRamp[] = "WM$@#%^x*o=+:~. ";  // from dark to light
constexpr u8 kLineFeed = 10;
constexpr u32 kLevelCount = 256;

// Each level's character; the ramp holds one at least.
struct CharacterTable {
    u8 entries[kLevelCount];

    explicit CharacterTable(const char* ramp)
    {
        const f64 step = f64(kLevelCount) / f64(std::strlen(ramp));
        for (u32 level = 0; level < kLevelCount; ++level) entries[level] = u8(ramp[size_t(level / step)]);
    }
};

// The samples that become characters, at their places in the text.
u32 SampleCells(const ImageView<const u8>& source, const ImageView<u8>& text)
{
    // An image of the text's own layout would be copied with the byte behind its last row, which need not be there.
    const bool isSameSize = source.width == text.width && source.height == text.height && source.width > 0;
    if (isSameSize && source.stride == text.stride && text.stride > text.width) {
        for (u32 y = 0; y < text.height; ++y) std::memcpy(text.Row(y), source.Row(y), text.width);
        return 1;
    }
    return MV40_ResizeImage(source.data, source.width, source.height, source.stride, text.data, text.width, text.height,
                            text.stride, kGrayChannels, u32(ResizeMode::Bilinear), 0);
}

void EndLines(const ImageView<u8>& text)
{
    for (u32 y = 0; y < text.height; ++y) text.Row(y)[text.width] = kLineFeed;
    *text.Row(text.height) = 0;
}

}  // namespace

ZLV_EXPORT u32 ZLV40_ASCIIizeGrayscaleImage(const u8* source, u32 width, u32 height, u32 sourceStride, u8* text,
                                            u32 columns, u32 rows, const char* ramp)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!source || !text || (ramp && !*ramp)) return frame.Fail(Error::BadArgument);
        const ImageView<const u8> image = {source, width, height, kGrayChannels, sourceStride};
        const ImageView<u8> lines = {text, columns, rows, kGrayChannels, columns + 1};
        if (rows == 0) {
            EndLines(lines);  // no lines are a text too, though no image can be resized to it
            return frame.Fail(Error::BadArgument);
        }
        if (!SampleCells(image, lines)) return FailAsBase(frame);

        const CharacterTable characters(ramp ? ramp : kDefaultRamp);
        const void* const tables[] = {characters.entries};
        const u32 done = MV40_ApplyLUTsToImage(text, columns, rows, kGrayChannels, lines.stride, tables, 0);
        EndLines(lines);
        return done;
    });
}
