// The palette of a picture by population: cells of colours are counted, then the smallest subtrees of their octree are
// folded into their parents, whatever the distance of their colours, until few enough are left.
#include "base/octree_key.h"
#include "base/palette.h"
#include "base/quantizers.h"
#include "runtime/array.h"

#include <cstring>

namespace zlv {

namespace {

constexpr u32 kStages = 4;
constexpr u32 kCellLevel = 5;
constexpr u32 kCellCount = 1u << (3 * kCellLevel);
constexpr u32 kCellShift = kOctreeKeyBits - 3 * kCellLevel;
constexpr u8 kOpaqueEnough = 8;  // of a fourth byte

using FourSums [[gnu::vector_size(16)]] = u32;

// The pixels that a node holds itself, as opposed to those of its subtree.
struct alignas(16) QuantNode {
    u32 sum0, sum1, sum2;
    u32 count;
};

// The tree. Its levels 0 to 5 follow each other, and so the children of node i are 8 * i + 1 to 8 * i + 8.
struct QuantLevels {
    static constexpr u32 kInnerNodes = (kCellCount - 1) / 7;  // levels 0 to 4
    static constexpr u32 kNodes = kInnerNodes + kCellCount;

    static u32 ParentOf(u32 node) { return node == 0 ? 0 : (node - 1) / 8; }
    static u32 ChildOf(u32 node, u32 child) { return 8 * node + 1 + child; }
    // The bit of a node in its parent's childMask.
    static u8 BitOf(u32 node) { return u8(1u << (node - 1) % 8); }

    QuantNode* Cells() { return nodes + kInnerNodes; }

    QuantNode nodes[kNodes];
    u32 population[kInnerNodes];  // pixels of the whole subtree
    u8 childMask[kInnerNodes];    // bit k: child k is still part of the tree
};

// The nodes that are colours now, a heap with the smallest subtree on top. A node's population stays, and so it stands
// beside its number. Entry 0 is not used.
struct QuantHeap {
    struct Entry {
        u32 population;
        u32 node;
    };

    u32 size;
    Entry entries[kCellCount + 2];  // behind the last one stands kEnd

    void Append(Entry entry) { entries[++size] = entry; }

    void Heapify()
    {
        entries[size + 1] = kEnd;
        for (u32 at = size; at > 0; --at) SiftDown(at);
    }

    void ReplaceTop(Entry entry)
    {
        entries[1] = entry;
        SiftDown(1);
    }

    void RemoveTop()
    {
        const Entry last = entries[size];
        entries[size--] = kEnd;
        ReplaceTop(last);
    }

private:
    static constexpr Entry kEnd = {0xFFFFFFFF, 0};

    // A tie keeps the upper entry in place and prefers the left child. Which child it is, nobody can foresee: so it is
    // no branch.
    void SiftDown(u32 at)
    {
        const Entry moved = entries[at];
        for (u32 child = 2 * at; child <= size; child = 2 * at) {
            child += u32(entries[child].population > entries[child + 1].population);
            if (moved.population <= entries[child].population) break;
            entries[at] = entries[child];
            at = child;
        }
        entries[at] = moved;
    }
};

class PopulationQuantizer {
public:
    [[nodiscard]] bool Prepare()
    {
        if (!tree_.Resize(1)) return false;
        std::memset(tree_.GetData(), 0, sizeof(Tree));
        return true;
    }

    void CountPixels(const ImageView<const u8>& source, bool skipsTransparent)
    {
        const auto countRow = skipsTransparent       ? CountRow<4, true>
                              : source.channels == 4 ? CountRow<4, false>
                                                     : CountRow<3, false>;
        for (u32 y = 0; y < source.height; ++y) countRow(source.Row(y), source.width, Levels().Cells());
    }

