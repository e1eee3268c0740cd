// Effects in a row, each with its values, applied to a picture through the library.
#ifndef ZLV_TOOLS_CHAIN_H
#define ZLV_TOOLS_CHAIN_H

#include "catalogue.h"
#include "picture.h"

#include <functional>
#include <string>
#include <vector>

namespace zlv {

struct ChainStep {
    explicit ChainStep(const Effect& wanted);

    const Effect* effect;
    std::vector<double> values;                            // one a slot, the defaults at first
    std::function<uint32_t(const EffectCall& call)> call;  // the effect's; or several that are one call
};

// A word as shells take it: quoted when it holds anything that they might read.
std::string ShellWord(const std::string& word);

// The step as the user would write it, with every value; switches only where they differ from the default.
std::string CommandOf(const ChainStep& step);

// The counts of channels that the effect takes with these values: bit c for c channels. Fails when there is none.
uint32_t AcceptedChannels(const ChainStep& step);

// Hears how far the work is, from 0 to 1.
using Progress = std::function<void(double fraction)>;

struct EffectResult {
    Picture picture;
    double milliseconds = 0;  // of the library's call alone
};

// Installs the library's callback on this thread for the time of the call. A picture without the channels that the
// effect needs is converted and brought back. Throws PictureError, or Interrupted after Ctrl-C.
EffectResult ApplyEffect(const ChainStep& step, Picture picture, const Progress& progress);

Picture ApplyChain(const std::vector<ChainStep>& steps, Picture picture, const Progress& progress);

}  // namespace zlv

#endif
