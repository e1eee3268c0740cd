// The gallery as one HTML page that needs nothing beside it.
#include "gallery_page.h"

#include "gallery_style.h"
#include "picture_files.h"
#include "values.h"
#include "zlv40.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace zlv {
namespace {

constexpr int kGalleryQuality = 88;

std::string Base64(const Bytes& bytes)
{
    constexpr const char* kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (size_t i = 0; i < bytes.size(); i += 3) {
        const size_t count = std::min<size_t>(3, bytes.size() - i);
        uint32_t group = 0;
        for (size_t k = 0; k < 3; ++k) group = group << 8 | (k < count ? bytes[i + k] : 0u);
        for (size_t k = 0; k < 4; ++k) text += k <= count ? kDigits[group >> (18 - 6 * k) & 63u] : '=';
    }
    return text;
}

// Text for the page. Control characters that neither HTML nor XML has become question marks.
std::string Escaped(std::string_view text)
{
    std::string escaped;
    for (const char letter : text) {
        if (letter == '&') escaped += "&amp;";
        else if (letter == '<') escaped += "&lt;";
        else if (letter == '>') escaped += "&gt;";
        else if (letter == '"') escaped += "&quot;";
        else escaped += static_cast<unsigned char>(letter) < 0x20 ? '?' : letter;
    }
    return escaped;
}

std::string LowerCase(std::string text)
{
    for (char& letter : text) letter = static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    return text;
}

std::string Timing(double milliseconds)
{
    char text[32];
    std::snprintf(text, sizeof text,
                  milliseconds < 10     ? "%.2f ms"
                  : milliseconds < 1000 ? "%.0f ms"
                                        : "%.1f s",
                  milliseconds < 1000 ? milliseconds : milliseconds / 1000);
    return text;
}

std::string Image(const std::string& uri, const std::string& alt, const Gallery& gallery)
{
    return "<img src=\"" + uri + "\" alt=\"" + Escaped(alt) + "\" width=\"" + std::to_string(gallery.shownWidth) +
           "\" height=\"" + std::to_string(gallery.shownHeight) + "\"/>";
}

// The picture's shape, for the style sheet.
std::string ShapeOf(const Gallery& gallery)
{
    return "--w: " + std::to_string(gallery.shownWidth) + "; --h: " + std::to_string(gallery.shownHeight);
}

std::string PairOf(const Gallery& gallery, const GalleryEntry& entry)
{
    const std::string name = entry.Name();
    return "<div class=\"pair\" style=\"" + ShapeOf(gallery) + "\">" + "<div class=\"original\"></div>" +
           Image(entry.picture, name, gallery) + "<span class=\"left\">original</span><span class=\"right\">" +
           Escaped(name) + "</span>" +
           "<input type=\"range\" min=\"0\" max=\"100\" step=\"any\" value=\"50\" aria-label=\"Original and " +
           Escaped(name) + "\"/></div>\n";
}

std::string ParametersOf(const ChainStep& step)
{
    std::string rows;
    for (const Parameter& parameter : step.effect->parameters) {
        const std::string value = FormatValue(parameter, ValueOf(parameter, step.values));
        rows += "<dt>" + Escaped(parameter.name) + "</dt><dd>" + Escaped(value);
        const bool hasUnit = !parameter.unit.empty();
        if (hasUnit) rows += "<small>" + Escaped(parameter.unit) + "</small>";
        rows += "</dd>\n";
    }
    return rows.empty() ? rows : "<dl>\n" + rows + "</dl>\n";
}

// An effect on the shape that alpha describes finds a rectangle where there is none.
std::string RemarkOn(const Gallery& gallery, const Effect& effect)
{
    const bool needsAlpha = effect.channelsRead == 1u << kRgba;
    const bool hasAlpha = gallery.channels == kRgba || gallery.channels == kGrayAlpha;
    return needsAlpha && !hasAlpha ? "<p><small>It works on the shape of the alpha channel, and this picture has none."
                                     "</small></p>\n"
                                   : "";
}

std::string FigureOf(const Gallery& gallery, const GalleryEntry& entry)
{
    const Effect& effect = *entry.step.effect;
    const std::string name = Escaped(entry.Name()), summary = Escaped(effect.summary);
    const std::string words = LowerCase(name + " " + summary + " " + Escaped(effect.family));
    const std::string file = entry.Name() + ".png";
    const std::string command = entry.command.empty()
                                    ? "zlv apply " + CommandOf(entry.step) + " " + ShellWord(gallery.input) + " " + file
                                    : entry.command;
    const bool failed = !entry.failure.empty();
    return "<figure id=\"" + name + "\" data-words=\"" + words + "\">\n" +
           (failed ? "<p class=\"failure\">" + Escaped(entry.failure) + "</p>\n" : PairOf(gallery, entry)) +
           "<figcaption><header><h3>" + name + "</h3>" +
           (failed ? ""
                   : "<span class=\"time\">" + Timing(entry.milliseconds) + "</span>" +
                         "<button type=\"button\" hidden=\"hidden\">Larger</button>") +
           "</header>\n<p>" + summary + "</p>\n" + RemarkOn(gallery, effect) + ParametersOf(entry.step) + "<code>" +
           Escaped(command) + "</code></figcaption>\n</figure>\n";
}

// Families in the catalogue's order, each with the places of its entries.
struct Family {
    std::string_view title;
    std::vector<const GalleryEntry*> entries;
};

std::vector<Family> FamiliesOf(const Gallery& gallery)
{
    std::vector<Family> families;
    for (const GalleryEntry& entry : gallery.entries) {
        const std::string_view title = entry.step.effect->family;
        if (families.empty() || families.back().title != title) families.push_back({title, {}});
        families.back().entries.push_back(&entry);
    }
    return families;
}

// The original is in the page once, as the background of whatever shows it.
std::string Head(const Gallery& gallery)
{
    return "<!DOCTYPE html>\n<html lang=\"en\" xmlns=\"http://www.w3.org/1999/xhtml\">\n<head>\n<meta "
           "charset=\"utf-8\"/>\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n<title>Effects on " +
           Escaped(gallery.fileName) + "</title>\n<style>" + kGalleryStyle + ".original { background-image: url(" +
           gallery.original + "); }\n</style>\n</head>\n<body>\n";
}

std::string Lead(const Gallery& gallery)
{
    const size_t count = gallery.entries.size();
    return "<header class=\"wide lead\"><div><p class=\"kicker\">Zelvane gallery</p>\n<h1>" +
           Escaped(gallery.fileName) + "</h1>\n<p>" + std::to_string(gallery.width) + " &#215; " +
           std::to_string(gallery.height) + " pixels, " + NameOfChannels(gallery.channels) + ". " +
           std::to_string(count) + (count == 1 ? " picture" : " pictures") +
           ": every effect with its default values, and in each of its modes; the time is that of one call at full "
           "size.</p></div>\n" +
           "<div class=\"original\" role=\"img\" aria-label=\"The original picture\" style=\"" + ShapeOf(gallery) +
           "\"></div></header>\n";
}

std::string Anchor(size_t index) { return "family-" + std::to_string(index + 1); }

std::string Bar(const std::vector<Family>& families)
{
    std::string links;
    for (size_t i = 0; i < families.size(); ++i)
        links += "<a href=\"#" + Anchor(i) + "\">" + Escaped(families[i].title) + "</a> ";
    return "<div class=\"bar\"><div class=\"wide\"><nav>" + links +
           "</nav><input type=\"search\" id=\"filter\" hidden=\"hidden\" placeholder=\"Find an effect\" "
           "aria-label=\"Find an effect\"/></div></div>\n";
}

}  // namespace

