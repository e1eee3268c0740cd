// Small versions of pictures for the gallery.
#ifndef ZLV_TOOLS_SHRINK_H
#define ZLV_TOOLS_SHRINK_H

#include "picture.h"

namespace zlv {

// The picture with its longer side no longer than `side`; each pixel is the mean of those that it covers. Smaller
// pictures stay as they are.
Picture Shrunk(const Picture& picture, uint32_t side);

}  // namespace zlv

#endif
