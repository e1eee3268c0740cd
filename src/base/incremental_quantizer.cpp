// The palette of a picture by an octree that is pruned while it grows.
//
// A pixel goes down the tree from the root, by one bit of each component a level, to the leaf that holds its colour.
// Too many leaves make the deepest node that was made last take its children in and be a leaf itself. A leaf never
// gets children again; so most pixels find theirs in a table of the nodes at level 5 and above and need no way down.
#include "base/octree_key.h"
#include "base/palette.h"
#include "base/quantizers.h"
#include "runtime/array.h"

#include <algorithm>

namespace zlv {

namespace {

constexpr u32 kLeafLevel = 8;
constexpr u32 kCellLevel = 5;
constexpr u32 kCellCount = 1u << (3 * kCellLevel);
constexpr u32 kCellShift = kOctreeKeyBits - 3 * kCellLevel;

// Nodes are known by their number. 0 is the root, which is nobody's child and in no list: there it means none.
struct QuantOctreeNode {
    u32 pixelCount;
    u32 sum0, sum1, sum2;
    u16 children[8];
    u16 nextReducible;  // in the list of its level, or in that of the free nodes
    u16 firstCell;      // of the cells below it, down to level 5
    u8 level;
    bool isLeaf;
};

class QuantOctree {
public:
    [[nodiscard]] bool Prepare(u32 colors)
    {
        colors_ = colors;
        // All nodes lie on the way to a leaf, and one leaf too many is there before the tree is reduced.
        if (!nodes_.Resize(1 + u64(colors + 1) * kLeafLevel) || !lowestKnown_.Resize(kCellCount)) return false;
        nodes_[0] = {};
        std::fill_n(lowestKnown_.GetData(), kCellCount, u16(0));
        return true;
    }

    u32 LeafCount() const { return leafCount_; }

    void Add(u8 first, u8 second, u8 third)
    {
        const u32 key = OctreeKey(first, second, third);
        if (key != latestKey_) {
            latestKey_ = key;
            latestLeaf_ = FindLeaf(key);
        }
        QuantOctreeNode& leaf = nodes_[latestLeaf_];
        ++leaf.pixelCount;
        leaf.sum0 += first;
        leaf.sum1 += second;
        leaf.sum2 += third;
        while (leafCount_ > colors_) Reduce();
    }

    // Depth first, the first child first. Returns the place behind the last entry.
    u8* WriteEntries(u8* palette, u32 number = 0) const
    {
        const QuantOctreeNode& node = nodes_[number];
        if (node.isLeaf) {
            const u32 count = std::max(node.pixelCount, 1u);  // 2^32 pixels wrap to 0
            palette[2] = u8(node.sum0 / count);
            palette[1] = u8(node.sum1 / count);
            palette[0] = u8(node.sum2 / count);
            return palette + 4;
        }
        for (const u16 child : node.children) {
            if (child != 0) palette = WriteEntries(palette, child);
        }
        return palette;
    }

private:
    static constexpr u32 kNoKey = 0xFFFFFFFF;

    u32 FindLeaf(u32 key)
    {
        const u32 cell = key >> kCellShift;
        u32 number = lowestKnown_[cell];
        while (!nodes_[number].isLeaf) {
            const u32 level = nodes_[number].level;
            u16& child = nodes_[number].children[key >> (kOctreeKeyBits - 3 - 3 * level) & 7];
            if (child == 0) child = MakeNode(level + 1, cell);
            number = child;
            if (level < kCellLevel) lowestKnown_[cell] = u16(number);
        }
        return number;
    }

    static u32 CellsBelow(u32 level) { return level < kCellLevel ? 1u << (3 * (kCellLevel - level)) : 1; }

    u16 MakeNode(u32 level, u32 cell)
    {
        u16 number = firstFree_;
        if (number != 0) firstFree_ = nodes_[number].nextReducible;
        else number = u16(++used_);
        QuantOctreeNode& node = nodes_[number];
        node = {};
        node.level = u8(level);
        node.firstCell = u16(cell & ~(CellsBelow(level) - 1));
        if (level == kLeafLevel) {
            node.isLeaf = true;
            ++leafCount_;
        } else {
            node.nextReducible = firstReducible_[level];
            firstReducible_[level] = number;
        }
        return number;
    }

    // The deepest node that has children, of those the one made last. The root is its level's only one.
    u32 TakeReducible()
    {
        u32 level = kLeafLevel - 1;
        while (level > 0 && firstReducible_[level] == 0) --level;
        const u32 number = firstReducible_[level];
        firstReducible_[level] = nodes_[number].nextReducible;
        return number;
    }

    void Reduce()
    {
        const u32 number = TakeReducible();
        QuantOctreeNode& node = nodes_[number];
        for (const u16 child : node.children) {
            if (child == 0) continue;
            const QuantOctreeNode& from = nodes_[child];
            node.pixelCount += from.pixelCount;
            node.sum0 += from.sum0;
            node.sum1 += from.sum1;
            node.sum2 += from.sum2;
            nodes_[child].nextReducible = firstFree_;
            firstFree_ = child;
            --leafCount_;
        }
        node.isLeaf = true;
        ++leafCount_;
        latestKey_ = kNoKey;
        if (node.level < kCellLevel) {
            std::fill_n(lowestKnown_.GetData() + node.firstCell, CellsBelow(node.level), u16(number));
        }
    }

    MVBuffer<QuantOctreeNode> nodes_;
    MVBuffer<u16> lowestKnown_;  // of the nodes on the way to a cell
    u32 latestKey_ = kNoKey;     // of the latest pixel, while its leaf is there
    u32 latestLeaf_ = 0;
    u32 colors_ = 0;
    u32 leafCount_ = 0;
    u32 used_ = 0;
    u16 firstFree_ = 0;
    u16 firstReducible_[kLeafLevel] = {};
};

}  // namespace

bool QuantizeIncrementally(BaseWork& work, const ImageView<const u8>& source, u32 colors, u8* palette, u32 flags)
{
    QuantOctree octree;
    if (!octree.Prepare(colors)) return work.Fail(Error::OutOfMemory);
    const u32 first = flags & kSameComponentOrder ? 2 : 0;
    for (u32 y = 0; y < source.height; ++y) {
        const u8* pixel = source.Row(y);
        for (u32 x = 0; x < source.width; ++x, pixel += source.channels) {
            octree.Add(pixel[first], pixel[1], pixel[2 - first]);
        }
        if (!work.Report(y, source.height)) return false;
    }
    if (octree.LeafCount() > colors) return work.Fail(Error::CouldNotRun);
    octree.WriteEntries(palette);
    return true;
}

}  // namespace zlv
