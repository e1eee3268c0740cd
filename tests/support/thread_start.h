// Where test_hooks.cpp, which leads the makers of handles, meets thread_hooks.cpp, which leads their use.
#pragma once

#include "platform/platform.h"

namespace zlvtest {

// Starts a thread as the orders of the day say.
zlv::platform::Thread* StartOrdered(zlv::platform::Thread* (*start)(zlv::platform::ThreadFunction, void*),
                                    zlv::platform::ThreadFunction function, void* argument);

// One more handle is open, if it could be made.
void CountHandle(bool isMade);

}  // namespace zlvtest
