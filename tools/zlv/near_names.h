// Finds what the user may have meant.
#ifndef ZLV_TOOLS_NEAR_NAMES_H
#define ZLV_TOOLS_NEAR_NAMES_H

#include <string>
#include <string_view>
#include <vector>

namespace zlv {

// " Did you mean invert or insert?" with a space in front, or nothing when no candidate is near.
std::string SuggestNear(std::string_view name, const std::vector<std::string>& candidates);

}  // namespace zlv

#endif
