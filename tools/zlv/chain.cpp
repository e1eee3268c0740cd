// Effects in a row, each with its values, applied to a picture through the library.
#include "chain.h"

#include "errors.h"
#include "interrupt.h"
#include "library_progress.h"
#include "values.h"
#include "zlv40.h"

#include <chrono>
#include <optional>
#include <utility>

namespace zlv {
namespace {

// The picture that an effect of two pictures writes to. It begins as a copy: what the effect leaves out (rows, columns,
// channels of a mask) shows the original.
Picture MakeTarget(const Effect& effect, const Picture& source)
{
    if (effect.channelsMade == 0 || (effect.channelsMade >> source.channels & 1u)) return source;
    for (const uint32_t channels : {kRgb, kGray, kRgba, kGrayAlpha})
        if (effect.channelsMade >> channels & 1u) return WithChannels(source, channels);
    throw PictureError(std::string(effect.name) + " makes no picture that can be kept");
}

}  // namespace

ChainStep::ChainStep(const Effect& wanted) : effect(&wanted), values(DefaultValues(wanted)), call(wanted.call) {}

std::string ShellWord(const std::string& word)
{
    constexpr const char* kPlain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-+/:,";
    if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos) return word;
    // Double quotes hold on every system; some shells read more than that within them.
    const bool needsSingle = word.find_first_of("$`\\\"!") != std::string::npos && word.find('\'') == std::string::npos;
    const std::string quote(1, needsSingle ? '\'' : '"');
    return quote + word + quote;
}

std::string CommandOf(const ChainStep& step)
{
    std::string text(step.effect->name);
    for (const Parameter& parameter : step.effect->parameters) {
        const double value = ValueOf(parameter, step.values);
        const bool isSwitch = parameter.kind == Parameter::Kind::Switch;
        if (isSwitch && (value != 0) == (parameter.defaultValue != 0)) continue;
        text += isSwitch && value == 0 ? " --no-" : " --";
        text += parameter.name;
        if (!isSwitch) text.append(" ").append(ShellWord(FormatValue(parameter, value)));
    }
    return text;
}

uint32_t AcceptedChannels(const ChainStep& step)
{
    uint32_t accepted = step.effect->channelsRead;
    for (const Parameter& parameter : step.effect->parameters)
        if (parameter.needsChannels != 0 && ValueOf(parameter, step.values) != 0) accepted &= parameter.needsChannels;
    if (accepted == 0)
        throw UsageError(std::string(step.effect->name) +
                         ": these switches need different pictures and exclude each other.");
    return accepted;
}

EffectResult ApplyEffect(const ChainStep& step, Picture picture, const Progress& progress)
{
    StopIfInterrupted();
    FittedPicture fitted(std::move(picture), AcceptedChannels(step));
    std::optional<Picture> made;
    if (step.effect->makesPicture) made = MakeTarget(*step.effect, fitted.Get());

    EffectCall call;
    call.target = made ? made->Group() : fitted.Get().Group();
    if (made) call.source = fitted.Get().Group();
    call.values = step.values;

    const LibraryProgress installed(progress);
    const auto start = std::chrono::steady_clock::now();
    const bool isDone = step.call(call) != 0;
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    if (!isDone) {
        const uint32_t code = ZLV40_GetLastError();
        StopIfInterrupted();
        throw PictureError(std::string(step.effect->name) + " failed: " + ReasonOf(code));
    }
    return {fitted.Restore(made ? std::move(*made) : std::move(fitted.Get())), time.count()};
}

Picture ApplyChain(const std::vector<ChainStep>& steps, Picture picture, const Progress& progress)
{
    for (size_t i = 0; i < steps.size(); ++i) {
        const auto share = [&](double fraction) {
            if (progress) progress((static_cast<double>(i) + fraction) / static_cast<double>(steps.size()));
        };
        picture = ApplyEffect(steps[i], std::move(picture), share).picture;
        share(1);
    }
    StopIfInterrupted();
    return picture;
}

}  // namespace zlv
