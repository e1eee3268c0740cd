// The argument parser, set up so that its errors read like the rest of the command's.
#ifndef ZLV_TOOLS_ARGUMENTS_H
#define ZLV_TOOLS_ARGUMENTS_H

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <string>
#include <vector>

namespace zlv {

using Arguments = std::vector<std::string>;

enum class Parsed { GoOn, HelpShown };

// Parses all of `arguments`. Shows the help when it is asked for. Throws UsageError: an unknown option comes with a
// suggestion. `who` stands in front of the sentence. Arguments that remain in a prefix parser are left to the caller.
Parsed Parse(CLI::App& parser, const Arguments& arguments, const std::string& who);

// A parser with the house's habits: -h and --help, one way to write options on every system.
void SetHabits(CLI::App& parser);

// Replaces the parser's own usage line.
void SetUsage(CLI::App& parser, const std::string& usage);

}  // namespace zlv

#endif
