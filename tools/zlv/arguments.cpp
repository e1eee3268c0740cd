// The argument parser, set up so that its errors read like the rest of the command's.
#include "arguments.h"

#include "errors.h"
#include "near_names.h"

#include <iostream>
#include <memory>
#include <utility>

namespace zlv {
namespace {

std::vector<std::string> LongOptionsOf(const CLI::App& parser)
{
    std::vector<std::string> names;
    for (const CLI::Option* option : parser.get_options())
        for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
    return names;
}

class UsageFormatter : public CLI::Formatter {
public:
    explicit UsageFormatter(std::string usage) : usage_(std::move(usage)) {}
    std::string make_usage(const CLI::App*, std::string) const override { return "Usage: " + usage_ + "\n"; }

private:
    std::string usage_;
};

bool IsOption(const std::string& argument) { return argument.size() > 1 && argument[0] == '-'; }

[[noreturn]] void RefuseExtra(const CLI::App& parser, const std::string& extra, const std::string& who)
{
    if (!IsOption(extra)) throw UsageError(who + ": \"" + extra + "\" is one argument too many.");
    const std::string name = extra.substr(0, extra.find('='));
    throw UsageError(who + " has no option " + name + "." + SuggestNear(name, LongOptionsOf(parser)));
}

}  // namespace

void SetHabits(CLI::App& parser)
{
    parser.allow_windows_style_options(false);
    parser.set_help_flag("-h,--help", "Show this help");
}

void SetUsage(CLI::App& parser, const std::string& usage) { parser.formatter(std::make_shared<UsageFormatter>(usage)); }

Parsed Parse(CLI::App& parser, const Arguments& arguments, const std::string& who)
{
    try {
        if (!parser.get_prefix_command()) parser.allow_extras();
        parser.parse(Arguments(arguments.rbegin(), arguments.rend()));  // the parser takes them from the end
    } catch (const CLI::CallForHelp&) {
        std::cout << parser.help();
        return Parsed::HelpShown;
    } catch (const CLI::ParseError& error) {
        std::string reason = error.what();
        if (!reason.ends_with('.')) reason += '.';
        throw UsageError(who + ": " + reason);
    }
    const Arguments extras = parser.get_prefix_command() ? Arguments() : parser.remaining();
    if (!extras.empty()) RefuseExtra(parser, extras.front(), who);
    return Parsed::GoOn;
}

}  // namespace zlv
