// Ctrl-C: noticed at once, acted on where the work can stop cleanly.
#ifndef ZLV_TOOLS_INTERRUPT_H
#define ZLV_TOOLS_INTERRUPT_H

namespace zlv {

void StartWatchingInterrupts();

// May be asked from any thread, also from the library's callback.
bool IsInterrupted();

// Throws Interrupted. Called between effects and between files; within an effect the callback does this work.
void StopIfInterrupted();

}  // namespace zlv

#endif
