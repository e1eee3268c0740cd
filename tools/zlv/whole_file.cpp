// Files as a whole: read at once, written so that nobody ever sees half of one.
#include "whole_file.h"

#include "errors.h"
#include "interrupt.h"
#include "system.h"

#include <atomic>
#include <cerrno>
#include <fstream>
#include <iostream>
#include <limits>
#include <system_error>

namespace zlv {
namespace {

namespace fs = std::filesystem;

constexpr size_t kChunkBytes = 1 << 16;
constexpr size_t kMostBytes = std::numeric_limits<int>::max();  // what the decoders can count

std::string Reason(int number)
{
    return number == 0 ? std::string("the system gives no reason") : std::generic_category().message(number);
}

[[noreturn]] void FailReading(const std::string& name, const std::string& reason)
{
    throw PictureError("Cannot read \"" + name + "\": " + reason + ".");
}

[[noreturn]] void FailWriting(const std::string& name, const std::string& reason)
{
    throw PictureError("Cannot write \"" + name + "\": " + reason + ".");
}

Bytes ReadStream(std::istream& stream, const std::string& name)
{
    Bytes bytes;
    size_t count = 0;
    do {
        StopIfInterrupted();
        bytes.resize(count + kChunkBytes);
        stream.read(reinterpret_cast<char*>(bytes.data() + count), kChunkBytes);
        count += static_cast<size_t>(stream.gcount());
        if (count > kMostBytes) FailReading(name, "it is larger than 2 GB");
    } while (stream);
    if (stream.bad()) FailReading(name, Reason(errno));
    bytes.resize(count);
    return bytes;
}

void WriteStream(std::ostream& stream, const std::string& name, const Bytes& bytes)
{
    errno = 0;
    stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    stream.flush();
    if (!stream) FailWriting(name, Reason(errno));
}

void WriteTo(const fs::path& path, const std::string& name, const Bytes& bytes)
{
    errno = 0;
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    if (!stream) FailWriting(name, Reason(errno));
    WriteStream(stream, name, bytes);
    stream.close();
    if (!stream) FailWriting(name, Reason(errno));
}

// A name beside the target that no other process or thread uses; what lies there at the end of its life is removed.
class TemporaryFile {
public:
    explicit TemporaryFile(const fs::path& target)
    {
        static std::atomic<unsigned> counter = 0;
        path_ = target;
        path_.replace_filename(".zlv-" + std::to_string(ProcessNumber()) + "-" + std::to_string(++counter) + ".part");
    }
    ~TemporaryFile()
    {
        std::error_code ignored;
        fs::remove(path_, ignored);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const fs::path& Path() const { return path_; }

private:
    fs::path path_;
};

// Checks what a rename would not: it replaces files that are read-only, and links instead of what they lead to.
fs::path ResolveTarget(const std::string& name)
{
    const fs::path target = PathOf(name);
    const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    std::error_code error;
    if (!fs::is_directory(folder, error)) FailWriting(name, "there is no folder \"" + TextOf(folder) + "\"");
    if (fs::is_directory(target, error)) FailWriting(name, "it is a folder");
    if (!fs::exists(target, error)) return target;
    if (!IsWritable(target)) FailWriting(name, "it is protected from writing");
    return fs::is_symlink(target, error) ? fs::canonical(target) : target;
}

}  // namespace

fs::path PathOf(const std::string& utf8) { return fs::path(std::u8string(utf8.begin(), utf8.end())); }

std::string TextOf(const fs::path& path)
{
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

Bytes ReadWholeFile(const std::string& name)
{
    errno = 0;
    if (name == kStandardStream) return ReadStream(std::cin, "standard input");
    const fs::path path = PathOf(name);
    std::error_code ignored;
    if (fs::is_directory(path, ignored)) FailReading(name, "it is a folder");
    std::ifstream stream(path, std::ios::binary);
    if (!stream) FailReading(name, Reason(errno));
    return ReadStream(stream, name);
}

void WriteWholeFile(const std::string& name, const Bytes& bytes)
{
    if (name == kStandardStream) return WriteStream(std::cout, "standard output", bytes);
    const fs::path target = ResolveTarget(name);
    std::error_code error;
    if (fs::exists(target, error) && !fs::is_regular_file(target, error))
        return WriteTo(target, name, bytes);  // a pipe

    const TemporaryFile temporary(target);
    WriteTo(temporary.Path(), name, bytes);
    const fs::file_status before = fs::status(target, error);
    if (fs::exists(before)) fs::permissions(temporary.Path(), before.permissions(), error);
    StopIfInterrupted();
    fs::rename(temporary.Path(), target, error);
    if (error) FailWriting(name, error.message());
}

}  // namespace zlv
