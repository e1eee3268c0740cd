// PNG, JPEG and BMP: from bytes to a picture and back.
#ifndef ZLV_TOOLS_PICTURE_FILES_H
#define ZLV_TOOLS_PICTURE_FILES_H

#include "picture.h"
#include "whole_file.h"

#include <optional>
#include <string>

namespace zlv {

enum class Format { Png, Jpeg, Bmp };

constexpr int kDefaultJpegQuality = 90;

// From "png", ".JPG", "jpeg", "bmp"; nothing for others.
std::optional<Format> FormatOf(std::string extension);

// Samples of 16 bits become 8, palettes colours, and a photograph is turned as its camera has noted.
Picture DecodePicture(const Bytes& bytes);

// JPEG has no alpha: the picture is laid over white. BMP has no gray: it holds RGB or RGBA.
Bytes EncodePicture(const Picture& picture, Format format, int jpegQuality);

// The same with a file around it; `name` is in every sentence that goes wrong.
Picture ReadPicture(const std::string& name);

}  // namespace zlv

#endif
