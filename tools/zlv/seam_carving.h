// The library's seam carving on pictures.
#ifndef ZLV_TOOLS_SEAM_CARVING_H
#define ZLV_TOOLS_SEAM_CARVING_H

#include "picture.h"

#include <vector>

namespace zlv {

constexpr uint16_t kDefaultPenalty = 300;

struct CarveSettings {
    const Picture* mask = nullptr;  // gray, of the source's size
    uint16_t penalty = kDefaultPenalty;
    bool hasTwoThreads = false;
};

// The picture, RGB or RGBA, in another width. Throws PictureError; reports to the thread's callback.
Picture CarvedTo(uint32_t width, const Picture& source, const CarveSettings& settings = {});

// A picture with the pixels marked that carving to the width takes out of it, which is below the picture's.
Picture WithSeams(uint32_t width, const Picture& source);

}  // namespace zlv

#endif
