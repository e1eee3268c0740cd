// `zlv ascii`: a picture as text.
#include "arguments.h"
#include "commands.h"
#include "errors.h"
#include "picture_files.h"
#include "shrink.h"
#include "system.h"
#include "zlv40.h"

#include <algorithm>
#include <iostream>

namespace zlv {
namespace {

constexpr uint32_t kUsualColumns = 80;  // where there is no terminal to ask
constexpr uint32_t kMostColumns = 10000;
constexpr uint32_t kMostRows = 100000;
constexpr const char* kLightOnDark = " .~:+=o*x^%#@$MW";

struct AsciiSettings {
    std::string input, output;
    uint32_t columns = 0;
    bool isLightOnDark = false;
};

// A character is twice as high as wide.
uint32_t RowsFor(const Picture& picture, uint32_t columns)
{
    const uint64_t twice = uint64_t{2} * picture.width;
    const uint64_t rows = (uint64_t{columns} * picture.height + picture.width) / twice;
    return static_cast<uint32_t>(std::clamp<uint64_t>(rows, 1, kMostRows));
}

// The export looks at single samples: a picture larger than the text is shrunk to means first.
Picture GrayFor(const Picture& picture, uint32_t columns, uint32_t rows)
{
    return WithChannels(OverWhite(Shrunk(picture, std::max(columns, 2 * rows))), kGray);
}

std::string Draw(const Picture& picture, const AsciiSettings& settings)
{
    const uint32_t rows = RowsFor(picture, settings.columns);
    const Picture gray = GrayFor(picture, settings.columns, rows);
    std::string text(size_t{settings.columns + 1} * rows + 1, '\0');
    if (!ZLV40_ASCIIizeGrayscaleImage(gray.samples.data(), gray.width, gray.height, gray.width,
                                      reinterpret_cast<uint8_t*>(text.data()), settings.columns, rows,
                                      settings.isLightOnDark ? kLightOnDark : nullptr)) {
        throw PictureError("There is not enough memory to draw \"" + settings.input + "\".");
    }
    text.pop_back();
    return text;
}

}  // namespace

int RunAscii(const Arguments& arguments)
{
    AsciiSettings settings;
    CLI::App parser("Prints a picture as text, as wide as the terminal.");
    SetHabits(parser);
    SetUsage(parser, "zlv ascii IN [--columns N] [-o FILE]");
    parser.add_option("IN", settings.input, "The picture")->required();
    parser.add_option("--columns", settings.columns, "Characters a line, 1 to 10000 (the terminal's width, or 80)")
        ->take_last()
        ->check(CLI::Range(1u, kMostColumns).description(""))
        ->type_name("N");
    parser.add_option("-o,--output", settings.output, "A text file to write, instead of printing")
        ->take_last()
        ->type_name("FILE");
    parser.add_flag("--dark", settings.isLightOnDark, "For light letters on a dark ground");
    if (Parse(parser, arguments, "zlv ascii") == Parsed::HelpShown) return kExitDone;

    const bool isPrinted = settings.output.empty() || settings.output == kStandardStream;
    if (settings.columns == 0) settings.columns = isPrinted ? TerminalColumns().value_or(kUsualColumns) : kUsualColumns;
    if (settings.input == kStandardStream) MakeStandardStreamsBinary();
    const std::string text = Draw(ReadPicture(settings.input), settings);
    if (isPrinted) std::cout << text;
    else WriteWholeFile(settings.output, Bytes(text.begin(), text.end()));
    return kExitDone;
}

}  // namespace zlv
