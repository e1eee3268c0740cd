// `zlv list` and `zlv info`: the catalogue, for people and for programs.
#include "arguments.h"
#include "catalogue.h"
#include "commands.h"
#include "errors.h"
#include "picture.h"
#include "values.h"

#include <algorithm>
#include <iostream>

namespace zlv {
namespace {

void PrintJson(std::span<const Effect> effects)
{
    std::cout << "[\n";
    for (const Effect& effect : effects) std::cout << effect.json << (&effect == &effects.back() ? "\n" : ",\n");
    std::cout << "]\n";
}

void PrintTable(std::span<const Effect> effects)
{
    size_t width = 0;
    for (const Effect& effect : effects) width = std::max(width, effect.name.size());
    std::string_view family;
    for (const Effect& effect : effects) {
        if (effect.family != family) std::cout << (family.empty() ? "" : "\n") << effect.family << "\n";
        family = effect.family;
        std::cout << "  " << effect.name << std::string(width + 2 - effect.name.size(), ' ') << effect.summary << "\n";
    }
}

constexpr uint32_t kAnyChannels = 1u << kGray | 1u << kGrayAlpha | 1u << kRgb | 1u << kRgba;

std::string ChannelsText(uint32_t counts)
{
    std::string text;
    for (const uint32_t count : {kGray, kGrayAlpha, kRgb, kRgba})
        if (counts >> count & 1u) text += (text.empty() ? "" : ", ") + std::string(NameOfChannels(count));
    return counts == kAnyChannels ? text : text + " (others are converted)";
}

std::string ProgressText(const Effect& effect)
{
    std::string text(effect.progress == "none" ? "none" : "once a " + std::string(effect.progress));
    text += effect.canCancel ? ", Ctrl-C stops it" : ", runs to its end";
    return effect.startsThreads ? text + ", starts threads of its own" : text;
}

void PrintParameter(const Parameter& parameter)
{
    const bool isSwitch = parameter.kind == Parameter::Kind::Switch;
    const bool isOn = isSwitch && parameter.defaultValue != 0;
    std::cout << "  --" << (isOn ? "[no-]" : "") << parameter.name << "\n";
    if (!parameter.about.empty()) std::cout << "      " << parameter.about << "\n";
    if (isSwitch) {
        if (isOn) std::cout << "      on by default\n";
        return;
    }
    std::cout << "      " << DescribeValues(parameter) << "; default " << FormatValue(parameter, parameter.defaultValue)
              << "\n";
    for (const Choice& choice : parameter.choices)
        if (!choice.about.empty()) std::cout << "      " << choice.name << ": " << choice.about << "\n";
}

void PrintInfo(const Effect& effect)
{
    std::cout << effect.name << ": " << effect.summary << "\n\n"
              << "Family    " << effect.family << "\n"
              << "Function  " << effect.function << "\n"
              << "Pictures  " << ChannelsText(effect.channelsRead) << "\n"
              << "Progress  " << ProgressText(effect) << "\n";
    if (effect.isRandom) std::cout << "Random    the result depends on the thread's random generator\n";
    std::cout << "\n" << (effect.parameters.empty() ? "It has no parameters.\n" : "Parameters\n");
    for (const Parameter& parameter : effect.parameters) PrintParameter(parameter);
}

}  // namespace

int RunList(const Arguments& arguments)
{
    bool asJson = false;
    CLI::App parser("Lists all effects by family.", "zlv list");
    SetHabits(parser);
    parser.add_flag("--json", asJson, "Everything about each effect, as JSON");
    if (Parse(parser, arguments, "zlv list") == Parsed::HelpShown) return kExitDone;
    asJson ? PrintJson(AllEffects()) : PrintTable(AllEffects());
    return kExitDone;
}

int RunInfo(const Arguments& arguments)
{
    bool asJson = false;
    std::string name;
    CLI::App parser("Tells what an effect does and takes: parameters, ranges, defaults.", "zlv info");
    SetHabits(parser);
    parser.add_flag("--json", asJson, "The same as JSON");
    parser.add_option("EFFECT", name, "Name of the effect")->required();
    if (Parse(parser, arguments, "zlv info") == Parsed::HelpShown) return kExitDone;
    const Effect& effect = RequireEffect(name);
    if (asJson) std::cout << effect.json << "\n";
    else PrintInfo(effect);
    return kExitDone;
}

}  // namespace zlv
