// Compositions of gray morphology, said plainly. Includes nothing of the library.
#pragma once

#include "plain/plain_gray_morphology.h"

struct PlainGrayPlane {
    const std::uint8_t* src;
    std::size_t width, height, srcStride;
    std::uint8_t* dst;
    std::size_t dstStride;
    std::vector<std::uint32_t> element;
    std::size_t side;

    // Dilates or erodes the source into a plane without padding.
    std::vector<std::uint8_t> Step(bool isDilation) const
    {
        std::vector<std::uint8_t> out(width * height);
        PlainGrayMorphology(src, width, height, srcStride, element, side, isDilation, out.data(), width);
        return out;
    }
};

inline void PlainOpenGray(const PlainGrayPlane& p)
{
    const std::vector<std::uint8_t> work = p.Step(false);
    PlainGrayMorphology(work.data(), p.width, p.height, p.width, p.element, p.side, true, p.dst, p.dstStride);
}

inline void PlainCloseGray(const PlainGrayPlane& p)
{
    const std::vector<std::uint8_t> work = p.Step(true);
    PlainGrayMorphology(work.data(), p.width, p.height, p.width, p.element, p.side, false, p.dst, p.dstStride);
}

inline void PlainTophatGray(const PlainGrayPlane& p)
{
    std::vector<std::uint8_t> opened(p.width * p.height);
    PlainGrayPlane opening = p;
    opening.dst = opened.data();
    opening.dstStride = p.width;
    PlainOpenGray(opening);
    std::copy(p.src, p.src + p.width * p.height, p.dst);  // as one block
    for (std::size_t y = 0; y < p.height; ++y) {
        for (std::size_t x = 0; x < p.width; ++x) {
            std::uint8_t& sample = p.dst[y * p.dstStride + x];
            sample = std::uint8_t(std::max(int(sample) - int(opened[y * p.width + x]), 0));
        }
    }
}

inline void PlainGradientGray(const PlainGrayPlane& p)
{
    const std::vector<std::uint8_t> dilated = p.Step(true), eroded = p.Step(false);
    for (std::size_t y = 0; y < p.height; ++y) {
        for (std::size_t x = 0; x < p.width; ++x) {
            p.dst[y * p.dstStride + x] = std::uint8_t(dilated[y * p.width + x] - eroded[y * p.width + x]);
        }
    }
}
