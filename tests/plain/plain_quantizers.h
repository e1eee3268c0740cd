// The two searches for a palette, said plainly. Slow on purpose; includes nothing of the library.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace plain {

using Color = std::array<std::uint8_t, 3>;

// ---- By population ---------------------------------------------------------------------------------------------

struct PopulationNode {
    std::uint32_t sum[3] = {};
    std::uint32_t count = 0;
    std::uint32_t population = 0;
    unsigned childMask = 0;
};

class PopulationTree {
public:
    void AddPixel(int c0, int c1, int c2)
    {
        PopulationNode& node = levels_[5][CellOf(c0, c1, c2)];
        node.sum[0] += std::uint32_t(c0);
        node.sum[1] += std::uint32_t(c1);
        node.sum[2] += std::uint32_t(c2);
        ++node.count;
    }

    // The colours in the order of their entries.
    std::vector<Color> Quantize(std::size_t colors)
    {
        FillHeap();
        while (heap_.size() > colors + 1) Fold();  // heap_[0] is not used
        std::vector<Color> found;
        Visit(0, 0, found);
        return found;
    }

private:
    struct Entry {
        int level;
        std::size_t index;
    };

    // One bit of each component a level, from bit 7 down, the first component's on top.
    static std::size_t CellOf(int c0, int c1, int c2)
    {
        std::size_t cell = 0;
        for (int bit = 7; bit >= 3; --bit) {
            cell = cell * 8 + std::size_t((c0 >> bit & 1) * 4 + (c1 >> bit & 1) * 2 + (c2 >> bit & 1));
        }
        return cell;
    }

    PopulationNode& At(const Entry& entry) { return levels_[std::size_t(entry.level)][entry.index]; }

    void FillHeap()
    {
        for (std::size_t cell = 0; cell < 32768; ++cell) {
            const std::uint32_t count = levels_[5][cell].count;
            if (count == 0) continue;
            heap_.push_back({5, cell});
            levels_[5][cell].population = count;
            std::size_t index = cell;
            for (int level = 4; level >= 0; --level) {
                PopulationNode& ancestor = levels_[std::size_t(level)][index / 8];
                ancestor.population += count;
                ancestor.childMask |= 1u << index % 8;
                index /= 8;
            }
        }
        for (std::size_t i = heap_.size() - 1; i >= 1; --i) SiftDown(i);
    }

    void SiftDown(std::size_t i)
    {
        const auto key = [&](std::size_t k) { return At(heap_[k]).population; };
        while (2 * i < heap_.size()) {
            std::size_t child = 2 * i;
            if (child + 1 < heap_.size() && key(child) > key(child + 1)) ++child;
            if (key(i) <= key(child)) return;
            std::swap(heap_[i], heap_[child]);
            i = child;
        }
    }

    void Fold()
    {
        const Entry top = heap_[1];
        const Entry above = {top.level == 0 ? 0 : top.level - 1, top.index / 8};
        const PopulationNode child = At(top);
        PopulationNode& parent = At(above);
        if (parent.count != 0) {
            heap_[1] = heap_.back();
            heap_.pop_back();
        } else {
            heap_[1] = above;
        }
        for (int c = 0; c < 3; ++c) parent.sum[c] += child.sum[c];
        parent.count += child.count;
        parent.childMask &= ~(1u << top.index % 8);
        SiftDown(1);
    }

    void Visit(int level, std::size_t index, std::vector<Color>& found)
    {
        const PopulationNode& node = At({level, index});
        for (int child = 7; child >= 0; --child) {
            if (node.childMask >> child & 1) Visit(level + 1, index * 8 + std::size_t(child), found);
        }
        if (node.count == 0) return;
        Color color;
        for (std::size_t c = 0; c < 3; ++c) color[c] = std::uint8_t((node.sum[c] + node.count / 2) / node.count);
        found.push_back(color);
    }

    std::vector<PopulationNode> levels_[6] = {std::vector<PopulationNode>(1),    std::vector<PopulationNode>(8),
                                              std::vector<PopulationNode>(64),   std::vector<PopulationNode>(512),
                                              std::vector<PopulationNode>(4096), std::vector<PopulationNode>(32768)};
    std::vector<Entry> heap_ = std::vector<Entry>(1);
};

// ---- The incremental octree --------------------------------------------------------------------------------------

