// The crackle, said plainly: its steps, one after the other. Includes nothing of the library.
#pragma once

#include "plain/plain_channels.h"
#include "plain/plain_emboss.h"
#include "plain/plain_gray_compositions.h"
#include "plain/plain_histograms.h"
#include "plain/plain_window_filters.h"

struct PlainCrackleCall {
    const std::uint8_t* source;
    std::size_t width, height, sourceStride;
    std::uint8_t* destination;
    std::size_t stride;
    unsigned kind;
    int strength;
    unsigned flags;

    std::size_t rows = SIZE_MAX;  // of the morphology: those before a client's cancel
    bool isSharpened = true;      // false where it lacks memory
};

// The gray picture's spots; behind the rows that are done, what was there before.
inline std::vector<std::uint8_t> PlainSpots(const PlainCrackleCall& call, const std::vector<std::uint8_t>& gray)
{
    const std::size_t width = call.width, height = call.height;
    std::vector<std::uint8_t> spots(width * height), before(width * height, 0);
    const PlainGrayPlane plane = {
        gray.data(), width, height, width, spots.data(), width, std::vector<std::uint32_t>(49, 1), 7};
    if (call.kind == 0) PlainOpenGray(plane);
    if (call.kind == 1) PlainTophatGray(plane);
    if (call.kind == 2) PlainCloseGray(plane);
    if (call.kind == 3) spots = plane.Step(true);
    if (call.kind == 4) spots = plane.Step(false);
    if (call.kind == 1) before = gray;  // which it copies first
    for (std::size_t y = call.rows; y < height; ++y) {
        std::copy_n(before.begin() + std::ptrdiff_t(y * width), width, spots.begin() + std::ptrdiff_t(y * width));
    }
    return spots;
}

// Both sides 4 or more, a known kind.
inline void PlainCrackle(const PlainCrackleCall& call)
{
    const std::size_t width = call.width, height = call.height;
    std::vector<std::uint8_t> relief(width * height);
    PlainGray(call.source, width, height, 3, call.sourceStride, relief.data(), width, false);
    const std::vector<std::uint8_t> spots = PlainSpots(call, relief);
    const long long w = (long long)width, h = (long long)height;
    const double amount = std::clamp(call.strength, 0, 100) / 100.0;
    if (call.isSharpened) PlainSharpen({spots.data(), w, h, relief.data(), 1, w, w, 5, 1}, amount);
    const PlainLight light = {std::cos(0.5), std::sin(0.5), std::cos(0.5), std::sin(0.5), 5};
    PlainEmboss({relief.data(), width}, int(width), int(height), light, {call.source, call.sourceStride}, {nullptr, 0},
                false, false, call.destination, call.stride);
    const bool isWide = call.flags & 1;
    PlainEqualizeBrightness(call.destination, {width, height, 3, call.stride}, isWide ? 20 : 50, isWide ? 230 : 200);
}
