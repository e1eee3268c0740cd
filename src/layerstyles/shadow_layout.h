// Where an image and its shadow come to lie in a new, larger image.
#pragma once

#include "platform/types.h"

#include "zlv40.h"

namespace zlv {

struct ShadowLayout {
    f64 sigma;          // of the shadow's blur
    i64 width, height;  // of the new image; below 1 for a blur far below 0 percent
    point image, shadow;
};

// The shadow falls `distance` pixels away. An angle of 0 throws it up, 90 to the right; angles below 0 and above 360
// are not brought back to a turn: they may place image and shadow outside.
ShadowLayout LayOutShadow(u32 width, u32 height, i32 distance, i32 blurPercent, i32 angle);

}  // namespace zlv
