// A test program that links the library's objects has no DLL entry point: a thread-local-storage callback of the
// program tells the library of its load and of threads that end.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

extern "C" BOOL WINAPI ZlvDllEntry(HINSTANCE, DWORD reason, void* isProcessEnding);

namespace {

void NTAPI TellLibrary(void*, DWORD reason, void* reserved) { ZlvDllEntry(nullptr, reason, reserved); }

}  // namespace

extern "C" {
extern const PIMAGE_TLS_CALLBACK zlvTellLibrary;
__attribute__((section(".CRT$XLY"), used)) const PIMAGE_TLS_CALLBACK zlvTellLibrary = TellLibrary;
}
