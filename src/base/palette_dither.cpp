// The mapping onto a palette with diffusion of the error.
//
// Rows run to and fro, even ones from left to right. One line of errors serves two rows: what the row above has handed
// down to a pixel is read before anything goes down from there. A pixel is looked up by the upper five bits of its
// components alone: most searches are answered by the first one in the same cell.
#include "base/palette_dither.h"

#include "base/palette.h"
#include "base/palette_dither.kernels.h"
#include "base/search_palette.h"
#include "runtime/array.h"

#include <algorithm>

namespace zlv {

namespace {

constexpr size_t kWordsAPixel = 4;

class Ditherer {
public:
    [[nodiscard]] bool Prepare(u32 width, const DitherSettings& settings)
    {
        // A pixel to spare on either side.
        const u64 lineLength = (u64(width) + 2) * kWordsAPixel;
        if (!state_.Resize(1) || !errors_.Resize(lineLength)) return false;
        std::fill_n(errors_.GetData(), lineLength, i16(0));

        palette_.Set(settings.palette, std::min(settings.colors, kLargestPalette), FirstByteOfEntry(settings.flags));
        PrepareState(state_[0], settings);
        return true;
    }

    void MapRow(const ImageView<const u8>& source, const ImageView<u8>& destination, u32 y)
    {
        const bool isForward = y % 2 == 0;
        const size_t first = isForward ? 0 : source.width - 1;
        const DitherRow row = {source.Row(y) + first * 3, destination.Row(y) + first,
                               errors_.GetData() + (first + 1) * kWordsAPixel, isForward ? 1 : -1, source.width};
        Kernels<PaletteDitherKernels>().ditherRow(state_[0], row);
    }

private:
    void PrepareState(DitherState& state, const DitherSettings& settings)
    {
        state.isFloydSteinberg = settings.ditherKind != 0;
        state.limit = settings.limit;
        state.entries = palette_.Entries();
        state.entryCount = palette_.Count();
        state.findNearest = Kernels<PaletteSearchKernels>().findNearest;
        std::fill_n(state.isAnswered, DitherState::kCells / 32, 0u);
        // Without entries every search would end at index 0.
        std::fill_n(state.cells, DitherState::kCells, palette_.Count() > 0 ? DitherState::kPerhapsUnknown : 0u);
    }

    SearchPalette palette_;
    MVBuffer<DitherState> state_;
    MVBuffer<i16> errors_;
};

}  // namespace

u32 MapWithDiffusion(MVThreadContext& context, Error& error, const ImageView<const u8>& source,
                     const ImageView<u8>& destination, const DitherSettings& settings)
{
    BaseWork work(context, error);
    if (!source.data || !destination.data || !settings.palette) return work.Fail(Error::BadArgument);

    Ditherer ditherer;
    const bool hasPixels = source.width > 0 && source.height > 0;
    if (hasPixels && !ditherer.Prepare(source.width, settings)) return work.Fail(Error::OutOfMemory);
    for (u32 y = 0; y < source.height; ++y) {
        if (hasPixels) ditherer.MapRow(source, destination, y);
        if (!work.Report(y, source.height)) return 0;
    }
    return 1;
}

u32 MV40_RGBTo8BitDithered(const u8* source, u32 width, u32 height, u32 sourceStride, u8* destination, u32 destStride,
                           u32 colors, const u8* palette, u32 ditherKind, u8 limit, u32 flags)
{
    return InBaseCall("MV40_RGBTo8BitDithered", [&](MVThreadContext& context, Error& error) {
        return MapWithDiffusion(context, error, {source, width, height, 3, sourceStride},
                                {destination, width, height, 1, destStride},
                                {colors, palette, ditherKind, limit, flags});
    });
}

}  // namespace zlv
