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
#include "many_pictures.h"
#include "system.h"
#include "values.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <thread>

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
    Arguments files;
    ApplySettings settings;
    std::string output, format;
    bool isQuiet = false, showsProgress = false;
};

void AddGeneralOptions(CLI::App& parser, ApplyLine& line)
{
    const std::string group = "General options";
    parser.add_option("-j,--jobs", line.settings.jobs, "Pictures worked on at the same time; 0: one a processor")
        ->take_last()
        ->check(CLI::Range(0u, 1024u).description(""))
        ->type_name("N")
        ->group(group);
    parser.add_option("-o,--output", line.output, "Output name, folder or pattern such as out/{name}-new.png")
        ->take_last()
        ->type_name("OUT")
        ->group(group);
    parser.add_option("--format", line.format, "png, jpg or bmp, whatever the output's extension says")
        ->take_last()
        ->type_name("FORMAT")
        ->group(group);
    parser.add_option("--quality", line.settings.jpegQuality, "JPEG quality, 1 to 100 (90)")
        ->take_last()
        ->check(CLI::Range(1, 100).description(""))
        ->type_name("N")
        ->group(group);
    parser.add_flag("--progress", line.showsProgress, "Show the progress bar even where no terminal is")->group(group);
    parser.add_flag("-q,--quiet", line.isQuiet, "Show no progress bar")->group(group);
}

// What the parser collects for one effect.
struct GivenValues {
    std::map<const Parameter*, std::string> texts;
    std::map<const Parameter*, bool> switches;
};

void AddParameter(CLI::App& parser, const Parameter& parameter, GivenValues& given)
{
    const std::string name = "--" + std::string(parameter.name), about(parameter.about);
    const std::string group = "Parameters";
    if (parameter.kind == Parameter::Kind::Switch) {
        given.switches[&parameter] = parameter.defaultValue != 0;
        const bool isOn = parameter.defaultValue != 0;
        parser
            .add_flag(isOn ? name + ",!--no-" + std::string(parameter.name) : name, given.switches[&parameter], about)
            ->take_last()
            ->group(group);
        return;
    }
    const std::string range = DescribeValues(parameter) + "; default " + FormatValue(parameter, parameter.defaultValue);
    parser.add_option(name, given.texts[&parameter], about.empty() ? range : about + "; " + range)
        ->take_last()
        ->type_name("VALUE")
        ->group(group);
}

// The effect at the front of `arguments`, with its options. Names that are no options are files.
std::optional<ChainStep> ParseStep(const Arguments& arguments, ApplyLine& line)
{
    const Effect& effect = RequireEffect(arguments.front());
    const std::string who(effect.name);
    CLI::App parser(std::string(effect.summary));
    SetHabits(parser);
    SetUsage(parser, "zlv apply " + who + " [parameters] IN... OUT [options]");
    GivenValues given;
    for (const Parameter& parameter : effect.parameters) AddParameter(parser, parameter, given);
    AddGeneralOptions(parser, line);
    Arguments files;
    parser.add_option("FILES", files, "Inputs, then the output");
    if (Parse(parser, Arguments(arguments.begin() + 1, arguments.end()), who) == Parsed::HelpShown) return std::nullopt;

    ChainStep step(effect);
    for (const Parameter& parameter : effect.parameters) {
        const std::string option = "--" + std::string(parameter.name);
        if (parser.get_option(option)->count() == 0) continue;
        const bool isSwitch = parameter.kind == Parameter::Kind::Switch;
        const double value =
            isSwitch ? given.switches[&parameter] : ParseValue(effect, parameter, given.texts[&parameter]);
        SetValue(parameter, value, step.values);
    }
    AcceptedChannels(step);
    line.files.insert(line.files.end(), files.begin(), files.end());
    return step;
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
        if (!isLast && !line.files.empty())
            throw UsageError("\"" + line.files.front() +
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
    AddGeneralOptions(parser, line);
    if (Parse(parser, arguments, "zlv apply") == Parsed::HelpShown) return false;
    const Arguments rest = parser.remaining();
    if (rest.empty()) throw UsageError("An effect and files are missing, as in zlv apply EFFECT IN OUT.");
    return ParseChain(rest, line);
}

void Settle(ApplyLine& line)
{
    if (line.output.empty()) {
        if (line.files.size() < 2)
            throw UsageError(line.files.empty() ? "An input and an output are missing, as in zlv apply EFFECT IN OUT."
                                                : "There is one file name; an input and an output are needed.");
        line.output = line.files.back();
        line.files.pop_back();
    }
    if (line.files.empty()) throw UsageError("An input is missing.");
    if (!line.format.empty()) {
        line.settings.format = FormatOf(line.format);
        if (!line.settings.format) throw UsageError("--format takes png, jpg or bmp, not \"" + line.format + "\".");
    }
    if (line.settings.jobs == 0) line.settings.jobs = std::max(1u, std::thread::hardware_concurrency());
    if (line.showsProgress) line.settings.progress = ShowProgress::Always;
    if (line.isQuiet) line.settings.progress = ShowProgress::Never;
}

}  // namespace

int RunApply(const Arguments& arguments)
{
    ApplyLine line;
    if (!ParseLine(arguments, line)) return kExitDone;
    Settle(line);
    MakeStandardStreamsBinary();
    return ApplyToPictures(line.steps, PlanOutputs(line.files, line.output), line.settings);
}

}  // namespace zlv
