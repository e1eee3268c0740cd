// `zlv apply`: reads the chain and the files from the command line.
//
//     zlv apply EFFECT [--parameter value ...] [then EFFECT [...]]... IN... OUT [options]
//
// Each effect is parsed on its own, with its own options, so that an option belongs to the effect it stands behind. The
// general options may stand before the first effect and behind any.
#include "arguments.h"
#include "catalogue.h"
#include "commands.h"
#include "errors.h"
#include "picture_options.h"
#include "step_options.h"

#include <algorithm>
#include <iterator>
#include <optional>

namespace zlv {
namespace {

constexpr const char* kThen = "then";
constexpr const char* kUsage = "zlv apply EFFECT [--parameter value ...] [then EFFECT ...]... IN... OUT [options]";
constexpr const char* kFooter =
    "Chains: the word `then` joins effects; each takes the options that stand behind it:\n"
    "  zlv apply invert --protect-alpha then invert in.png out.png\n\n"
    "Files: the last name is the output. For several inputs it is a folder, or a pattern with {name}, {ext} or\n"
    "{number}; with --output all names are inputs:\n"
    "  zlv apply invert a.png b.jpg 'out/{name}-inverted.png' --jobs 4\n"
    "  zlv apply invert --output 'out/{name}-inverted.png' *.png\n"
    "`-` is standard input or output.\n\n"
    "`zlv list` names the effects, `zlv info EFFECT` and `zlv apply EFFECT --help` tell their parameters.\n";

struct ApplyLine {
    std::vector<ChainStep> steps;
    PictureOptions options;
};

// The effect at the front of `arguments`, with its options. Names that are no options are files.
std::optional<ChainStep> ParseStep(const Arguments& arguments, ApplyLine& line)
{
    const Effect& effect = RequireEffect(arguments.front());
    const std::string who(effect.name);
    CLI::App parser(std::string(effect.summary));
    SetHabits(parser);
    SetUsage(parser, "zlv apply " + who + " [parameters] IN... OUT [options]");
    StepOptions given(parser, effect);
    line.options.AddTo(parser);
    Arguments files;
    parser.add_option("FILES", files, "Inputs, then the output");
    if (Parse(parser, Arguments(arguments.begin() + 1, arguments.end()), who) == Parsed::HelpShown) return std::nullopt;
    line.options.files.insert(line.options.files.end(), files.begin(), files.end());
    return given.Read();
}

// False when help was asked for and shown.
bool ParseChain(Arguments arguments, ApplyLine& line)
{
    for (bool isLast = false; !isLast;) {
        const auto then = std::find(arguments.begin(), arguments.end(), kThen);
        isLast = then == arguments.end();
        if (arguments.begin() == then) throw UsageError("An effect is missing before or after `then`.");
        const auto step = ParseStep(Arguments(arguments.begin(), then), line);
        if (!step) return false;
        line.steps.push_back(*step);
        if (!isLast && !line.options.files.empty())
            throw UsageError("\"" + line.options.files.front() +
                             "\" stands before `then`; the files come after the last effect.");
        arguments.erase(arguments.begin(), isLast ? then : std::next(then));
    }
    return true;
}

bool ParseLine(const Arguments& arguments, ApplyLine& line)
{
    CLI::App parser("Applies one effect, or several in a row, to pictures.");
    SetHabits(parser);
    parser.prefix_command();
    SetUsage(parser, kUsage);
    parser.footer(kFooter);
    line.options.AddTo(parser);
    if (Parse(parser, arguments, "zlv apply") == Parsed::HelpShown) return false;
    const Arguments rest = parser.remaining();
    if (rest.empty()) throw UsageError("An effect and files are missing, as in zlv apply EFFECT IN OUT.");
    return ParseChain(rest, line);
}

}  // namespace

int RunApply(const Arguments& arguments)
{
    ApplyLine line;
    if (!ParseLine(arguments, line)) return kExitDone;
    return line.options.Apply(line.steps, "zlv apply EFFECT IN OUT");
}

}  // namespace zlv
