// `zlv seam-carve`: another width for a picture, with what stands out in it kept.
#include "arguments.h"
#include "commands.h"
#include "errors.h"
#include "interrupt.h"
#include "library_progress.h"
#include "output_format.h"
#include "picture_files.h"
#include "progress_bar.h"
#include "seam_carving.h"
#include "system.h"

#include <charconv>
#include <optional>

namespace zlv {
namespace {

constexpr uint32_t kSmallestSource = 3, kSmallestResult = 4, kMostPercent = 1000;
constexpr uint32_t kMostColumns = 1u << 20;

struct CarveLine {
    std::string input, output, width, mask, format;
    uint16_t penalty = kDefaultPenalty;
    int jpegQuality = kDefaultJpegQuality;
    bool hasTwoThreads = false, isQuiet = false, showsProgress = false;
};

// A number of columns, or a percentage of the picture's.
struct WantedWidth {
    uint32_t number = 0;
    bool isPercentage = false;

    uint32_t Of(uint32_t width) const
    {
        return isPercentage ? static_cast<uint32_t>((uint64_t{number} * width + 50) / 100) : number;
    }
};

WantedWidth ParseWidth(const std::string& text)
{
    WantedWidth wanted;
    wanted.isPercentage = text.ends_with('%');
    const char *const first = text.data(), *const last = first + text.size() - wanted.isPercentage;
    const auto [end, error] = std::from_chars(first, last, wanted.number);
    const bool isNumber = error == std::errc() && end == last && first != last;
    const uint32_t most = wanted.isPercentage ? kMostPercent : kMostColumns;
    const uint32_t least = wanted.isPercentage ? 1 : kSmallestResult;
    if (!isNumber || wanted.number < least || wanted.number > most)
        throw UsageError(
            "seam-carve: --width takes a number of columns from 4 to 1048576, or a percentage from 1% to "
            "1000%, not \"" +
            text + "\".");
    return wanted;
}

// False when help was asked for and shown.
bool ParseLine(const Arguments& arguments, CarveLine& line)
{
    CLI::App parser("Makes a picture narrower or wider, seam by seam, and keeps what stands out in it.");
    SetHabits(parser);
    SetUsage(parser, "zlv seam-carve IN OUT --width WIDTH [options]");
    parser.add_option("IN", line.input, "The picture")->required();
    parser.add_option("OUT", line.output, "The result")->required();
    parser.add_option("--width", line.width, "Columns of the result, or a percentage such as 80%")
        ->required()
        ->take_last()
        ->type_name("WIDTH");
    parser
        .add_option(
            "--mask", line.mask,
            "A picture of the same size: dark parts attract seams, bright ones repel them, middle gray is neutral")
        ->take_last()
        ->type_name("PICTURE");
    parser.add_option("--penalty", line.penalty, "What keeps inserted seams apart, 0 to 65535 (300)")
        ->take_last()
        ->check(CLI::Range(0, 65535).description(""))
        ->type_name("N");
    parser.add_flag("--two-threads", line.hasTwoThreads, "Share each seam between two threads; for very wide pictures");
    parser.add_option("--format", line.format, "png, jpg or bmp, whatever the output's extension says")
        ->take_last()
        ->type_name("FORMAT");
    parser.add_option("--quality", line.jpegQuality, "JPEG quality, 1 to 100 (90)")
        ->take_last()
        ->check(CLI::Range(1, 100).description(""))
        ->type_name("N");
    parser.add_flag("--progress", line.showsProgress, "Show the progress bar even where no terminal is");
    parser.add_flag("-q,--quiet", line.isQuiet, "Show no progress bar");
    return Parse(parser, arguments, "zlv seam-carve") != Parsed::HelpShown;
}

ShowProgress ShowOf(const CarveLine& line)
{
    if (line.isQuiet) return ShowProgress::Never;
    return line.showsProgress ? ShowProgress::Always : ShowProgress::OnTerminal;
}

// The mask's brightness, a byte a pixel.
std::optional<Picture> ReadMask(const CarveLine& line, const Picture& picture)
{
    if (line.mask.empty()) return std::nullopt;
    Picture mask = WithChannels(ReadPicture(line.mask), kGray);
    if (mask.width != picture.width || mask.height != picture.height)
        throw PictureError("The mask \"" + line.mask + "\" has " + std::to_string(mask.width) + " x " +
                           std::to_string(mask.height) + " pixels and the picture " + std::to_string(picture.width) +
                           " x " + std::to_string(picture.height) + ".");
    return mask;
}

Picture CarvePicture(const CarveLine& line, WantedWidth wanted, ProgressBar& bar)
{
    Picture picture = ReadPicture(line.input);
    const uint32_t width = wanted.Of(picture.width);
    if (picture.width < kSmallestSource || picture.height < kSmallestSource)
        throw PictureError("\"" + line.input + "\" is too small: 3 x 3 pixels are the least.");
    if (width < kSmallestResult)
        throw PictureError("\"" + line.input + "\" would be " + std::to_string(width) +
                           " wide; 4 columns are the least.");
    std::optional<Picture> mask = ReadMask(line, picture);

    PartProgress part(bar, line.input);
    FittedPicture fitted(std::move(picture), 1u << kRgb | 1u << kRgba);  // alpha goes along with its pixels
    const CarveSettings settings = {mask ? &*mask : nullptr, line.penalty, line.hasTwoThreads};
    try {
        const LibraryProgress installed([&part](double fraction) { part.Reach(fraction); });
        Picture result = CarvedTo(width, fitted.Get(), settings);
        part.Reach(1);
        return fitted.Restore(std::move(result));
    } catch (const PictureError& error) {
        throw PictureError("\"" + line.input + "\": " + error.what() + ".");
    }
}

}  // namespace

int RunSeamCarve(const Arguments& arguments)
{
    CarveLine line;
    if (!ParseLine(arguments, line)) return kExitDone;
    const WantedWidth width = ParseWidth(line.width);
    const Format format = FormatFor(line.output, GivenFormat(line.format));
    MakeStandardStreamsBinary();
    ProgressBar bar(ShowOf(line), 1);
    const Picture result = CarvePicture(line, width, bar);
    StopIfInterrupted();
    WriteWholeFile(line.output, EncodePicture(result, format, line.jpegQuality));
    return kExitDone;
}

}  // namespace zlv