struct OctreeNode {
    bool isLeaf = false;
    std::uint32_t pixelCount = 0;
    std::uint32_t sum[3] = {};
    std::unique_ptr<OctreeNode> children[8];
};

class Octree {
public:
    void AddPixel(int c0, int c1, int c2, std::size_t colors)
    {
        OctreeNode* node = &root_;
        for (int level = 0; !node->isLeaf; ++level) {
            const int bit = 7 - level;
            auto& child = node->children[(c0 >> bit & 1) * 4 + (c1 >> bit & 1) * 2 + (c2 >> bit & 1)];
            if (!child) child = MakeNode(level + 1);
            node = child.get();
        }
        ++node->pixelCount;
        node->sum[0] += std::uint32_t(c0);
        node->sum[1] += std::uint32_t(c1);
        node->sum[2] += std::uint32_t(c2);
        while (leafCount_ > colors) Reduce();
    }

    std::vector<Color> Colors() const
    {
        std::vector<Color> colors;
        Collect(root_, colors);
        return colors;
    }

private:
    std::unique_ptr<OctreeNode> MakeNode(int level)
    {
        auto node = std::make_unique<OctreeNode>();
        if (level == 8) {
            node->isLeaf = true;
            ++leafCount_;
        } else {
            reducible_[level].push_back(node.get());  // the last one is the list's head
        }
        return node;
    }

    void Reduce()
    {
        int level = 7;
        while (level > 0 && reducible_[level].empty()) --level;
        OctreeNode* const node = reducible_[level].back();
        reducible_[level].pop_back();
        std::size_t children = 0;
        for (auto& child : node->children) {
            if (!child) continue;
            node->pixelCount += child->pixelCount;
            for (int c = 0; c < 3; ++c) node->sum[c] += child->sum[c];
            child.reset();
            ++children;
        }
        node->isLeaf = true;
        leafCount_ -= children - 1;
    }

    static void Collect(const OctreeNode& node, std::vector<Color>& colors)
    {
        if (node.isLeaf) {
            Color color;
            for (std::size_t c = 0; c < 3; ++c) color[c] = std::uint8_t(node.sum[c] / node.pixelCount);
            colors.push_back(color);
        }
        for (const auto& child : node.children) {
            if (child) Collect(*child, colors);
        }
    }

    OctreeNode root_;
    std::size_t leafCount_ = 0;
    std::vector<OctreeNode*> reducible_[8] = {{&root_}, {}, {}, {}, {}, {}, {}, {}};
};

// Entry i of the palette; its fourth byte stays.
inline void PutEntry(std::uint8_t* palette, std::size_t i, const Color& color, bool isSameOrder)
{
    for (std::size_t c = 0; c < 3; ++c) palette[4 * i + (isSameOrder ? c : 2 - c)] = color[c];
}

}  // namespace plain

// Writes 256 entries; returns how many are colours that were found.
inline std::size_t PlainQuantizeByPopulation(const std::uint8_t* source, std::size_t width, std::size_t height,
                                             std::size_t stride, std::size_t colors, std::uint8_t* palette,
                                             unsigned flags)
{
    plain::PopulationTree tree;
    const std::size_t pixelBytes = flags & 6 ? 4 : 3;
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            const std::uint8_t* const p = source + y * stride + x * pixelBytes;
            if (flags & 4 && p[3] < 8) continue;
            tree.AddPixel(p[0], p[1], p[2]);
        }
    }
    const std::vector<plain::Color> found = tree.Quantize(colors);
    for (std::size_t i = 0; i < 256; ++i) {
        plain::PutEntry(palette, i, i < found.size() ? found[i] : plain::Color{}, flags & 1);
    }
    return found.size();
}

// Writes the entries that were found and returns how many.
inline std::size_t PlainQuantizeIncrementally(const std::uint8_t* source, std::size_t width, std::size_t height,
                                              std::size_t stride, std::size_t colors, std::uint8_t* palette,
                                              unsigned flags)
{
    plain::Octree octree;
    const std::size_t pixelBytes = flags & 2 ? 4 : 3;
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            const std::uint8_t* const p = source + y * stride + x * pixelBytes;
            if (flags & 1) octree.AddPixel(p[2], p[1], p[0], colors);
            else octree.AddPixel(p[0], p[1], p[2], colors);
        }
    }
    const std::vector<plain::Color> found = octree.Colors();
    for (std::size_t i = 0; i < found.size(); ++i) plain::PutEntry(palette, i, found[i], false);
    return found.size();
}
