// `zlv warp`: pictures through a list of warps, sampled once.
//
//     zlv warp IN... OUT WARP [--parameter value ...] [WARP ...]... [options]
//
// A warp's options stand behind its name. The general ones and those that say how the list is used may stand anywhere.
#include "arguments.h"
#include "catalogue.h"
#include "commands.h"
#include "errors.h"
#include "interrupt.h"
#include "near_names.h"
#include "picture_files.h"
#include "picture_options.h"
#include "step_options.h"
#include "values.h"
#include "warps.h"

#include <algorithm>
#include <iostream>
#include <memory>

namespace zlv {
namespace {

constexpr const char* kUsage = "zlv warp IN... OUT WARP [--parameter value ...] [WARP ...]... [options]";
constexpr const char* kFooter =
    "Warps act in the order in which they stand, and the picture is sampled once, behind the last one.\n"
    "  zlv warp in.png out.png spin --angle 90 ripple --amplitude 4 --sampling bicubic --clamp\n\n"
    "`zlv list` names the warps, `zlv info WARP` tells their parameters.\n";

constexpr Choice kSamplings[] = {
    {"nearest", 0, "a pixel as it is"},
    {"bilinear", 1, "between four pixels"},
    {"bicubic", 2, "between sixteen pixels"},
};
constexpr double kBicubic = 2;

// How the list is used, as parameters of an effect.
enum Slot : size_t { kSamplingSlot, kClampSlot, kKeepSlot, kBackgroundSlot, kExtentSlot, kSlots };
constexpr Parameter kParameters[] = {
    {"sampling", "how pixels are read", "", Parameter::Kind::Choice, kSamplingSlot, 0, kBicubic, 0, 1, 0, 0,
     kSamplings},
    {"clamp", "the edge goes on outside the picture", "", Parameter::Kind::Switch, kClampSlot, 0, 1, 0, 0, 1, 0, {}},
    {"keep", "outside the picture stays what was there", "", Parameter::Kind::Switch, kKeepSlot, 0, 1, 0, 0, 1, 0, {}},
    {"background", "outside the picture", "", Parameter::Kind::Colour, kBackgroundSlot, 0, 0xFFFFFF, 0, 0, 0, 0, {}},
    {"extent",
     "tell how far positions spread; no picture is written, every file is an input",
     "",
     Parameter::Kind::Switch,
     kExtentSlot,
     0,
     1,
     0,
     0,
     1,
     0,
     {}},
};
constexpr Effect kList = {"warp", "",   "", "",     "",          true,    false,   false,
                          true,   0x1E, 0,  kSlots, kParameters, nullptr, nullptr, ""};

std::vector<std::string> WarpNames()
{
    std::vector<std::string> names;
    for (const Effect& effect : AllEffects())
        if (effect.addWarp) names.emplace_back(effect.name);
    return names;
}

bool IsWarp(const std::string& word)
{
    const Effect* const effect = FindEffect(word);
    return effect && effect->addWarp;
}

struct WarpLine {
    std::vector<ChainStep> warps;
    std::vector<double> values = DefaultValues(kList);
    PictureOptions options;
};

// Whether the word behind this one is its value.
bool TakesValue(const CLI::App& parser, const std::string& word)
{
    if (word.size() < 2 || word[0] != '-' || word.find('=') != std::string::npos) return false;
    const CLI::Option* const option = parser.get_option_no_throw(word);
    return option && option->get_items_expected_max() > 0;
}

// One warp with the options behind it, or none: the words in front of the first warp.
class WarpWords {
public:
    WarpWords(const Effect* warp, WarpLine& line) : parser_(warp ? std::string(warp->summary) : kAbout), line_(line)
    {
        SetHabits(parser_);
        SetUsage(parser_, kUsage);
        if (!warp) parser_.footer(kFooter);
        if (warp) warp_ = std::make_unique<StepOptions>(parser_, *warp);
        list_ = std::make_unique<StepOptions>(parser_, kList);
        line_.options.AddTo(parser_);
        parser_.add_option("FILES", files_, "Inputs, then the output");
    }

    // The words up to the next warp's name. False when help was asked for and shown.
    bool Take(Arguments& words, const std::string& who)
    {
        auto end = words.begin();
        while (end != words.end() && !IsWarp(*end)) end += TakesValue(parser_, *end) && end + 1 != words.end() ? 2 : 1;
        if (Parse(parser_, Arguments(words.begin(), end), who) == Parsed::HelpShown) return false;
        words.erase(words.begin(), end);
        if (warp_) line_.warps.push_back(warp_->Read());
        const ChainStep list = list_->Read();
        for (const Parameter& parameter : kParameters)
            if (parser_.get_option("--" + std::string(parameter.name))->count() > 0)
                line_.values[parameter.slot] = list.values[parameter.slot];
        if (warp_ && !files_.empty())
            throw UsageError("There is no warp \"" + files_.front() + "\"." + SuggestNear(files_.front(), WarpNames()) +
                             " Files come before the first warp.");
        line_.options.files.insert(line_.options.files.end(), files_.begin(), files_.end());
        return true;
    }

private:
    static constexpr const char* kAbout = "Sends pictures through a list of warps and samples them once.";

    CLI::App parser_;
    WarpLine& line_;
    std::unique_ptr<StepOptions> warp_, list_;
    Arguments files_;
};

// The last file may be a warp that is spelt wrong.
[[noreturn]] void RefuseMissingWarp(const Arguments& files)
{
    const std::string hint = files.empty() ? "" : SuggestNear(files.back(), WarpNames());
    throw UsageError("A warp is missing, as in zlv warp IN OUT " + WarpNames().front() + "." + hint);
}

// False when help was asked for and shown.
bool ParseLine(Arguments words, WarpLine& line)
{
    if (!WarpWords(nullptr, line).Take(words, "zlv warp")) return false;
    while (!words.empty()) {
        const std::string name = words.front();
        words.erase(words.begin());
        if (!WarpWords(FindEffect(name), line).Take(words, name)) return false;
    }
    if (line.warps.empty()) RefuseMissingWarp(line.options.files);
    return true;
}

// The library goes from a pixel back to where it comes from: its first warp is the last one that a picture sees.
std::vector<ChainStep> InListOrder(std::vector<ChainStep> warps)
{
    std::reverse(warps.begin(), warps.end());
    return warps;
}

int ShowExtents(const WarpLine& line)
{
    if (line.options.files.empty()) throw UsageError("An input is missing.");
    for (const std::string& file : line.options.files) {
        StopIfInterrupted();
        const Picture picture = ReadPicture(file);
        const WarpExtent extent = ExtentOf(InListOrder(line.warps), picture.width, picture.height);
        std::cout << file << ": " << picture.width << " x " << picture.height << ", positions from x " << extent.minX
                  << " to " << extent.maxX << ", from y " << extent.minY << " on\n";
    }
    return kExitDone;
}

}  // namespace

int RunWarp(const Arguments& arguments)
{
    WarpLine line;
    if (!ParseLine(arguments, line)) return kExitDone;
    if (line.values[kExtentSlot] != 0) return ShowExtents(line);
    const WarpSettings settings = {static_cast<uint32_t>(line.values[kSamplingSlot]), line.values[kClampSlot] != 0,
                                   line.values[kKeepSlot] != 0, static_cast<uint32_t>(line.values[kBackgroundSlot])};
    ChainStep step(*line.warps.front().effect);
    step.call = [warps = InListOrder(line.warps), settings](const EffectCall& call) {
        return WarpByList(call, warps, settings);
    };
    return line.options.Apply({step}, "zlv warp IN OUT WARP");
}

}  // namespace zlv
