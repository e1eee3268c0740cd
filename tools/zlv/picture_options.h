// What commands that turn pictures into others share: files, formats, workers, progress.
#ifndef ZLV_TOOLS_PICTURE_OPTIONS_H
#define ZLV_TOOLS_PICTURE_OPTIONS_H

#include "arguments.h"
#include "many_pictures.h"

#include <string>
#include <vector>

namespace zlv {

struct PictureOptions {
    Arguments files;  // the inputs; the output is the last one where no option names it

    // The general options. Several parsers may collect into one object.
    void AddTo(CLI::App& parser);

    // Applies the steps to all inputs; returns an exit code. Throws UsageError; `example` is in its sentences.
    int Apply(const std::vector<ChainStep>& steps, const std::string& example);

private:
    void Settle(const std::string& example);

    ApplySettings settings_;
    std::string output_, format_;
    bool isQuiet_ = false, showsProgress_ = false;
};

}  // namespace zlv

#endif
