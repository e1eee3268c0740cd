// The segmented colourise, said plainly: the chain of its steps, with an image for every one. Includes nothing of the
// library.
#pragma once

#include "plain/plain_bit_masks.h"
#include "plain/plain_bit_morphology.h"
#include "plain/plain_histograms.h"
#include "plain/plain_median.h"
#include "plain/plain_palette.h"
#include "plain/plain_quantizers.h"
#include "plain/plain_solid_rect.h"

#include <numeric>
#include <string>

// The elements by their numbers, a row between slashes.
inline const char* const kPlainSegmentElements[] = {
    "111 / 111 / 111",
    "010 / 111 / 010",
    "11111 / 11111 / 11111 / 11111 / 11111",
    "00100 / 01110 / 11111 / 01110 / 00100",
    "1111111 / 1111111 / 1111111 / 1111111 / 1111111 / 1111111 / 1111111",
    "0001000 / 0111110 / 0111110 / 1111111 / 0111110 / 0111110 / 0001000",
    "000010000 / 001111100 / 011111110 / 011111110 / 111111111 / 011111110 / 011111110 / 001111100 / "
    "000010000",
    "000010000 / 000111000 / 001111100 / 011111110 / 111111111 / 011111110 / 001111100 / 000111000 / "
    "000010000",
    "000100000 / 001111000 / 001111110 / 011111111 / 011111110 / 111111110 / 011111100 / 000111100 / "
    "000001000",
    "000000010000000 / 000000111000000 / 000001111100000 / 000011111110000 / 000111111111000 / "
    "001111111111100 / 011111111111110 / 111111111111111 / 011111111111110 / 001111111111100 / "
    "000111111111000 / 000011111110000 / 000001111100000 / 000000111000000 / 000000010000000",
    "000000110000000 / 000001111100000 / 001111111111100 / 001111111111100 / 011111111111110 / "
    "011111111111110 / 111111111111111 / 111111111111111 / 011111111111110 / 001111111111100 / "
    "001111111111100 / 001111111111100 / 001111111111100 / 000001111110000 / 000000011000000",
    "000001111110000 / 001111111111100 / 011111111111110 / 011111111111110 / 011111101111111 / "
    "111110000011111 / 111110000011111 / 111100000001111 / 111110000011111 / 111110000011111 / "
    "111111101111111 / 011111111111110 / 011111111111110 / 001111111111100 / 000011111110000",
};

inline PlainBitElement PlainSegmentElement(std::uint32_t number)
{
    const std::string drawing = kPlainSegmentElements[number > 11 ? 0 : number];
    PlainBitElement element{{}, (long long)drawing.find(' '), 1};
    for (const char c : drawing) {
        if (c == '/') ++element.height;
        else if (c != ' ') element.entries.push_back(c == '1' ? 1 : 0);
    }
    return element;
}

struct PlainSegmentCall {
    const std::uint8_t* source;
    std::size_t width, height;
    std::uint8_t* destination;
    std::size_t stride;
    std::uint8_t* palette;
    std::size_t colors;
    std::uint32_t mode, filterSize;

    // What stands in the way: the client, who lets it paint so many colours; memory that steps lack.
    std::size_t painted = 256;
    bool isTreeMissing = false, isMappingMissing = false;
    std::size_t firstMissingFilter = 257;  // the place of its colour in the order
};

inline void PlainCleanMask(const PlainBits& mask, const PlainBitsOut& cleaned, std::uint32_t mode,
                           std::uint32_t filterSize)
{
    const PlainBitElement element = PlainSegmentElement(filterSize);
    PlainBitElement complement = element;
    for (std::uint32_t& entry : complement.entries) entry = entry == 0 ? 1 : 0;
    if (mode == 0) {
        PlainMedian1Bit(mask.data, mask.width, mask.height, mask.stride, cleaned.data, cleaned.stride, filterSize | 1);
    }
    if (mode == 1) PlainBitClose(mask, element, cleaned);
    if (mode == 2) PlainHitOrMiss(mask, element, complement, cleaned);
    if (mode == 3) PlainBoundary(mask, element, cleaned);
}

inline void PlainSegmentedColorize(const PlainSegmentCall& call)
{
    const std::size_t width = call.width, height = call.height, maskStride = (width + 7) / 8;
    const std::size_t n = std::min<std::size_t>(call.colors, 256);
    std::vector<std::uint8_t> plane(width * height), mask(maskStride * height), cleaned(maskStride * height);
    if (!call.isTreeMissing) {
        PlainQuantizeByPopulation(call.source, width, height, 3 * width, n, call.palette, 0);
    }
    if (!call.isMappingMissing) {
        PlainDither(call.source, width, height, 3 * width, plane.data(), width, unsigned(n), call.palette, 0, 0, false);
    }
    const std::vector<std::uint32_t> counts = PlainHistogram(plane.data(), {width, height, 1, width}, 0);
    std::vector<std::size_t> order(n);
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](auto a, auto b) { return counts[a] < counts[b]; });

    PlainFillRect(call.destination, width, height, 1, call.stride, 0, 0, width, height, std::uint32_t(order[0]), false);
    for (std::size_t i = 0; i < n && i < call.painted; ++i) {
        const std::uint8_t c = std::uint8_t(order[i]);
        PlainMakeMask(plane.data(), width, height, width, mask.data(), maskStride, c);
        if (call.mode != 0) std::fill(cleaned.begin(), cleaned.end(), 0);
        const long long stride = (long long)maskStride;
        if (i < call.firstMissingFilter) {
            PlainCleanMask({mask.data(), (long long)width, (long long)height, stride}, {cleaned.data(), stride},
                           call.mode, call.filterSize);
        }
        PlainSetWhereMasked(cleaned.data(), width, height, maskStride, call.destination, call.stride, c);
    }
}
