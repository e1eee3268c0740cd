// Where results go: one name for one picture, a pattern or a folder for many.
#include "output_names.h"

#include "errors.h"
#include "near_names.h"
#include "whole_file.h"

#include <filesystem>
#include <map>
#include <system_error>

namespace zlv {
namespace {

namespace fs = std::filesystem;

bool IsFolder(const std::string& output)
{
    std::error_code error;
    return output.ends_with('/') || fs::is_directory(PathOf(output), error);
}

bool IsPattern(const std::string& output) { return output.find('{') != std::string::npos; }

std::string ExtensionOf(const fs::path& path)
{
    const std::string extension = TextOf(path.extension());
    return extension.empty() ? extension : extension.substr(1);
}

std::string ValueOfPlaceholder(const std::string& placeholder, const std::string& input, size_t number)
{
    const fs::path path = PathOf(input == kStandardStream ? "stdin.png" : input);
    if (placeholder == "name") return TextOf(path.stem());
    if (placeholder == "ext") return ExtensionOf(path);
    if (placeholder == "number") return std::to_string(number);
    throw UsageError("The output has an unknown placeholder {" + placeholder + "}." +
                     SuggestNear(placeholder, {"name", "ext", "number"}) + " There are {name}, {ext} and {number}.");
}

std::string FillPattern(const std::string& pattern, const std::string& input, size_t number)
{
    std::string text;
    size_t at = 0;
    for (size_t open; (open = pattern.find('{', at)) != std::string::npos;) {
        const size_t close = pattern.find('}', open);
        if (close == std::string::npos) throw UsageError("The output \"" + pattern + "\" has a { without a }.");
        text += pattern.substr(at, open - at);
        text += ValueOfPlaceholder(pattern.substr(open + 1, close - open - 1), input, number);
        at = close + 1;
    }
    return text + pattern.substr(at);
}

void MakeFolderOf(const std::string& file)
{
    const fs::path folder = PathOf(file).parent_path();
    std::error_code error;
    if (!folder.empty()) fs::create_directories(folder, error);
    if (error) throw PictureError("Cannot make the folder \"" + TextOf(folder) + "\": " + error.message() + ".");
}

}  // namespace

std::vector<PictureJob> PlanOutputs(const std::vector<std::string>& inputs, const std::string& output)
{
    const bool isFolder = output != kStandardStream && IsFolder(output);
    const std::string pattern = isFolder ? TextOf(PathOf(output) / "{name}.{ext}") : output;
    if (inputs.size() > 1 && !IsPattern(pattern))
        throw UsageError("Several pictures need an output with a placeholder, as in out/{name}.png, or a folder; \"" +
                         output + "\" is one name.");
    std::vector<PictureJob> jobs;
    std::map<fs::path, std::string> taken;
    for (const std::string& input : inputs) {
        jobs.push_back({input, IsPattern(pattern) ? FillPattern(pattern, input, jobs.size() + 1) : pattern});
        const std::string& target = jobs.back().output;
        const auto [other, isNew] = taken.emplace(PathOf(target).lexically_normal(), input);
        if (!isNew)
            throw UsageError("\"" + other->second + "\" and \"" + input + "\" would both be written to \"" + target +
                             "\"; the placeholder {number} keeps them apart.");
    }
    if (IsPattern(pattern))
        for (const PictureJob& job : jobs) MakeFolderOf(job.output);
    return jobs;
}

}  // namespace zlv
