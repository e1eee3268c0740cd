// Effects in a row, each with its values, applied to a picture through the library.
#include "chain.h"

#include "errors.h"
#include "interrupt.h"
#include "values.h"
#include "zlv40.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>

namespace zlv {
namespace {

// The library's progress callback on this thread, for the life of the object.
class LibraryProgress {
public:
    explicit LibraryProgress(const Progress& progress) : progress_(progress)
    {
        ZLV40_SetCallback(OnReport, reinterpret_cast<uintptr_t>(this));
    }
    ~LibraryProgress() { ZLV40_SetCallback(nullptr, 0); }
    LibraryProgress(const LibraryProgress&) = delete;
    LibraryProgress& operator=(const LibraryProgress&) = delete;

private:
    static uint32_t OnReport(uint32_t current, uint32_t total, uint64_t data) noexcept
    {
        const auto* self = reinterpret_cast<const LibraryProgress*>(static_cast<uintptr_t>(data));
        // Some effects count their stages from 1.
        if (self->progress_ && total > 0) self->progress_(std::min(1.0, (current + 1.0) / total));
        return IsInterrupted() ? 0 : 1;
    }

    const Progress& progress_;
};

std::string ReasonOf(uint32_t code)
{
    switch (code) {
    case ZLV40_ERROR_OUT_OF_MEMORY: return "there is not enough memory, or the picture is too small for these values";
    case ZLV40_ERROR_BAD_ARGUMENT: return "the library does not take these values for this picture";
    case ZLV40_ERROR_CANCELLED: return "it was cancelled";
    case ZLV40_ERROR_COULD_NOT_RUN: return "the library could not start it";
    case ZLV40_ERROR_POLYGON: return "the polygon is not convex or has fewer than three corners";
    case ZLV40_ERROR_TARGET_TOO_SMALL: return "the picture becomes too small for the filter";
    case ZLV40_ERROR_TIME_OUT: return "a thread of the library did not answer";
    default: return "the library gives the error " + std::to_string(code);
    }
}

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
