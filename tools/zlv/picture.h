// A picture in memory, and the change from one set of channels to another.
#ifndef ZLV_TOOLS_PICTURE_H
#define ZLV_TOOLS_PICTURE_H

#include "catalogue.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zlv {

enum Channels : uint32_t { kGray = 1, kGrayAlpha = 2, kRgb = 3, kRgba = 4 };

// Rows follow each other without padding. 1 to 4 channels: gray, gray and alpha, RGB, RGBA.
struct Picture {
    uint32_t width = 0, height = 0, channels = 0;
    std::vector<uint8_t> samples;

    Picture() = default;
    Picture(uint32_t w, uint32_t h, uint32_t count)
        : width(w), height(h), channels(count), samples(size_t{w} * h * count)
    {
    }

    size_t Pixels() const { return size_t{width} * height; }
    bool HasAlpha() const { return channels == kGrayAlpha || channels == kRgba; }
    bool HasColour() const { return channels >= kRgb; }
    ImageGroup Group() { return {samples.data(), width, height, channels, width * channels}; }
};

const char* NameOfChannels(uint32_t channels);

// Gray from colour is 0.299 R + 0.587 G + 0.114 B, rounded. Alpha that appears is 255; alpha that goes is forgotten.
Picture WithChannels(const Picture& picture, uint32_t channels);

// Alpha gone by laying the picture over white.
Picture OverWhite(const Picture& picture);

// A picture in channels that an effect takes, and what is needed to bring the result back to the user's.
class FittedPicture {
public:
    // Bit c of `accepted` is set when c channels are taken. `accepted` is not 0.
    FittedPicture(Picture picture, uint32_t accepted);

    Picture& Get() { return picture_; }

    // The effect's result with the alpha that was put aside; channels that were added and carry nothing are gone again:
    // a gray picture comes back gray when the effect left it without colour, an opaque alpha is not kept.
    Picture Restore(Picture result) const;

private:
    Picture picture_;
    std::vector<uint8_t> alpha_;  // put aside; empty when there was none or the effect takes it
    bool addedAlpha_ = false, addedColour_ = false;
};

}  // namespace zlv

#endif
