// Small versions of pictures for the gallery.
//
// The plain mean over whole pixels: no ringing, nothing invented. Colour counts by its alpha, so that what lies behind
// transparent pixels does not shine through.
#include "shrink.h"

#include <algorithm>

namespace zlv {
namespace {

struct Span {
    uint32_t first, end;
};

Span CoveredBy(uint32_t position, uint32_t small, uint32_t large)
{
    const auto first = static_cast<uint32_t>(uint64_t{position} * large / small);
    return {first, std::max(first + 1, static_cast<uint32_t>((uint64_t{position} + 1) * large / small))};
}

void MeanOf(const Picture& picture, Span columns, Span rows, uint8_t* to)
{
    const uint32_t colours = picture.HasAlpha() ? picture.channels - 1 : picture.channels;
    uint64_t sums[3] = {}, weights = 0;
    for (uint32_t y = rows.first; y < rows.end; ++y)
        for (uint32_t x = columns.first; x < columns.end; ++x) {
            const uint8_t* pixel = &picture.samples[(size_t{y} * picture.width + x) * picture.channels];
            const uint32_t weight = picture.HasAlpha() ? pixel[colours] : 1;
            for (uint32_t c = 0; c < colours; ++c) sums[c] += pixel[c] * weight;
            weights += weight;
        }
    const uint64_t covered = uint64_t{columns.end - columns.first} * (rows.end - rows.first);
    for (uint32_t c = 0; c < colours; ++c)
        to[c] = static_cast<uint8_t>(weights ? (sums[c] + weights / 2) / weights : 0);
    if (picture.HasAlpha()) to[colours] = static_cast<uint8_t>((weights + covered / 2) / covered);
}

}  // namespace

Picture Shrunk(const Picture& picture, uint32_t side)
{
    const uint32_t longest = std::max(picture.width, picture.height);
    if (longest <= side) return picture;
    const auto scaled = [&](uint32_t size) {
        return std::max(1u, static_cast<uint32_t>((uint64_t{size} * side + longest / 2) / longest));
    };
    Picture small(scaled(picture.width), scaled(picture.height), picture.channels);
    uint8_t* to = small.samples.data();
    for (uint32_t y = 0; y < small.height; ++y)
        for (uint32_t x = 0; x < small.width; ++x, to += small.channels)
            MeanOf(picture, CoveredBy(x, small.width, picture.width), CoveredBy(y, small.height, picture.height), to);
    return small;
}

}  // namespace zlv
