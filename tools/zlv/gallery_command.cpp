// `zlv gallery`: every effect of the catalogue on one picture.
#include "arguments.h"
#include "catalogue.h"
#include "commands.h"
#include "errors.h"
#include "gallery_page.h"
#include "interrupt.h"
#include "picture_files.h"
#include "progress_bar.h"
#include "seam_carving.h"
#include "shrink.h"
#include "values.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <new>
#include <system_error>
#include <utility>

namespace zlv {
namespace {

struct GallerySettings {
    std::string input, folder;
    uint32_t side = 720;
    bool isQuiet = false;
};

// The effect with its defaults, then with every other choice that it has.
std::vector<GalleryEntry> EntriesOf(const Effect& effect)
{
    std::vector<GalleryEntry> entries = {GalleryEntry(effect)};
    for (const Parameter& parameter : effect.parameters) {
        for (const Choice& choice : parameter.choices) {
            if (choice.value == parameter.defaultValue) continue;
            GalleryEntry entry(effect, std::string(parameter.name) + "-" + std::string(choice.name));
            SetValue(parameter, choice.value, entry.step.values);
            entries.push_back(std::move(entry));
        }
    }
    return entries;
}

void MakePicture(GalleryEntry& entry, const Picture& original, uint32_t side, const Progress& progress)
{
    try {
        const EffectResult result = ApplyEffect(entry.step, original, progress);
        entry.milliseconds = result.milliseconds;
        entry.picture = DataUri(Shrunk(result.picture, side));
    } catch (const PictureError& error) {
        entry.failure = error.what();
    } catch (const std::bad_alloc&) {
        entry.failure = entry.Name() + " failed: there is not enough memory for it";
    }
}

// ---- Seam carving: the seams over the picture, and the picture without them --------------------------------------

constexpr Effect kSeamCarve = {"seam-carve",
                               "ZLV40_SeamCarve",
                               "Makes a picture narrower and keeps what stands out in it, seam by seam.",
                               "Content-aware resizing",
                               "stage",
                               true,
                               true,
                               false,
                               true,
                               1u << kRgb,
                               0,
                               0,
                               {},
                               nullptr,
                               nullptr,
                               ""};
constexpr uint32_t kSeamSide = 320;  // each seam is found by carving once more
constexpr uint32_t kNarrowest = 20;  // pixels that are left
constexpr uint32_t kKeptPercent = 80;

// On white, in the original's width.
Picture Widened(const Picture& picture, uint32_t width)
{
    Picture wide(width, picture.height, picture.channels);
    std::fill(wide.samples.begin(), wide.samples.end(), uint8_t{255});
    const size_t row = size_t{picture.width} * picture.channels;
    for (size_t y = 0; y < picture.height; ++y)
        std::copy_n(picture.samples.data() + y * row, row, wide.samples.data() + y * width * picture.channels);
    return wide;
}

std::vector<GalleryEntry> SeamEntries(const Gallery& gallery, const Picture& original)
{
    const Picture picture = WithChannels(Shrunk(original, kSeamSide), kRgb);
    const uint32_t width = picture.width * kKeptPercent / 100;
    if (width < kNarrowest || picture.height < kNarrowest) return {};
    GalleryEntry seams(kSeamCarve, "seams"), result(kSeamCarve);
    result.command = "zlv seam-carve " + ShellWord(gallery.input) + " " + result.Name() + ".png --width " +
                     std::to_string(kKeptPercent) + "%";
    seams.command = result.command;
    try {
        seams.picture = DataUri(WithSeams(width, picture));
        const auto start = std::chrono::steady_clock::now();
        const Picture carved = CarvedTo(width, picture);
        const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
        seams.milliseconds = result.milliseconds = time.count();
        result.picture = DataUri(Widened(carved, picture.width));
    } catch (const PictureError& error) {
        seams.failure = result.failure = error.what();
    }
    return {seams, result};
}

Gallery MakeGallery(const GallerySettings& settings, ProgressBar& bar)
{
    const Picture original = ReadPicture(settings.input);
    const Picture shown = Shrunk(original, settings.side);
    Gallery gallery;
    gallery.input = settings.input;
    gallery.fileName = settings.input == kStandardStream ? "-" : TextOf(PathOf(settings.input).filename());
    gallery.original = DataUri(shown);
    gallery.width = original.width, gallery.height = original.height, gallery.channels = original.channels;
    gallery.shownWidth = shown.width, gallery.shownHeight = shown.height;
    for (const Effect& effect : AllEffects()) {
        PartProgress part(bar, std::string(effect.name));
        std::vector<GalleryEntry> entries = EntriesOf(effect);
        for (size_t i = 0; i < entries.size(); ++i) {
            const auto share = [&](double fraction) {
                part.Reach((static_cast<double>(i) + fraction) / static_cast<double>(entries.size()));
            };
            MakePicture(entries[i], original, settings.side, share);
            share(1);
            if (!entries[i].failure.empty()) bar.Say("zlv: " + entries[i].failure + ".");
            gallery.entries.push_back(std::move(entries[i]));
        }
    }
    for (GalleryEntry& entry : SeamEntries(gallery, original)) gallery.entries.push_back(std::move(entry));
    return gallery;
}

void MakeFolder(const std::string& name)
{
    std::error_code error;
    std::filesystem::create_directories(PathOf(name), error);
    if (error || !std::filesystem::is_directory(PathOf(name), error))
        throw PictureError("Cannot make the folder \"" + name +
                           "\": " + (error ? error.message() : std::string("there is a file of that name")) + ".");
}

}  // namespace

int RunGallery(const Arguments& arguments)
{
    GallerySettings settings;
    CLI::App parser("Writes FOLDER/index.html: one page, complete in itself, that shows every effect on the picture.");
    SetHabits(parser);
    SetUsage(parser, "zlv gallery IN FOLDER [options]");
    parser.add_option("IN", settings.input, "The picture")->required();
    parser.add_option("FOLDER", settings.folder, "Where the page goes; made if it is not there")->required();
    parser.add_option("--size", settings.side, "Longest side of the pictures on the page, 64 to 4096 (720)")
        ->take_last()
        ->check(CLI::Range(64u, 4096u).description(""))
        ->type_name("PIXELS");
    parser.add_flag("-q,--quiet", settings.isQuiet, "Show no progress bar and no closing line");
    if (Parse(parser, arguments, "zlv gallery") == Parsed::HelpShown) return kExitDone;

    bool isComplete = true;
    std::string page;
    {
        ProgressBar bar(settings.isQuiet ? ShowProgress::Never : ShowProgress::OnTerminal, AllEffects().size());
        const Gallery gallery = MakeGallery(settings, bar);
        for (const GalleryEntry& entry : gallery.entries) isComplete = isComplete && entry.failure.empty();
        page = GalleryPage(gallery);
    }
    StopIfInterrupted();
    MakeFolder(settings.folder);
    const std::string file = TextOf(PathOf(settings.folder) / "index.html");
    WriteWholeFile(file, Bytes(page.begin(), page.end()));
    if (!settings.isQuiet) std::cout << "The gallery is " << file << "\n";
    return isComplete ? kExitDone : kExitFailed;
}

}  // namespace zlv
