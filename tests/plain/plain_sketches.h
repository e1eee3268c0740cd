// Gauzy, scribble and fingerprint: chains of the plain twins of their steps. Includes nothing of the library.
#pragma once

#include "plain/plain_canny.h"
#include "plain/plain_convolution.h"
#include "plain/plain_gray_morphology.h"
#include "plain/plain_paint.h"
#include "plain/plain_tone.h"
#include "plain/plain_window_filters.h"

inline bool PlainBlurRgb(const PlainRgbCall& call, double sigma, const PlainReport& report)
{
    return PlainBlur<std::uint8_t>({call.source, call.sourceStride}, {call.width, call.height, 3},
                                   {call.destination, call.destinationStride}, sigma, 7,
                                   {std::exp, std::sin, std::cos, std::pow}, report);
}

inline PlainOutcome PlainGauzy(const PlainRgbCall& call, double blur, double sharpness, double opacity,
                               std::uint32_t mode, const PlainReport& report)
{
    const double b = std::clamp(blur, 0.0, 1.0), s = std::clamp(sharpness, 0.0, 1.0) * 0.2;
    const double o = std::clamp(opacity, 0.0, 1.0) * 0.5;
    if (!PlainBlurRgb(call, b * 30.0, report)) return {0, kPlainCancelled};
    if (mode == 2) call.Overlay(call.source, call.sourceStride, {o, 0, 0});
    if (mode == 3) call.Overlay(call.source, call.sourceStride, {o, 0, 5});
    if (mode == 4) call.Overlay(call.source, call.sourceStride, {o, 0, 6});
    if (mode > 1) return kPlainDone;

    std::vector<std::uint8_t> planeB = call.Gray(), planeA(planeB.size());
    if (mode == 1) {
        const double base = s * 0.03 + 0.97;
        for (std::uint8_t& sample : planeB) {
            sample = std::uint8_t(255 - 255 * std::pow(base, std::max(sample - 128, 0)));
        }
    }
    PlainSharpen({planeB.data(), call.width, call.height, planeA.data(), 1, call.width, call.width, 3, 1}, s);
    for (std::size_t y = 0; y < call.height; ++y) {
        for (std::size_t x = 0; x < call.width; ++x) {
            for (std::size_t c = 0; c < 3; ++c) {
                std::uint8_t& sample = call.destination[y * call.destinationStride + 3 * x + c];
                sample = PlainMix(sample, planeA[y * call.width + x], o, false);
            }
        }
    }
    return kPlainDone;
}

// The base of a scribble. Rows are packed.
inline PlainOutcome PlainScribbleBase(const PlainRgbCall& call, std::uint32_t baseKind, const PlainReport& report)
{
    const std::size_t stride = 3 * std::size_t(call.width);
    if (baseKind == 0) return PlainBlurRgb(call, 2.5, report) ? kPlainDone : PlainOutcome{0, kPlainCancelled};
    if (baseKind == 1) {
        for (std::uint32_t c = 0; c < 3; ++c) {
            PlainMidpoint({call.source, call.width, call.height, call.destination, 3, (long long)stride,
                           (long long)stride, 5, 1u << c});
            if (!report(c, 3)) return {0, kPlainCancelled};
        }
        return kPlainDone;
    }
    std::copy_n(call.source, stride * call.height, call.destination);
    if (baseKind == 2) {
        for (std::uint32_t y = 0; y < call.height; ++y) {
            PlainPosterize(call.destination + y * stride, call.width, 1, stride);
            if (!report(y, call.height)) return {0, 0};
        }
        return kPlainDone;
    }
    for (std::uint32_t c = 0; c < 3; ++c) {
        if (!report(c, 3)) return {0, kPlainCancelled};
    }
    return kPlainDone;
}

inline PlainOutcome PlainScribble(const PlainRgbCall& call, std::uint32_t baseKind, bool areEdgesFromResult,
                                  std::uint32_t opacity, const PlainReport& report)
{
    const std::size_t stride = 3 * std::size_t(call.width);
    if (areEdgesFromResult) {
        const PlainOutcome base = PlainScribbleBase(call, baseKind, report);
        if (base.result == 0) return base;
    }
    const std::vector<std::uint8_t> gray = call.GrayOf(areEdgesFromResult ? call.destination : call.source, stride);
    std::vector<std::uint8_t> edges(gray.size()), drawing(gray.size() * 3);
    PlainCannyDetector(
        {gray.data(), int(call.width), int(call.height), call.width, edges.data(), call.width, 0.1, 0.5, 0.9}, std::pow,
        PlainSilence);
    PlainExpand(edges.data(), call.width, call.height, call.width, drawing.data(), stride, PlainGrayRamp().data(),
                false);
    if (!areEdgesFromResult) {
        const PlainOutcome base = PlainScribbleBase(call, baseKind, report);
        if (base.result == 0) return base;
    }
    for (std::size_t i = 0; i < drawing.size(); i += 3) {
        if (PlainIsHidden(drawing.data() + i, 0xFFFFFF, 2)) continue;
        for (std::size_t c = 0; c < 3; ++c) {
            std::uint8_t& sample = call.destination[i + c];
            sample = PlainMix(sample, drawing[i + c], std::min(opacity / 100.0, 1.0), false);
        }
    }
    return kPlainDone;
}

// One channel.
inline PlainOutcome PlainFingerprint(const PlainRgbCall& call, double blur, std::uint32_t ridge, std::uint32_t flags,
                                     const PlainReport& report)
{
    const std::size_t width = call.width, height = call.height, n = std::max(ridge | 1u, 3u);
    std::vector<std::uint8_t> planeA(width * height), planeB(planeA), ridges(planeA);
    PlainBlur<std::uint8_t>({call.source, call.sourceStride}, {width, height, 1}, {planeA.data(), width},
                            std::max(0.0, blur) * 12.5 / 100.0, 1, {std::exp, std::sin, std::cos, std::pow},
                            PlainSilence);
    std::vector<std::uint32_t> element(25);
    for (std::size_t j = 0; j < 5; ++j) element[5 * j + 2] = 10;
    PlainGrayMorphology(planeA.data(), width, height, width, element, 5, flags & 1, planeB.data(), width);

    PlainKernel kernel = {n, n, std::vector<double>(n * n, -1.0), 1.0};
    kernel.entries[n * n / 2] = double(n * n - 1);
    PlainConvolve(planeB.data(), width, height, 1, width, ridges.data(), width, kernel, true, 0);
    for (std::uint32_t y = 0; y < height; ++y) {
        std::copy_n(ridges.data() + y * width, width, call.destination + y * call.destinationStride);
        if (!report(y, call.height)) break;
    }
    PlainStretch(call.destination, {width, height, 1, call.destinationStride}, 0, 5.0, 5.0, -1);
    return kPlainDone;
}
