// The command: picks the word and turns exceptions into sentences and exit codes.
#include "commands.h"
#include "errors.h"
#include "interrupt.h"
#include "near_names.h"
#include "system.h"
#include "zlv40.h"

#include <iostream>
#include <new>

namespace zlv {
namespace {

using Arguments = std::vector<std::string>;

const struct {
    const char* name;
    const char* about;
    int (*run)(const Arguments& arguments);
} kCommands[] = {
    {"list", "Lists all effects (--json for programs)", RunList},
    {"info", "Tells what an effect does and takes", RunInfo},
    {"apply", "Applies one effect, or several in a row, to pictures", RunApply},
    {"ascii", "Prints a picture as text", RunAscii},
    {"seam-carve", "Makes a picture narrower or wider and keeps what stands out", RunSeamCarve},
    {"warp", "Sends pictures through a list of warps", RunWarp},
    {"gallery", "Shows every effect on a picture, as one page", RunGallery},
};

std::string VersionText()
{
    char version[ZLV40_VERSION_BYTES];
    return ZLV40_GetLibVersion(version);
}

int ShowHelp()
{
    std::cout << "zlv: image effects on PNG, JPEG and BMP files\n\nUsage:\n";
    for (const auto& command : kCommands) {
        const std::string name(command.name);
        std::cout << "  zlv " << name << std::string(12 - name.size(), ' ') << command.about << "\n";
    }
    std::cout << "  zlv --version   Shows the library's version\n\n"
                 "Examples:\n"
                 "  zlv apply invert photo.png inverted.png\n"
                 "  zlv apply invert then invert a.jpg b.jpg 'out/{name}.png' --jobs 4\n"
                 "  zlv seam-carve photo.png narrow.png --width 80%\n"
                 "  zlv warp photo.png warped.png spin --angle 90 ripple --sampling bicubic\n"
                 "  zlv gallery photo.png gallery\n\n"
                 "`zlv COMMAND --help` shows the options of each. Exit codes: 0 when all is done, 1 when a picture\n"
                 "failed, 2 when the command line is wrong, 130 after Ctrl-C.\n";
    return kExitDone;
}

[[noreturn]] void RefuseCommand(const std::string& word)
{
    if (word.starts_with('-'))
        throw UsageError("zlv has no option " + word + "." + SuggestNear(word, {"--help", "--version"}));
    std::vector<std::string> names;
    for (const auto& command : kCommands) names.emplace_back(command.name);
    const std::string hint = SuggestNear(word, names);
    throw UsageError("There is no command \"" + word + "\"." + hint + (hint.empty() ? " `zlv --help` shows all." : ""));
}

int Run(Arguments arguments)
{
    if (arguments.empty()) {
        ShowHelp();
        return kExitUsage;
    }
    if (arguments[0] == "help" && arguments.size() > 1) arguments = {arguments[1], "--help"};
    const std::string word = arguments[0];
    if (word == "--help" || word == "-h" || word == "help") return ShowHelp();
    if (word == "--version") {
        std::cout << VersionText() << "\n";
        return kExitDone;
    }
    for (const auto& command : kCommands)
        if (word == command.name) return command.run(Arguments(arguments.begin() + 1, arguments.end()));
    RefuseCommand(word);
}

int Complain(const char* sentence, int code)
{
    std::cerr << "zlv: " << sentence << std::endl;
    return code;
}

}  // namespace

int RunCommand(const Arguments& arguments)
{
    try {
        StartWatchingInterrupts();
        const int code = Run(arguments);
        std::cout.flush();
        return std::cout ? code : Complain("Cannot write to standard output.", kExitFailed);
    } catch (const UsageError& error) {
        return Complain(error.what(), kExitUsage);
    } catch (const Interrupted& error) {
        return Complain(error.what(), kExitInterrupted);
    } catch (const std::bad_alloc&) {
        return Complain("There is not enough memory.", kExitFailed);
    } catch (const std::exception& error) {
        return Complain(error.what(), kExitFailed);
    }
}

}  // namespace zlv
