// What differs between operating systems; a file each.
#ifndef ZLV_TOOLS_SYSTEM_H
#define ZLV_TOOLS_SYSTEM_H

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace zlv {

// The command, called by the system's own entry point with its arguments in UTF-8, without the program's name.
int RunCommand(const std::vector<std::string>& arguments);

// Calls `onInterrupt` at the first Ctrl-C (and where the system asks the program to end); a second one ends it at once.
void WatchInterrupts(void (*onInterrupt)());

bool IsErrorOutputTerminal();

// How many characters a line of the terminal holds that standard output goes to; nothing when it goes elsewhere.
std::optional<uint32_t> TerminalColumns();

// Standard input and output carry pictures: no translation of line ends.
void MakeStandardStreamsBinary();

// Whether an existing file may be overwritten.
bool IsWritable(const std::filesystem::path& file);

unsigned long ProcessNumber();

}  // namespace zlv

#endif
