// How the gallery looks and moves: style sheet and script of the page.
#ifndef ZLV_TOOLS_GALLERY_STYLE_H
#define ZLV_TOOLS_GALLERY_STYLE_H

namespace zlv {

// Neither holds < or & : the page stays well-formed with them as they are.
extern const char* const kGalleryStyle;
extern const char* const kGalleryScript;

}  // namespace zlv

#endif