std::string DataUri(const Picture& picture)
{
    const Bytes png = EncodePicture(picture, Format::Png, 0);
    if (picture.HasAlpha()) return "data:image/png;base64," + Base64(png);
    const Bytes jpeg = EncodePicture(picture, Format::Jpeg, kGalleryQuality);
    return png.size() <= jpeg.size() ? "data:image/png;base64," + Base64(png)
                                     : "data:image/jpeg;base64," + Base64(jpeg);
}

std::string GalleryPage(const Gallery& gallery)
{
    const std::vector<Family> families = FamiliesOf(gallery);
    std::string page = Head(gallery) + Lead(gallery) + Bar(families) + "<main class=\"wide\">\n";
    for (size_t i = 0; i < families.size(); ++i) {
        page += "<section id=\"" + Anchor(i) + "\"><h2>" + Escaped(families[i].title) + "<small>" +
                std::to_string(families[i].entries.size()) + "</small></h2>\n<div class=\"grid\">\n";
        for (const GalleryEntry* entry : families[i].entries) page += FigureOf(gallery, *entry);
        page += "</div></section>\n";
    }
    char version[ZLV40_VERSION_BYTES];
    page += "</main>\n<footer class=\"wide\">Made by <b>zlv gallery</b>, " + Escaped(ZLV40_GetLibVersion(version)) +
            ". Move over a picture to compare it with the original.</footer>\n<script>" + kGalleryScript +
            "</script>\n</body>\n</html>\n";
    return page;
}

}  // namespace zlv
