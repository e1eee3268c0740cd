// The format of a result: the one that is asked for, or that of the output's extension.
#ifndef ZLV_TOOLS_OUTPUT_FORMAT_H
#define ZLV_TOOLS_OUTPUT_FORMAT_H

#include "picture_files.h"

#include <optional>
#include <string>

namespace zlv {

// The value of --format; nothing when it is empty. Throws UsageError for other words.
std::optional<Format> GivenFormat(const std::string& text);

// Throws PictureError for an extension that is none of ours.
Format FormatFor(const std::string& output, const std::optional<Format>& given);

}  // namespace zlv

#endif
