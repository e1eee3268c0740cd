/* Zelvane: image effects over raw pixel buffers.
 *
 * One dynamic library (zlv40.dll, libzlv40.so), plain functions. Valid C99 and C++17.
 *
 * Images. An image is described by five arguments: buffer, width, height, bytesPerPixel, rowStride. Samples are 8
 * bits wide and interleaved, channel 0 first; rows follow each other from top to bottom, rowStride bytes from one
 * start to the next. Bytes between the end of a row and the start of the next one are never touched. A buffer
 * holds (height - 1) * rowStride + width * bytesPerPixel bytes and stays the caller's, who keeps it alive during
 * the call.
 *
 * Results. An effect returns 1 when it has done its work. It returns 0 when it has not, and ZLV40_GetLastError,
 * asked on the same thread, tells why with one of the ZLV40_ERROR_ codes. Nothing is undone: what a cancelled
 * effect has written stays. When this thread's records can't be had because memory is out, calls return 0 and do
 * nothing.
 *
 * Threads. Any number of threads may call at the same time. The callback, the last error and the warp list belong
 * to the thread that set them. A thread that ends cleans up after itself. Let every call return before the library
 * is unloaded. The library computes in the standard floating-point environment (rounding to nearest, exceptions
 * masked) and gives the caller's back before it returns and around every callback. A callback must return: no
 * exception and no longjmp may leave it. */
#ifndef ZLV40_H
#define ZLV40_H

#include <stddef.h>
#include <stdint.h>
#ifndef _WIN32
#include <stdlib.h>
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Functions are exported under their name with a leading underscore. The definition above each declaration lets C
 * and C++ write the name without it; other languages look up "_ZLV40_InvertImage". */
#if defined(_WIN32) && !defined(ZLV40_BUILDING)
#define ZLV40_API __declspec(dllimport)
#else
#define ZLV40_API
#endif

/* ---- Types and constants ------------------------------------------------------------------------------------ */

/* What ZLV40_GetLastError answers. */
enum ZLV40_Error {
    ZLV40_ERROR_NONE = 0,
    ZLV40_ERROR_OUT_OF_MEMORY = 1,     /* also a computed size of zero or less */
    ZLV40_ERROR_BAD_ARGUMENT = 5,      /* a null pointer, a size, channel count, mode or flag out of range */
    ZLV40_ERROR_CANCELLED = 14,        /* the progress callback returned 0 */
    ZLV40_ERROR_COULD_NOT_RUN = 17,    /* for instance a thread that could not be started */
    ZLV40_ERROR_NO_BASE_CONTEXT = 55,  /* the base layer has no record for this thread */
    ZLV40_ERROR_POLYGON = 61,          /* not convex, or fewer than three usable vertices */
    ZLV40_ERROR_TARGET_TOO_SMALL = 68, /* a filtered resize to less than its filter needs */
    ZLV40_ERROR_TIME_OUT = 84          /* a thread of the library did not answer within a second */
};

/* Flag bits. */
enum ZLV40_Flag {
    ZLV40_PROTECT_ALPHA = 1 /* leaves channel 3 alone */
};

enum { ZLV40_VERSION_BYTES = 20 /* what ZLV40_GetLibVersion writes */ };

/* A position: x to the right, y down. */
typedef struct point {
    int32_t x;
    int32_t y;
} point;

/* A client's progress function. It is called after each step of an effect that reports, on the thread that made the
 * call: `current` runs from 0 to `total` - 1, `callbackData` is what ZLV40_SetCallback was given. Returns non-zero
 * to go on, or 0 to cancel: the effect ends at once with ZLV40_ERROR_CANCELLED. It may call the library; effects
 * called from it report nothing, and ZLV40_ThreadExit does nothing there. */
typedef uint32_t (*ZLVProgressCallback)(uint32_t current, uint32_t total, uint64_t callbackData);

/* ---- Blocks that the library gives away --------------------------------------------------------------------- */

/* Frees a block that a function of the library has returned to the caller. NULL is nothing to free. */
#ifdef _WIN32
__declspec(dllimport) void* __stdcall GlobalFree(void* block);
static inline void ZLV40_FreeBlock(void* block)
{
    if (block) (void)GlobalFree(block);
}
#else
static inline void ZLV40_FreeBlock(void* block) { free(block); }
#endif

/* ---- Administration ----------------------------------------------------------------------------------------- */

/* Tells why the latest effect on this thread failed.
 * Returns a ZLV40_ERROR_ code, 0 after a success and on a fresh thread. Does not clear it: the next effect on this
 * thread does. Never reports progress. Concerns the calling thread alone. */
#define ZLV40_GetLastError _ZLV40_GetLastError
ZLV40_API uint32_t ZLV40_GetLastError(void);

/* Installs a progress callback for effects called on this thread.
 *   callback      the function, or NULL for none
 *   callbackData  any value; handed back to every call of it
 * Leaves the last error alone. Concerns the calling thread alone. */
#define ZLV40_SetCallback _ZLV40_SetCallback
ZLV40_API void ZLV40_SetCallback(ZLVProgressCallback callback, uint64_t callbackData);

/* Reads what ZLV40_SetCallback has installed on this thread.
 *   callbackData  receives the value; NULL if it is not wanted
 * Returns the callback, NULL when there is none. Leaves the last error alone. Concerns the calling thread alone. */
#define ZLV40_GetCallback _ZLV40_GetCallback
ZLV40_API ZLVProgressCallback ZLV40_GetCallback(uint64_t* callbackData);

/* Writes the version text.
 *   buffer  ZLV40_VERSION_BYTES (20) bytes: the text, filled up with zeros; NULL writes nothing
 * Returns buffer. Leaves the last error alone. */
#define ZLV40_GetLibVersion _ZLV40_GetLibVersion
ZLV40_API char* ZLV40_GetLibVersion(char* buffer);

/* Gives up what the library keeps for this thread: its warp list, its callback and its last error. A thread that
 * ends does this by itself. A thread that never used the library is left as it is; within a progress callback
 * nothing is done. The random generator of the thread goes on where it was. Concerns the calling thread alone. */
#define ZLV40_ThreadExit _ZLV40_ThreadExit
ZLV40_API void ZLV40_ThreadExit(void);

/* Empties this thread's warp list and clears its last error. The callback stays. Unloading the library does this by
 * itself. Concerns the calling thread alone. */
#define ZLV40_Exit _ZLV40_Exit
ZLV40_API void ZLV40_Exit(void);

/* ---- Tone and colour ---------------------------------------------------------------------------------------- */

/* Inverts an image in place: every sample v becomes 255 - v.
 *   buffer         height rows of width pixels, 8 bits a sample, interleaved; not NULL
 *   width          pixels a row; 0 is nothing to do
 *   height         rows; 0 is nothing to do
 *   bytesPerPixel  channels, 0 or more; 0 is nothing to do
 *   rowStride      bytes from one row to the next, >= width * bytesPerPixel; padding is not touched
 * flags          0, or ZLV40_PROTECT_ALPHA: channel 3 is left alone (only with 4 channels); other bits are ignored
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written) or ZLV40_ERROR_OUT_OF_MEMORY.
 * Never reports progress and can't be cancelled. Works on the calling thread. */
#define ZLV40_InvertImage _ZLV40_InvertImage
ZLV40_API uint32_t ZLV40_InvertImage(uint8_t* buffer, uint32_t width, uint32_t height, int32_t bytesPerPixel,
                                     uint32_t rowStride, uint32_t flags);

#ifdef __cplusplus
}
#endif

#endif
