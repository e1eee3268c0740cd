// The format of a result: the one that is asked for, or that of the output's extension.
#include "output_format.h"

#include "errors.h"

namespace zlv {

std::optional<Format> GivenFormat(const std::string& text)
{
    if (text.empty()) return std::nullopt;
    const auto format = FormatOf(text);
    if (!format) throw UsageError("--format takes png, jpg or bmp, not \"" + text + "\".");
    return format;
}

Format FormatFor(const std::string& output, const std::optional<Format>& given)
{
    if (given) return *given;
    if (output == kStandardStream) return Format::Png;
    const std::string extension = TextOf(PathOf(output).extension());
    if (const auto format = FormatOf(extension)) return *format;
    throw PictureError("Cannot write \"" + output + "\": its extension " +
                       (extension.empty() ? "is missing" : "\"" + extension + "\" is unknown") +
                       "; there are .png, .jpg, .jpeg and .bmp, or --format.");
}

}  // namespace zlv
