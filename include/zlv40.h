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
    ZLV40_ERROR_NONE = 0,              /* all is done, or a failure of which the function leaves no code */
    ZLV40_ERROR_OUT_OF_MEMORY = 1,     /* also a computed size of zero or less */
    ZLV40_ERROR_BAD_ARGUMENT = 5,      /* a null pointer, a size, channel count, mode or flag out of range */
    ZLV40_ERROR_CANCELLED = 14,        /* the progress callback returned 0 */
    ZLV40_ERROR_COULD_NOT_RUN = 17,    /* for instance a thread that could not be started */
    ZLV40_ERROR_NO_BASE_CONTEXT = 55,  /* the base layer has no record for this thread */
    ZLV40_ERROR_POLYGON = 61,          /* not convex, or fewer than three usable vertices */
    ZLV40_ERROR_TARGET_TOO_SMALL = 68, /* a filtered resize to less than its filter needs */
    ZLV40_ERROR_TIME_OUT = 84          /* a thread of the library did not answer within a second */
};

/* Flag bits. Each function says which ones it knows. */
enum ZLV40_Flag {
    ZLV40_PROTECT_ALPHA = 1,       /* leaves channel 3 alone */
    ZLV40_BGR = 1,                 /* blue comes first and red third */
    ZLV40_ALPHA_FIRST = 1,         /* channel 0 is alpha, the first colour's place is channel 3 */
    ZLV40_MASK_255 = 2,            /* marks are 255 instead of 1 */
    ZLV40_PAD_LEFT = 1,            /* the first column stands for those before the image */
    ZLV40_PAD_RIGHT = 2,           /* the last column stands for those behind it */
    ZLV40_SEPARABLE = 256,         /* in two passes, along rows and down columns */
    ZLV40_COMBINED = 256,          /* one result for the first three channels */
    ZLV40_COLORS_AS_IMAGE = 1,     /* bytes of colours are in the order of the image's channels */
    ZLV40_ONE_THREAD = 1,          /* works on the calling thread alone */
    ZLV40_SHADOW_OF_ALPHA = 1,     /* the shadow follows the alpha channel */
    ZLV40_SHADOW_TINTED = 2,       /* a shadow of the alpha channel has a colour of its own; else it is black */
    ZLV40_WIDE_RANGE = 1,          /* spreads brightness from 20 to 230 instead of 50 to 200 */
    ZLV40_WORKER_THREADS = 524288, /* works on threads of its own */
    ZLV40_KEEP_DESTINATION = 4,    /* the fill is what the destination holds */
    ZLV40_CLAMP_POINTS = 8,        /* points outside the image come back to its edge */
    ZLV40_COLUMN_LEFT = 1048576,   /* the image goes on to the left */
    ZLV40_COLUMN_RIGHT = 2097152,  /* the image goes on to the right */
    ZLV40_ROWS_ABOVE = 4194304,    /* the image goes on above its first row */
    ZLV40_ROWS_BELOW = 8388608     /* the image goes on below its last row */
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

/* A client's warp: stores in *outX, *outY where the pixel (x, y) comes from, always both. Returns non-zero, or 0 for a
 * pixel from outside the picture. Any numbers will do: a coordinate that is no number is outside. Before the call both
 * hold x and y. Warp lists call it once a pixel, on the thread that made the call, row by row from left to right;
 * `userData` is what ZLV40_AddUserTransform was given. It may call the library. */
typedef int32_t (*ZLVWarpFunction)(double x, double y, double* outX, double* outY, void* userData);

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

/* Administration. These functions always do what they say: none reports progress, none can be cancelled, none fails. */

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
 *   flags          0, or ZLV40_PROTECT_ALPHA: channel 3 is left alone; refused with other than 4 channels. Other bits
 *                  are ignored
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT or ZLV40_ERROR_OUT_OF_MEMORY (nothing is written).
 * Never reports progress and can't be cancelled. Works on the calling thread. */
#define ZLV40_InvertImage _ZLV40_InvertImage
ZLV40_API uint32_t ZLV40_InvertImage(uint8_t* buffer, uint32_t width, uint32_t height, int32_t bytesPerPixel,
                                     uint32_t rowStride, uint32_t flags);

/* Turns every colour into the nearest corner of the colour cube, in place: components below 128 become 0, others 255.
 *   buffer     height rows of width pixels of 3 channels, 8 bits a sample; not NULL
 *   width      pixels a row, 1 or more
 *   height     rows, 1 or more
 *   rowStride  bytes from one row to the next, >= width * 3; padding is not touched
 *   flags      ignored: the corners are the same in any order of the channels
 * Returns 1; or 0: with ZLV40_ERROR_BAD_ARGUMENT (nothing is written), or with ZLV40_ERROR_NONE after a cancel.
 * Progress once a row; can be cancelled, rows done so far stay changed. Works on the calling thread. */
#define ZLV40_PosterizeRGB _ZLV40_PosterizeRGB
ZLV40_API uint32_t ZLV40_PosterizeRGB(uint8_t* buffer, uint32_t width, uint32_t height, uint32_t rowStride,
                                      uint32_t flags);

/* Turns the bright half of each channel over, in place: samples up to 126 stay, a sample v from 127 on becomes 255 - v.
 *   buffer         height rows of width pixels, 8 bits a sample, interleaved; not NULL
 *   width          pixels a row
 *   height         rows; 0 is nothing to do
 *   bytesPerPixel  channels: 3 or 4
 *   rowStride      bytes from one row to the next, >= width * bytesPerPixel; padding is not touched
 *   flags          0, or ZLV40_PROTECT_ALPHA: channel 3 is left alone (without effect with 3 channels); other bits are
 *                  ignored
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written) or ZLV40_ERROR_CANCELLED.
 * Progress once a row; can be cancelled, rows done so far stay changed. Works on the calling thread. */
#define ZLV40_SolarizeImage _ZLV40_SolarizeImage
ZLV40_API uint32_t ZLV40_SolarizeImage(uint8_t* buffer, uint32_t width, uint32_t height, int32_t bytesPerPixel,
                                       uint32_t rowStride, uint8_t flags);

/* Turns the colours of an image round the colour circle, in place; their brightness stays, up to rounding.
 * An angle of 0 rounds too: it changes samples by a level here and there.
 *   buffer         height rows of width pixels, 8 bits a sample, interleaved; not NULL
 *   width          pixels a row
 *   height         rows; 0 is nothing to do
 *   bytesPerPixel  channels, 3 or more; the first three are red, green and blue, others are left alone
 *   rowStride      bytes from one row to the next, >= width * bytesPerPixel; padding is not touched
 *   angle          degrees, of any size and sign
 *   flags          0, or ZLV40_BGR; other bits are ignored
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written) or ZLV40_ERROR_CANCELLED.
 * Progress once a row; can be cancelled, rows done so far stay changed. Works on the calling thread. */
#define ZLV40_AdjustTint _ZLV40_AdjustTint
ZLV40_API uint32_t ZLV40_AdjustTint(uint8_t* buffer, uint32_t width, uint32_t height, uint32_t bytesPerPixel,
                                    uint32_t rowStride, int32_t angle, uint32_t flags);

/* Makes a colour image of a gray one: hue and saturation of one colour, the gray samples as the value.
 *   source                    height rows of width samples of 8 bits; not NULL
 *   width                     pixels a row, 1 or more
 *   height                    rows, 1 or more
 *   sourceStride              bytes from one row of the source to the next, >= width
 *   destination               height rows of width pixels, 8 bits a sample, interleaved; not NULL and not the source
 *   destinationBytesPerPixel  channels, 3 or more; red, green and blue are written, others are left alone
 *   destinationStride         bytes from one row to the next, >= width * destinationBytesPerPixel; padding is not
 *                             touched
 *   color                     0xBBGGRR; the top byte is ignored
 *   flags                     0, or ZLV40_BGR: color is 0xRRGGBB (the destination's order stays); other bits are
 *                             ignored
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written).
 * Never reports progress and can't be cancelled. Works on the calling thread. */
#define ZLV40_TintGrayscale _ZLV40_TintGrayscale
ZLV40_API uint32_t ZLV40_TintGrayscale(const uint8_t* source, uint32_t width, uint32_t height, uint32_t sourceStride,
                                       uint8_t* destination, uint32_t destinationBytesPerPixel,
                                       uint32_t destinationStride, uint32_t color, uint8_t flags);

/* Paints the hue of one colour over the image's luminance, in place: the darker a pixel, the more saturated it gets.
 *   buffer         height rows of width pixels, 8 bits a sample, interleaved; not NULL
 *   width          pixels a row
 *   height         rows; 0 is nothing to do
 *   bytesPerPixel  channels: 3 or 4; channel 3 is left alone
 *   rowStride      bytes from one row to the next, >= width * bytesPerPixel; padding is not touched
 *   color          0xBBGGRR, of which only the hue counts; the top byte is ignored
 *   flags          0, or ZLV40_BGR: color is 0xRRGGBB (channel 0 of the image stays red); other bits are ignored
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written) or ZLV40_ERROR_CANCELLED.
 * Progress once a row; can be cancelled, rows done so far stay changed. Works on the calling thread. */
#define ZLV40_DuotoneImage _ZLV40_DuotoneImage
ZLV40_API uint32_t ZLV40_DuotoneImage(uint8_t* buffer, uint32_t width, uint32_t height, int32_t bytesPerPixel,
                                      uint32_t rowStride, uint32_t color, uint8_t flags);

/* Makes dark samples 0 and light ones 255, in place: those below low, and those from high on. What lies between stays.
 *   buffer         height rows of width pixels, 8 bits a sample, interleaved; not NULL
 *   width          pixels a row, 1 or more
 *   height         rows, 1 or more
 *   bytesPerPixel  channels, 1 to 8
 *   rowStride      bytes from one row to the next, >= width * bytesPerPixel; padding is not touched
 *   low            first level that is not 0; anything above 256 acts as 256
 *   high           first level that is 255; anything above 256 acts as 256, and anything below low as low
 *   channelMask    bit c selects channel c, the others are left alone; bits beyond the channels are ignored
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written).
 * Reports no progress and can't be cancelled. (Called from within a progress callback it may call that one once a row,
 * and a 0 ends the work; the result is 1 nevertheless.) Works on the calling thread. */
#define ZLV40_ThresholdFilter _ZLV40_ThresholdFilter
ZLV40_API uint32_t ZLV40_ThresholdFilter(uint8_t* buffer, uint32_t width, uint32_t height, int32_t bytesPerPixel,
                                         uint32_t rowStride, uint32_t low, uint32_t high, uint32_t channelMask);

/* Shifts the colours of dark, middle and light tones, in place.
 *   buffer                             height rows of width pixels, 8 bits a sample, interleaved; not NULL
 *   width                              pixels a row
 *   height                             rows; 0 is nothing to do
 *   bytesPerPixel                      channels: 3 or 4
 *   rowStride                          bytes from one row to the next, >= width * bytesPerPixel; padding is not
 *                                      touched
 *   midRed, midGreen, midBlue          -128..128 (limited to it); more of a colour means less of the two others
 *   shadowRed, shadowGreen, shadowBlue likewise; they work by lowering the two other channels of dark tones, and only
 *                                      their differences count where one is below 0
 *   highRed, highGreen, highBlue       likewise; they work by raising their own channel of light tones
 *   brightness                         any number; middle tones lose four levels a unit, black and white none
 *   flags                              0, or ZLV40_ALPHA_FIRST: channel 0 is left alone and channel 3 takes red's place
 *                                      (none does with 3 channels); without it channel 3 is left alone. Other bits are
 *                                      ignored
 * Returns 1; or 0: with ZLV40_ERROR_BAD_ARGUMENT (nothing is written), or with ZLV40_ERROR_NONE after a cancel.
 * Progress once a row; can be cancelled, rows done so far stay changed. Works on the calling thread. */
#define ZLV40_AdjustImageColorBalance _ZLV40_AdjustImageColorBalance
ZLV40_API uint32_t ZLV40_AdjustImageColorBalance(uint8_t* buffer, uint32_t width, uint32_t height,
                                                 int32_t bytesPerPixel, uint32_t rowStride, int32_t midRed,
                                                 int32_t midGreen, int32_t midBlue, int32_t shadowRed,
                                                 int32_t shadowGreen, int32_t shadowBlue, int32_t highRed,
                                                 int32_t highGreen, int32_t highBlue, int32_t brightness,
                                                 uint8_t flags);

/* Formulas of ZLV40_ContrastMaskImage. */
enum ZLV40_ContrastMaskMode {
    ZLV40_CONTRAST_MASK_SOFT_LIGHT = 0, /* gentle */
    ZLV40_CONTRAST_MASK_OVERLAY = 1     /* strong */
};

/* Lightens the dark parts of an image and darkens its light ones, in place, by blending it with a blurred gray copy of
 * itself turned over.
 *   buffer         height rows of width pixels, 8 bits a sample, interleaved; not NULL
 *   width          pixels a row
 *   height         rows
 *   bytesPerPixel  channels: 3 or 4; channel 3 is left alone
 *   rowStride      bytes from one row to the next, >= width * bytesPerPixel; padding is not touched
 *   mode           ZLV40_CONTRAST_MASK_SOFT_LIGHT or ZLV40_CONTRAST_MASK_OVERLAY; any other one changes no pixel
 *   sigma          of the blur, in pixels; 0 or less does not blur. Up to 3.4e38, and a number
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT or ZLV40_ERROR_OUT_OF_MEMORY (also for a width or height of 0), nothing
 * being written with either, or with ZLV40_ERROR_CANCELLED.
 * Progress once a row; can be cancelled, rows done so far stay changed. Works on the calling thread. */
#define ZLV40_ContrastMaskImage _ZLV40_ContrastMaskImage
ZLV40_API uint32_t ZLV40_ContrastMaskImage(uint8_t* buffer, uint32_t width, uint32_t height, uint32_t bytesPerPixel,
                                           uint32_t rowStride, uint32_t mode, double sigma);

/* Where ZLV40_GetHSVColorMatchMaskFromImage grows. */
enum ZLV40_MatchMode {
    ZLV40_MATCH_UP_TO_BORDER = 0, /* over what does not match the border colour */
    ZLV40_MATCH_SEED = 1          /* over what matches the seed's colour */
};

/* Finds the region of like colours round a pixel, as a mask. It grows from the seed to the pixels above, below, left
 * and right of it, and on from those. Colours match if each component lies within its tolerance; hues are compared
 * round the circle, 359 and 1 differ by 2. With tolerances of 0 all three components must be equal.
 *   hsvImage                            height rows of width pixels, three doubles each: hue in degrees, saturation,
 *                                       value; not NULL
 *   width                               pixels a row, 1 or more
 *   height                              rows, 1 or more
 *   rowStride                           doubles from one row to the next, >= width * 3
 *   mask                                height * maskStride bytes, all of them written: the mark in the region, 0
 *                                       elsewhere; not NULL
 *   maskStride                          bytes from one row of the mask to the next, >= width. Let it be width: with
 *                                       paddings neighbours above and below are looked up as if there were none, and
 *                                       parts of a region can stay out
 *   seedX, seedY                        a pixel of the image
 *   borderH, borderS, borderV           the border's colour; any numbers
 *   matchMode                           ZLV40_MATCH_SEED; any other value is ZLV40_MATCH_UP_TO_BORDER. If the seed
 *                                       itself matches the border the region is empty
 *   toleranceH, toleranceS, toleranceV  largest differences, in the units of the components; nothing is within a
 *                                       tolerance below 0
 *   flags                               0, or ZLV40_MASK_255; other bits are ignored
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written) or ZLV40_ERROR_OUT_OF_MEMORY (with maskStride ==
 * width nothing is written, otherwise the mask is unfinished).
 * Never reports progress and can't be cancelled. Works on the calling thread. */
#define ZLV40_GetHSVColorMatchMaskFromImage _ZLV40_GetHSVColorMatchMaskFromImage
ZLV40_API uint32_t ZLV40_GetHSVColorMatchMaskFromImage(const double* hsvImage, uint32_t width, uint32_t height,
                                                       uint32_t rowStride, uint8_t* mask, uint32_t maskStride,
                                                       uint32_t seedX, uint32_t seedY, double borderH, double borderS,
                                                       double borderV, uint32_t matchMode, double toleranceH,
                                                       double toleranceS, double toleranceV, uint8_t flags);

/* ---- Filters ------------------------------------------------------------------------------------------------ */

/* Window statistics. Each of the nine functions computes one number of a square window around each pixel, channel by
 * channel, and writes it to a second image. Beyond its edges the image repeats its border pixels without limit, so a
 * window may be larger than the image. They share these arguments:
 *   src            height rows of width pixels, 8 bits a sample, interleaved; not NULL, only read
 *   width          pixels a row, 1 or more
 *   height         rows, 1 or more
 *   dst            the result, with as many rows and pixels; not NULL, not src, and without a pixel of its memory
 *   bytesPerPixel  channels, 1 to 8
 *   srcRowStride   bytes from one row of src to the next, >= width * bytesPerPixel
 *   dstRowStride   bytes from one row of dst to the next, >= width * bytesPerPixel; padding is not touched
 *   filterSize     edge of the window in pixels, odd: sizes below 1 count as 1, and an even size grows by 1. The area
 *                  and the sums of a window are 32-bit numbers: the minimum, the maximum and the midpoint take any
 *                  size, the mean and the blur up to 4103, the sharpening up to 2901, the other means up to 46339;
 *                  larger ones are refused
 *   channelMask    bit c selects channel c; a channel that is not selected is not written, and bits beyond the
 *                  channels are ignored
 * They return 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written), ZLV40_ERROR_OUT_OF_MEMORY (nothing is
 * written) or ZLV40_ERROR_CANCELLED. All but the harmonic and the power mean report progress as (channel,
 * bytesPerPixel) after each selected channel, those two as (row, height) after each row; all can be cancelled, and
 * channels or rows done so far stay. They work on the calling thread. */

/* Writes the middle between the smallest and the largest sample of the window: their sum / 2, truncated. The time it
 * takes does not depend on filterSize. For the rest see "Window statistics". */
#define ZLV40_MidpointFilter _ZLV40_MidpointFilter
ZLV40_API uint32_t ZLV40_MidpointFilter(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst,
                                        uint32_t bytesPerPixel, uint32_t srcRowStride, uint32_t dstRowStride,
                                        int32_t filterSize, uint32_t channelMask);

/* Writes the smallest sample of the window. The time it takes does not depend on filterSize.
 * Source: M. van Herk, Pattern Recognition Letters 13 (1992). For the rest see "Window statistics". */
#define ZLV40_MinimumFilter _ZLV40_MinimumFilter
ZLV40_API uint32_t ZLV40_MinimumFilter(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst,
                                       uint32_t bytesPerPixel, uint32_t srcRowStride, uint32_t dstRowStride,
                                       int32_t filterSize, uint32_t channelMask);

/* Writes the largest sample of the window. The time it takes does not depend on filterSize.
 * Source: M. van Herk, Pattern Recognition Letters 13 (1992). For the rest see "Window statistics". */
#define ZLV40_MaximumFilter _ZLV40_MaximumFilter
ZLV40_API uint32_t ZLV40_MaximumFilter(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst,
                                       uint32_t bytesPerPixel, uint32_t srcRowStride, uint32_t dstRowStride,
                                       int32_t filterSize, uint32_t channelMask);

/* Writes the arithmetic mean of the window, truncated. The time it takes does not depend on filterSize. For the rest
 * see "Window statistics". */
#define ZLV40_ArithmeticMeanFilter _ZLV40_ArithmeticMeanFilter
ZLV40_API uint32_t ZLV40_ArithmeticMeanFilter(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst,
                                              uint32_t bytesPerPixel, uint32_t srcRowStride, uint32_t dstRowStride,
                                              int32_t filterSize, uint32_t channelMask);

/* Writes the geometric mean of the window: the product of each sample's root, in double precision, truncated without
 * rounding, so that a flat area may lose a level. 0 if any sample of the window is 0. For the rest see "Window
 * statistics". */
#define ZLV40_GeometricMeanFilter _ZLV40_GeometricMeanFilter
ZLV40_API uint32_t ZLV40_GeometricMeanFilter(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst,
                                             uint32_t bytesPerPixel, uint32_t srcRowStride, uint32_t dstRowStride,
                                             int32_t filterSize, uint32_t channelMask);

/* Writes the harmonic mean of the window: their number / the sum of 1 / sample, in double precision, rounded. 0 if any
 * sample of the window is 0. Reports after each row. For the rest see "Window statistics". */
#define ZLV40_HarmonicMeanFilter _ZLV40_HarmonicMeanFilter
ZLV40_API uint32_t ZLV40_HarmonicMeanFilter(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst,
                                            uint32_t bytesPerPixel, uint32_t srcRowStride, uint32_t dstRowStride,
                                            int32_t filterSize, uint32_t channelMask);

/* Writes the power mean of the window, (the mean of sample to the power order) to the power 1 / order, in double
 * precision, truncated without rounding, so that a flat area may lose a level.
 *   order  any number: 1 is the arithmetic mean, larger ones move towards the maximum, -1 is the harmonic mean, lower
 *          ones move towards the minimum; 0 makes every selected sample 1
 * With a negative order, 0 if any sample of the window is 0. Powers that overflow give 255, a sum of powers that
 * underflows to 0 gives 0. Reports after each row. For the rest see "Window statistics". */
#define ZLV40_YpMeanFilter _ZLV40_YpMeanFilter
ZLV40_API uint32_t ZLV40_YpMeanFilter(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst,
                                      uint32_t bytesPerPixel, uint32_t srcRowStride, uint32_t dstRowStride,
                                      int32_t filterSize, int32_t order, uint32_t channelMask);

/* Sharpens: writes c - amount * T, where c is the pixel's own sample and T the window's sum less c times the number of
 * its samples; truncated towards zero, limited to 0..255.
 *   amount  a finite number, not limited: 0 copies, a negative one blurs
 * An amount that is no finite number is refused. The time it takes does not depend on filterSize. For the rest see
 * "Window statistics". */
#define ZLV40_SharpenImage _ZLV40_SharpenImage
ZLV40_API uint32_t ZLV40_SharpenImage(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst,
                                      uint32_t bytesPerPixel, uint32_t srcRowStride, uint32_t dstRowStride,
                                      int32_t filterSize, double amount, uint32_t channelMask);

/* Blurs: writes amount * the window's mean + (1 - amount) * the pixel's own sample, the mean and each term truncated.
 * So results can be a level darker than the exact blend: with an amount of 0.5 a flat 255 becomes 254.
 *   amount  0.0 copies to 1.0 gives the mean; limited to that range, refused when it is no number
 * The time it takes does not depend on filterSize. For the rest see "Window statistics". */
#define ZLV40_BlurImage _ZLV40_BlurImage
ZLV40_API uint32_t ZLV40_BlurImage(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst,
                                   uint32_t bytesPerPixel, uint32_t srcRowStride, uint32_t dstRowStride,
                                   int32_t filterSize, double amount, uint32_t channelMask);

/* Medians. Four functions write the median of a square window around each pixel, channel by channel, into a second
 * image; two of them only where the pixel's own sample stands out from it. Above and below the image its first and last
 * row stand for what is missing. The time they take does not depend on the size of windows above 5 x 5.
 *   src            height rows of width pixels, 8 bits a sample, interleaved; not NULL, only read
 *   width          pixels a row, 1 or more
 *   height         rows, 1 or more
 *   dst            the result, with as many rows and pixels; not NULL, not src, and without a pixel of its memory
 *   bytesPerPixel, channels
 *                  samples a pixel: 1 to 8, in the _O1 forms 1 to 4
 *   srcRowStride   bytes from one row of src to the next, >= width * bytesPerPixel
 *   dstRowStride   bytes from one row of dst to the next, >= width * bytesPerPixel; padding is not touched
 *   filterSize     edge of the window in pixels; see the functions
 *   threshold      a sample that differs from its median by at most this much is neither dust nor scratch: it stays as
 *                  it is. Limited to 255. 0 makes the filter a plain median, whatever the amount is
 *   amount         how far other samples move to their median: 0.0 not at all, 1.0 all the way. Limited to that range;
 *                  refused when it is no number, unless threshold is 0. It becomes w = amount * 255 truncated, and a
 *                  sample v with the median m becomes v + ((m - v) * w + 128) / 255, truncated towards zero: a
 *                  sample above its median moves less far than one below it, at 1.0 to one level above the median
 *   channelMask    bit c selects channel c; a channel that is not selected is not written, and bits beyond the
 *                  channels are ignored
 * They return 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written), ZLV40_ERROR_OUT_OF_MEMORY (nothing is
 * written) or, where they report, ZLV40_ERROR_CANCELLED. They work on the calling thread.
 *
 * The running median (ZLV40_MedianFilterImage, ZLV40_DustAndScratches). To the left and right of the image its first
 * and last column stand for what is missing, so a window may be larger than the image. A filterSize below 1 counts as
 * 1, an even one grows by 1, one above 46339 is refused. The median follows its window along a row and settles one
 * level below the top: where it is 255, the result is 254, but for rows that start with a median of 255, which keep
 * it as far as their medians are all 255. Reports (channel, bytesPerPixel) after each selected channel; can be
 * cancelled, channels done so far stay changed.
 *
 * The median in constant time (_O1). Every channel is filtered. A window has (filterSize - 1) / 2 columns and rows on
 * either side of its pixel, truncated: 4 is a window of 3. It must have one at least and 127 at most, and fit into the
 * image; a row stride of 0 is refused. Never reports progress and can't be cancelled.
 *   padFlags  0, or ZLV40_PAD_LEFT, ZLV40_PAD_RIGHT or both: the first, the last column stand for what is missing
 *             there. Without them the first, the last (filterSize - 1) / 2 columns of dst are not written. Other bits
 *             are ignored
 * Sources: T. S. Huang, G. J. Yang, G. Y. Tang, IEEE Transactions on Acoustics, Speech, and Signal Processing 27
 * (1979); S. Perreault, P. Hebert, IEEE Transactions on Image Processing 16 (2007). */

/* Writes the running median. For the rest see "Medians". */
#define ZLV40_MedianFilterImage _ZLV40_MedianFilterImage
ZLV40_API uint32_t ZLV40_MedianFilterImage(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst,
                                           uint32_t bytesPerPixel, uint32_t srcRowStride, uint32_t dstRowStride,
                                           int32_t filterSize, uint32_t channelMask);

/* Moves samples that stand out to the running median. An amount that comes to w = 0 leaves all samples as they are.
 * For the rest see "Medians". */
#define ZLV40_DustAndScratches _ZLV40_DustAndScratches
ZLV40_API uint32_t ZLV40_DustAndScratches(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst,
                                          uint32_t bytesPerPixel, uint32_t srcRowStride, uint32_t dstRowStride,
                                          int32_t filterSize, uint32_t threshold, double amount, uint32_t channelMask);

/* Writes the median in constant time. For the rest see "Medians". */
#define ZLV40_MedianFilterImage_O1 _ZLV40_MedianFilterImage_O1
ZLV40_API uint32_t ZLV40_MedianFilterImage_O1(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst,
                                              uint32_t channels, uint32_t srcRowStride, uint32_t dstRowStride,
                                              int32_t filterSize, uint32_t padFlags);

/* Moves samples that stand out to the median in constant time. An amount that comes to w = 0 writes the plain median.
 * For the rest see "Medians". */
#define ZLV40_DustAndScratches_O1 _ZLV40_DustAndScratches_O1
ZLV40_API uint32_t ZLV40_DustAndScratches_O1(const uint8_t* src, uint32_t width, uint32_t height, uint8_t* dst,
                                             uint32_t channels, uint32_t srcRowStride, uint32_t dstRowStride,
                                             int32_t filterSize, uint32_t threshold, double amount, uint32_t padFlags);

/* Writes the median of a square window around each pixel of a 1-bit image: a bit is set when more than half of its
 * window is. Beyond its edges the image repeats its border pixels without limit, so a window may be larger than the
 * image. The time it takes does not depend on the size of windows above 5 x 5.
 *   src           height rows of width pixels, 8 in a byte, the leftmost in the highest bit; not NULL, only read
 *   width         pixels a row, 1 or more
 *   height        rows, 1 or more
 *   srcRowStride  bytes from one row of src to the next, >= (width + 7) / 8
 *   dst           the result, with as many rows and pixels; not NULL, not src, and without a pixel of its memory. The
 *                 bits behind a row's last pixel are not touched
 *   dstRowStride  bytes from one row of dst to the next, >= (width + 7) / 8; padding is not touched
 *   filterSize    edge of the window in pixels, odd: an even size grows by 1, one above 46339 is refused
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written), ZLV40_ERROR_OUT_OF_MEMORY (nothing is written) or
 * ZLV40_ERROR_CANCELLED. Reports (row, height) after each row; can be cancelled, rows done so far stay changed. Works
 * on the calling thread. */
#define ZLV40_MedianFilter1Bit _ZLV40_MedianFilter1Bit
ZLV40_API uint32_t ZLV40_MedianFilter1Bit(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcRowStride,
                                          uint8_t* dst, uint32_t dstRowStride, uint32_t filterSize);

/* ---- Adaptive filters --------------------------------------------------------------------------------------- */

/* Flags of ZLV40_AdaptiveUnsharpMask. */
enum ZLV40_UnsharpFlag {
    ZLV40_UNSHARP_FOUR_KERNELS = 1,  /* four directional kernels instead of two */
    ZLV40_UNSHARP_EIGHT_KERNELS = 2, /* eight of them */
    ZLV40_UNSHARP_KEEP_ALPHA = 4     /* channel 3 is not sharpened */
};

/* Sharpens where a sample differs enough from its left neighbour: with d the difference, limited to -127..127, a sample
 * whose |d| is above the threshold becomes itself + d * amount, the product truncated and the sum limited to 0..255.
 * Others are copied, and so is the first column.
 *   src           height rows of width pixels, 8 bits a sample, interleaved; not NULL
 *   width         pixels a row, 1 or more
 *   height        rows, 1 or more
 *   channels      samples a pixel, 1 or more
 *   srcRowStride  bytes from one row of src to the next, >= width * channels; not 0
 *   dstRowStride  bytes from one row of dst to the next, >= width * channels; not 0; padding is not touched
 *   dst           receives an image of the same shape; not NULL; may be src, with the same stride
 *   threshold     in levels; from 127 on nothing is sharpened
 *   amount        of sharpening; below 0 it softens; finite
 *   flags         how many directional kernels the mask is made of: two, with ZLV40_UNSHARP_FOUR_KERNELS four, with
 *                 ZLV40_UNSHARP_EIGHT_KERNELS eight; both are refused. The first one decides alone, so results are the
 *                 same, but for two kernels' use of dst: the response of the second passes through it, which is
 *                 127 + a sample - its right neighbour, limited to 0..254. With src as dst, that is what is sharpened.
 *                 ZLV40_UNSHARP_KEEP_ALPHA does not sharpen channel 3: with two kernels it gets the second response,
 *                 otherwise it is not touched
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written), ZLV40_ERROR_OUT_OF_MEMORY (nothing is written;
 * with two kernels in place only) or ZLV40_ERROR_CANCELLED.
 * Progress as (step, kernels): step 0 before the first kernel, 1 and so on after each further one, and `kernels` when
 * dst is done. A cancel at that last report finds dst written; an earlier one leaves it untouched, or with two kernels
 * and from step 1 on filled with the second response. Works on the calling thread. */
#define ZLV40_AdaptiveUnsharpMask _ZLV40_AdaptiveUnsharpMask
ZLV40_API uint32_t ZLV40_AdaptiveUnsharpMask(const uint8_t* src, uint32_t width, uint32_t height, int32_t channels,
                                             uint32_t srcRowStride, uint32_t dstRowStride, uint8_t* dst,
                                             uint32_t threshold, double amount, int8_t flags);

/* Removes noise and keeps edges: the double-window modified trimmed mean (Y. H. Lee, S. A. Kassam, IEEE Transactions on
 * Acoustics, Speech, and Signal Processing 33 (1985)). The median m of the 3 x 3 samples around a sample chooses, from
 * the five rows around it and from the columns two to the left up to one to the right, the samples from m - q to m + q;
 * their mean, truncated, is the result. (The column two to the right does not count.)
 *   src           height rows of width pixels, 8 bits a sample, interleaved; not NULL, only read
 *   width         pixels a row, 1 or more; below 5 nothing is written
 *   height        rows, 1 or more; below 5 nothing is written
 *   dst           the result, of the same shape; not NULL, not src, and without a pixel of its memory. Two pixels at
 *                 each edge are not written
 *   bytesPerPixel channels, 1 to 8
 *   srcRowStride  bytes from one row of src to the next, >= width * bytesPerPixel; not 0
 *   dstRowStride  bytes from one row of dst to the next, >= width * bytesPerPixel; not 0; padding is not touched
 *   noiseLevel    and
 *   bandFactor    make q, their product, in levels; 0 or more
 *   channelMask   bit c selects channel c; a channel that is not selected is not written, and bits beyond the channels
 *                 are ignored
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written), ZLV40_ERROR_OUT_OF_MEMORY (nothing is written) or
 * ZLV40_ERROR_CANCELLED.
 * Progress as (row, height) after each row that can be written, from row 2 to row height - 3; can be cancelled, rows
 * done so far stay. Works on the calling thread. */
#define ZLV40_AdaptiveDWMTMFilter _ZLV40_AdaptiveDWMTMFilter
ZLV40_API uint32_t ZLV40_AdaptiveDWMTMFilter(const uint8_t* src, int32_t width, int32_t height, uint8_t* dst,
                                             uint32_t bytesPerPixel, uint32_t srcRowStride, uint32_t dstRowStride,
                                             double noiseLevel, double bandFactor, uint32_t channelMask);

/* Finds the mean of each channel, truncated to an integer. The sum has 32 bits and wraps: a white image of more than
 * 16,843,009 pixels has a smaller mean than 255.
 *   src            height rows of width pixels, 8 bits a sample, interleaved; not NULL, only read
 *   width, height  1 or more, together less than 2^32 pixels
 *   bytesPerPixel  channels, 1 to 8
 *   rowStride      bytes from one row to the next, >= width * bytesPerPixel; not 0
 *   means          one number a channel, 0 to 255; not NULL. Those of channels that are not selected are not written
 *   channelMask    bit c selects channel c; bits beyond the channels are ignored
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written). A success leaves the last error as it was.
 * Never reports progress and can't be cancelled. Works on the calling thread. */
#define ZLV40_FindImageMean _ZLV40_FindImageMean
ZLV40_API uint32_t ZLV40_FindImageMean(const uint8_t* src, uint32_t width, uint32_t height, uint32_t bytesPerPixel,
                                       uint32_t rowStride, double* means, uint32_t channelMask);

/* Finds the standard deviation of each channel: the root of the mean squared difference from the mean as
 * ZLV40_FindImageMean truncates it, and so a little more than that from the exact mean.
 *   src            height rows of width pixels, 8 bits a sample, interleaved; not NULL, only read
 *   width, height  1 or more, together less than 2^32 pixels
 *   bytesPerPixel  channels, 1 to 8
 *   rowStride      bytes from one row to the next, >= width * bytesPerPixel; not 0
 *   deviations     one number a channel, in levels; not NULL. Those of channels that are not selected are not written
 *   channelMask    bit c selects channel c; bits beyond the channels are ignored
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written) or ZLV40_ERROR_CANCELLED. A success leaves the
 * last error as it was.
 * Progress as (channel, bytesPerPixel) for each selected channel; can be cancelled, deviations written so far stay.
 * Works on the calling thread. */
#define ZLV40_FindImageStandardDeviation _ZLV40_FindImageStandardDeviation
ZLV40_API uint32_t ZLV40_FindImageStandardDeviation(const uint8_t* src, uint32_t width, uint32_t height,
                                                    uint32_t bytesPerPixel, uint32_t rowStride, double* deviations,
                                                    uint32_t channelMask);

/* Flag of ZLV40_LocalHistogramEnhancement. */
enum ZLV40_EnhancementFlag {
    ZLV40_DARK_REGIONS = 256 /* regions darker than a part of the image's mean, instead of brighter ones */
};

/* Enhances regions by their local mean and contrast (R. C. Gonzalez, R. E. Woods, Digital Image Processing, chapter
 * "Histogram processing"). A sample of a selected channel is multiplied by the gain where its window has a deviation s
 * that is neither below deviations[c] * lowDeviationFactor nor above deviations[c] * highDeviationFactor, and a mean m
 * that is not below means[c] * meanFactor, or, with ZLV40_DARK_REGIONS, not above it. Otherwise it is copied.
 *   src                  height rows of width pixels, 8 bits a sample, interleaved; not NULL, only read
 *   width                pixels a row, 1 or more
 *   height               rows, 1 or more
 *   bytesPerPixel        channels, 1 to 8
 *   srcRowStride         bytes from one row of src to the next, >= width * bytesPerPixel; not 0
 *   dst                  the result, of the same shape; not NULL, not src, and without a pixel of its memory
 *   dstRowStride         bytes from one row of dst to the next, >= width * bytesPerPixel; not 0; padding is not touched
 *   windowSize           edge of the window in pixels, 1 to 65535, also beyond the image, whose border pixels repeat.
 *                        The window of an even size is one pixel wider and higher, but its sums are divided by
 *                        windowSize * windowSize all the same: m and s are larger than they are
 *   means                one number a channel, as from ZLV40_FindImageMean; not NULL, only read
 *   deviations           one number a channel, as from ZLV40_FindImageStandardDeviation; not NULL, only read
 *   meanFactor, lowDeviationFactor, highDeviationFactor
 *                        any number. A comparison with what is not a number is not true, and the sample is enhanced
 *   gain                 -8421504 to 8421504. The product is truncated and its low eight bits are stored: 256 is 0
 *   flags                bits 0 to 7 select channels (a channel that is not selected is not written); and
 *                        ZLV40_DARK_REGIONS
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written), ZLV40_ERROR_OUT_OF_MEMORY (nothing is written) or
 * ZLV40_ERROR_CANCELLED. The time it takes hardly depends on windowSize.
 * Progress once a row; can be cancelled, rows done so far stay. Works on the calling thread. */
#define ZLV40_LocalHistogramEnhancement _ZLV40_LocalHistogramEnhancement
ZLV40_API uint32_t ZLV40_LocalHistogramEnhancement(const uint8_t* src, uint32_t width, uint32_t height,
                                                   uint32_t bytesPerPixel, uint32_t srcRowStride, uint8_t* dst,
                                                   uint32_t dstRowStride, uint32_t windowSize, const double* means,
                                                   const double* deviations, double meanFactor,
                                                   double lowDeviationFactor, double highDeviationFactor, double gain,
                                                   uint32_t flags);

/* ---- Edges and bilateral smoothing -------------------------------------------------------------------------- */

/* How the weights of ZLV40_BilateralFilterImage fall with a distance. */
enum ZLV40_WeightKind {
    ZLV40_WEIGHTS_GAUSSIAN = 0, /* along a bell; so does any value that is not listed */
    ZLV40_WEIGHTS_LINEAR = 1,   /* evenly, down to 0 at sigma */
    ZLV40_WEIGHTS_COSINE = 2,   /* along a quarter of a wave, down to 0 at sigma */
    ZLV40_WEIGHTS_BOX = 3       /* not at all up to sigma, and 0 beyond it */
};

/* Smooths an image and keeps its edges: every sample becomes an average of the samples in a window around it, weighted
 * by their distance and by their difference from it (C. Tomasi and R. Manduchi, Bilateral Filtering for Gray and Color
 * Images, 1998). Channels are filtered one by one. The weight of a sample at distance d that differs by r levels is
 * w(d) * w(r); that of the sample itself counts twenty times. A sample without any weights stays as it is.
 *   src            height rows of width pixels, 8 bits a sample, interleaved; not NULL; not changed
 *   width, height  of both images, 1 or more
 *   srcRowStride   bytes from one row of src to the next, >= width * bytesPerPixel; not 0
 *   bytesPerPixel  channels, 1..8
 *   dst            an image of the same shape, not NULL; may be src. Samples of channels that are not selected and
 *                  padding are not touched
 *   dstRowStride   bytes from one row of dst to the next, >= width * bytesPerPixel; not 0
 *   filterSize     edge of the window in pixels, 1 up to the image's smaller side; even sizes grow by 1
 *   weightKind     w(d): ZLV40_WEIGHTS_LINEAR 1 - d / sigma, ZLV40_WEIGHTS_COSINE cos(pi * d / (2 * sigma)),
 *                  ZLV40_WEIGHTS_BOX 1 / sigma, all three 0 for d above sigma; any other value
 *                  exp(-d * d / (2 * sigma * sigma))
 *   sigma          of both weights, in pixels and in levels; not 0, not NaN, and not so small or so large that sums of
 *                  weights overflow
 *   flags          bits 0..7 select channels; and
 *                  ZLV40_SEPARABLE averages over filterSize samples of each row, and over filterSize of these averages
 *                  down each column. Otherwise the window is square and lacks its last row and its last column: it has
 *                  filterSize - 1 of each, from filterSize / 2 above and left of the sample on
 *                  ZLV40_WORKER_THREADS filters each selected channel on a thread of its own; without progress
 *                  ZLV40_ROWS_ABOVE, ZLV40_ROWS_BELOW promise filterSize / 2 more rows above or below src: windows are
 *                  not cut off there. For the square window without threads; others ignore them
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written), ZLV40_ERROR_OUT_OF_MEMORY or
 * ZLV40_ERROR_CANCELLED. When a thread can't be started nothing is written, and the result is 1 all the same.
 * Progress once a row as (row, height), for each selected channel again; with ZLV40_SEPARABLE once a selected channel
 * as (channel, bytesPerPixel); with ZLV40_WORKER_THREADS none. Can be cancelled where it reports; what is done stays.
 * Works on the calling thread, or with ZLV40_WORKER_THREADS on threads that end before it returns. */
#define ZLV40_BilateralFilterImage _ZLV40_BilateralFilterImage
ZLV40_API uint32_t ZLV40_BilateralFilterImage(const uint8_t* src, uint32_t width, uint32_t height,
                                              uint32_t srcRowStride, uint32_t bytesPerPixel, uint8_t* dst,
                                              uint32_t dstRowStride, uint32_t filterSize, uint32_t weightKind,
                                              double sigma, uint32_t flags);

/* Writes gradient magnitudes: |gx| + |gy| of the Sobel operator, 0..2040. Outside the image its edge samples repeat.
 *   src            height rows of width pixels, 8 bits a sample, interleaved; not NULL; not changed
 *   width, height  2 or more
 *   bytesPerPixel  channels, 1..32; 3 or 4 with ZLV40_COMBINED. With ZLV40_WORKER_THREADS too it is not looked at:
 *                  pixels have 3 bytes then
 *   srcRowStride   bytes from one row of src to the next, >= width * bytesPerPixel; not 0
 *   dst            height rows of 16-bit magnitudes, one for each sample of src, or one a pixel with ZLV40_COMBINED;
 *                  not NULL. Magnitudes of channels that are not selected and padding are not touched
 *   dstRowStride   16-bit magnitudes from one row of dst to the next; not 0
 *   flags          bits 0..7 select channels, without ZLV40_COMBINED; or
 *                  ZLV40_COMBINED writes the mean of the first three channels' magnitudes, truncated. With it:
 *                  ZLV40_WORKER_THREADS works on four threads, each with a quarter of the rows
 *                  ZLV40_COLUMN_LEFT, ZLV40_COLUMN_RIGHT, ZLV40_ROWS_ABOVE, ZLV40_ROWS_BELOW promise one more column or
 *                  row of src on that side, which takes the place of the repeated edge (and the side behind it may be
 *                  1); ignored with threads
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written), ZLV40_ERROR_OUT_OF_MEMORY or
 * ZLV40_ERROR_CANCELLED. With ZLV40_COMBINED and ZLV40_WORKER_THREADS the result is the other way round: 0 for success,
 * otherwise the code itself, and the last error stays what it was; when a thread can't be started nothing is written,
 * and the result is 0 all the same.
 * Progress once a row, but none from threads. Can be cancelled where it reports; rows done so far stay. */
#define ZLV40_SobelFilter _ZLV40_SobelFilter
ZLV40_API uint32_t ZLV40_SobelFilter(const uint8_t* src, uint32_t width, uint32_t height, uint32_t bytesPerPixel,
                                     uint32_t srcRowStride, uint16_t* dst, uint32_t dstRowStride, uint32_t flags);

/* Draws the edges of a gray image: 0 on an edge, 255 elsewhere (J. Canny, A Computational Approach to Edge Detection,
 * 1986). The image is blurred; pixels whose gradient is a ridge are possible edges, but for the first row and column
 * and the last two of each. Possible edges of a high magnitude are edges, and so are those above a low one that touch
 * an edge, beginning with the neighbours of the pixel to the right of the first one.
 *   src            height rows of width samples of 8 bits; not NULL; not changed
 *   width, height  of both images; below 4 there is nothing but 255
 *   srcRowStride   bytes from one row of src to the next, >= width; not 0
 *   dst            height rows of width samples; not NULL; may be src. Padding is not touched
 *   dstRowStride   bytes from one row of dst to the next, >= width; not 0
 *   sigma          of the blur in pixels, above 0 (as a 32-bit float its square too), up to 3.3 million
 *   lowFraction    of the high magnitude, for the low one; 0 or more. 0 lets every possible edge join
 *   highFraction   of the possible edges, so many lie under the high magnitude; 0 or more, 1 for all of them
 *   All three are narrowed to 32-bit floats.
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written), ZLV40_ERROR_OUT_OF_MEMORY (nothing is written;
 * also when width or height is 0) or ZLV40_ERROR_CANCELLED.
 * Progress after each of five stages, as (1..5, 5); the first four are done at the same time. Can be cancelled: after
 * the fifth dst is written, before it is not. Works on the calling thread. */
#define ZLV40_CannyEdgeDetector _ZLV40_CannyEdgeDetector
ZLV40_API uint32_t ZLV40_CannyEdgeDetector(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcRowStride,
                                           uint8_t* dst, uint32_t dstRowStride, double sigma, double lowFraction,
                                           double highFraction);

/* ---- Noise and motion --------------------------------------------------------------------------------------- */

/* What ZLV40_MotionBlur walks along. Any other value is linear too. */
enum ZLV40_MotionMode {
    ZLV40_MOTION_LINEAR = 0, /* a straight line */
    ZLV40_MOTION_SPIN = 1,   /* arcs around the image's centre */
    ZLV40_MOTION_ZOOM = 2    /* rays towards the image's centre */
};

enum { ZLV40_MOST_MOTION_STEPS = 8421504 /* on an arc or a ray: the sum of so many samples fits 32 bits */ };

/* Blurs an image along a path: every sample becomes the mean of samples of its channel on a walk that begins at it.
 *   src            height rows of width pixels, 8 bits a sample, interleaved; not NULL, only read
 *   width          pixels a row, 1 or more
 *   height         rows, 1 or more
 *   srcRowStride   bytes from one row of src to the next, >= width * bytesPerPixel
 *   dst            receives an image of the same shape; not NULL; must not overlap src
 *   dstRowStride   bytes from one row of dst to the next, >= width * bytesPerPixel; padding is not touched
 *   bytesPerPixel  channels, 1 or more; all of them are blurred
 *   angle          degrees, of a linear walk: 0 goes down, 90 to the right; not looked at in the other modes
 *   amount         how far a step goes: pixels of a linear walk; in spin mode 1 / (10 pi) radians; in zoom mode
 *                  percent of the distance to the centre
 *   steps          samples on a walk at most; with 0 or less src is copied. Linear walks may be as long as they like,
 *                  the others have at most ZLV40_MOST_MOTION_STEPS
 *   mode           a ZLV40_MotionMode
 * The centre is the pixel (width / 2, height / 2). Step 0 is the pixel itself. Step i lies i * amount * (sin(angle),
 * cos(angle)) from it; or is it rotated by (i - steps / 2) * amount / pi / 10 around the centre (steps / 2 in whole
 * numbers); or has 1 - i * amount / 100 of its distance to the centre. Positions are truncated to pixels. A walk ends
 * where it leaves the image: at the edges fewer samples are averaged, and none is repeated. The mean is truncated.
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written; so too when two steps or more are to be walked by
 * an angle or amount that is not finite) or ZLV40_ERROR_CANCELLED.
 * Progress once a row; can be cancelled, rows done so far stay written. Works on the calling thread. */
#define ZLV40_MotionBlur _ZLV40_MotionBlur
ZLV40_API uint32_t ZLV40_MotionBlur(const uint8_t* src, int32_t width, int32_t height, uint32_t srcRowStride,
                                    uint8_t* dst, uint32_t dstRowStride, uint32_t bytesPerPixel, double angle,
                                    double amount, int32_t steps, int32_t mode);

/* Adds Gaussian noise to an image, in place.
 *   image          height rows of width pixels, 8 bits a sample, interleaved; not NULL
 *   width          pixels a row, 1 or more
 *   height         rows, 1 or more
 *   bytesPerPixel  channels, 1 to 8
 *   rowStride      bytes from one row to the next, >= width * bytesPerPixel; padding is not touched
 *   variance       of the noise, in squared levels: 0 to 1e307; with 0 the mean alone is added
 *   mean           of the noise, in levels; finite
 *   monochrome     0 draws a value for each selected sample of a pixel, channel 0 first; otherwise one is drawn for
 *                  each pixel and added to all its selected samples, even if none is
 *   channelMask    bit c selects channel c; the others are left alone
 * A sample v becomes v + noise, truncated and limited to 0..255. A value takes two draws U1, U2 of the random
 * generator: it is cos(t) * r + mean with r = sqrt(-2 * variance * ln(1 - U1 / 32767.1)) and t = U2 * 0.00019175345 -
 * pi.
 * The random generator is the calling thread's own: it starts from 1 with the thread, goes on from call to call, and
 * gives the same draws on every thread. state = state * 214013 + 2531011; a draw is bits 16 to 30 of it.
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written) or ZLV40_ERROR_CANCELLED.
 * Progress once a row; can be cancelled, rows done so far stay changed. Works on the calling thread.
 * Source: G. E. P. Box, M. E. Muller, "A note on the generation of random normal deviates", Ann. Math. Statist. 29
 * (1958). */
#define ZLV40_AddGaussianNoise _ZLV40_AddGaussianNoise
ZLV40_API uint32_t ZLV40_AddGaussianNoise(uint8_t* image, uint32_t width, uint32_t height, uint32_t bytesPerPixel,
                                          uint32_t rowStride, double variance, double mean, int32_t monochrome,
                                          uint32_t channelMask);

/* Adds uniform noise to an image, in place. Arguments, errors, progress and draws as with ZLV40_AddGaussianNoise, but a
 * value takes one draw U: it is U * (s * 0.0001057192) + mean - s * 1.7320508 with s = sqrt(variance). */
#define ZLV40_AddUniformNoise _ZLV40_AddUniformNoise
ZLV40_API uint32_t ZLV40_AddUniformNoise(uint8_t* image, uint32_t width, uint32_t height, uint32_t bytesPerPixel,
                                         uint32_t rowStride, double variance, double mean, int32_t monochrome,
                                         uint32_t channelMask);

/* Adds negative exponential noise to an image, in place: it only brightens. Arguments, errors, progress and draws as
 * with ZLV40_AddGaussianNoise, without a mean; with a variance of 0 nothing is added. A value takes two draws: it is
 * r * r with r = sqrt(-2 * s * ln(1 - U1 / 32767.1)) and s = sqrt(variance / 2), computed as the sum of the squares of
 * r * cos(t) and r * sin(t) with t = U2 * 0.00019175345 - pi. */
#define ZLV40_AddNegativeExpNoise _ZLV40_AddNegativeExpNoise
ZLV40_API uint32_t ZLV40_AddNegativeExpNoise(uint8_t* image, uint32_t width, uint32_t height, uint32_t bytesPerPixel,
                                             uint32_t rowStride, double variance, int32_t monochrome,
                                             uint32_t channelMask);

/* Adds Rayleigh noise to an image, in place: it only brightens. Arguments, errors, progress and draws as with
 * ZLV40_AddGaussianNoise, without a mean; with a variance of 0 nothing is added. A value takes one draw U: it is
 * sqrt(-2 * 2.3299 * variance * ln(1 - U / 32767.1)). */
#define ZLV40_AddRayleighNoise _ZLV40_AddRayleighNoise
ZLV40_API uint32_t ZLV40_AddRayleighNoise(uint8_t* image, uint32_t width, uint32_t height, uint32_t bytesPerPixel,
                                          uint32_t rowStride, double variance, int32_t monochrome,
                                          uint32_t channelMask);

/* ---- Morphology --------------------------------------------------------------------------------------------- */

/* Inverts every bit of a buffer, in place.
 *   buffer  size bytes; not NULL
 *   size    in bytes; 0 is nothing to do
 * Returns 1; or 0 with ZLV40_ERROR_OUT_OF_MEMORY when the buffer is NULL. Reports no progress. Works on the calling
 * thread. */
#define ZLV40_InvertBuffer _ZLV40_InvertBuffer
ZLV40_API uint32_t ZLV40_InvertBuffer(uint8_t* buffer, uint32_t size);

/* Writes the bits that two buffers have in common: a AND b.
 *   a, b  size bytes each; not NULL
 *   out   size bytes; not NULL. It may be a or b, but not begin elsewhere in them
 *   size  in bytes; 0 is nothing to do
 * Returns 1; or 0 with ZLV40_ERROR_OUT_OF_MEMORY when a buffer is NULL (nothing is written). Reports no progress. Works
 * on the calling thread. */
#define ZLV40_IntersectBuffers _ZLV40_IntersectBuffers
ZLV40_API uint32_t ZLV40_IntersectBuffers(const uint8_t* a, const uint8_t* b, uint8_t* out, uint32_t size);

/* Writes the bits that either buffer has: a OR b. For the rest see ZLV40_IntersectBuffers. */
#define ZLV40_UnionBuffers _ZLV40_UnionBuffers
ZLV40_API uint32_t ZLV40_UnionBuffers(const uint8_t* a, const uint8_t* b, uint8_t* out, uint32_t size);

/* Writes the bits that just one of the buffers has: a XOR b. For the rest see ZLV40_IntersectBuffers. */
#define ZLV40_XORBuffers _ZLV40_XORBuffers
ZLV40_API uint32_t ZLV40_XORBuffers(const uint8_t* a, const uint8_t* b, uint8_t* out, uint32_t size);

/* Binary morphology. Seven functions work on 1-bit images with a structuring element. Beyond its edges the image
 * repeats its border pixels without limit, so an element may be larger than the image. They share these arguments:
 *   src            height rows of width pixels, 8 in a byte, the leftmost in the highest bit; a set bit is foreground;
 *                  not NULL, only read
 *   width          pixels a row, 1 or more
 *   height         rows, 1 or more
 *   srcRowStride   bytes from one row of src to the next, >= (width + 7) / 8
 *   dst            the result, with as many rows and pixels; not NULL. It may be src, with the same stride, but for
 *                  ZLV40_MorphoDilation1Bit and ZLV40_MorphoErosion1Bit, and share no other memory with it. The bits
 *                  behind a row's last pixel are not touched, unless told otherwise
 *   dstRowStride   bytes from one row of dst to the next, >= (width + 7) / 8; padding is not touched
 *   element        elementWidth * elementHeight entries, row after row; not NULL. Its origin is the entry in the
 *                  middle, and it is not reflected. A dilation counts entries of exactly 1, an erosion all but 0
 *   elementWidth   entries a row, odd, 1 or more
 *   elementHeight  rows of entries, odd, 1 or more
 *   reserved       ignored
 * The time they take grows with the outline of the element and not with its area.
 *
 * Erosions pass over empty stretches. Where the entry in the middle is not 0, the pixels of each byte of src that is 0,
 * and the first pixel behind each such stretch, are not written: they keep what dst holds. Clear dst to get them as 0;
 * the pixel behind a stretch is then 0 even where it would be 1. The other functions do so inside.
 *
 * They return 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT or ZLV40_ERROR_OUT_OF_MEMORY (nothing is written) or
 * ZLV40_ERROR_CANCELLED. ZLV40_MorphoDilation1Bit and ZLV40_MorphoErosion1Bit answer a width or height of 0 as a bad
 * argument, the others as ZLV40_ERROR_OUT_OF_MEMORY, and those refuse strides that are too short. They work on the
 * calling thread. */

/* Sets each pixel that has a set pixel under an entry of 1. Reports (row, height) after each row; can be cancelled,
 * rows done so far stay. For the rest see "Binary morphology". */
#define ZLV40_MorphoDilation1Bit _ZLV40_MorphoDilation1Bit
ZLV40_API uint32_t ZLV40_MorphoDilation1Bit(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcRowStride,
                                            uint8_t* dst, uint32_t dstRowStride, const uint32_t* element,
                                            int32_t elementWidth, int32_t elementHeight, uint32_t reserved);

/* Sets each pixel that has only set pixels under entries other than 0, clears the others, and passes over empty
 * stretches. Reports (row, height) after each row; can be cancelled, rows done so far stay. For the rest see "Binary
 * morphology". */
#define ZLV40_MorphoErosion1Bit _ZLV40_MorphoErosion1Bit
ZLV40_API uint32_t ZLV40_MorphoErosion1Bit(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcRowStride,
                                           uint8_t* dst, uint32_t dstRowStride, const uint32_t* element,
                                           int32_t elementWidth, int32_t elementHeight, uint32_t reserved);

/* Opens: erodes, and dilates the result. Reports (row, height) after each row of the result; can be cancelled, rows
 * done so far stay. For the rest see "Binary morphology". */
#define ZLV40_MorphoOpen1Bit _ZLV40_MorphoOpen1Bit
ZLV40_API uint32_t ZLV40_MorphoOpen1Bit(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcRowStride,
                                        uint8_t* dst, uint32_t dstRowStride, const uint32_t* element,
                                        int32_t elementWidth, int32_t elementHeight, uint32_t reserved);

/* Closes: dilates, and erodes the result into dst, which is not cleared first: pixels that the erosion passes over keep
 * what dst holds. Reports (row, height) after each row of the result; can be cancelled, rows done so far stay. For the
 * rest see "Binary morphology". */
#define ZLV40_MorphoClose1Bit _ZLV40_MorphoClose1Bit
ZLV40_API uint32_t ZLV40_MorphoClose1Bit(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcRowStride,
                                         uint8_t* dst, uint32_t dstRowStride, const uint32_t* element,
                                         int32_t elementWidth, int32_t elementHeight, uint32_t reserved);

/* Finds shapes: sets each pixel where the erosion by one element and that of the complement by another one are set, and
 * clears the others. The bits behind a row's last pixel are cleared up to the end of their byte.
 *   hitElement           what must be foreground; hitWidth * hitHeight entries, both odd; not NULL
 *   missElement          what must be background; missWidth * missHeight entries, both odd; not NULL
 * Reports no progress. For the rest see "Binary morphology". */
#define ZLV40_MorphoHitOrMiss1Bit _ZLV40_MorphoHitOrMiss1Bit
ZLV40_API uint32_t ZLV40_MorphoHitOrMiss1Bit(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcRowStride,
                                             uint8_t* dst, uint32_t dstRowStride, const uint32_t* hitElement,
                                             int32_t hitWidth, int32_t hitHeight, const uint32_t* missElement,
                                             int32_t missWidth, int32_t missHeight, uint32_t reserved);

/* Extracts the boundary: sets each foreground pixel that the erosion takes away, and clears the others. Of a width that
 * is no multiple of 8, the last width % 8 pixels of a row are written over its first ones, at the front of its first
 * byte; the byte where they belong is not touched, unless it is the first. Reports (row, height) after each row; can be
 * cancelled, rows done so far stay. For the rest see "Binary morphology". */
#define ZLV40_MorphoBoundaryExtraction1Bit _ZLV40_MorphoBoundaryExtraction1Bit
ZLV40_API uint32_t ZLV40_MorphoBoundaryExtraction1Bit(const uint8_t* src, uint32_t width, uint32_t height,
                                                      uint32_t srcRowStride, uint8_t* dst, uint32_t dstRowStride,
                                                      const uint32_t* element, int32_t elementWidth,
                                                      int32_t elementHeight, uint32_t reserved);

/* Thins: takes off the pixels that ZLV40_MorphoHitOrMiss1Bit finds, one pair of elements after the other, and begins
 * anew until a pass ends with what dst holds. Without pairs the result is 0 everywhere.
 *   src           height rows of rowStride bytes, padding included; see "Binary morphology"
 *   width         pixels a row, 1 or more
 *   height        rows, 1 or more
 *   rowStride     bytes from one row to the next in both images, >= (width + 7) / 8; height * rowStride is at most
 *                 2147483647
 *   dst           the result: height rows of rowStride bytes, all of which are written, with the padding of src; not
 *                 NULL. It may be src, and share no other memory with it. It is compared with the first pass as the
 *                 caller left it, padding included
 *   hitElements   elementCount pointers to elements of hitSize * hitSize entries; not NULL
 *   hitSize       odd, 1 or more
 *   missElements  elementCount pointers to elements of missSize * missSize entries; not NULL
 *   missSize      odd, 1 or more
 *   elementCount  pairs, any number
 *   iterations    passes at most; 0 leaves dst as it is
 *   reserved      ignored
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT or ZLV40_ERROR_OUT_OF_MEMORY, the latter for a width, height or
 * rowStride of 0 too. dst is whole at any time: as it was, or as a pass has left it. Reports no progress. Works on the
 * calling thread. */
#define ZLV40_MorphoThinning1Bit _ZLV40_MorphoThinning1Bit
ZLV40_API uint32_t ZLV40_MorphoThinning1Bit(const uint8_t* src, uint32_t width, uint32_t height, uint32_t rowStride,
                                            uint8_t* dst, const uint32_t* const* hitElements, int32_t hitSize,
                                            const uint32_t* const* missElements, int32_t missSize,
                                            uint32_t elementCount, uint32_t iterations, uint32_t reserved);

/* Gray morphology. Four functions work on planes of one byte a pixel with an additive structuring element: a dilation
 * writes the largest sum of sample and entry under the element, an erosion the smallest difference, from 0 to 255.
 * Beyond its edges the plane repeats its border pixels without limit. They share these arguments:
 *   src           height rows of width bytes; not NULL, only read
 *   width         pixels a row, 1 or more
 *   height        rows, 1 or more; width * height is at most 2147483647
 *   srcRowStride  bytes from one row of src to the next, >= width
 *   element       elementSize * elementSize entries, row after row; not NULL. Its origin is the entry in the middle,
 *                 and it is not reflected. All entries take part; those of 2^31 and more are negative. Equal entries,
 *                 as all 0, cost the same at any size
 *   elementSize   entries a row, odd, 1 or more
 *   dst           the result, with as many rows and pixels; not NULL. It may be src, with the same stride, and share no
 *                 other memory with it
 *   dstRowStride  bytes from one row of dst to the next, >= width; padding is not touched
 * They return 1; or 0 with ZLV40_ERROR_OUT_OF_MEMORY (nothing is written), also for a width or height of 0. They report
 * (row, height) after each row of their last step and work on the calling thread.
 *
 * Opening, closing and top-hat return 1 whatever becomes of their steps: with an element of an even size they write
 * nothing of them, and after a cancel the rows done so far stay and no code tells. A NULL pointer gives 0 and no
 * code. */

/* Opens: erodes, and dilates the result. For the rest see "Gray morphology". */
#define ZLV40_OpenGray _ZLV40_OpenGray
ZLV40_API uint32_t ZLV40_OpenGray(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcRowStride,
                                  const uint32_t* element, uint32_t elementSize, uint8_t* dst, uint32_t dstRowStride);

/* Closes: dilates, and erodes the result. For the rest see "Gray morphology". */
#define ZLV40_CloseGray _ZLV40_CloseGray
ZLV40_API uint32_t ZLV40_CloseGray(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcRowStride,
                                   const uint32_t* element, uint32_t elementSize, uint8_t* dst, uint32_t dstRowStride);

/* Writes what an opening takes away: the plane less its opening, at least 0. The planes should have no padding: src is
 * copied to dst as one block of width * height bytes, which mixes the rows of padded ones and writes over the padding
 * of dst. Strides below width are refused with ZLV40_ERROR_BAD_ARGUMENT (nothing is written). For the rest see "Gray
 * morphology". */
#define ZLV40_TophatGray _ZLV40_TophatGray
ZLV40_API uint32_t ZLV40_TophatGray(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcRowStride,
                                    const uint32_t* element, uint32_t elementSize, uint8_t* dst, uint32_t dstRowStride);

/* Writes the difference of dilation and erosion, modulo 256: an element with negative entries may give differences
 * below 0. A NULL pointer gives 0 with ZLV40_ERROR_BAD_ARGUMENT, an element of an even size gives 0 and no code
 * (nothing is written), as a step without memory does, and a cancel gives 0 with ZLV40_ERROR_CANCELLED; rows done so
 * far stay. For the rest see "Gray morphology". */
#define ZLV40_MorphoGradientGray _ZLV40_MorphoGradientGray
ZLV40_API uint32_t ZLV40_MorphoGradientGray(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcRowStride,
                                            const uint32_t* element, uint32_t elementSize, uint8_t* dst,
                                            uint32_t dstRowStride);

/* ---- Frequencies -------------------------------------------------------------------------------------------- */

/* Grids. The functions below work on a grid of complex values: height rows of width values, a value two doubles, the
 * real part first, without padding. The grid is the caller's, and all that there is: each call is told its size again.
 * The frequency 0 stands in the corners. None of these functions reports progress, none can be cancelled, all work on
 * the calling thread. A grid is for one call at a time. */

/* Tells the smallest power of two above a number, but at least 4: 4 for 0 to 3, 8 for 4 to 7.
 *   value  the number; from 2147483648 on the result is 0, as no such power has 32 bits
 * Leaves the last error alone. */
#define ZLV40_NextPowerOfTwo _ZLV40_NextPowerOfTwo
ZLV40_API uint32_t ZLV40_NextPowerOfTwo(uint32_t value);

/* Gives a grid of zeros, 16 * width * height bytes. The caller frees it with ZLV40_FreeBlock.
 *   width, height  powers of two, 4 or more
 * Returns the grid; or NULL with ZLV40_ERROR_BAD_ARGUMENT or ZLV40_ERROR_OUT_OF_MEMORY. */
#define ZLV40_AllocFFTGrid _ZLV40_AllocFFTGrid
ZLV40_API double* ZLV40_AllocFFTGrid(uint32_t width, uint32_t height);

/* Transforms a gray picture into the frequencies of its difference from its mean, divided by width * height (J. W.
 * Cooley and J. W. Tukey, An Algorithm for the Machine Calculation of Complex Fourier Series, 1965).
 *   srcBytes       height rows of width samples of 8 bits, or NULL; not changed
 *   srcDoubles     height rows of width doubles, or NULL; not changed. Exactly one of the two is given
 *   width, height  powers of two, 2 or more
 *   srcRowStride   samples (bytes or doubles) from one row of the source to the next, >= width
 *   grid           receives the frequencies; apart from the source
 * Returns 1, also when the transform fails: then the last error is ZLV40_ERROR_BAD_ARGUMENT (a size is no power of two
 * from 2 up, or there is no memory for the rows) or ZLV40_ERROR_OUT_OF_MEMORY (no memory for the columns, or a height
 * of 0), and the grid holds the picture less its mean, its rows transformed or not.
 * Returns 0 with ZLV40_ERROR_BAD_ARGUMENT when both sources or neither is given (nothing is written), or 0 with
 * ZLV40_ERROR_OUT_OF_MEMORY when this thread's records can't be had. Returns 5 and leaves the last error 0 when grid is
 * NULL. */
#define ZLV40_DoFFT _ZLV40_DoFFT
ZLV40_API uint32_t ZLV40_DoFFT(const uint8_t* srcBytes, const double* srcDoubles, uint32_t width, uint32_t height,
                               uint32_t srcRowStride, double* grid);

/* Transforms frequencies back, in place: after ZLV40_DoFFT the real parts are the picture less its mean, up to
 * rounding, and the imaginary parts about 0.
 *   width, height  powers of two, 2 or more
 *   grid           the values
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (a size is no power of two from 2 up, or there is no memory for the
 * rows) or ZLV40_ERROR_OUT_OF_MEMORY (no memory for the columns, or a height of 0; the rows are transformed already, as
 * they are when height is no power of two). Returns 5 and leaves the last error 0 when grid is NULL. */
#define ZLV40_DoFFTInverse _ZLV40_DoFFTInverse
ZLV40_API uint32_t ZLV40_DoFFTInverse(uint32_t width, uint32_t height, double* grid);

/* Filters of ZLV40_FilterFFT: low-passes keep long waves, high-passes short ones. */
enum ZLV40_FFTFilter {
    ZLV40_FFT_IDEAL_LOW_PASS = 1,        /* nothing beyond a radius */
    ZLV40_FFT_IDEAL_HIGH_PASS = 2,       /* nothing within a radius */
    ZLV40_FFT_IDEAL_BAND_PASS = 3,       /* nothing but what lies between two radii */
    ZLV40_FFT_POWER_LAW = 4,             /* the weaker the shorter a wave is */
    ZLV40_FFT_BUTTERWORTH_LOW_PASS = 5,  /* a slope around a radius, as steep as its order says */
    ZLV40_FFT_BUTTERWORTH_HIGH_PASS = 6, /* the same slope, upwards */
    ZLV40_FFT_GAUSSIAN_LOW_PASS = 7,     /* a bell: a Gaussian blur */
    ZLV40_FFT_GAUSSIAN_HIGH_PASS = 8,    /* what that blur takes away */
    ZLV40_FFT_BUTTERWORTH_EMPHASIS = 9,  /* all of it, and short waves once more with a gain */
    ZLV40_FFT_GAUSSIAN_EMPHASIS = 10,    /* a part of it, and short waves once more with a gain */
    ZLV40_FFT_HOMOMORPHIC = 15           /* from one gain for long waves to another one for short ones */
};

/* Multiplies each value of a grid by a real factor, in place. The factor depends on the distance d from the frequency 0
 * in its corner: column x lies x from it up to width / 2, width - 1 - x behind that, and rows likewise.
 *   grid           the values; not NULL
 *   width, height  of the grid, of any size; 0 is nothing to do
 *   kind           one of these filters, with the parameters that it reads:
 *                  ZLV40_FFT_IDEAL_LOW_PASS (p0): 0 where d is above p0, else 1
 *                  ZLV40_FFT_IDEAL_HIGH_PASS (p0): 0 where d is below p0, else 1
 *                  ZLV40_FFT_IDEAL_BAND_PASS (p0, p1): 0 where d is below p0 or above p1, else 1
 *                  ZLV40_FFT_POWER_LAW (p0): (1 / d^2)^p0
 *                  ZLV40_FFT_BUTTERWORTH_LOW_PASS (p0, p1): 1 / (1 + (d / p0)^(2 * p1))
 *                  ZLV40_FFT_BUTTERWORTH_HIGH_PASS (p0, p1): 1 / (1 + (p0 / d)^(2 * p1))
 *                  ZLV40_FFT_GAUSSIAN_LOW_PASS (p0): exp(-d^2 / (2 * p0^2))
 *                  ZLV40_FFT_GAUSSIAN_HIGH_PASS (p0): 1 - exp(-d^2 / (2 * p0^2))
 *                  ZLV40_FFT_BUTTERWORTH_EMPHASIS (p0, p1, p2): p1 + p2 / (1 + (p0 / d)^(2 * p1))
 *                  ZLV40_FFT_GAUSSIAN_EMPHASIS (p0, p1, p2): p1 + p2 * (1 - exp(-d^2 / (2 * p0^2)))
 *                  ZLV40_FFT_HOMOMORPHIC (p0 to p3): (p2 - p1) * (1 - exp(-p3 * d^2 / p0^2)) + p1
 *   params         as many doubles as the filter reads; not NULL. Any value: a radius of 0 makes infinities or NaN
 * From ZLV40_FFT_POWER_LAW to ZLV40_FFT_GAUSSIAN_EMPHASIS values with d = 0 stay as they are.
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written). The kinds 11 to 14 are refused where there is a
 * value to filter. */
#define ZLV40_FilterFFT _ZLV40_FilterFFT
ZLV40_API uint32_t ZLV40_FilterFFT(double* grid, uint32_t width, uint32_t height, int32_t kind, const double* params);

/* Makes a gray picture of a grid: of its real parts, or of the magnitudes of its values.
 *   dstBytes       height rows of width samples of 8 bits, or NULL: values are limited to 0..255 and truncated
 *   dstDoubles     height rows of width doubles, or NULL: values as they are. Exactly one of the two is given
 *   grid           the values; not NULL; not changed
 *   width, height  of the grid, of any size; 0 is nothing to do
 *   dstRowStride   samples (bytes or doubles) from one row of the picture to the next, >= width; padding is not touched
 *   realPart       non-zero: real parts. 0: magnitudes
 *   scale          non-zero: the smallest real part becomes 0 and the largest 255 (127 where all are the same); the
 *                  largest magnitude becomes 255. 0: the smallest real part becomes 0; the largest magnitude becomes
 *                  the largest real part
 * Values that are no number (such as magnitudes of a grid of zeros) are 0 in bytes.
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written). */
#define ZLV40_MakeGrayscaleFromFFT _ZLV40_MakeGrayscaleFromFFT
ZLV40_API uint32_t ZLV40_MakeGrayscaleFromFFT(uint8_t* dstBytes, double* dstDoubles, const double* grid, uint32_t width,
                                              uint32_t height, uint32_t dstRowStride, int32_t realPart, int32_t scale);

/* ---- Artistic effects --------------------------------------------------------------------------------------- */

/* Turns an image into black and white dots on a grid of cells, in place: the image is shrunk to a pixel a cell, each of
 * them becomes black or white with diffusion of the error (R. W. Floyd, L. Steinberg, 1976), and grows again.
 *   buffer         height rows of width pixels, 8 bits a sample, interleaved; not NULL
 *   width          pixels a row, at least cellSize
 *   height         rows, at least cellSize
 *   bytesPerPixel  3
 *   rowStride      bytes from one row to the next, >= width * 3; padding is not touched
 *   cellSize       edge of a cell in pixels, 1 or more; cells that do not fit are spread over the others
 *   smooth         0 for squares; else the dots run into each other
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written), ZLV40_ERROR_OUT_OF_MEMORY (nothing is written;
 * also when no cell fits) or ZLV40_ERROR_CANCELLED.
 * Progress while it grows: once a row with `smooth`, else once a channel. Can be cancelled, what was done so far stays
 * changed. Works on the calling thread. */
#define ZLV40_HalftoneImage _ZLV40_HalftoneImage
ZLV40_API uint32_t ZLV40_HalftoneImage(uint8_t* buffer, uint32_t width, uint32_t height, int32_t bytesPerPixel,
                                       uint32_t rowStride, uint32_t cellSize, int32_t smooth);

/* Turns an image into squares of one colour, the mean of the pixels that it covers, in place.
 *   buffer         height rows of width pixels, 8 bits a sample, interleaved; not NULL
 *   width          pixels a row, at least cellSize
 *   height         rows, at least cellSize
 *   bytesPerPixel  1, 3 or 4
 *   rowStride      bytes from one row to the next, >= width * bytesPerPixel; padding is not touched
 *   cellSize       edge of a square in pixels, 1 or more; squares that do not fit are spread over the others
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written; also when no square fits),
 * ZLV40_ERROR_OUT_OF_MEMORY (nothing is written) or ZLV40_ERROR_CANCELLED.
 * Progress once a channel; none when every pixel is a square and the rows have no padding. Can be cancelled, channels
 * done so far stay changed. Works on the calling thread. */
#define ZLV40_MosaicImage _ZLV40_MosaicImage
ZLV40_API uint32_t ZLV40_MosaicImage(uint8_t* buffer, uint32_t width, uint32_t height, int32_t bytesPerPixel,
                                     uint32_t rowStride, uint32_t cellSize);

/* Draws a gray image as text: `rows` lines of `columns` characters, each with a line feed (10) behind it, and a zero at
 * the end.
 *   source         height rows of width samples of 8 bits; not NULL; not changed
 *   width, height  of the source, 1 or more
 *   sourceStride   bytes from one row to the next, >= width
 *   text           room for (columns + 1) * rows + 1 bytes; not NULL
 *   columns        characters a line, 1 or more
 *   rows           lines, 1 or more; 0 is refused too, but text[0] becomes 0
 *   ramp           the characters from dark to light, ended by a zero, one at least; NULL for "WM$@#%^x*o=+:~. "
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT or ZLV40_ERROR_OUT_OF_MEMORY (nothing is written).
 * Never reports progress and can't be cancelled. Works on the calling thread. */
#define ZLV40_ASCIIizeGrayscaleImage _ZLV40_ASCIIizeGrayscaleImage
ZLV40_API uint32_t ZLV40_ASCIIizeGrayscaleImage(const uint8_t* source, uint32_t width, uint32_t height,
                                                uint32_t sourceStride, uint8_t* text, uint32_t columns, uint32_t rows,
                                                const char* ramp);

/* What ZLV40_GauzyRGB lays over the blurred image. Other values: nothing. */
enum ZLV40_GauzyMode {
    ZLV40_GAUZY_GRAY = 0,    /* the image in gray, sharpened */
    ZLV40_GAUZY_CURVE = 1,   /* the same, but for its dark half, which is black, and its light half almost */
    ZLV40_GAUZY_COPY = 2,    /* the image */
    ZLV40_GAUZY_LIGHTER = 3, /* the image where it is lighter */
    ZLV40_GAUZY_DARKER = 4   /* the image where it is darker */
};

/* Lays a thin copy of an image over a heavily blurred one.
 *   source             height rows of width pixels of 3 channels, 8 bits a sample; not NULL; not changed
 *   width, height      of both images, 1 or more
 *   sourceStride       bytes from one row of source to the next, >= width * 3
 *   destination        the result, with as many rows and pixels; not NULL, not source
 *   destinationStride  bytes from one row of destination to the next, >= width * 3; padding is not touched
 *   blur               limited to 0..1; 1 is a Gaussian of a standard deviation of 30 pixels
 *   sharpness          limited to 0..1; of the gray copies
 *   opacity            limited to 0..1; of the copy, which at 1 is half there
 *   mode               a ZLV40_GauzyMode
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written; also for a number that is none),
 * ZLV40_ERROR_OUT_OF_MEMORY (also when width or height is 0) or ZLV40_ERROR_CANCELLED.
 * Progress while it blurs: once a row and once a column of each channel, from a standard deviation of 1 on, below it
 * twice a channel. Can be cancelled, what was done so far stays. Works on the calling thread. */
#define ZLV40_GauzyRGB _ZLV40_GauzyRGB
ZLV40_API uint32_t ZLV40_GauzyRGB(const uint8_t* source, uint32_t width, uint32_t height, uint32_t sourceStride,
                                  uint8_t* destination, uint32_t destinationStride, double blur, double sharpness,
                                  double opacity, uint32_t mode);

/* What ZLV40_Scribble draws on. */
enum ZLV40_ScribbleBase {
    ZLV40_SCRIBBLE_BLURRED = 0,    /* the image through a Gaussian of a standard deviation of 2.5 pixels */
    ZLV40_SCRIBBLE_MIDPOINTS = 1,  /* the image through ZLV40_MidpointFilter of 5 pixels */
    ZLV40_SCRIBBLE_POSTERIZED = 2, /* the image through ZLV40_PosterizeRGB */
    ZLV40_SCRIBBLE_DESPECKLED = 3  /* the image as it is */
};

/* Draws the edges of an image in black over a simplified version of it.
 *   source           height rows of width pixels of 3 channels, 8 bits a sample, without padding; not NULL; not changed
 *   width, height    of both images, 1 or more
 *   destination      the result, with as many rows and pixels, without padding; not NULL, not source
 *   baseKind         a ZLV40_ScribbleBase
 *   edgesFromResult  0 for the edges of the source; else those of the simplified version
 *   opacity          of the edges in percent, from 100 on all of it
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written), ZLV40_ERROR_OUT_OF_MEMORY (also when width or
 * height is 0) or ZLV40_ERROR_CANCELLED; after a cancel with ZLV40_SCRIBBLE_POSTERIZED with ZLV40_ERROR_NONE.
 * Progress is that of the simplification: once a row and once a column of each channel; a channel; a row; a channel.
 * Can be cancelled, what was done so far stays. Works on the calling thread. */
#define ZLV40_Scribble _ZLV40_Scribble
ZLV40_API uint32_t ZLV40_Scribble(const uint8_t* source, uint32_t width, uint32_t height, uint8_t* destination,
                                  uint32_t baseKind, int32_t edgesFromResult, uint32_t opacity);

/* Flags of ZLV40_Fingerprint. */
enum ZLV40_FingerprintFlag { ZLV40_FINGERPRINT_LIGHT = 1 /* thickens what is light instead of what is dark */ };

/* Turns a gray image into ridge lines: blurs it, thickens its lines, takes each pixel against the others of a window
 * and stretches what comes out.
 *   source             height rows of width samples of 8 bits; not NULL; not changed
 *   width, height      of both images, 1 or more
 *   sourceStride       bytes from one row of source to the next, >= width
 *   destination        the result, with as many rows and samples; not NULL; may be source
 *   destinationStride  bytes from one row of destination to the next, >= width; padding is not touched
 *   blur               a Gaussian of a standard deviation of blur / 8 pixels; below 0 it is 0
 *   ridge              edge of the window in pixels, up to 2901; even sizes grow by 1, and below 3 it is 3
 *   flags              0, or ZLV40_FINGERPRINT_LIGHT; other bits are ignored
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written; also for a blur that is no number or out of all
 * proportion) or ZLV40_ERROR_OUT_OF_MEMORY (also when width or height is 0).
 * Progress once a row of the windows. A cancel ends these: the rows behind it keep what they held, and the result is 1
 * all the same. Works on the calling thread. */
#define ZLV40_Fingerprint _ZLV40_Fingerprint
ZLV40_API uint32_t ZLV40_Fingerprint(const uint8_t* source, uint32_t width, uint32_t height, uint32_t sourceStride,
                                     uint8_t* destination, uint32_t destinationStride, double blur, uint32_t ridge,
                                     uint32_t flags);

/* Flags of ZLV40_OilPaintRGB. */
enum ZLV40_OilPaintFlag {
    ZLV40_OIL_PAINT_BLEND = 1,   /* mixes in the level that was the most frequent one before the last */
    ZLV40_OIL_PAINT_EQUALIZE = 2 /* equalises the brightness first */
};

/* Paints an image in dabs: every pixel takes the mean colour of those pixels in a square around it whose brightness is
 * the most frequent one. The square is cut off at the edges of the image. Of equally frequent levels the lowest counts.
 *   source             height rows of width pixels of 3 channels, 8 bits a sample; not NULL; not changed
 *   width, height      of both images, 1 or more
 *   sourceStride       bytes from one row of source to the next, >= width * 3
 *   destination        the result, with as many rows and pixels; not NULL, not source
 *   destinationStride  bytes from one row of destination to the next, >= width * 3; padding is not touched
 *   radius             of the square in pixels, up to 10, more is 10; 0 copies
 *   levels             of brightness, less one: up to 255, more is 255; 0 makes the square's plain mean
 *   flags              ZLV40_OilPaintFlag values; with ZLV40_OIL_PAINT_BLEND a pixel is mixed with the most frequent
 *                      level among the lower ones, if there is one, by their frequencies; other bits are ignored
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written), ZLV40_ERROR_OUT_OF_MEMORY (nothing is written;
 * also when width is 0 or height is not above 0) or ZLV40_ERROR_CANCELLED.
 * Progress once a row; can be cancelled, rows done so far stay. Works on the calling thread. */
#define ZLV40_OilPaintRGB _ZLV40_OilPaintRGB
ZLV40_API uint32_t ZLV40_OilPaintRGB(const uint8_t* source, uint32_t width, int32_t height, uint32_t sourceStride,
                                     uint8_t* destination, uint32_t destinationStride, uint32_t radius, uint32_t levels,
                                     uint32_t flags);

/* Flags of ZLV40_WatercolorTintRGB. */
enum ZLV40_WatercolorFlag {
    ZLV40_WATERCOLOR_STRETCH = 1, /* spreads the levels of the blurred version over the whole range */
    ZLV40_WATERCOLOR_LIGHTER = 2  /* takes the larger samples; without it the smaller ones */
};

/* Lays a blurred gray version of an image over the image, where it is darker or where it is lighter.
 *   source             height rows of width pixels of 3 channels, 8 bits a sample; not NULL; not changed
 *   width, height      of both images, 1 or more
 *   sourceStride       bytes from one row of source to the next, >= width * 3
 *   destination        the result, with as many rows and pixels; not NULL, not source
 *   destinationStride  bytes from one row of destination to the next, >= width * 3; padding is not touched
 *   amount             limited to 0..1; 1 is a Gaussian of a standard deviation of 30 pixels
 *   flags              ZLV40_WatercolorFlag values; other bits are ignored
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written; also for an amount that is no number),
 * ZLV40_ERROR_OUT_OF_MEMORY (nothing is written; also when width or height is 0) or ZLV40_ERROR_CANCELLED.
 * Progress after each of six stages. Can be cancelled: destination is written in the last two. Works on the calling
 * thread. */
#define ZLV40_WatercolorTintRGB _ZLV40_WatercolorTintRGB
ZLV40_API uint32_t ZLV40_WatercolorTintRGB(const uint8_t* source, uint32_t width, uint32_t height,
                                           uint32_t sourceStride, uint8_t* destination, uint32_t destinationStride,
                                           double amount, uint8_t flags);

/* What ZLV40_CrackleRGB makes its relief of. */
enum ZLV40_CrackleKind {
    ZLV40_CRACKLE_OPEN = 0,   /* the picture without small bright spots */
    ZLV40_CRACKLE_TOPHAT = 1, /* small bright spots alone */
    ZLV40_CRACKLE_CLOSE = 2,  /* the picture without small dark spots */
    ZLV40_CRACKLE_DILATE = 3, /* the picture with bright spots grown */
    ZLV40_CRACKLE_ERODE = 4   /* the picture with dark spots grown */
};

/* Makes a picture look like cracked paint: reduces it to spots of light or dark by gray morphology (7 x 7), sharpens
 * them, lights them as a relief from one side with the picture upon it, and spreads the brightness.
 *   source             height rows of width pixels, 3 bytes each (red, green, blue); not NULL
 *   width, height      in pixels, 4 or more each
 *   sourceStride       in bytes, >= 3 * width
 *   destination        the same size; not NULL; may be source, with the same stride. Padding is not touched. The
 *                      outermost pixels have no relief: they stay as they are, but for their brightness
 *   destinationStride  in bytes, >= 3 * width
 *   morphKind          a ZLV40_CRACKLE_ value
 *   strength           of the sharpening, in percent; limited to 0 to 100
 *   flags              ZLV40_WIDE_RANGE: brightness from 20 to 230 is counted and spread, instead of 50 to 200
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (also for a side below 4) or ZLV40_ERROR_OUT_OF_MEMORY (also when there
 * are no pixels), and without a code for any other morphKind; nothing is written. Reports the rows of the morphology.
 * A cancel of ZLV40_CRACKLE_DILATE and ZLV40_CRACKLE_ERODE gives 0 with ZLV40_ERROR_CANCELLED, and nothing is written.
 * The other kinds go on with the rows done so far, and 0 for the rest but in a top-hat, where those are not reduced.
 * Without memory for a later step the result is 1, and the last error tells. Works on the calling thread. */
#define ZLV40_CrackleRGB _ZLV40_CrackleRGB
ZLV40_API uint32_t ZLV40_CrackleRGB(const uint8_t* source, uint32_t width, uint32_t height, uint32_t sourceStride,
                                    uint8_t* destination, uint32_t destinationStride, uint32_t morphKind,
                                    int32_t strength, uint32_t flags);

/* How ZLV40_SegmentedColorizeRGBImage cleans the mask of a colour. */
enum ZLV40_SegmentMode {
    ZLV40_SEGMENT_MEDIAN = 0,      /* every pixel goes with the majority of its window */
    ZLV40_SEGMENT_CLOSE = 1,       /* gaps are closed */
    ZLV40_SEGMENT_HIT_OR_MISS = 2, /* only places of the element's shape stay */
    ZLV40_SEGMENT_BOUNDARY = 3     /* only outlines stay */
};

/* Turns a picture into few colours in smooth flat regions, as a stencil or a poster has them. A palette is made for the
 * picture; then colour after colour, the rarest first, the pixels of one are cut out as a mask, the mask is cleaned,
 * and the colour painted through it. What no mask covers keeps the rarest colour.
 *   source             height rows of width pixels, 3 bytes each, without padding; not NULL
 *   width, height      in pixels, at most 2^31 - 1 of them together
 *   sourceStride       ignored: rows of 3 * width bytes follow each other
 *   destination        receives height rows of width palette indices, one byte each; not NULL
 *   destinationStride  in bytes, >= width unless there is just one row; padding is not touched
 *   palette            receives 256 entries of 4 bytes, of which the last one is not written: byte 2 is the first
 *                      component of a pixel, byte 0 the third. Entries without a colour are 0. NULL makes no palette,
 *                      and every pixel counts as index 0
 *   colors             1 or more; above 256 it acts as 256. The time of a call grows with it
 *   mode               a ZLV40_SEGMENT_ value: the median of 1-bit images, or a closing, hit-or-miss (the element's
 *                      ones hit, its zeros miss) or boundary extraction with a drawn element
 *   filterSize         of the median: the side of its window, up to 46339; an even one goes up by 1. Else the element:
 *                      1 a cross, 2 a block, 3 a diamond of side 5, 4 a block, 5 a rounded block of side 7, 6 a rounded
 *                      block, 7 a diamond, 8 an irregular shape of side 9, 9 a diamond, 10 an irregular shape, 11 a
 *                      ring of side 15; any other value a 3 x 3 block
 *   reserved           ignored
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written), ZLV40_ERROR_OUT_OF_MEMORY (nothing is written;
 * also when the picture has no pixels) or ZLV40_ERROR_CANCELLED (the colours painted so far stay). A step that fails,
 * without memory or for a median that is too large, leaves its colour out: the result is still 1, and the last error
 * that of the last colour's step. Reports the colours: (colour, colours). Works on the calling thread. */
#define ZLV40_SegmentedColorizeRGBImage _ZLV40_SegmentedColorizeRGBImage
ZLV40_API uint32_t ZLV40_SegmentedColorizeRGBImage(const uint8_t* source, uint32_t width, uint32_t height,
                                                   uint64_t sourceStride, uint8_t* destination,
                                                   int32_t destinationStride, uint8_t* palette, uint32_t colors,
                                                   uint32_t mode, uint32_t filterSize, uint64_t reserved);

/* ZLV40_SegmentedColorizeRGBImage with one of two modes.
 *   useMedian  0 for ZLV40_SEGMENT_CLOSE, anything else for ZLV40_SEGMENT_MEDIAN
 * For the other arguments, results, progress and threads see there. */
#define ZLV40_SegmentedColorizeRGB _ZLV40_SegmentedColorizeRGB
ZLV40_API uint32_t ZLV40_SegmentedColorizeRGB(const uint8_t* source, uint32_t width, uint32_t height,
                                              uint64_t sourceStride, uint8_t* destination, int32_t destinationStride,
                                              uint8_t* palette, uint32_t colors, uint32_t filterSize,
                                              int32_t useMedian);

/* Filters of ZLV40_Stipple. */
enum ZLV40_StippleFilter {
    ZLV40_STIPPLE_MEAN = 0,      /* ZLV40_ArithmeticMeanFilter */
    ZLV40_STIPPLE_MINIMUM = 1,   /* ZLV40_MinimumFilter */
    ZLV40_STIPPLE_MAXIMUM = 2,   /* ZLV40_MaximumFilter */
    ZLV40_STIPPLE_GEOMETRIC = 3, /* ZLV40_GeometricMeanFilter */
    ZLV40_STIPPLE_POWER = 4      /* ZLV40_YpMeanFilter of order 1 */
};

/* Flags of ZLV40_Stipple. */
enum ZLV40_StippleFlag { ZLV40_STIPPLE_NOISE_FIRST = 1 /* filters the noise too; without it noise comes last */ };

/* Filters an image through a square window and adds Perlin noise to it, the same to all three channels. The noise is
 * that of ZLV40_GeneratePerlinNoise and draws from the calling thread's random generator; a level of 128 adds nothing.
 *   source             height rows of width pixels of 3 channels, 8 bits a sample; not NULL; not changed
 *   width, height      of both images, 1 or more
 *   sourceStride       bytes from one row of source to the next, >= width * 3
 *   destination        the result, with as many rows and pixels; not NULL; may be source if the strides are equal
 *   destinationStride  bytes from one row of destination to the next, >= width * 3; padding is not touched
 *   density            up to 100, more is 100: of the noise, from a scale of 1 down to 0.1, and of the filter, whose
 *                      window has an edge of 3 pixels up to 50, of 5 up to 80, else of 7
 *   filterKind         a ZLV40_StippleFilter; with any other value nothing is written
 *   flags              0 or ZLV40_STIPPLE_NOISE_FIRST; other bits are ignored
 * With noise last, samples of 0 are 1 to the filter. There rows that are padded are taken for packed ones: row y of
 * what is filtered begins y * sourceStride bytes behind the first pixel of the packed image, or with its last row at
 * the latest. The picture is slanted unless sourceStride is width * 3.
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written), ZLV40_ERROR_OUT_OF_MEMORY or
 * ZLV40_ERROR_CANCELLED.
 * Progress once a row while noise is added. Can be cancelled: with noise first nothing is written, with noise last the
 * rows done so far stay. Works on the calling thread. */
#define ZLV40_Stipple _ZLV40_Stipple
ZLV40_API uint32_t ZLV40_Stipple(const uint8_t* source, uint32_t width, uint32_t height, uint32_t sourceStride,
                                 uint8_t* destination, uint32_t destinationStride, uint32_t density,
                                 uint32_t filterKind, uint8_t flags);

/* How the colour of ZLV40_ReflectImage grows from the start of its ramp to the end. Other values are linear. */
enum ZLV40_FadeShape {
    ZLV40_FADE_LINEAR = 0, /* evenly */
    ZLV40_FADE_SMOOTH = 1, /* half a wave: slow, fast and slow again */
    ZLV40_FADE_FAST = 2    /* a quarter of a wave: ever slower */
};

/* Flags of ZLV40_ReflectImage. */
enum ZLV40_ReflectFlag { ZLV40_REFLECT_RIPPLED = 1 /* warps the reflection by a field of noise */ };

/* Puts a mirrored copy of an image's first rows below them, as on water, that fades into a colour.
 *   source             height rows of width pixels; not NULL; not changed
 *   width, height      of the source; width 1 or more
 *   bytesPerPixel      3
 *   sourceStride       bytes from one row of source to the next, >= width * 3
 *   destination        splitRow + reflectionHeight rows of width pixels; not NULL; may be source if the strides are
 *                      equal
 *   destinationStride  bytes from one row of destination to the next, >= width * 3; padding is not touched
 *   splitRow           0..height: so many rows are copied, and mirrored
 *   reflectionHeight   rows of the reflection, 1 or more; they are resized to it (Lanczos). A reflection of fewer than
 *                      3 columns or rows, or of no rows, is black
 *   fadeStart          where the ramp of the colour begins: so many heights of the reflection ABOVE its first row; not
 *                      NaN, nor so large that the ramp comes from infinity, unless fadeEnd is 0 or below
 *   fadeEnd            where the ramp ends: so many heights below the first row; not NaN. Above the ramp there is none
 *                      of the colour, below it nothing else
 *   color              channel 0 in the low byte; also what the ripples show from outside the image
 *   fadeShape          a ZLV40_FadeShape
 *   ripple             up to 1, more is 1: how far ripples move pixels, 1 for 20 pixels a slope of noise (see
 *                      ZLV40_AddPerlinDisplacementTransform); 0 and below for no ripples
 *   rippleScale        size of the ripples in pixels; with 0 the image is as flat as its warp, which then does nothing
 *   flags              0 or ZLV40_REFLECT_RIPPLED, without which ripple is not looked at; other bits are ignored
 * Ripples draw from the calling thread's random generator. The thread's warp list stays as it is.
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written), ZLV40_ERROR_OUT_OF_MEMORY (also when width or
 * reflectionHeight is 0, or height is 0 with ripples) or ZLV40_ERROR_CANCELLED.
 * Progress once a row of the reflection while it fades. Can be cancelled, and then no row of the reflection is written;
 * the rows above it are. Works on the calling thread. */
#define ZLV40_ReflectImage _ZLV40_ReflectImage
ZLV40_API uint32_t ZLV40_ReflectImage(const uint8_t* source, uint32_t width, uint32_t height, uint32_t bytesPerPixel,
                                      uint32_t sourceStride, uint8_t* destination, uint32_t destinationStride,
                                      uint32_t splitRow, uint32_t reflectionHeight, double fadeStart, double fadeEnd,
                                      uint32_t color, uint32_t fadeShape, double ripple, uint32_t rippleScale,
                                      uint32_t flags);

/* ---- Warps -------------------------------------------------------------------------------------------------- */

/* Each thread has a list of warps. The ZLV40_Add functions below put one at its end, ZLV40_TransformProcess sends a
 * picture through all of them as often as wanted, ZLV40_ClearAllTransforms empties it.
 * A warp says where a pixel comes from. Every pixel's own position goes through the list from the first warp to the
 * last one, and the picture is read where it arrives: the warp that was added last acts on the picture first. Pixel
 * (0, 0) is at the top left, x grows to the right and y down, whole coordinates are pixels. A warp calling a position
 * outside ends its way: the pixel gets the fill.
 * width and height of an Add function are those of the pictures to come; the warp's centre is
 * ((width - 1) / 2, (height - 1) / 2), and its half diagonal is the distance from there to a corner. A list may be used
 * with pictures of another size: nothing but the result depends on it. Angles are in degrees, lengths in pixels.
 * Arguments that are no number lead to positions that are none, and those are outside; a radius that is none holds no
 * position.
 * Add functions return 1; or 0 with ZLV40_ERROR_OUT_OF_MEMORY or the code that they name, and the list as it was. They
 * report no progress. */

/* Empties this thread's warp list, and clears its last error. Never reports progress. Works on the calling thread. */
#define ZLV40_ClearAllTransforms _ZLV40_ClearAllTransforms
ZLV40_API void ZLV40_ClearAllTransforms(void);

/* Finds how far the positions of all pixels of a picture spread after this thread's warp list, whatever the warps call
 * outside: a step over every pixel, which takes the time of a warp without sampling.
 *   width, height  of the picture; for an empty one the minima are its sizes and the maxima 0
 *   minX, minY     receive the smallest coordinates, but not more than width and height; not NULL
 *   maxX           receives the largest x, but not less than 0; not NULL
 *   maxY           receives the same number as maxX, not a y; not NULL
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT for NULL. No progress. */
#define ZLV40_GetTransformDimensions _ZLV40_GetTransformDimensions
ZLV40_API uint32_t ZLV40_GetTransformDimensions(uint32_t width, uint32_t height, double* minX, double* minY,
                                                double* maxX, double* maxY);

/* How ZLV40_TransformProcess reads a point between pixels. */
enum ZLV40_Sampling {
    ZLV40_SAMPLING_NEAREST = 0,  /* one pixel */
    ZLV40_SAMPLING_BILINEAR = 1, /* the four pixels around it */
    ZLV40_SAMPLING_BICUBIC = 2,  /* the sixteen pixels around it */
    ZLV40_SAMPLING_NONE = 3      /* writes nothing */
};

/* Sends a picture through this thread's warp list. An empty list copies it.
 *   src            height rows of width pixels, 8 bits a sample, interleaved; not NULL; not changed
 *   width, height  of both images; nothing is written when one is 0
 *   srcRowStride   bytes from one row of src to the next, >= width * bytesPerPixel
 *   dst            an image of the same shape, not NULL; does not overlap src. Padding is not touched
 *   dstRowStride   bytes from one row of dst to the next, >= width * bytesPerPixel
 *   bytesPerPixel  channels, 0 or more; nothing is written for 0
 *   flags          a ZLV40_SAMPLING_ value; and
 *                  ZLV40_KEEP_DESTINATION takes what dst holds in place of background
 *                  ZLV40_CLAMP_POINTS moves positions outside the picture to its edge, but for those that a warp calls
 *                  outside
 *   background     what is outside the picture: its lowest byte is channel 0, the highest channel 3; channels behind
 *                  are 0
 * Sampling at (x, y):
 *   nearest   any fraction leads to the next pixel to the right or down. 0 to width and 0 to height are inside
 *   bilinear  the four pixels around, truncated. Towards the outside the picture fades into the fill over one pixel
 *   bicubic   the sixteen pixels around with cubic convolution (R. G. Keys, 1981, parameter -1), rounded; those that
 *             are outside count as the fill
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written) or ZLV40_ERROR_CANCELLED (rows done so far stay).
 * The list is as before either way. Progress once a row. Works on the calling thread. */
#define ZLV40_TransformProcess _ZLV40_TransformProcess
ZLV40_API uint32_t ZLV40_TransformProcess(const uint8_t* src, uint32_t width, uint32_t height, uint32_t srcRowStride,
                                          uint8_t* dst, uint32_t dstRowStride, int32_t bytesPerPixel, uint32_t flags,
                                          uint32_t background);

/* What ZLV40_AddEllipticalTransform squeezes. */
enum ZLV40_Squeeze {
    ZLV40_SQUEEZE_HORIZONTAL = 0, /* rows */
    ZLV40_SQUEEZE_VERTICAL = 1,   /* columns */
    ZLV40_SQUEEZE_BOTH = 2        /* rows and columns */
};

/* Squeezes the picture into an ellipse with the picture's centre, moved by the offset: rows, columns or both are each
 * stretched from the width that the ellipse has there to the whole size. Positions outside the ellipse, and those that
 * are outside the picture's frame moved by the offset, are outside.
 *   semiAxisX, semiAxisY  half the ellipse's width and height in pixels; their signs do not matter. 0 is refused with
 *                         ZLV40_ERROR_BAD_ARGUMENT
 *   offsetX, offsetY      of the frame to the right and down
 *   mode                  a ZLV40_SQUEEZE_ value. Below 0 nothing is squeezed or moved, and the frame's outside is
 *                         outside all the same; above them it is refused with ZLV40_ERROR_BAD_ARGUMENT
 * An empty width or height is taken for an empty frame, of which the position of the offset alone is inside. */
#define ZLV40_AddEllipticalTransform _ZLV40_AddEllipticalTransform
ZLV40_API uint32_t ZLV40_AddEllipticalTransform(uint32_t width, uint32_t height, double semiAxisX, double semiAxisY,
                                                int32_t offsetX, int32_t offsetY, int32_t mode);

/* Magnifies a round area: a position at the distance r from the centre comes from r * sin(pi / 2 * r / half diagonal).
 * The radius limits the area only; the bend depends on the picture's size. (Straight above and below the centre x is
 * moved by offsetX on top.)
 *   radius            of the area, the rim included; 0 and an empty width or height are refused with
 *                     ZLV40_ERROR_BAD_ARGUMENT; below 0 and for NaN no point is in it
 *   offsetX, offsetY  of the centre to the right and down */
#define ZLV40_AddLensTransform _ZLV40_AddLensTransform
ZLV40_API uint32_t ZLV40_AddLensTransform(uint32_t width, uint32_t height, double radius, int32_t offsetX,
                                          int32_t offsetY);

/* Where ZLV40_AddOffsetTransform brings back what leaves the picture. Any other value is ZLV40_WRAP_NONE. */
enum ZLV40_Wrap {
    ZLV40_WRAP_NONE = 0, /* nowhere */
    ZLV40_WRAP_BOTH = 1, /* on the opposite side */
    ZLV40_WRAP_X = 2,    /* left and right only */
    ZLV40_WRAP_Y = 3     /* above and below only */
};

/* Shifts the picture by shiftX to the right and shiftY down.
 *   wrap  a ZLV40_WRAP_ value: on these axes what is below 0 is moved by the picture's size once, and then what is
 *         above the last pixel is moved back once */
#define ZLV40_AddOffsetTransform _ZLV40_AddOffsetTransform
ZLV40_API uint32_t ZLV40_AddOffsetTransform(uint32_t width, uint32_t height, double shiftX, double shiftY,
                                            uint32_t wrap);

/* Pinches a round area: a position at the distance r from the centre comes from r + strength * (1 - r / half diagonal),
 * but never from beyond the centre.
 *   radius            as for the lens
 *   strength          in pixels: above 0 the picture shrinks towards the centre, below 0 it grows
 *   offsetX, offsetY  of the centre to the right and down */
#define ZLV40_AddPinchTransform _ZLV40_AddPinchTransform
ZLV40_API uint32_t ZLV40_AddPinchTransform(uint32_t width, uint32_t height, double radius, double strength,
                                           int32_t offsetX, int32_t offsetY);

/* The curves of ZLV40_AddPointAttractorTransform: how far a position moves by its distance from the centre. Any other
 * value moves nothing. */
enum ZLV40_Attraction {
    ZLV40_ATTRACT_LINEAR = 0, /* evenly less and less */
    ZLV40_ATTRACT_SINE = 1,   /* half waves that begin with 0 */
    ZLV40_ATTRACT_COSINE = 2, /* half waves that begin with all of it */
    ZLV40_ATTRACT_SQUARE = 3, /* a parabola that begins with 0, and the other way */
    ZLV40_ATTRACT_CUBIC = 4,  /* fast, hardly, and fast again */
    ZLV40_ATTRACT_ARC = 5     /* more and more, ever slower */
};

/* Draws the whole picture towards a centre or drives it away: a position at the distance r from the centre comes from
 * r + strength * s, but never from beyond the centre. The centre itself stays. With u = r / half diagonal, f = the
 * frequency and w = u - 0.7, s is
 *   ZLV40_ATTRACT_LINEAR  1 - u f                    ZLV40_ATTRACT_SQUARE  -u f + (u f)^2
 *   ZLV40_ATTRACT_SINE    sin(pi u f)                ZLV40_ATTRACT_CUBIC   (18 w^3 + 12 w^2 + w - 2) / 2 + 1.5
 *   ZLV40_ATTRACT_COSINE  cos(pi u f) / 2 + 1 / 2    ZLV40_ATTRACT_ARC     atan(u f)
 * and 0 for any other mode.
 *   strength          in pixels
 *   offsetX, offsetY  of the centre to the right and down
 *   mode              a ZLV40_ATTRACT_ value
 * An empty width or height is refused with ZLV40_ERROR_BAD_ARGUMENT. */
#define ZLV40_AddPointAttractorTransform _ZLV40_AddPointAttractorTransform
ZLV40_API uint32_t ZLV40_AddPointAttractorTransform(uint32_t width, uint32_t height, double strength, int32_t offsetX,
                                                    int32_t offsetY, uint32_t mode, double frequency);

/* What ZLV40_AddPolygonTransform squeezes. Any other value is nothing. */
enum ZLV40_PolygonWarp {
    ZLV40_POLYGON_ROWS = 0,      /* each row to the polygon's width there */
    ZLV40_POLYGON_COLUMNS = 1,   /* each column to the polygon's height there */
    ZLV40_POLYGON_BOTH = 2,      /* rows and columns */
    ZLV40_POLYGON_ROWS_AGAIN = 5 /* the same as ROWS */
};

/* Squeezes the picture into a convex polygon: each of its rows is stretched to the whole width, each of its columns to
 * the whole height, or both. What is outside the polygon, or the picture, is outside.
 *   polygon     pointCount points, in any order: their convex hull counts. Not kept. It is refused with
 *               ZLV40_ERROR_BAD_ARGUMENT when it is NULL, has fewer than three points, has them all in a line, covers
 *               no pixel's centre or billions of rows; so it is without memory for its rows
 *   mode        a ZLV40_POLYGON_ value. A span's ends are inside when rows alone are squeezed, otherwise outside. Any
 *               other value changes nothing but that the picture's outside is outside
 * An empty width or height is taken for a picture of one point, (0, 0). */
#define ZLV40_AddPolygonTransform _ZLV40_AddPolygonTransform
ZLV40_API uint32_t ZLV40_AddPolygonTransform(uint32_t width, uint32_t height, const point* polygon, uint32_t pointCount,
                                             uint32_t mode);

/* Scatters the pixels: each position moves by random amounts in x and y, above -amount / 2 and up to amount / 2, in
 * steps of a thousandth of it. Seeds this thread's random generator with the time in seconds, and draws from it with
 * every use, two numbers for each position that gets here: no two runs are alike.
 * An empty width or height is refused with ZLV40_ERROR_BAD_ARGUMENT. */
#define ZLV40_AddRandomTransform _ZLV40_AddRandomTransform
ZLV40_API uint32_t ZLV40_AddRandomTransform(uint32_t width, uint32_t height, double amount);

/* How the waves of ZLV40_AddRippleTransform change from the centre to the rim. Any other value is even, too. */
enum ZLV40_RippleFalloff {
    ZLV40_RIPPLE_EVEN = 0,   /* not at all */
    ZLV40_RIPPLE_LINEAR = 1, /* they fade evenly */
    ZLV40_RIPPLE_SQUARE = 2, /* they fade fast, then slowly */
    ZLV40_RIPPLE_SINE = 3,   /* they grow from nothing at the centre */
    ZLV40_RIPPLE_COSINE = 4  /* they fade slowly, then fast */
};

/* Rings like those on water: with t = r / radius, a position at the distance r from the centre comes from
 * r + amplitude * sin(pi t frequency) * weight, beyond the centre if that is below 0.
 *   radius            of the area, the rim and the centre included; 0 is refused with ZLV40_ERROR_BAD_ARGUMENT; below 0
 *                     and for NaN no point is in it
 *   amplitude         in pixels
 *   frequency         half waves from the centre to the rim
 *   offsetX, offsetY  of the centre to the right and down
 *   falloff           a ZLV40_RIPPLE_ value: the weight is 1 (even), 1 - t (linear), (1 - t)^2 (square),
 *                     sin(pi t / 2) (sine) or cos(pi t / 2) (cosine)
 * An empty width or height is taken: the centre is at the offset from (0, 0) then. */
#define ZLV40_AddRippleTransform _ZLV40_AddRippleTransform
ZLV40_API uint32_t ZLV40_AddRippleTransform(uint32_t width, uint32_t height, double radius, double amplitude,
                                            double frequency, double offsetX, double offsetY, uint32_t falloff);

/* Turns a round area, in its centre by the whole angle and less and less towards the rim.
 *   radius            as for the lens
 *   angleDegrees      above 0 what is seen turns counterclockwise
 *   offsetX, offsetY  of the centre to the right and down */
#define ZLV40_AddSpinTransform _ZLV40_AddSpinTransform
ZLV40_API uint32_t ZLV40_AddSpinTransform(uint32_t width, uint32_t height, double radius, double angleDegrees,
                                          int32_t offsetX, int32_t offsetY);

/* Turns a round area in waves: at the distance r from the centre by angleDegrees * (1 - q cos(q frequency)), with
 * q = r / radius. Everything else is as for ZLV40_AddSpinTransform. */
#define ZLV40_AddSpinWaveTransform _ZLV40_AddSpinWaveTransform
ZLV40_API uint32_t ZLV40_AddSpinWaveTransform(uint32_t width, uint32_t height, double radius, double angleDegrees,
                                              double frequency, int32_t offsetX, int32_t offsetY);

/* Warps by a function of the client's. width and height are not looked at.
 *   callback  not NULL, or ZLV40_ERROR_BAD_ARGUMENT
 *   userData  handed to every call of it */
#define ZLV40_AddUserTransform _ZLV40_AddUserTransform
ZLV40_API uint32_t ZLV40_AddUserTransform(uint32_t width, uint32_t height, ZLVWarpFunction callback, void* userData);

/* How ZLV40_AddWowTransform grows towards the rim. Any other value is linear, too. */
enum ZLV40_Wow {
    ZLV40_WOW_LINEAR = 0, /* evenly */
    ZLV40_WOW_SINE = 1    /* along a sine, and less far */
};

/* Blows the picture's middle up: a position at the distance r from the centre comes from (1 - g) * r, with
 * g = r / half diagonal or, for ZLV40_WOW_SINE, g = sin(pi / 8 * r / half diagonal). Beyond the half diagonal the first
 * one is on the other side of the centre.
 *   radius  as for the lens
 *   mode    a ZLV40_WOW_ value */
#define ZLV40_AddWowTransform _ZLV40_AddWowTransform
ZLV40_API uint32_t ZLV40_AddWowTransform(uint32_t width, uint32_t height, double radius, uint32_t mode);

/* Displaces pixels by the slopes of a relief, which repeats itself to all sides: where it rises to the right a pixel
 * comes from further left, where it rises downwards from further down.
 *   strength  pixels for each of three neighbours that rises from 0 to 1 between one side and the other
 *   bumpMap   mapHeight rows of mapWidth heights without gaps, 0..255 for 0 to 1; not NULL, or
 *             ZLV40_ERROR_BAD_ARGUMENT. Read when pictures are processed, not copied: it stays valid until the list is
 *             cleared
 *   mapWidth, mapHeight  1 or more, or ZLV40_ERROR_BAD_ARGUMENT
 * Coordinates are truncated to integers towards 0. What is no number, or not within 64 bits, reads column or row 0. */
#define ZLV40_AddBumpMapDisplacementTransform _ZLV40_AddBumpMapDisplacementTransform
ZLV40_API uint32_t ZLV40_AddBumpMapDisplacementTransform(uint32_t width, uint32_t height, double strength,
                                                         const uint8_t* bumpMap, uint32_t mapWidth, uint32_t mapHeight);

/* Displaces pixels around the contours of a field of Perlin noise, which is made for this warp and draws from the
 * calling thread's random generator (see ZLV40_InitializePerlinNoise3D).
 *   strength        pixels for a slope of noise: the difference of three neighbours from the three opposite ones
 *   scaleX, scaleY  the size of the noise's features in pixels; not 0, or ZLV40_ERROR_OUT_OF_MEMORY
 * Where the noise is no number, pixels are outside. */
#define ZLV40_AddPerlinDisplacementTransform _ZLV40_AddPerlinDisplacementTransform
ZLV40_API uint32_t ZLV40_AddPerlinDisplacementTransform(uint32_t width, uint32_t height, double strength, double scaleX,
                                                        double scaleY);

/* Moves every pixel by scaleY, in a direction that turns with a field of Perlin noise, made as above.
 *   cycles          turns from the lowest to the highest noise
 *   scaleX, scaleY  the size of the noise's features in pixels; not 0, or ZLV40_ERROR_OUT_OF_MEMORY
 * Empty sizes give ZLV40_ERROR_BAD_ARGUMENT. Where the noise is no number, pixels stay. */
#define ZLV40_AddMarbleTransform _ZLV40_AddMarbleTransform
ZLV40_API uint32_t ZLV40_AddMarbleTransform(uint32_t width, uint32_t height, double cycles, double scaleX,
                                            double scaleY);

/* Looks through a wall of glass blocks.
 *   tileWidth, tileHeight  of a block in pixels, 1 or more, or ZLV40_ERROR_BAD_ARGUMENT
 *   bevelWidth             of the bevelled edges in pixels
 *   bevelStrength          how far the edge itself displaces, in pixels
 *   flatBevel              not 0: edges have no ripples
 *   zoom                   below 1 each block shows all of the picture at that size around its own place
 *   noiseScale             of the ripples, which are ZLV40_GeneratePerlinNoise of this scale, made anew for every
 *                          block: many small ones take their time
 *   bumpStrength           pixels for a slope of the ripples by 1 of 255 levels
 * Points are moved into the picture. Far outside it there are no ripples; with an empty size nothing is displaced. */
#define ZLV40_AddGlassBlockTransform _ZLV40_AddGlassBlockTransform
ZLV40_API uint32_t ZLV40_AddGlassBlockTransform(uint32_t width, uint32_t height, uint32_t tileWidth,
                                                uint32_t tileHeight, uint32_t bevelWidth, uint32_t bevelStrength,
                                                uint32_t flatBevel, double zoom, double noiseScale,
                                                double bumpStrength);

/* Which way ZLV40_AddLineSliceTransform and ZLV40_AddZigZagTransform shift pixels. Any other value does nothing. */
enum ZLV40_Shift {
    ZLV40_SHIFT_Y = 0, /* up and down: the middle row bends */
    ZLV40_SHIFT_X = 1  /* to the sides: the middle column bends */
};

/* The next three bend the line through the middle of the picture. The picture is stretched on both sides of the line,
 * its edges stay where they are. A position beyond the picture along the line goes to 0 or the size there, one that is
 * no number stays. All refuse empty sizes with ZLV40_ERROR_BAD_ARGUMENT. */

/* Bends the middle row or column to a slanted line.
 *   start, end  where it is in the first and in the last column (or row), in pixels; anywhere
 *   mode        a ZLV40_SHIFT_ value: ZLV40_SHIFT_Y bends the middle row, ZLV40_SHIFT_X the middle column */
#define ZLV40_AddLineSliceTransform _ZLV40_AddLineSliceTransform
ZLV40_API uint32_t ZLV40_AddLineSliceTransform(uint32_t width, uint32_t height, int32_t start, int32_t end,
                                               uint32_t mode);

/* The waves of ZLV40_AddWaveTransform, and which way they shift pixels. Any other value does nothing. */
enum ZLV40_Wave {
    ZLV40_WAVE_SINE_Y = 0,   /* begins in the middle; up and down */
    ZLV40_WAVE_SINE_X = 1,   /* begins in the middle; to the sides */
    ZLV40_WAVE_COSINE_Y = 2, /* begins at its height; up and down */
    ZLV40_WAVE_COSINE_X = 3  /* begins at its height; to the sides */
};

/* Bends the middle row or column to a wave.
 *   amplitudePercent  of the picture's size in the direction in which pixels are shifted
 *   cycles            half periods from the first to the last pixel of the line
 *   mode              a ZLV40_WAVE_ value: those for Y bend the middle row, those for X the middle column
 * A picture of one column (or row) has no wave: with these modes all of it is outside. */
#define ZLV40_AddWaveTransform _ZLV40_AddWaveTransform
ZLV40_API uint32_t ZLV40_AddWaveTransform(uint32_t width, uint32_t height, double amplitudePercent, double cycles,
                                          uint32_t mode);

/* Bends the middle row or column to teeth.
 *   amplitudePercent  from the points of the teeth to their gaps, of the picture's size along the line
 *   teeth             1 to the pixels along the line, or ZLV40_ERROR_BAD_ARGUMENT
 *   mode              a ZLV40_SHIFT_ value: ZLV40_SHIFT_Y bends the middle row, ZLV40_SHIFT_X the middle column
 * Teeth of 2 or 3 pixels have no slope: there the picture is outside, or at its edge. */
#define ZLV40_AddZigZagTransform _ZLV40_AddZigZagTransform
ZLV40_API uint32_t ZLV40_AddZigZagTransform(uint32_t width, uint32_t height, double amplitudePercent, int32_t teeth,
                                            uint32_t mode);

/* Drags what is at one point of an image to another point, as a finger does in wet paint. The reach is twice the
 * distance of the points in whole pixels; what is further than that from *toPoint, to the sides or up and down, is
 * copied.
 *   src            height rows of rowStride bytes, the last one whole as well: width pixels, 8 bits a sample,
 *                  interleaved; not NULL; not changed
 *   width, height  of both images, 1 or more
 *   bytesPerPixel  channels, 1 or more
 *   rowStride      bytes from one row to the next, width * bytesPerPixel or more
 *   dst            height rows of rowStride bytes, not NULL; does not overlap src. All of it is written, padding is
 *                  copied too
 *   fromPoint      where the content is, anywhere, also outside the image; not NULL
 *   toPoint        where it goes, anywhere; not NULL. The same point gives a plain copy
 * Each quarter of the square around *toPoint, as far as it is inside the image, is drawn from the quadrilateral of its
 * outer corners and *fromPoint: pixels on the square's edge stay, *toPoint becomes *fromPoint. Places are sampled with
 * cubic convolution over sixteen pixels (R. G. Keys, 1981, parameter -1), rounded; those outside the image are moved to
 * its edge.
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written) or ZLV40_ERROR_CANCELLED (the copy and the
 * quarters done so far stay).
 * Progress is reported after each quarter as 1, 2, 3 and 4 of 4, for different points. Works on the calling thread. */
#define ZLV40_PushImage _ZLV40_PushImage
ZLV40_API uint32_t ZLV40_PushImage(const uint8_t* src, uint32_t width, uint32_t height, uint32_t bytesPerPixel,
                                   uint32_t rowStride, uint8_t* dst, const point* fromPoint, const point* toPoint);

/* ---- Generators --------------------------------------------------------------------------------------------- */

/* Makes a field of Perlin noise: coherent noise in three dimensions, from 1791 draws of the calling thread's random
 * generator (see ZLV40_AddGaussianNoise).
 * Returns a handle, which the caller gives to ZLV40_DestroyPerlinNoise3D; or NULL with ZLV40_ERROR_OUT_OF_MEMORY.
 * A field is not changed by its use: any number of threads may use it at once. Never reports progress. Works on the
 * calling thread.
 * Source: K. Perlin, "An image synthesizer", SIGGRAPH (1985). */
#define ZLV40_InitializePerlinNoise3D _ZLV40_InitializePerlinNoise3D
ZLV40_API void* ZLV40_InitializePerlinNoise3D(void);

/* Frees a field of noise.
 *   handle  of ZLV40_InitializePerlinNoise3D, not freed before; not NULL
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT for NULL. Never reports progress. Works on the calling thread. */
#define ZLV40_DestroyPerlinNoise3D _ZLV40_DestroyPerlinNoise3D
ZLV40_API uint32_t ZLV40_DestroyPerlinNoise3D(void* handle);

/* Writes a plane through a field of noise as gray levels: at column x of row y trunc(v * 128 + 127), limited to 0..255,
 * with the noise v, about -1..1, at the point (x * scale, y * scale, z). Points of whole numbers have no noise.
 *   handle     of ZLV40_InitializePerlinNoise3D; not NULL
 *   out        receives width * height bytes, row behind row without gaps; not NULL
 *   width      samples a row, 1 or more
 *   height     rows, 1 or more
 *   rowStride  any; not looked at
 *   scale      the distance of two pixels in the field, whose features have a size of about 1
 *   z          the height of the plane
 * Coordinates below -4096 give noise with a seam; what is not finite, 0.
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written), ZLV40_ERROR_COULD_NOT_RUN for a handle behind
 * which there is no field any more (nothing is written), or ZLV40_ERROR_CANCELLED.
 * Progress once a row; can be cancelled, rows done so far stay written. Works on the calling thread. */
#define ZLV40_GetPerlinNoise3DSliceBYTE _ZLV40_GetPerlinNoise3DSliceBYTE
ZLV40_API uint32_t ZLV40_GetPerlinNoise3DSliceBYTE(void* handle, uint8_t* out, uint32_t width, uint32_t height,
                                                   uint32_t rowStride, double scale, double z);

/* Writes a plane through a field of noise as numbers: the noise itself at (x * scale, y * scale, z). Arguments, errors
 * and progress as with ZLV40_GetPerlinNoise3DSliceBYTE; out receives width * height doubles, NaN at points that are not
 * finite. */
#define ZLV40_GetPerlinNoise3DSliceDouble _ZLV40_GetPerlinNoise3DSliceDouble
ZLV40_API uint32_t ZLV40_GetPerlinNoise3DSliceDouble(void* handle, double* out, uint32_t width, uint32_t height,
                                                     uint32_t rowStride, double scale, double z);

/* Writes a plane through a field of noise that is moved and turned. As ZLV40_GetPerlinNoise3DSliceDouble, but with
 * a = x * scale + offsetX - pivotX and b = y * scale + offsetY - pivotY the point is
 * (a * cos(angle) + b * sin(angle) + pivotX, b * cos(angle) - a * sin(angle) + pivotY, z).
 *   offsetX, offsetY  of the first pixel, in the field
 *   angle             of the turn, in radians
 *   pivotX, pivotY    the point that stays where it is, in the field
 * Results, progress and threads are those of ZLV40_GetPerlinNoise3DSliceBYTE. */
#define ZLV40_GetPerlinNoise3DSliceDoubleEx _ZLV40_GetPerlinNoise3DSliceDoubleEx
ZLV40_API uint32_t ZLV40_GetPerlinNoise3DSliceDoubleEx(void* handle, double* out, uint32_t width, uint32_t height,
                                                       uint32_t rowStride, double scale, double z, double offsetX,
                                                       double offsetY, double angle, double pivotX, double pivotY);

/* Fills a gray image with Perlin noise: the plane at height 0 of a field that is made for this call and draws from the
 * calling thread's random generator, also when an argument is refused.
 *   out        receives width * height bytes, row behind row without gaps; not NULL
 *   width      samples a row, 1 or more
 *   height     rows, 1 or more
 *   rowStride  any; not looked at
 *   scale      the distance of two pixels in the field, whose features have a size of about 1
 * Levels, errors and progress as with ZLV40_GetPerlinNoise3DSliceBYTE. The next call on a thread gives another
 * field. */
#define ZLV40_GeneratePerlinNoise _ZLV40_GeneratePerlinNoise
ZLV40_API uint32_t ZLV40_GeneratePerlinNoise(uint8_t* out, uint32_t width, uint32_t height, int32_t rowStride,
                                             double scale);

/* Fills a gray image with value noise of several octaves. Each octave has one of eight integer hashes, dealt out anew
 * by the calling thread's random generator, which is set to the system's tick count for that: two calls differ.
 *   dst          receives height rows of width bytes; not NULL
 *   width        samples a row, 1 or more
 *   height       rows, 1 or more
 *   rowStride    bytes from one row to the next, >= width; padding is not touched
 *   octaves      one more than are summed, up to 8; 1 and less give an even 127
 *   persistence  the amplitude of an octave is persistence to the power 0, 1, 2, ...
 *   scale        the distance of two pixels, in points of the first octave's lattice; doubled from octave to octave
 * The sum v, limited to -1..1, is written as 127 - trunc(v * -128), limited to 0..255; 0 where it is not a number. A
 * hash is smoothed over 3 x 3 points of the lattice and blended between them by (1 - cos(t * 3.141596)) / 2.
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT (nothing is written, and the generator stays),
 * ZLV40_ERROR_OUT_OF_MEMORY or ZLV40_ERROR_CANCELLED.
 * Progress once a row; can be cancelled, rows done so far stay written. Works on the calling thread. */
#define ZLV40_GenerateHugoNoise _ZLV40_GenerateHugoNoise
ZLV40_API uint32_t ZLV40_GenerateHugoNoise(uint8_t* dst, uint32_t width, uint32_t height, uint32_t rowStride,
                                           int32_t octaves, double persistence, double scale);

/* What ZLV40_GenerateColoredNoise paints. The last four are added to a middle gray. */
enum ZLV40_NoiseKind {
    ZLV40_NOISE_PERLIN = 0,               /* ZLV40_GeneratePerlinNoise: clouds */
    ZLV40_NOISE_HUGO = 1,                 /* ZLV40_GenerateHugoNoise: clouds of several sizes */
    ZLV40_NOISE_GAUSSIAN = 2,             /* ZLV40_AddGaussianNoise: grain around the gray */
    ZLV40_NOISE_NEGATIVE_EXPONENTIAL = 3, /* ZLV40_AddNegativeExpNoise: bright specks */
    ZLV40_NOISE_RAYLEIGH = 4,             /* ZLV40_AddRayleighNoise: bright grain */
    ZLV40_NOISE_UNIFORM = 5               /* ZLV40_AddUniformNoise: grain of limited height */
};

/* Paints an RGB image with noise of one hue and saturation: the noise is the value of each pixel.
 *   dst        receives height rows of width pixels of 3 bytes: red, green, blue; not NULL
 *   width      pixels a row, 1 or more
 *   height     rows, 1 or more
 *   rowStride  bytes from one row to the next, >= width * 3; padding is not touched
 *   colour     red in the low byte, then green, then blue; its own value plays no part, and gray ones paint in gray
 *   amount     0..100, larger ones are 100. Perlin and Hugo noise get finer with less: their scale is
 *              1 - amount / 100 * 0.99; the others have a variance of 100 * amount
 *   noiseKind  a ZLV40_NoiseKind
 * Draws from the calling thread's random generator; Hugo noise (4 octaves, persistence 0.5) also sets it.
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT or ZLV40_ERROR_OUT_OF_MEMORY (nothing is written).
 * Never reports progress, and can't be cancelled. Works on the calling thread. */
#define ZLV40_GenerateColoredNoise _ZLV40_GenerateColoredNoise
ZLV40_API uint32_t ZLV40_GenerateColoredNoise(uint8_t* dst, uint32_t width, uint32_t height, uint32_t rowStride,
                                              uint32_t colour, uint32_t amount, uint32_t noiseKind);

/* What ZLV40_GradientFillImageLinear does behind its start. Any other value mirrors too. */
enum ZLV40_GradientMode {
    ZLV40_GRADIENT_MIRRORED = 0, /* the same colours in the other direction */
    ZLV40_GRADIENT_ONE_SIDED = 1 /* the first stop's colour */
};

/* Paints an image with colours that change along a line.
 *   image           receives height rows of width pixels, 8 bits a sample, interleaved; not NULL
 *   width, height   of the image; 0 is nothing to do
 *   bytesPerPixel   channels, 1..4: so many of a colour's bytes are written, the first ones
 *   rowStride       bytes from one row to the next, >= width * bytesPerPixel; padding is not touched
 *   startX, startY  in pixels: where 0 percent is; not the same point as the end
 *   endX, endY      in pixels: where 100 percent is
 *   colors          stopCount colours of four bytes; not NULL, only read
 *   positions       stopCount percentages, limited to 0..100, in any order; not NULL, only read. Of stops at one
 *                   position the first and the last one count, and the colour jumps between them
 *   stopCount       2 or more
 *   mode            ZLV40_GRADIENT_ONE_SIDED: behind the line through the start, at right angles to the gradient,
 *                   pixels have the first stop's colour; otherwise the gradient is mirrored there
 *   gamma           a fraction t of the way between two stops becomes t to the power gamma; 1 leaves it
 *   flags           ZLV40_COLORS_AS_IMAGE; without it the first and the third byte of each colour are exchanged
 * Before the first stop and behind the last one their colours hold; the pixel of the start has the first stop's. Blends
 * are truncated. Where a point or gamma that is not a number leaves no colour, its bytes are 0.
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT or ZLV40_ERROR_OUT_OF_MEMORY (nothing is written), or
 * ZLV40_ERROR_CANCELLED.
 * Progress once a row; can be cancelled, rows done so far stay painted. Works on the calling thread. */
#define ZLV40_GradientFillImageLinear _ZLV40_GradientFillImageLinear
ZLV40_API uint32_t ZLV40_GradientFillImageLinear(uint8_t* image, uint32_t width, uint32_t height,
                                                 uint32_t bytesPerPixel, uint32_t rowStride, double startX,
                                                 double startY, double endX, double endY, const uint8_t* colors,
                                                 const double* positions, uint32_t stopCount, uint32_t mode,
                                                 double gamma, uint32_t flags);

/* Paints an image with colours that change with the distance from a centre. As ZLV40_GradientFillImageLinear, but:
 *   radius            in pixels, above 0: the distance of 100 percent
 *   centerX, centerY  in pixels: where 0 percent is
 *   mode              any; not looked at
 * Beyond the radius the last stop's colour holds. Squared distances are numbers of 32 bits and wrap: pixels 46341 and
 * more from the centre have other colours, or none, whose bytes are 0. Results, progress and threads are the same. */
#define ZLV40_GradientFillImageRadial _ZLV40_GradientFillImageRadial
ZLV40_API uint32_t ZLV40_GradientFillImageRadial(uint8_t* image, uint32_t width, uint32_t height,
                                                 uint32_t bytesPerPixel, uint32_t rowStride, double radius,
                                                 int32_t centerX, int32_t centerY, const uint8_t* colors,
                                                 const double* positions, uint32_t stopCount, uint32_t mode,
                                                 double gamma, uint32_t flags);

/* ---- Splines ------------------------------------------------------------------------------------------------ */

/* Evaluates an open uniform B-spline of control points in space at even steps of its parameter (C. de Boor, On
 * Calculating with B-Splines, 1972). The first point is the first control point, the last one the last; between them
 * the curve is drawn towards its control points, and with an order of 2 goes through them.
 *   outCount          points wanted, 1 or more; 1 gives the last control point
 *   controlCount      control points, 3 or more and more than order
 *   order             the degree plus 1, 1 or more: 2 gives straight lines, 4 cubic curves. The time of a point grows
 *                     with its square
 *   x, y, z           controlCount coordinates each; not NULL; not changed
 *   outX, outY, outZ  receive outCount coordinates each; not NULL; may be x, y and z
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT or ZLV40_ERROR_OUT_OF_MEMORY (nothing is written).
 * Never reports progress and can't be cancelled. Works on the calling thread. */
#define ZLV40_Get3DSplinePoints _ZLV40_Get3DSplinePoints
ZLV40_API uint32_t ZLV40_Get3DSplinePoints(uint32_t outCount, uint32_t controlCount, uint32_t order, const double* x,
                                           const double* y, const double* z, double* outX, double* outY, double* outZ);

/* ---- Layer styles ------------------------------------------------------------------------------------------- */

/* Functions of this section report progress, and can be cancelled, only when they are called from within a progress
 * callback. Called directly they do neither. */

/* Makes a new, larger image: the source over a blurred, shifted copy of its shape. Without flags, or with other than
 * four channels, the shadow is a rectangle on a background of one colour; otherwise it follows the alpha channel on a
 * transparent ground.
 *   src              height rows of width pixels, 8 bits a sample, interleaved; not NULL; not changed
 *   width, height    may be 0 with the rectangle: there is a ground and nothing on it
 *   bytesPerPixel    channels, 1, 3 or 4
 *   srcRowStride     bytes from one row of src to the next, >= width * bytesPerPixel. With the rectangle src is read as
 *                    if its rows were packed
 *   outImage         receives the new image, rows packed, to be freed by ZLV40_FreeBlock; not NULL
 *   outWidth, outHeight  receive its size: for a blur of 0, 25, 50, 75, 100 percent 7, 11, 17, 21, 27 pixels more than
 *                    the source's, and the shift; not NULL
 *   distance         of the shadow in pixels, truncated along each axis
 *   blurPercent      0 to 100 for a blur of sigma 1 to 5; other values go on, down to none
 *   backgroundColor  of the rectangle's ground: its lowest byte is channel 0, the highest channel 3
 *   shadowColor      of the shadow, likewise
 *   angle            in degrees, clockwise: 0 throws the shadow up, 90 to the right. Below 0 and above 360 the image
 *                    and the shadow may come to lie outside, where nothing is drawn
 *   imagePos, shadowPos  receive the upper left corners of the source and of the shadow in the new image, also when
 *                    memory is out later; may be NULL
 *   flags            0, or ZLV40_SHADOW_OF_ALPHA follows the alpha channel; refused with other than four channels; and
 *                    ZLV40_SHADOW_TINTED gives that shadow its colour, and by itself means both
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT or ZLV40_ERROR_OUT_OF_MEMORY (also when the new image would be too
 * large or less than a pixel wide or high, or an empty source has no alpha to follow); outImage, outWidth and outHeight
 * are not written then. A cancel leaves a shadow that is not finished, and the result is 1. Works on the calling
 * thread. */
#define ZLV40_DropShadowEx _ZLV40_DropShadowEx
ZLV40_API uint32_t ZLV40_DropShadowEx(const uint8_t* src, uint32_t width, uint32_t height, uint32_t bytesPerPixel,
                                      uint32_t srcRowStride, uint8_t** outImage, uint32_t* outWidth,
                                      uint32_t* outHeight, int32_t distance, int32_t blurPercent,
                                      uint32_t backgroundColor, uint32_t shadowColor, int32_t angle, point* imagePos,
                                      point* shadowPos, uint32_t flags);

/* ZLV40_DropShadowEx of an image whose rows are packed, without the two corners. For arguments, results, progress and
 * threads see there. */
#define ZLV40_DropShadow _ZLV40_DropShadow
ZLV40_API uint32_t ZLV40_DropShadow(const uint8_t* src, uint32_t width, uint32_t height, uint32_t bytesPerPixel,
                                    uint8_t** outImage, uint32_t* outWidth, uint32_t* outHeight, int32_t distance,
                                    int32_t blurPercent, uint32_t backgroundColor, uint32_t shadowColor, int32_t angle,
                                    uint32_t flags);

/* Frames an image with four shades, in place, so that it looks raised or sunken. A shade is a percentage: samples are
 * multiplied by shade / 100, limited to 255 and truncated; 100 changes nothing.
 *   image          height rows of width pixels, 8 bits a sample, interleaved; not NULL
 *   width, height  1 or more, and at least 2 * bevelWidth
 *   rowStride      bytes from one row to the next, >= width * bytesPerPixel
 *   bevelWidth     of the frame, in pixels
 *   bytesPerPixel  channels; with 0 nothing is changed
 *   flags          0, or ZLV40_PROTECT_ALPHA: the fourth of four channels is left alone; other bits are ignored
 *   leftShade, topShade, rightShade, bottomShade  in percent, limited to 0 to 255 and truncated; not NaN. The corners
 *                  are the top's and the bottom's
 *   blur           blurs the frame by a Gaussian of sigma blur / 100; 0 leaves it sharp
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT or ZLV40_ERROR_OUT_OF_MEMORY, also for an empty image (nothing is
 * written), or ZLV40_ERROR_CANCELLED (rows done so far stay). Progress once a row. Works on the calling thread. */
#define ZLV40_ShadeBevelEdge _ZLV40_ShadeBevelEdge
ZLV40_API uint32_t ZLV40_ShadeBevelEdge(uint8_t* image, uint32_t width, uint32_t height, uint32_t rowStride,
                                        uint32_t bevelWidth, uint32_t bytesPerPixel, uint32_t flags, double leftShade,
                                        double topShade, double rightShade, double bottomShade, double blur);

/* Puts a soft halo of one colour behind the shape that the alpha channel describes, in place: the alpha is blurred,
 * reshaped by a curve, and becomes the new alpha where it is larger.
 *   image          height rows of width pixels of four channels, the last one alpha; not NULL
 *   width, height  1 or more
 *   rowStride      bytes from one row to the next, >= width * 4
 *   size           reach of the glow in pixels: a Gaussian of sigma size / 2.5
 *   opacity        of the glow, limited to 0 to 1; not NaN
 *   color          of the glow: its lowest byte is channel 0; the highest one is not used
 *   curve          256 bytes, the coverage for each blurred alpha; NULL for (i / 256) to the power 5 / 9, times 256
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT or ZLV40_ERROR_OUT_OF_MEMORY, also for an empty image; nothing is
 * written then. The blur's progress; a cancel ends the blur, and the result is 1. Works on the calling thread. */
#define ZLV40_OuterGlowRGBA _ZLV40_OuterGlowRGBA
ZLV40_API uint32_t ZLV40_OuterGlowRGBA(uint8_t* image, uint32_t width, uint32_t height, uint32_t rowStride,
                                       uint32_t size, double opacity, uint32_t color, const uint8_t* curve);

/* Tints a shape from its edges inwards, in place: what is transparent is blurred into the shape, reshaped by a curve,
 * and gives the colour's share. Alpha stays, and so do pixels whose alpha is 0. Arguments and results as with
 * ZLV40_OuterGlowRGBA, but that the default curve does not know the opacity, which limits the share. */
#define ZLV40_InnerGlowRGBA _ZLV40_InnerGlowRGBA
ZLV40_API uint32_t ZLV40_InnerGlowRGBA(uint8_t* image, uint32_t width, uint32_t height, uint32_t rowStride,
                                       uint32_t size, double opacity, uint32_t color, const uint8_t* curve);

/* ---- Content-aware resizing --------------------------------------------------------------------------------- */

/* Changes the width of an image and keeps what stands out in it: removes or inserts seams, paths of little detail from
 * the first row to the last that move one column to the side a row at most (S. Avidan and A. Shamir, Seam Carving for
 * Content-Aware Image Resizing, 2007). The pixels on both sides of a removed seam are merged into one; an inserted
 * pixel is the mean of its two neighbours.
 *   src            height rows of width pixels, 8 bits a sample, interleaved; not NULL; not changed
 *   width, height  of src, 3 or more; the result is width + seamCount wide, which must be 4 or more
 *   bytesPerPixel  channels, 3 or 4. The fourth one is changed like the others, but is no detail to keep
 *   srcRowStride   bytes from one row of src to the next, >= width * bytesPerPixel. Detail is first measured in packed
 *                  rows of 3-byte pixels: a source with padding or with 4 channels gives its seams from what stands in
 *                  its memory there, and better ones as a packed image of 3 channels
 *   mask           height rows of width bytes, or NULL: below 128 they attract seams, above 128 they repel them. A mask
 *                  of 128 is not quite the same as none: with a mask, or on two threads, the last column is continued
 *                  from the two columns to its left, else from the one straight above it and the one to its left
 *   maskRowStride  bytes from one row of mask to the next
 *   dst            height rows of the result, not NULL; may be src. It holds height * dstRowStride bytes: the rows of
 *                  the widest state of the image are copied as far as dstRowStride reaches, padding included. Rows of
 *                  less than the result's width receive its beginning
 *   dstRowStride   bytes from one row of dst to the next
 *   seamCount      below 0 removes -seamCount seams, above 0 inserts that many. 0 copies rows of the smaller stride,
 *                  padding included
 *   insertPenalty  0..65535: what the pixels around an inserted seam count more from then on, so that the next seam
 *                  takes another way; 0 widens one place. Not used when seams are removed
 *   flags          ZLV40_ONE_THREAD works on the calling thread. Otherwise two threads, started anew for every seam,
 *                  share the columns and wait for each other in every row
 * Choose ZLV40_ONE_THREAD. The two threads hand over to each other in every row, and that costs more than half a row
 * of additions saves: at 640 x 480 they take several times as long as one, at 1920 x 1080 longer still. Only from some
 * 4000 columns on, with two idle processors, are they as fast or a little faster.
 * Where several ways are equally good the thread's random generator chooses.
 * Returns 1; or 0 with ZLV40_ERROR_BAD_ARGUMENT, ZLV40_ERROR_OUT_OF_MEMORY, ZLV40_ERROR_COULD_NOT_RUN when a thread
 * can't be started, ZLV40_ERROR_TIME_OUT when one is not ready, or with its half of a row, within a second, or
 * ZLV40_ERROR_CANCELLED. dst is written when all is done: whatever fails leaves it as it was.
 * Progress once a seam as (seam, number of seams). Can be cancelled. The detail of src is measured on four threads
 * in either form; all threads have ended when the call returns. */
#define ZLV40_SeamCarve _ZLV40_SeamCarve
ZLV40_API uint32_t ZLV40_SeamCarve(const uint8_t* src, uint32_t width, uint32_t height, uint32_t bytesPerPixel,
                                   uint32_t srcRowStride, const uint8_t* mask, uint32_t maskRowStride, uint8_t* dst,
                                   uint32_t dstRowStride, int32_t seamCount, uint16_t insertPenalty, uint32_t flags);

#ifdef __cplusplus
}
#endif

#endif
