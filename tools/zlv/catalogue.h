// The catalogue of effects: what each is called, takes and does, and how it is called.
//
// The table behind it is generated from the description of the exports (api/generators/catalogue.py), so that a new
// effect needs no line here. An effect that takes several calls (a frequency filter) is a recipe: described with the
// others, with a hand-written `call` (frequency_recipes.cpp). A warp's call makes a list of that warp alone.
#ifndef ZLV_TOOLS_CATALOGUE_H
#define ZLV_TOOLS_CATALOGUE_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>

namespace zlv {

constexpr double kUnlimited = std::numeric_limits<double>::infinity();

// One name of a parameter that takes one of a few.
struct Choice {
    std::string_view name;
    double value;
    std::string_view about;
};

// What the user can set. Several switches may share a slot: each is a bit of one argument.
struct Parameter {
    enum class Kind { Integer, Real, Choice, Switch, Mask, Colour };

    std::string_view name;  // the option without its dashes
    std::string_view about;
    std::string_view unit;
    Kind kind;
    size_t slot;
    double minimum, maximum, step;  // step 0: any value of the range
    double defaultValue;
    uint32_t bit;            // of a switch
    uint32_t needsChannels;  // of a switch: bit c is set when it works with c channels; 0 when with any
    std::span<const Choice> choices;
};

// A picture as the library's image arguments describe it.
struct ImageGroup {
    uint8_t* samples = nullptr;
    uint32_t width = 0, height = 0, channels = 0, stride = 0;
};

// The arguments of one call. An effect that works in place has a target alone.
struct EffectCall {
    ImageGroup source, target;
    std::span<const double> values;  // a slot each argument that is neither part of an image nor fixed

    // A mask never names channels that the picture has not.
    uint32_t Mask(size_t slot) const { return static_cast<uint32_t>(values[slot]) & ((1u << target.channels) - 1u); }
};

// Puts a warp for pictures of this size at the end of the thread's list.
using AddWarp = uint32_t (*)(uint32_t width, uint32_t height, std::span<const double> values);

struct Effect {
    std::string_view name, function, summary, family, progress;
    bool canCancel, isRandom, startsThreads;
    bool makesPicture;      // a second picture beside the one it reads; otherwise it works in place
    uint32_t channelsRead;  // bit c is set when a picture of c channels is taken
    uint32_t channelsMade;  // the same of the picture that it makes; 0: the channels of the one taken
    size_t slots;
    std::span<const Parameter> parameters;
    uint32_t (*call)(const EffectCall& call);
    AddWarp addWarp;  // null when it is no warp
    std::string_view json;
};

std::span<const Effect> AllEffects();

// Null when there is none of that name.
const Effect* FindEffect(std::string_view name);

// Fails with a sentence that suggests near names when there is no such effect.
const Effect& RequireEffect(std::string_view name);

}  // namespace zlv

#endif
