// Whether a picture's file is all there, asked before it is decoded.
#ifndef ZLV_TOOLS_PICTURE_CHECKS_H
#define ZLV_TOOLS_PICTURE_CHECKS_H

#include "whole_file.h"

namespace zlv {

// Throws PictureError for a PNG, JPEG or BMP file that ends before its picture does. The decoders fill such pictures up
// with gray, or trust a length that the file gives and read beyond its end. Says nothing about other files.
void RequireWholePicture(const Bytes& file);

}  // namespace zlv

#endif
