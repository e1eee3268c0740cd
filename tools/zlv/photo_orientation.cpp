// The orientation of photographs.
//
// The note is tag 0x0112 of the first directory of the Exif record (CIPA DC-008), which is a TIFF header in a JPEG
// segment. Every offset is checked: the record is as untrusted as the rest of the file.
#include "photo_orientation.h"

#include <algorithm>
#include <span>

namespace zlv {
namespace {

constexpr int kUpright = 1;
constexpr uint32_t kOrientationTag = 0x0112, kExifSegment = 0xFFE1, kStartOfScan = 0xFFDA;
constexpr size_t kEntryBytes = 12;
constexpr uint8_t kExifMark[] = {'E', 'x', 'i', 'f', 0, 0};

// Numbers of a record in either byte order; 0 beyond its end.
class Reader {
public:
    Reader(std::span<const uint8_t> bytes, bool isLittle) : bytes_(bytes), isLittle_(isLittle) {}

    uint32_t Number(size_t at, size_t count) const
    {
        if (at > bytes_.size() || count > bytes_.size() - at) return 0;
        uint32_t value = 0;
        for (size_t i = 0; i < count; ++i) value = value << 8 | bytes_[isLittle_ ? at + count - 1 - i : at + i];
        return value;
    }

private:
    std::span<const uint8_t> bytes_;
    bool isLittle_;
};

int OrientationOfRecord(std::span<const uint8_t> tiff)
{
    if (tiff.size() < 8) return kUpright;
    const Reader reader(tiff, tiff[0] == 'I');
    const size_t directory = reader.Number(4, 4);
    const uint32_t entries = reader.Number(directory, 2);
    for (size_t i = 0; i < entries; ++i) {
        const size_t entry = directory + 2 + i * kEntryBytes;
        if (reader.Number(entry, 2) != kOrientationTag) continue;
        const uint32_t value = reader.Number(entry + 8, 2);
        return value >= 1 && value <= 8 ? static_cast<int>(value) : kUpright;
    }
    return kUpright;
}

}  // namespace

int ReadOrientation(const Bytes& file)
{
    const Reader reader(file, false);
    if (reader.Number(0, 2) != 0xFFD8) return kUpright;
    for (size_t at = 2; at + 4 <= file.size();) {
        const uint32_t marker = reader.Number(at, 2), length = reader.Number(at + 2, 2);
        if (marker < 0xFF00 || marker == kStartOfScan || length < 2 || length > file.size() - at - 2) break;
        const std::span<const uint8_t> segment(file.data() + at + 4, length - 2);
        if (marker == kExifSegment && segment.size() > sizeof kExifMark &&
            std::equal(std::begin(kExifMark), std::end(kExifMark), segment.begin()))
            return OrientationOfRecord(segment.subspan(sizeof kExifMark));
        at += 2 + length;
    }
    return kUpright;
}

Picture TurnUpright(Picture picture, int orientation)
{
    if (orientation == kUpright) return picture;
    const bool isTransposed = orientation >= 5;
    const bool flipsX = orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
    const bool flipsY = orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
    Picture upright(isTransposed ? picture.height : picture.width, isTransposed ? picture.width : picture.height,
                    picture.channels);
    uint8_t* to = upright.samples.data();
    for (uint32_t y = 0; y < upright.height; ++y)
        for (uint32_t x = 0; x < upright.width; ++x, to += picture.channels) {
            const uint32_t across = isTransposed ? y : x, down = isTransposed ? x : y;
            const size_t column = flipsX ? picture.width - 1 - across : across;
            const size_t row = flipsY ? picture.height - 1 - down : down;
            std::copy_n(&picture.samples[(row * picture.width + column) * picture.channels], picture.channels, to);
        }
    return upright;
}

}  // namespace zlv
