// Finds what the user may have meant.
//
// Near is: few single-letter edits apart, or one is a part of the other ("blur" finds "gaussian-blur").
#include "near_names.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace zlv {
namespace {

constexpr size_t kMostSuggestions = 3;
constexpr size_t kShortestPart = 3;  // a part of fewer letters is in everything

std::string LowerCase(std::string_view text)
{
    std::string lower(text);
    for (char& letter : lower) letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    return lower;
}

// Insertions, deletions and replacements that turn one text into the other (Levenshtein's distance).
size_t Edits(const std::string& from, const std::string& to)
{
    std::vector<size_t> row(to.size() + 1);
    for (size_t j = 0; j <= to.size(); ++j) row[j] = j;
    for (size_t i = 1; i <= from.size(); ++i) {
        size_t diagonal = std::exchange(row[0], i);
        for (size_t j = 1; j <= to.size(); ++j) {
            const size_t replaced = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row[to.size()];
}

bool IsPart(const std::string& one, const std::string& other)
{
    const std::string& part = one.size() < other.size() ? one : other;
    const std::string& whole = one.size() < other.size() ? other : one;
    return part.size() >= kShortestPart && whole.find(part) != std::string::npos;
}

}  // namespace

std::string SuggestNear(std::string_view name, const std::vector<std::string>& candidates)
{
    const std::string wanted = LowerCase(name);
    std::vector<std::pair<size_t, std::string>> near;
    for (const std::string& candidate : candidates) {
        const std::string known = LowerCase(candidate);
        const size_t edits = Edits(wanted, known);
        const size_t allowed = std::max<size_t>(1, std::min(wanted.size(), known.size()) / 3);
        if (edits <= allowed || IsPart(wanted, known)) near.emplace_back(edits, candidate);
    }
    std::sort(near.begin(), near.end());
    if (near.size() > kMostSuggestions) near.resize(kMostSuggestions);

    std::string text;
    for (size_t i = 0; i < near.size(); ++i)
        text += (i == 0 ? " Did you mean " : i + 1 == near.size() ? " or " : ", ") + near[i].second;
    return text.empty() ? text : text + "?";
}

}  // namespace zlv
