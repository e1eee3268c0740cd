// The fill of packed masks: a row is a row of blocks of 64 pixels, a block a word of bits. Blocks whose pixels have
// newly been reached wait on a stack; a block taken from it is tested once, its reached pixels spread along their runs
// within the word, and what they touch goes to the neighbours.
#include "runtime/array.h"
#include "tone/hsv_flood.h"

#include <algorithm>
#include <cstring>

namespace zlv {

namespace {

// The runs of `open` that contain one of `seeds`, which lie in it. Each step doubles how far bits have come.
u64 FillRuns(u64 open, u64 seeds)
{
    u64 up = seeds, down = seeds, openUp = open, openDown = open;
    for (u32 distance = 1; distance < 64; distance *= 2) {
        up |= openUp & (up << distance);
        down |= openDown & (down >> distance);
        openUp &= openUp << distance;
        openDown &= openDown >> distance;
    }
    return up | down;
}

struct Block {
    u64 open;     // pixels that match, once they have been looked at
    u64 reached;  // pixels of the region
    u64 waiting;  // pixels that have been reached and not spread; the block is on the stack while there are any
    bool isKnown;
};

class BlockFlood {
public:
    BlockFlood(const HsvImage& image, const HsvMatch& match)
        : image_(image),
          match_(match),
          kernels_(Kernels<HsvMatchKernels>()),
          blocksPerRow_((u64(image.width) + kMatchBlock - 1) / kMatchBlock)
    {
    }

    [[nodiscard]] bool Prepare()
    {
        const u64 count = blocksPerRow_ * image_.height;
        if (!blocks_.Resize(count) || !stack_.Resize(count) || !hasBlocks_.Resize(image_.height)) return false;
        std::fill_n(hasBlocks_.GetData(), image_.height, false);
        return true;
    }

    void Run(PixelPlace seed)
    {
        Reach(seed.x / kMatchBlock, seed.y, u64{1} << (seed.x % kMatchBlock));
        while (stackSize_ > 0) {
            const u64 index = stack_[--stackSize_];
            Spread(u32(index % blocksPerRow_), u32(index / blocksPerRow_));
        }
    }

    void Write(const MatchMask& mask) const
    {
        for (u32 y = 0; y < image_.height; ++y) {
            u8* const row = mask.data + size_t(y) * image_.width;
            if (!hasBlocks_[y]) {
                std::memset(row, 0, image_.width);
                continue;
            }
            for (u32 x = 0; x < blocksPerRow_; ++x) {
                kernels_.spreadBits(blocks_[y * blocksPerRow_ + x].reached, PixelsOf(x), mask.mark,
                                    row + size_t(x) * kMatchBlock);
            }
        }
    }

private:
    size_t PixelsOf(u32 x) const { return std::min<size_t>(kMatchBlock, image_.width - size_t(x) * kMatchBlock); }

    // Pixels of a block that a neighbour touches.
    void Reach(u32 x, u32 y, u64 bits)
    {
        const u64 index = y * blocksPerRow_ + x;
        if (!hasBlocks_[y]) {
            std::fill_n(&blocks_[y * blocksPerRow_], blocksPerRow_, Block{});
            hasBlocks_[y] = true;
        }
        Block& block = blocks_[index];
        if (!block.isKnown) {
            block.open = kernels_.findMatches(image_.Pixel(u32(x * kMatchBlock), y), PixelsOf(x), match_);
            block.isKnown = true;
        }
        bits &= block.open & ~block.reached;
        if (bits == 0) return;
        if (block.waiting == 0) stack_[stackSize_++] = index;
        block.waiting |= bits;
    }

    void Spread(u32 x, u32 y)
    {
        Block& block = blocks_[y * blocksPerRow_ + x];
        const u64 bits = FillRuns(block.open, block.waiting);
        block.waiting = 0;
        block.reached |= bits;
        if (y + 1 < image_.height) Reach(x, y + 1, bits);
        if (y > 0) Reach(x, y - 1, bits);
        if ((bits >> 63) && x + 1 < blocksPerRow_) Reach(x + 1, y, 1);
        if ((bits & 1) && x > 0) Reach(x - 1, y, u64{1} << 63);
    }

    const HsvImage image_;
    const HsvMatch match_;
    const HsvMatchKernels& kernels_;
    const u64 blocksPerRow_;
    MVBuffer<Block> blocks_;
    MVBuffer<bool> hasBlocks_;  // by row: memory of rows that the flood does not reach is not touched
    MVBuffer<u64> stack_;
    u64 stackSize_ = 0;
};

}  // namespace

Error FillPackedMask(const HsvImage& image, const MatchMask& mask, const HsvMatch& match, PixelPlace seed)
{
    BlockFlood flood(image, match);
    if (!flood.Prepare()) return Error::OutOfMemory;
    flood.Run(seed);
    flood.Write(mask);
    return Error::None;
}

}  // namespace zlv
