// What the library tells during a call and after one: progress, Ctrl-C on the way back, and reasons.
#ifndef ZLV_TOOLS_LIBRARY_PROGRESS_H
#define ZLV_TOOLS_LIBRARY_PROGRESS_H

#include "chain.h"

#include <cstdint>
#include <string>

namespace zlv {

// The library's progress callback on this thread, for the life of the object. Ctrl-C cancels the call.
class LibraryProgress {
public:
    explicit LibraryProgress(const Progress& progress);
    ~LibraryProgress();
    LibraryProgress(const LibraryProgress&) = delete;
    LibraryProgress& operator=(const LibraryProgress&) = delete;

private:
    static uint32_t OnReport(uint32_t current, uint32_t total, uint64_t data) noexcept;

    const Progress& progress_;
};

// Why a call failed, by the library's code: the second half of a sentence.
std::string ReasonOf(uint32_t code);

}  // namespace zlv

#endif
