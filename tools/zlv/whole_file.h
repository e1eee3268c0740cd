// Files as a whole: read at once, written so that nobody ever sees half of one.
#ifndef ZLV_TOOLS_WHOLE_FILE_H
#define ZLV_TOOLS_WHOLE_FILE_H

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace zlv {

using Bytes = std::vector<uint8_t>;

// Standard input or output where a file is named.
constexpr std::string_view kStandardStream = "-";

// File names are UTF-8 in the command, whatever the system keeps them in.
std::filesystem::path PathOf(const std::string& utf8);
std::string TextOf(const std::filesystem::path& path);

Bytes ReadWholeFile(const std::string& name);

// Writes to a temporary name beside the target and renames: the target is the old file or the new one, never a part.
void WriteWholeFile(const std::string& name, const Bytes& bytes);

}  // namespace zlv

#endif
