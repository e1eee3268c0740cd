// The library's life: what happens when it is loaded, when a thread ends, and when it is unloaded.
#include "platform/float_environment.h"
#include "runtime/base_tables.h"
#include "runtime/contexts.h"
#include "runtime/targets.h"

namespace zlv {

constinit ThreadContextSlot<ZLVThreadContext> exportedContexts;
constinit ThreadContextSlot<MVThreadContext> baseContexts;

namespace {

void EndExportedThread(void* context)
{
    exportedContexts.Restore(context);
    // A thread may end inside a call, from a client's callback: nothing returns to that call's frames any more.
    if (ZLVThreadContext* const record = exportedContexts.Find()) record->openFrames = 0;
    ZLV40_ThreadExit();
}

// A base record outlives its thread: the next thread that needs one gets it, reset.
void EndBaseThread(void* context)
{
    baseContexts.Restore(context);
    baseContexts.Retire();
}

}  // namespace

void platform::OnLibraryLoad()
{
    exportedContexts.Initialize(EndExportedThread);
    baseContexts.Initialize(EndBaseThread);
    ChooseTarget();

    const FloatEnvironment host = ReadFloatEnvironment();
    SetStandardFloatEnvironment();
    InitBaseTables();
    WriteFloatEnvironment(host);
}

void platform::OnLibraryUnload(bool isProcessEnding)
{
    ZLV40_Exit();
    // When a process ends, Windows has killed its other threads wherever they were, perhaps inside a lock of ours, and
    // takes everything back. Only an unloading in a living process has to clean up.
    if (isProcessEnding) return;
    exportedContexts.TearDown();
    baseContexts.TearDown();
}

}  // namespace zlv
