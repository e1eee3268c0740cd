// The base layer.
#include "base/table_pass.h"
#include "bench_row.h"
#include "opencv_peers.h"

#include <memory>

namespace zlvbench {

namespace {

// Tables with no structure to find, as many as the list of seeds has.
template <class T>
std::vector<std::vector<T>> RandomTables(std::initializer_list<u64> seeds)
{
    std::vector<std::vector<T>> tables;
    for (const u64 seed : seeds) tables.push_back(RandomTable<T>(seed));
    return tables;
}

// One table for all channels, or one each.
template <class T>
Work ApplyLuts(const Shape& shape, const std::vector<std::vector<T>>& tables)
{
    struct Kept {
        std::vector<std::vector<T>> tables;
        std::vector<const void*> pointers;
    };
    const auto kept = std::make_shared<Kept>();
    kept->tables = tables;
    for (u32 c = 0; c < shape.channels; ++c) kept->pointers.push_back(kept->tables[c % tables.size()].data());
    return [shape, kept](const Buffers& buffers) {
        MV40_ApplyLUTsToImage(buffers.image, shape.width, shape.height, shape.channels, shape.width * shape.channels,
                              kept->pointers.data(), sizeof(T) == 2 ? kSixteenBitSamples : 0);
    };
}

BenchRow ByteRow(const std::string& layout, const Shape& shape, const std::vector<std::vector<u8>>& tables)
{
    const std::string size = std::to_string(shape.width) + "x" + std::to_string(shape.height);
    return {"ApplyLUTs/" + layout + "/" + size, shape, 0, ApplyLuts(shape, tables), CvLut(shape, tables)};
}

// OpenCV's look-up takes bytes only.
BenchRow WordRow(const std::string& layout, const Shape& shape, const std::vector<std::vector<u16>>& tables)
{
    const std::string size = std::to_string(shape.width) + "x" + std::to_string(shape.height);
    return {"ApplyLUTs/" + layout + "/" + size, shape, 0, ApplyLuts(shape, tables)};
}

}  // namespace

std::vector<BenchRow> BaseRows()
{
    const auto full = [](u32 channels, u32 bytesPerSample = 1) {
        return Shape{kFullWidth, kFullHeight, channels, bytesPerSample};
    };
    return {
        ByteRow("rgb8_shared", {16, 16, 3}, RandomTables<u8>({1})),
        ByteRow("rgb8_three_tables", {16, 16, 3}, RandomTables<u8>({1, 2, 3})),
        ByteRow("gray8_shared", full(1), RandomTables<u8>({1})),
        ByteRow("rgb8_shared", full(3), RandomTables<u8>({1})),
        ByteRow("rgb8_three_tables", full(3), RandomTables<u8>({1, 2, 3})),
        ByteRow("rgba8_four_tables", full(4), RandomTables<u8>({1, 2, 3, 4})),
        WordRow("gray16_shared", full(1, 2), RandomTables<u16>({1})),
        WordRow("rgb16_three_tables", full(3, 2), RandomTables<u16>({1, 2, 3})),
    };
}

}  // namespace zlvbench
