// The gallery as one HTML page that needs nothing beside it.
#ifndef ZLV_TOOLS_GALLERY_PAGE_H
#define ZLV_TOOLS_GALLERY_PAGE_H

#include "chain.h"
#include "picture.h"

#include <string>
#include <utility>
#include <vector>

namespace zlv {

struct GalleryEntry {
    explicit GalleryEntry(const Effect& effect, std::string variantName = {})
        : step(effect), variant(std::move(variantName))
    {
    }

    ChainStep step;
    std::string variant;  // what differs from the effect's defaults: "mode-rows"; empty for the defaults themselves
    std::string picture;  // data URI; empty when the effect failed
    double milliseconds = 0;
    std::string failure;
    std::string command;  // as the user would write it; empty for `zlv apply`

    // What the entry is called on the page, and the picture that its command makes.
    std::string Name() const { return std::string(step.effect->name) + (variant.empty() ? "" : "-" + variant); }
};

struct Gallery {
    std::string input, fileName;  // as the user gave it, and without its folder
    std::string original;         // data URI
    uint32_t width, height, channels;
    uint32_t shownWidth, shownHeight;
    std::vector<GalleryEntry> entries;
};

// A picture in the text of a page: PNG or JPEG, whichever is shorter; PNG where there is alpha.
std::string DataUri(const Picture& picture);

// Well-formed both as HTML and as XML. UTF-8.
std::string GalleryPage(const Gallery& gallery);

}  // namespace zlv

#endif
