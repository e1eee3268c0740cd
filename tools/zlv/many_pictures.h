// Applies a chain to many pictures, several at a time.
#ifndef ZLV_TOOLS_MANY_PICTURES_H
#define ZLV_TOOLS_MANY_PICTURES_H

#include "chain.h"
#include "output_names.h"
#include "picture_files.h"
#include "progress_bar.h"

#include <optional>

namespace zlv {

struct ApplySettings {
    unsigned jobs = 1;  // pictures worked on at the same time
    int jpegQuality = kDefaultJpegQuality;
    std::optional<Format> format;  // of all outputs; by their extension when there is none
    ShowProgress progress = ShowProgress::OnTerminal;
};

// Every picture that can be done is done; those that fail are named on standard error. Returns an exit code.
int ApplyToPictures(const std::vector<ChainStep>& steps, const std::vector<PictureJob>& pictures,
                    const ApplySettings& settings);

}  // namespace zlv

#endif
