// The filters of resizing, and which samples they weigh.
#pragma once

#include "base/resize_lines.kernels.h"
#include "runtime/array.h"

namespace zlv {

struct ResizeFilter {
    f64 support;
    // The filter at each of `count` distances.
    void (*weigh)(const f64* distances, f64* weights, size_t count);

    // The least width and height of a target.
    u32 Need() const { return u32(support + 0.999999999); }
};

// The filter of modes 0 to 13.
const ResizeFilter& ResizeFilterOf(u32 mode);

// The lists of contributors of neighbouring indices of the destination, in one direction.
class ResizeContribTable {
public:
    ResizeContribTable(const ResizeFilter& filter, u32 sourceSize, u32 destSize);

    // Room for the lists of `count` indices.
    [[nodiscard]] bool Resize(u32 count);

    // Makes the lists of the indices first to first + count - 1.
    void Build(u32 first, u32 count);

    ResizeContribList& operator[](u32 i) { return lists_[i]; }

    // The source indices that the lists built last contain lie within these.
    u32 Lowest() const { return lowest_; }
    u32 Highest() const { return highest_; }

    // An upper bound of how many source indices the lists of `count` neighbouring indices span.
    u64 SpanOf(u32 count) const;

private:
    void BuildList(u32 index, ResizeContributor* taps, ResizeContribList& list);
    void WeighDistances(u64 count);

    const ResizeFilter& filter_;
    const u32 sourceSize_;
    const f64 scale_;
    const f64 halfWidth_;
    const f64 filterScale_;
    const u64 capacity_;  // taps of a list, at most
    u32 lowest_ = 0;
    u32 highest_ = 0;
    MVBuffer<ResizeContributor> taps_;
    MVBuffer<ResizeContribList> lists_;
    MVBuffer<f64> distances_;         // of a list's taps from its centre
    MVBuffer<f64> weighedDistances_;  // those that the weights are for
    MVBuffer<f64> weights_;
    u64 weighedCount_ = 0;
};

}  // namespace zlv
