// What is measured: one row is one function on one image, with the peer that does comparable work.
//
// To add a row, add one entry to the list of its family (tone_rows.cpp, ...); a new family is declared here and called
// in bench_main.cpp. What a row should reach stands in targets.toml.
#pragma once

#include "platform/types.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace zlvbench {

using namespace zlv;

// The memory of one run. `output` is null for work in place.
struct Buffers {
    u8* image;
    u8* output;
};

using Work = std::function<void(const Buffers&)>;

// A peer without work is not installed here: the row is measured alone.
struct Peer {
    const char* name = "";
    Work work;
    bool isBitEqual = true;  // its bytes must be ours; otherwise it does comparable work and they are not compared
};

struct Shape {
    u32 width, height, channels;
    u32 bytesPerSample = 1;
    u32 samplesPerByte = 1;  // 8 in a 1-bit image, whose rows are whole bytes

    size_t Pixels() const { return size_t(width) * height; }
    size_t Bytes() const { return Pixels() * channels * bytesPerSample / samplesPerByte; }
};

inline constexpr u32 kFullWidth = 1920;
inline constexpr u32 kFullHeight = 1080;

struct BenchRow {
    std::string name;  // a path: function without its prefix (table.py counts on it), layout, size, parameters
    Shape shape;       // of the image, which is filled with random bytes
    size_t outputBytes;
    Work ours;
    Peer peer = {};
    size_t resultPixels = 0;  // what a time is divided by, where the result has other pixels than the image
    const char* unit = "px";  // what it is divided by: pixels, points, bytes, calls
};

std::vector<BenchRow> AdaptiveRows();
std::vector<BenchRow> ArtisticRows();
std::vector<BenchRow> BaseRows();
std::vector<BenchRow> BufferRows();
std::vector<BenchRow> CallRows();
std::vector<BenchRow> CrackleRows();
std::vector<BenchRow> EachWarpRows();
std::vector<BenchRow> EdgesRows();
std::vector<BenchRow> FilterRows();
std::vector<BenchRow> FrequencyRows();
std::vector<BenchRow> GaussianRows();
std::vector<BenchRow> GenerateRows();
std::vector<BenchRow> LayerStylesRows();
std::vector<BenchRow> MedianRows();
std::vector<BenchRow> MorphologyRows();
std::vector<BenchRow> NoiseRows();
std::vector<BenchRow> OverlayRows();
std::vector<BenchRow> PaletteRows();
std::vector<BenchRow> PolygonRows();
std::vector<BenchRow> PushRows();
std::vector<BenchRow> ReflectionRows();
std::vector<BenchRow> ResizeRows();
std::vector<BenchRow> SeamRows();
std::vector<BenchRow> SegmentedRows();
std::vector<BenchRow> SplineRows();
std::vector<BenchRow> ToneRows();
std::vector<BenchRow> WarpRows();
std::vector<BenchRow> WindowRows();

// The same bytes on every run and machine.
class RandomBytes {
public:
    explicit RandomBytes(u64 seed) : state_(seed) {}

    u32 Next()
    {
        state_ = state_ * 6364136223846793005u + 1442695040888963407u;
        return u32(state_ >> 33);
    }

private:
    u64 state_;
};

// A table that moves every value somewhere else and loses none: repeated passes in place keep the image's spread.
template <class T>
std::vector<T> RandomTable(u64 seed)
{
    std::vector<T> table(size_t(1) << (8 * sizeof(T)));
    for (size_t i = 0; i < table.size(); ++i) table[i] = T(i);
    RandomBytes random(seed);
    for (size_t i = table.size() - 1; i > 0; --i) std::swap(table[i], table[random.Next() % (i + 1)]);
    return table;
}

}  // namespace zlvbench
