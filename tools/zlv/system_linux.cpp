// The command on Linux.
#include "system.h"

#include <csignal>

#include <sys/ioctl.h>
#include <unistd.h>

namespace zlv {
namespace {

void (*interruptReceiver)() = nullptr;

void OnSignal(int) { interruptReceiver(); }

}  // namespace

void WatchInterrupts(void (*onInterrupt)())
{
    interruptReceiver = onInterrupt;
    struct sigaction action = {};
    action.sa_handler = OnSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND);  // the second one ends the program
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

bool IsErrorOutputTerminal() { return isatty(STDERR_FILENO) != 0; }

std::optional<uint32_t> TerminalColumns()
{
    winsize size = {};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return std::nullopt;
    return size.ws_col;
}

void MakeStandardStreamsBinary() {}

bool IsWritable(const std::filesystem::path& file) { return access(file.c_str(), W_OK) == 0; }

unsigned long ProcessNumber() { return static_cast<unsigned long>(getpid()); }

}  // namespace zlv

int main(int count, char** arguments)
{
    return zlv::RunCommand(std::vector<std::string>(arguments + (count > 0 ? 1 : 0), arguments + count));
}
