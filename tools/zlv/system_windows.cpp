// The command on Windows.
#include "system.h"

#include <atomic>
#include <cstdio>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

// The C run-time expands *.png and the like: shells of Windows leave that to the program.
extern "C" {
extern int _dowildcard;
int _dowildcard = -1;
}

namespace zlv {
namespace {

std::atomic<void (*)()> interruptReceiver = nullptr;

// Runs on a thread of its own. The second time it declines, and the system's own handler ends the program.
BOOL WINAPI OnControl(DWORD)
{
    const auto receiver = interruptReceiver.exchange(nullptr);
    if (!receiver) return FALSE;
    receiver();
    return TRUE;
}

std::string Utf8Of(const wchar_t* text)
{
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (bytes <= 1) return {};
    std::string utf8(static_cast<size_t>(bytes - 1), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), bytes, nullptr, nullptr);
    return utf8;
}

// The console shows UTF-8 while the command runs and gets its own code page back.
class Utf8Console {
public:
    Utf8Console() : before_(GetConsoleOutputCP()) { SetConsoleOutputCP(CP_UTF8); }
    ~Utf8Console()
    {
        if (before_ != 0) SetConsoleOutputCP(before_);
    }
    Utf8Console(const Utf8Console&) = delete;
    Utf8Console& operator=(const Utf8Console&) = delete;

private:
    UINT before_;
};

}  // namespace

void WatchInterrupts(void (*onInterrupt)())
{
    interruptReceiver = onInterrupt;
    SetConsoleCtrlHandler(OnControl, TRUE);
}

bool IsErrorOutputTerminal() { return _isatty(_fileno(stderr)) != 0; }

// One less than there are: some consoles begin a new line after the last character, before the line feed does.
std::optional<uint32_t> TerminalColumns()
{
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info)) return std::nullopt;
    const int columns = info.srWindow.Right - info.srWindow.Left;
    return columns > 0 ? std::optional(static_cast<uint32_t>(columns)) : std::nullopt;
}

void MakeStandardStreamsBinary()
{
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
}

bool IsWritable(const std::filesystem::path& file)
{
    const DWORD attributes = GetFileAttributesW(file.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) == 0;
}

unsigned long ProcessNumber() { return GetCurrentProcessId(); }

}  // namespace zlv

int wmain(int count, wchar_t** arguments)
{
    const zlv::Utf8Console console;
    std::vector<std::string> texts;
    for (int i = 1; i < count; ++i) texts.push_back(zlv::Utf8Of(arguments[i]));
    return zlv::RunCommand(texts);
}
