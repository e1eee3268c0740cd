// A palette without diffusion: every pixel gets the entry nearest to it.
//
// A search over 256 entries takes longer than everything else that is done with a pixel, so a picture of some size is
// worth a grid that knows, for a cell of colours, the few entries that can be the answer there.
#include "base/image_view.h"
#include "base/palette.h"
#include "base/search_palette.h"
#include "runtime/array.h"

#include <algorithm>

namespace zlv {

namespace {

static_assert(kLargestPalette <= kMostEntries);
constexpr u64 kPixelsWorthAGrid = 2048;  // below, cells are looked at that nobody asks for again

class BestFit {
public:
    BestFit(const u8* palette, u32 colors, u32 flags) { palette_.Set(palette, colors, FirstByteOfEntry(flags)); }

    [[nodiscard]] bool Prepare(u64 pixels)
    {
        // A cell's candidates would be no fewer than a short palette's entries.
        hasGrid_ = palette_.Count() > NearestGrid::kMostCandidates && pixels >= kPixelsWorthAGrid;
        if (!hasGrid_) return true;
        distinct_.SetDistinct(palette_);
        if (!memory_.Resize(1)) return false;
        Memory& memory = memory_[0];
        std::fill_n(memory.counts, NearestGrid::kCells, NearestGrid::kUnknown);
        std::fill_n(memory.blocks, NearestGrid::kBlocks, NearestGrid::Block{});
        grid_ = {distinct_.Entries(), distinct_.Count(), palette_.Entries(), memory.counts,
                 memory.candidates,   memory.blocks,     memory.pool,        0};
        return true;
    }

    void Map(const u8* pixels, u8* indices, size_t count)
    {
        const PaletteSearchKernels& kernels = Kernels<PaletteSearchKernels>();
        if (hasGrid_) {
            kernels.mapByGrid(grid_, pixels, indices, count);
        } else if (palette_.Count() > 0) {
            kernels.mapByEntries(palette_.Entries(), palette_.Count(), pixels, indices, count);
        } else {
            std::fill_n(indices, count, u8(0));
        }
    }

private:
    // Most of it is never touched: only what is asked for is looked at.
    struct Memory {
        u8 counts[NearestGrid::kCells];
        NearestGrid::Block blocks[NearestGrid::kBlocks];
        u32 candidates[NearestGrid::kCells * NearestGrid::kMostCandidates];
        u32 pool[NearestGrid::kBlocks * kMostEntries];
    };

    SearchPalette palette_, distinct_;
    MVBuffer<Memory> memory_;
    NearestGrid grid_ = {};
    bool hasGrid_ = false;
};

u32 MapToBestFit(MVThreadContext& context, Error& error, const ImageView<const u8>& source,
                 const ImageView<u8>& destination, u32 colors, const u8* palette, u32 flags)
{
    BaseWork work(context, error);
    if (!source.data || !destination.data || !palette) return work.Fail(Error::BadArgument);
    if (colors > kLargestPalette) return work.Fail(Error::BadArgument);

    BestFit bestFit(palette, colors, flags);
    if (!bestFit.Prepare(u64(source.width) * source.height)) return work.Fail(Error::OutOfMemory);
    // Every pixel is reported, a row's as many times as it is wide.
    const u32 stretch = work.MayReport() ? 1 : source.width;
    for (u32 y = 0; y < source.height; ++y) {
        for (u32 x = 0; x < source.width; x += stretch) {
            bestFit.Map(source.Row(y) + size_t(x) * 3, destination.Row(y) + x, stretch);
            if (!work.Report(y, source.height)) return 0;
        }
    }
    return 1;
}

}  // namespace

u32 MV40_RGBTo8BitBestFit(const u8* source, u32 width, u32 height, u32 sourceStride, u8* destination, u32 destStride,
                          u32 colors, const u8* palette, u32 flags)
{
    return InBaseCall("MV40_RGBTo8BitBestFit", [&](MVThreadContext& context, Error& error) {
        return MapToBestFit(context, error, {source, width, height, 3, sourceStride},
                            {destination, width, height, 1, destStride}, colors, palette, flags);
    });
}

}  // namespace zlv
