#include "picture_options.h"

#include "errors.h"
#include "output_format.h"
#include "system.h"

#include <algorithm>
#include <thread>

namespace zlv {

void PictureOptions::AddTo(CLI::App& parser)
{
    const std::string group = "General options";
    parser.add_option("-j,--jobs", settings_.jobs, "Pictures worked on at the same time; 0: one a processor")
        ->take_last()
        ->check(CLI::Range(0u, 1024u).description(""))
        ->type_name("N")
        ->group(group);
    parser.add_option("-o,--output", output_, "Output name, folder or pattern such as out/{name}-new.png")
        ->take_last()
        ->type_name("OUT")
        ->group(group);
    parser.add_option("--format", format_, "png, jpg or bmp, whatever the output's extension says")
        ->take_last()
        ->type_name("FORMAT")
        ->group(group);
    parser.add_option("--quality", settings_.jpegQuality, "JPEG quality, 1 to 100 (90)")
        ->take_last()
        ->check(CLI::Range(1, 100).description(""))
        ->type_name("N")
        ->group(group);
    parser.add_flag("--progress", showsProgress_, "Show the progress bar even where no terminal is")->group(group);
    parser.add_flag("-q,--quiet", isQuiet_, "Show no progress bar")->group(group);
}

void PictureOptions::Settle(const std::string& example)
{
    if (output_.empty()) {
        if (files.size() < 2)
            throw UsageError(files.empty() ? "An input and an output are missing, as in " + example + "."
                                           : "There is one file name; an input and an output are needed.");
        output_ = files.back();
        files.pop_back();
    }
    if (files.empty()) throw UsageError("An input is missing.");
    settings_.format = GivenFormat(format_);
    if (settings_.jobs == 0) settings_.jobs = std::max(1u, std::thread::hardware_concurrency());
    if (showsProgress_) settings_.progress = ShowProgress::Always;
    if (isQuiet_) settings_.progress = ShowProgress::Never;
}

int PictureOptions::Apply(const std::vector<ChainStep>& steps, const std::string& example)
{
    Settle(example);
    MakeStandardStreamsBinary();
    return ApplyToPictures(steps, PlanOutputs(files, output_), settings_);
}

}  // namespace zlv
