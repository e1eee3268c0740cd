// Seam carving, both forms beside each other at three sizes. Times are divided by the source's pixels.
#include "bench_row.h"
#include "runtime/random.h"

#include "zlv40.h"

#ifdef ZLV_BENCH_LQR
#include <lqr.h>

#include <cstdlib>
#include <cstring>
#endif

namespace zlvbench {

namespace {

constexpr u16 kPenalty = 300;

Work Carve(const Shape& shape, i32 seams, u32 flags)
{
    return [=](const Buffers& buffers) {
        SeedRandom(*baseContexts.Get(), 1);  // ties are broken alike in every run
        ZLV40_SeamCarve(buffers.image, shape.width, shape.height, shape.channels, shape.width * shape.channels, nullptr,
                        0, buffers.output, u32(i32(shape.width) + seams) * shape.channels, seams, kPenalty, flags);
    };
}

#ifdef ZLV_BENCH_LQR

// Paths of one column a row at most, like ours, by other gradients; it enlarges in one go.
Peer Lqr(const Shape& shape, i32 seams)
{
    return {"liblqr",
            [=](const Buffers& buffers) {
                auto* const pixels = static_cast<guchar*>(std::malloc(shape.Bytes()));  // the carver frees it
                std::memcpy(pixels, buffers.image, shape.Bytes());
                LqrCarver* const carver =
                    lqr_carver_new(pixels, int(shape.width), int(shape.height), int(shape.channels));
                lqr_carver_init(carver, 1, 0);
                const int width = int(shape.width) + seams;
                lqr_carver_resize(carver, width, int(shape.height));
                const size_t row = size_t(width) * shape.channels;
                int y = 0;
                for (guchar* line = nullptr; lqr_carver_scan_line(carver, &y, &line);) {
                    std::memcpy(buffers.output + size_t(y) * row, line, row);
                }
                lqr_carver_destroy(carver);
            },
            false};
}

#else

Peer Lqr(const Shape&, i32) { return {}; }

#endif

BenchRow CarveRow(const Shape& shape, i32 seams, u32 flags, bool hasPeer = true)
{
    const std::string count = (seams < 0 ? "minus" : "plus") + std::to_string(std::abs(seams));
    return {"SeamCarve/rgb8/" + std::to_string(shape.width) + "x" + std::to_string(shape.height) + "/" + count + "_" +
                (flags & ZLV40_ONE_THREAD ? "1thread" : "2threads"),
            shape, shape.height * size_t(i32(shape.width) + seams) * shape.channels, Carve(shape, seams, flags),
            hasPeer ? Lqr(shape, seams) : Peer{}};
}

}  // namespace

std::vector<BenchRow> SeamRows()
{
    constexpr Shape kTiny = {32, 32, 3}, kSmall = {640, 480, 3}, kFull = {kFullWidth, kFullHeight, 3};
    constexpr Shape kLarge = {4000, 3000, 3};
    constexpr u32 kOneThread = ZLV40_ONE_THREAD, kTwoThreads = 0;
    return {
        CarveRow(kTiny, -8, kOneThread),    CarveRow(kTiny, -8, kTwoThreads), CarveRow(kSmall, -50, kOneThread),
        CarveRow(kSmall, -50, kTwoThreads), CarveRow(kSmall, 50, kOneThread), CarveRow(kFull, -20, kOneThread),
        CarveRow(kFull, -20, kTwoThreads),  CarveRow(kLarge, -5, kOneThread), CarveRow(kLarge, -5, kTwoThreads),
    };
}

}  // namespace zlvbench
