// What can go wrong, as exceptions whose text is a whole sentence for the user.
#ifndef ZLV_TOOLS_ERRORS_H
#define ZLV_TOOLS_ERRORS_H

#include <stdexcept>

namespace zlv {

enum ExitCode { kExitDone = 0, kExitFailed = 1, kExitUsage = 2, kExitInterrupted = 130 };

// The command line asks for something that does not exist.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A picture could not be read, worked on or written.
struct PictureError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The user has pressed Ctrl-C.
struct Interrupted : std::runtime_error {
    Interrupted() : std::runtime_error("Interrupted.") {}
};

}  // namespace zlv

#endif
