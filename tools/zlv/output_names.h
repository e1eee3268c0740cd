// Where results go: one name for one picture, a pattern or a folder for many.
#ifndef ZLV_TOOLS_OUTPUT_NAMES_H
#define ZLV_TOOLS_OUTPUT_NAMES_H

#include <string>
#include <vector>

namespace zlv {

struct PictureJob {
    std::string input, output;
};

// Pairs each input with its output. In `output`, {name} is the input's name without folder and extension, {ext} its
// extension, {number} its place from 1. A folder keeps the inputs' names. Folders of a pattern are made. Fails when two
// inputs would be written to the same place.
std::vector<PictureJob> PlanOutputs(const std::vector<std::string>& inputs, const std::string& output);

}  // namespace zlv

#endif