    void FillHeap()
    {
        QuantLevels& levels = Levels();
        for (u32 cell = 0; cell < kCellCount; ++cell) {
            const u32 count = levels.Cells()[cell].count;
            if (count == 0) continue;
            u32 node = QuantLevels::kInnerNodes + cell;
            Heap().Append({count, node});
            for (u32 level = kCellLevel; level > 0; --level) {
                const u32 parent = QuantLevels::ParentOf(node);
                levels.population[parent] += count;
                levels.childMask[parent] |= QuantLevels::BitOf(node);
                node = parent;
            }
        }
        Heap().Heapify();
    }

    void Reduce(u32 colors)
    {
        QuantLevels& levels = Levels();
        QuantHeap& heap = Heap();
        while (heap.size > colors) {
            const u32 node = heap.entries[1].node;
            const u32 parent = QuantLevels::ParentOf(node);
            QuantNode& into = levels.nodes[parent];
            // The root has no parent: it is on top only when 2^32 pixels have made its population wrap.
            const bool isColor = into.count != 0 || node == 0;
            const QuantNode& from = levels.nodes[node];
            into.sum0 += from.sum0;
            into.sum1 += from.sum1;
            into.sum2 += from.sum2;
            into.count += from.count;
            levels.childMask[parent] &= u8(~QuantLevels::BitOf(node));
            if (isColor) heap.RemoveTop();
            else heap.ReplaceTop({levels.population[parent], parent});
        }
    }

    // Children before their parent, the last one first. A node may be a colour and have children that are.
    void AssignColors(u32 node = 0)
    {
        if (node < QuantLevels::kInnerNodes) {
            for (u32 child = 8; child-- > 0;) {
                if (Levels().childMask[node] >> child & 1) AssignColors(QuantLevels::ChildOf(node, child));
            }
        }
        const QuantNode& held = Levels().nodes[node];
        if (held.count == 0) return;
        u8* const color = colors_[found_++];
        const u32 half = held.count / 2;
        color[0] = u8((held.sum0 + half) / held.count);
        color[1] = u8((held.sum1 + half) / held.count);
        color[2] = u8((held.sum2 + half) / held.count);
    }

    void WritePalette(u8* palette, u32 firstByte) const
    {
        for (const u8* const color : colors_) {
            palette[firstByte] = color[0];
            palette[1] = color[1];
            palette[2 - firstByte] = color[2];
            palette += 4;
        }
    }

private:
    struct Tree {
        QuantLevels levels;
        QuantHeap heap;
    };

    template <size_t kPixelBytes, bool kSkipsTransparent>
    static void CountRow(const u8* pixels, size_t count, QuantNode* cells)
    {
        for (const u8* const end = pixels + count * kPixelBytes; pixels != end; pixels += kPixelBytes) {
            if (kSkipsTransparent && pixels[kPixelBytes - 1] < kOpaqueEnough) continue;
            const u8 first = pixels[0], second = pixels[1], third = pixels[2];
            // All four sums at once.
            QuantNode& cell = cells[OctreeKey(first, second, third) >> kCellShift];
            FourSums sums;
            std::memcpy(&sums, &cell, sizeof sums);
            sums += FourSums{first, second, third, 1};
            std::memcpy(&cell, &sums, sizeof sums);
        }
    }

    QuantLevels& Levels() { return tree_[0].levels; }
    QuantHeap& Heap() { return tree_[0].heap; }

    MVBuffer<Tree> tree_;
    u8 colors_[kLargestPalette][3] = {};
    u32 found_ = 0;
};

}  // namespace

bool QuantizeByPopulation(BaseWork& work, const ImageView<const u8>& source, u32 colors, u8* palette, u32 flags)
{
    if (!work.Report(0, kStages)) return false;
    PopulationQuantizer quantizer;
    if (!quantizer.Prepare()) return true;
    if (!work.Report(1, kStages)) return false;
    quantizer.CountPixels(source, flags & kSkipTransparent);
    quantizer.FillHeap();
    if (!work.Report(2, kStages)) return false;
    quantizer.Reduce(colors);
    quantizer.AssignColors();
    if (!work.Report(3, kStages)) return false;
    quantizer.WritePalette(palette, FirstByteOfEntry(flags));
    return true;
}

}  // namespace zlv
