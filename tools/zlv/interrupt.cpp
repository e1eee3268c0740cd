// Ctrl-C: noticed at once, acted on where the work can stop cleanly.
#include "interrupt.h"

#include "errors.h"
#include "system.h"

#include <atomic>

namespace zlv {
namespace {

std::atomic<bool> interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler writes it");

}  // namespace

void StartWatchingInterrupts()
{
    WatchInterrupts([] { interrupted = true; });
}

bool IsInterrupted() { return interrupted; }

void StopIfInterrupted()
{
    if (interrupted) throw Interrupted();
}

}  // namespace zlv
