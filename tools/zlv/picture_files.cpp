// PNG, JPEG and BMP: from bytes to a picture and back.
#include "picture_files.h"

#include "errors.h"
#include "photo_orientation.h"
#include "picture_checks.h"

#include <algorithm>
#include <cctype>
#include <limits>
#include <memory>
#include <new>

#include <stb_image.h>
#include <stb_image_write.h>

namespace zlv {
namespace {

// The encoders count bytes in an int, one filter byte a row included.
constexpr size_t kMostEncodedBytes = std::numeric_limits<int>::max();

void Append(void* bytes, void* data, int count)
{
    const auto* from = static_cast<const uint8_t*>(data);
    static_cast<Bytes*>(bytes)->insert(static_cast<Bytes*>(bytes)->end(), from, from + count);
}

void RequireEncodable(const Picture& picture)
{
    if ((picture.width * size_t{picture.channels} + 1) * picture.height > kMostEncodedBytes)
        throw PictureError("the picture is too large for the format");
}

// The decoder says why in most cases, not in all.
std::string FailureReason()
{
    const char* reason = stbi_failure_reason();
    return reason ? std::string(" (") + reason + ")" : std::string();
}

// What the format can hold of the picture.
Picture Storable(const Picture& picture, Format format)
{
    if (format == Format::Jpeg) return OverWhite(picture);
    if (format == Format::Bmp && !picture.HasColour()) return WithChannels(picture, picture.HasAlpha() ? kRgba : kRgb);
    return picture;
}

}  // namespace

std::optional<Format> FormatOf(std::string extension)
{
    if (extension.starts_with('.')) extension.erase(0, 1);
    for (char& letter : extension) letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    if (extension == "png") return Format::Png;
    if (extension == "jpg" || extension == "jpeg") return Format::Jpeg;
    if (extension == "bmp") return Format::Bmp;
    return std::nullopt;
}

Picture DecodePicture(const Bytes& bytes)
{
    if (bytes.empty()) throw PictureError("the file is empty");
    RequireWholePicture(bytes);
    int width = 0, height = 0, channels = 0;
    const std::unique_ptr<stbi_uc, void (*)(void*)> samples(
        stbi_load_from_memory(bytes.data(), static_cast<int>(bytes.size()), &width, &height, &channels, 0),
        stbi_image_free);
    if (!samples) throw PictureError("not a PNG, JPEG or BMP picture that can be read" + FailureReason());
    Picture picture(static_cast<uint32_t>(width), static_cast<uint32_t>(height), static_cast<uint32_t>(channels));
    std::copy_n(samples.get(), picture.samples.size(), picture.samples.data());
    return TurnUpright(std::move(picture), ReadOrientation(bytes));
}

Bytes EncodePicture(const Picture& picture, Format format, int jpegQuality)
{
    RequireEncodable(picture);
    const Picture stored = Storable(picture, format);
    RequireEncodable(stored);
    const int width = static_cast<int>(stored.width), height = static_cast<int>(stored.height);
    const int channels = static_cast<int>(stored.channels);
    Bytes bytes;
    int done = 0;
    if (format == Format::Png)
        done = stbi_write_png_to_func(Append, &bytes, width, height, channels, stored.samples.data(), width * channels);
    else if (format == Format::Jpeg)
        done = stbi_write_jpg_to_func(Append, &bytes, width, height, channels, stored.samples.data(), jpegQuality);
    else done = stbi_write_bmp_to_func(Append, &bytes, width, height, channels, stored.samples.data());
    if (!done) throw std::bad_alloc();
    return bytes;
}

Picture ReadPicture(const std::string& name)
{
    const Bytes bytes = ReadWholeFile(name);
    const std::string shown = name == kStandardStream ? "standard input" : "\"" + name + "\"";
    try {
        return DecodePicture(bytes);
    } catch (const PictureError& error) {
        throw PictureError("Cannot read " + shown + ": " + error.what() + ".");
    } catch (const std::bad_alloc&) {
        throw PictureError("Cannot read " + shown + ": there is not enough memory for it.");
    }
}

}  // namespace zlv
