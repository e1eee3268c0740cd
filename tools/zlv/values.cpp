// Values of parameters: from text, to text, and what they may be.
#include "values.h"

#include "errors.h"
#include "near_names.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>

namespace zlv {
namespace {

constexpr std::string_view kChannelLetters = "rgba";
constexpr uint32_t kAllChannels = 0xFFFFFFFFu;
constexpr double kStepTolerance = 1e-9;

// The whole text as a number; the decimal point is a point in every locale.
std::optional<double> ParseNumber(std::string_view text)
{
    if (text.starts_with('+')) text.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) return std::nullopt;
    return value;
}

// The shortest text that reads back as the same number, without an exponent where that stays readable.
std::string FormatNumber(double value)
{
    char text[64];
    const double size = std::abs(value);
    const bool isPlain = size == 0 || (size >= 1e-6 && size < 1e15);
    const auto format = isPlain ? std::chars_format::fixed : std::chars_format::general;
    return std::string(text, std::to_chars(text, text + sizeof text, value + 0.0, format).ptr);
}

std::string OptionOf(const Effect& effect, const Parameter& parameter)
{
    return std::string(effect.name) + ": --" + std::string(parameter.name);
}

[[noreturn]] void Refuse(const Effect& effect, const Parameter& parameter, const std::string& text,
                         const std::string& hint = {})
{
    throw UsageError(OptionOf(effect, parameter) + " takes " + DescribeValues(parameter) + ", not \"" + text + "\"." +
                     hint);
}

bool IsInRange(const Parameter& parameter, double value)
{
    if (value < parameter.minimum || value > parameter.maximum) return false;
    if (parameter.kind == Parameter::Kind::Integer && value != std::floor(value)) return false;
    if (parameter.step <= 0) return true;
    const double steps = (value - (std::isinf(parameter.minimum) ? 0 : parameter.minimum)) / parameter.step;
    return std::abs(steps - std::round(steps)) <= kStepTolerance * (1 + std::abs(steps));
}

// "#1a2b3c", with or without the mark; channel 0 is the low byte.
std::optional<double> ParseColour(std::string_view text)
{
    if (text.starts_with('#')) text.remove_prefix(1);
    uint32_t digits = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), digits, 16);
    if (text.size() != 6 || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return (digits >> 16) | (digits & 0xFF00u) | ((digits & 0xFFu) << 16);
}

std::optional<double> ParseMask(std::string_view text)
{
    if (text == "all") return kAllChannels;
    if (const auto number = ParseNumber(text)) {
        const bool isMask = *number >= 1 && *number <= kAllChannels && *number == std::floor(*number);
        return isMask ? number : std::nullopt;
    }
    uint32_t mask = 0;
    for (const char letter : text) {
        const size_t channel = kChannelLetters.find(letter);
        if (channel == std::string_view::npos) return std::nullopt;
        mask |= 1u << channel;
    }
    return mask ? std::optional<double>(mask) : std::nullopt;
}

std::string FormatMask(uint32_t mask)
{
    if (mask == kAllChannels) return "all";
    if (mask >> kChannelLetters.size()) return std::to_string(mask);
    std::string letters;
    for (size_t channel = 0; channel < kChannelLetters.size(); ++channel)
        if (mask >> channel & 1u) letters += kChannelLetters[channel];
    return letters;
}

std::string FormatColour(uint32_t value)
{
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text = "#";
    for (const int shift : {4, 0, 12, 8, 20, 16}) text += kDigits[value >> shift & 15u];
    return text;
}

std::string NamesOf(std::span<const Choice> choices)
{
    std::string names;
    for (const Choice& choice : choices) names += (names.empty() ? "" : ", ") + std::string(choice.name);
    return names;
}

double ParseChoice(const Effect& effect, const Parameter& parameter, const std::string& text)
{
    std::vector<std::string> names;
    for (const Choice& choice : parameter.choices) {
        if (choice.name == text) return choice.value;
        names.emplace_back(choice.name);
    }
    Refuse(effect, parameter, text, SuggestNear(text, names));
}

std::string DescribeNumbers(const Parameter& parameter)
{
    std::string text = parameter.kind == Parameter::Kind::Integer ? "a whole number" : "a number";
    const bool hasMinimum = std::isfinite(parameter.minimum), hasMaximum = std::isfinite(parameter.maximum);
    if (hasMinimum && hasMaximum)
        text += " from " + FormatNumber(parameter.minimum) + " to " + FormatNumber(parameter.maximum);
    else if (hasMinimum) text += " of " + FormatNumber(parameter.minimum) + " or more";
    else if (hasMaximum) text += " of " + FormatNumber(parameter.maximum) + " or less";
    if (parameter.step > 0 && !(parameter.step == 1 && parameter.kind == Parameter::Kind::Integer))
        text += " in steps of " + FormatNumber(parameter.step);
    if (!parameter.unit.empty()) text += " (" + std::string(parameter.unit) + ")";
    return text;
}

}  // namespace

double ParseValue(const Effect& effect, const Parameter& parameter, const std::string& text)
{
    if (parameter.kind == Parameter::Kind::Choice) return ParseChoice(effect, parameter, text);
    const bool isColour = parameter.kind == Parameter::Kind::Colour, isMask = parameter.kind == Parameter::Kind::Mask;
    const auto value = isColour ? ParseColour(text) : isMask ? ParseMask(text) : ParseNumber(text);
    if (!value || (!isColour && !isMask && !IsInRange(parameter, *value))) Refuse(effect, parameter, text);
    return *value;
}

std::string FormatValue(const Parameter& parameter, double value)
{
    switch (parameter.kind) {
    case Parameter::Kind::Switch: return value != 0 ? "on" : "off";
    case Parameter::Kind::Mask: return FormatMask(static_cast<uint32_t>(value));
    case Parameter::Kind::Colour: return FormatColour(static_cast<uint32_t>(value));
    case Parameter::Kind::Choice:
        for (const Choice& choice : parameter.choices)
            if (choice.value == value) return std::string(choice.name);
        [[fallthrough]];
    default: return FormatNumber(value);
    }
}

std::string DescribeValues(const Parameter& parameter)
{
    switch (parameter.kind) {
    case Parameter::Kind::Switch: return "no value";
    case Parameter::Kind::Mask: return "all, letters of \"rgba\", or the mask as a number";
    case Parameter::Kind::Colour: return "a colour as #rrggbb";
    case Parameter::Kind::Choice: return "one of " + NamesOf(parameter.choices);
    default: return DescribeNumbers(parameter);
    }
}

std::vector<double> DefaultValues(const Effect& effect)
{
    std::vector<double> values(effect.slots, 0.0);
    for (const Parameter& parameter : effect.parameters) {
        const bool isSwitch = parameter.kind == Parameter::Kind::Switch;
        SetValue(parameter, isSwitch ? parameter.defaultValue != 0 : parameter.defaultValue, values);
    }
    return values;
}

void SetValue(const Parameter& parameter, double value, std::vector<double>& values)
{
    double& slot = values[parameter.slot];
    if (parameter.kind != Parameter::Kind::Switch) {
        slot = value;
        return;
    }
    const uint32_t others = static_cast<uint32_t>(slot) & ~parameter.bit;
    slot = value != 0 ? others | parameter.bit : others;
}

double ValueOf(const Parameter& parameter, const std::vector<double>& values)
{
    const double slot = values[parameter.slot];
    if (parameter.kind != Parameter::Kind::Switch) return slot;
    return (static_cast<uint32_t>(slot) & parameter.bit) != 0 ? 1 : 0;
}

}  // namespace zlv
