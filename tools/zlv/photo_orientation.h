// Cameras store a photograph as the sensor saw it and note how it is to be turned; files written here have no such
// note, so the picture itself is turned.
#ifndef ZLV_TOOLS_PHOTO_ORIENTATION_H
#define ZLV_TOOLS_PHOTO_ORIENTATION_H

#include "picture.h"
#include "whole_file.h"

namespace zlv {

// 1 (upright) to 8, from the Exif record of a JPEG file; 1 when there is none.
int ReadOrientation(const Bytes& file);

Picture TurnUpright(Picture picture, int orientation);

}  // namespace zlv

#endif
