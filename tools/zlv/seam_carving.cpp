#include "seam_carving.h"

#include "errors.h"
#include "interrupt.h"
#include "library_progress.h"
#include "zlv40.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <numeric>
#include <thread>

namespace zlv {
namespace {

constexpr uint8_t kMark[] = {255, 40, 40, 255};

// On a thread of its own, where the library's random numbers, which decide between equal seams, start anew: the seams
// of a run are those of every longer run, too.
Picture CarvedAnew(uint32_t width, const Picture& source)
{
    Picture result;
    std::exception_ptr failure;
    std::thread([&] {
        try {
            result = CarvedTo(width, source);
        } catch (...) {
            failure = std::current_exception();
        }
    }).join();
    if (failure) std::rethrow_exception(failure);
    return result;
}

const uint8_t* PixelAt(const Picture& picture, uint32_t x, uint32_t y)
{
    return picture.samples.data() + (size_t{y} * picture.width + x) * picture.channels;
}

bool AreEqual(const uint8_t* one, const uint8_t* other, uint32_t channels)
{
    return std::memcmp(one, other, channels) == 0;
}

// Where row y lost a pixel between two pictures, as near to `near` as the equal pixels around it allow.
uint32_t LostColumn(const Picture& before, const Picture& after, uint32_t y, uint32_t near)
{
    const uint32_t channels = before.channels;
    uint32_t last = 0;
    while (last < after.width && AreEqual(PixelAt(before, last, y), PixelAt(after, last, y), channels)) ++last;
    uint32_t first = last;
    while (first > 0 && AreEqual(PixelAt(before, first - 1, y), PixelAt(before, last, y), channels)) --first;
    return std::clamp(near, first, last);
}

}  // namespace

Picture CarvedTo(uint32_t width, const Picture& source, const CarveSettings& settings)
{
    Picture result(width, source.height, source.channels);
    const auto seams = static_cast<int32_t>(int64_t{width} - source.width);
    const uint32_t isDone =
        ZLV40_SeamCarve(source.samples.data(), source.width, source.height, source.channels,
                        source.width * source.channels, settings.mask ? settings.mask->samples.data() : nullptr,
                        source.width, result.samples.data(), width * source.channels, seams, settings.penalty,
                        settings.hasTwoThreads ? 0u : static_cast<uint32_t>(ZLV40_ONE_THREAD));
    if (isDone) return result;
    const uint32_t code = ZLV40_GetLastError();
    StopIfInterrupted();
    throw PictureError("seam-carve failed: " + ReasonOf(code));
}

Picture WithSeams(uint32_t width, const Picture& source)
{
    Picture marked = source;
    // Of each row, the columns that are left.
    std::vector<std::vector<uint32_t>> columns(source.height, std::vector<uint32_t>(source.width));
    for (auto& row : columns) std::iota(row.begin(), row.end(), 0u);
    Picture before = source;
    while (before.width > width) {
        StopIfInterrupted();
        const Picture after = CarvedAnew(before.width - 1, source);
        uint32_t column = before.width / 2;
        for (uint32_t y = source.height; y-- > 0;) {
            column = LostColumn(before, after, y, column);
            const uint32_t lost = columns[y][column];
            std::copy_n(kMark, source.channels,
                        marked.samples.data() + (size_t{y} * source.width + lost) * source.channels);
            columns[y].erase(columns[y].begin() + column);
        }
        before = after;
    }
    return marked;
}

}  // namespace zlv
