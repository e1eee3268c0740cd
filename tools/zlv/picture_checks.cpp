// Whether a picture's file is all there, asked before it is decoded.
#include "picture_checks.h"

#include "errors.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace zlv {
namespace {

constexpr uint8_t kPngSignature[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr uint8_t kJpegSignature[] = {0xFF, 0xD8, 0xFF};
constexpr uint8_t kBmpSignature[] = {'B', 'M'};
constexpr size_t kChunkFrame = 12;  // length, type and checksum around the data of a PNG chunk
constexpr size_t kBmpHeader = 30;   // up to the bits a pixel of the common header
constexpr uint32_t kOldBmpHeader = 12;
constexpr uint8_t kStartOfScan = 0xDA, kEndOfImage = 0xD9;

template <size_t count>
bool StartsWith(const Bytes& file, const uint8_t (&signature)[count])
{
    return file.size() >= count && std::equal(std::begin(signature), std::end(signature), file.begin());
}

size_t BigEndian(const Bytes& file, size_t at, size_t count)
{
    size_t value = 0;
    for (size_t i = 0; i < count; ++i) value = value << 8 | file[at + i];
    return value;
}

uint32_t LittleEndian(const Bytes& file, size_t at, size_t count)
{
    uint32_t value = 0;
    for (size_t i = count; i-- > 0;) value = value << 8 | file[at + i];
    return value;
}

[[noreturn]] void Refuse(const char* format)
{
    throw PictureError(std::string("the ") + format + " picture is damaged or ends early");
}

void RequireWholePng(const Bytes& file)
{
    for (size_t at = sizeof kPngSignature;;) {
        const size_t left = file.size() - at;
        if (left < kChunkFrame || BigEndian(file, at, 4) > left - kChunkFrame) Refuse("PNG");
        const std::string type(file.begin() + at + 4, file.begin() + at + 8);
        if (type == "IEND") return;
        at += kChunkFrame + BigEndian(file, at, 4);
    }
}

// The picture's end is a marker that nothing within its data looks like. Segments in front may hold a preview with an
// end of its own, so the search begins at the first scan.
void RequireWholeJpeg(const Bytes& file)
{
    size_t at = 2;
    while (at + 4 <= file.size() && file[at] == 0xFF && file[at + 1] != kStartOfScan)
        at += file[at + 1] == 0xFF ? 1 : 2 + BigEndian(file, at + 2, 2);
    for (; at + 2 <= file.size(); ++at)
        if (file[at] == 0xFF && file[at + 1] == kEndOfImage) return;
    Refuse("JPEG");
}

void RequireWholeBmp(const Bytes& file)
{
    if (file.size() < kBmpHeader) Refuse("BMP");
    const bool isOld = LittleEndian(file, 14, 4) == kOldBmpHeader;
    const uint64_t width = LittleEndian(file, 18, isOld ? 2 : 4), bits = LittleEndian(file, isOld ? 24 : 28, 2);
    const uint32_t signedHeight = isOld ? LittleEndian(file, 20, 2) : LittleEndian(file, 22, 4);
    const uint64_t height = signedHeight >> 31 ? uint64_t{1} + ~signedHeight : signedHeight;  // negative: top row first
    const uint64_t stride = (width * bits + 31) / 32 * 4, start = LittleEndian(file, 10, 4);
    if (height != 0 && (file.size() < start || stride > (file.size() + 3 - start) / height)) Refuse("BMP");
}

}  // namespace

void RequireWholePicture(const Bytes& file)
{
    if (StartsWith(file, kPngSignature)) RequireWholePng(file);
    else if (StartsWith(file, kJpegSignature)) RequireWholeJpeg(file);
    else if (StartsWith(file, kBmpSignature)) RequireWholeBmp(file);
}

}  // namespace zlv
