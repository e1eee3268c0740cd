// What the library tells during a call and after one: progress, Ctrl-C on the way back, and reasons.
#include "library_progress.h"

#include "interrupt.h"
#include "zlv40.h"

#include <algorithm>

namespace zlv {

LibraryProgress::LibraryProgress(const Progress& progress) : progress_(progress)
{
    ZLV40_SetCallback(OnReport, reinterpret_cast<uintptr_t>(this));
}

LibraryProgress::~LibraryProgress() { ZLV40_SetCallback(nullptr, 0); }

uint32_t LibraryProgress::OnReport(uint32_t current, uint32_t total, uint64_t data) noexcept
{
    const auto* self = reinterpret_cast<const LibraryProgress*>(static_cast<uintptr_t>(data));
    // Some effects count their stages from 1.
    if (self->progress_ && total > 0) self->progress_(std::min(1.0, (current + 1.0) / total));
    return IsInterrupted() ? 0 : 1;
}

std::string ReasonOf(uint32_t code)
{
    switch (code) {
    case ZLV40_ERROR_OUT_OF_MEMORY: return "there is not enough memory, or the picture is too small for these values";
    case ZLV40_ERROR_BAD_ARGUMENT: return "the library does not take these values for this picture";
    case ZLV40_ERROR_CANCELLED: return "it was cancelled";
    case ZLV40_ERROR_COULD_NOT_RUN: return "the library could not start it";
    case ZLV40_ERROR_POLYGON: return "the polygon is not convex or has fewer than three corners";
    case ZLV40_ERROR_TARGET_TOO_SMALL: return "the picture becomes too small for the filter";
    case ZLV40_ERROR_TIME_OUT: return "a thread of the library did not answer";
    default: return "the library gives the error " + std::to_string(code);
    }
}

}  // namespace zlv
