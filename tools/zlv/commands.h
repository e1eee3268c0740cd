// The words that follow `zlv`. Each takes the arguments behind its own name and returns an exit code.
#ifndef ZLV_TOOLS_COMMANDS_H
#define ZLV_TOOLS_COMMANDS_H

#include <string>
#include <vector>

namespace zlv {

int RunList(const std::vector<std::string>& arguments);
int RunInfo(const std::vector<std::string>& arguments);
int RunApply(const std::vector<std::string>& arguments);
int RunAscii(const std::vector<std::string>& arguments);
int RunWarp(const std::vector<std::string>& arguments);
int RunGallery(const std::vector<std::string>& arguments);
int RunSeamCarve(const std::vector<std::string>& arguments);

}  // namespace zlv

#endif
