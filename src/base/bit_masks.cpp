#include "base/bit_masks.h"

#include "base/bit_masks.kernels.h"
#include "base/image_view.h"
#include "runtime/base_tables.h"

#include <cstring>

namespace zlv {

namespace {

constexpr size_t kPixelsPerByte = 8;

u32 MakeMask(MVThreadContext& context, Error& error, const ImageView<const u8>& plane, const ImageView<u8>& mask,
             u8 value)
{
    BaseWork work(context, error);
    if (!plane.data || !mask.data) return work.Fail(Error::BadArgument);
    if (plane.width == 0 || plane.height == 0) return work.Fail(Error::OutOfMemory);
    const BitMaskKernels& kernels = Kernels<BitMaskKernels>();
    const size_t whole = plane.width / kPixelsPerByte, rest = plane.width % kPixelsPerByte;
    for (u32 y = 0; y < plane.height; ++y) {
        const u8* const samples = plane.Row(y);
        kernels.findValue(samples, whole, value, mask.Row(y));
        u8 last[kPixelsPerByte];
        for (size_t x = 0; x < rest; ++x) last[x] = samples[whole * kPixelsPerByte + x] == value;
        const Error packing = PackRow(last, rest, 1, mask.Row(y) + whole);
        if (packing != Error::None) return work.Fail(packing);
        if (!work.Report(y, plane.height)) return 0;
    }
    return 1;
}

u32 SetWhereMasked(MVThreadContext& context, Error& error, const ImageView<const u8>& mask, const ImageView<u8>& plane,
                   u8 value)
{
    BaseWork work(context, error);
    if (!mask.data || !plane.data) return work.Fail(Error::BadArgument);
    if (plane.width == 0 || plane.height == 0) return work.Fail(Error::OutOfMemory);
    const BitMaskKernels& kernels = Kernels<BitMaskKernels>();
    const size_t whole = plane.width / kPixelsPerByte, rest = plane.width % kPixelsPerByte;
    // Unpacked as it goes: the plane and the mask are different memory, so no row sees what another one has written.
    for (u32 y = 0; y < plane.height; ++y) {
        u8* const samples = plane.Row(y);
        kernels.setValue(mask.Row(y), whole, value, samples);
        u8 last[kPixelsPerByte];
        UnpackBits(mask.Row(y) + whole, rest, last);
        for (size_t x = 0; x < rest; ++x) {
            if (last[x]) samples[whole * kPixelsPerByte + x] = value;
        }
        if (!work.Report(y, plane.height)) return 0;
    }
    return 1;
}

}  // namespace

Error PackRow(const u8* pixels, size_t width, u32 depth, u8* packed)
{
    if (depth < 1 || depth > 8) return Error::BadArgument;
    u32 bits = 0;   // the bits that do not fill a byte yet
    u32 count = 0;  // how many they are
    const u32 mask = (1u << depth) - 1;
    for (size_t x = 0; x < width; ++x) {
        bits = bits << depth | (pixels[x] & mask);
        count += depth;
        if (count < 8) continue;
        count -= 8;
        *packed++ = u8(bits >> count);
        bits &= (1u << count) - 1;
    }
    if (count > 0) *packed = u8(bits << (8 - count));
    return Error::None;
}

void UnpackBits(const u8* packed, size_t width, u8* pixels)
{
    size_t x = 0;
    for (; x + 8 <= width; x += 8) std::memcpy(pixels + x, baseTables.expanded[*packed++], 8);
    if (x < width) std::memcpy(pixels + x, baseTables.expanded[*packed], width - x);
}

u32 MV40_Create1BitMaskFromColor(const u8* plane, u32 width, u32 height, u32 rowStride, u8* mask, u32 maskStride,
                                 u8 value, u32)
{
    return InBaseCall("MV40_Create1BitMaskFromColor", [&](MVThreadContext& context, Error& error) {
        return MakeMask(context, error, {plane, width, height, 1, rowStride}, {mask, width, height, 1, maskStride},
                        value);
    });
}

u32 MV40_SetColorFrom1BitMask(const u8* mask, u32 width, u32 height, u32 maskStride, u8* plane, u32 rowStride, u8 value,
                              u32)
{
    return InBaseCall("MV40_SetColorFrom1BitMask", [&](MVThreadContext& context, Error& error) {
        return SetWhereMasked(context, error, {mask, width, height, 1, maskStride},
                              {plane, width, height, 1, rowStride}, value);
    });
}

}  // namespace zlv
