// The exports of Perlin noise: fields behind handles, and planes through them.
#include "generators/perlin.kernels.h"
#include "runtime/array.h"
#include "runtime/frame.h"
#include "runtime/math.h"

#include "zlv40.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

using namespace zlv;

namespace {

// Rows stand behind each other in `out`, whatever the stride is that the client tells: buffers are sized for that.
template <class Sample>
u32 FillPlane(CallFrame& frame, const PerlinNoise& noise, const PerlinPlane& plane, Sample* out, u32 width, u32 height)
{
    const PerlinKernels& kernels = Kernels<PerlinKernels>();
    for (u32 y = 0; y < height; ++y) {
        for (u32 x = 0; x < width;) {
            const u32 count = std::min(width - x, u32(kPerlinBlock));
            f64 values[kPerlinBlock];
            kernels.row(noise, plane, y, x, values, count);
            if constexpr (std::is_same_v<Sample, u8>) kernels.toBytes(values, out, count);
            else std::memcpy(out, values, count * sizeof *values);  // at any address
            out += count;
            x += count;
        }
        if (!frame.Report(y, height)) return 0;
    }
    return 1;
}

// The shape of the slices. The field behind a handle is copied as it may be gone: memory that can't be read, or that
// holds no field, is an answer and not a crash.
template <class Sample, class MakePlane>
u32 FillSlice(const void* handle, Sample* out, u32 width, u32 height, MakePlane makePlane)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        if (!handle || !out || width == 0 || height == 0) return frame.Fail(Error::BadArgument);
        PerlinNoise noise;
        if (!platform::ReadForeignMemory(handle, &noise, sizeof noise)) return frame.Fail(Error::CouldNotRun);
        if (!noise.IsBuilt()) return frame.Fail(Error::CouldNotRun);
        return FillPlane(frame, noise, makePlane(), out, width, height);
    });
}

}  // namespace

ZLV_EXPORT void* ZLV40_InitializePerlinNoise3D(void)
{
    return InFrame(FrameKind::ErrorSlotOnly, [&](CallFrame& frame) -> void* {
        void* const memory = platform::Allocate(sizeof(PerlinNoise));
        if (!memory) {
            frame.SetLastError(Error::OutOfMemory);
            return nullptr;
        }
        PerlinNoise* const noise = new (memory) PerlinNoise;
        noise->Build();
        return noise;
    });
}

ZLV_EXPORT u32 ZLV40_DestroyPerlinNoise3D(void* handle)
{
    return InFrame(FrameKind::ErrorSlotOnly, [&](CallFrame& frame) -> u32 {
        if (!handle) return frame.Fail(Error::BadArgument);
        // Freed memory often stays readable as it was; a slice of it is to be refused.
        static_cast<PerlinNoise*>(handle)->start = 1;
        platform::Free(handle);
        return 1;
    });
}

ZLV_EXPORT u32 ZLV40_GetPerlinNoise3DSliceBYTE(void* handle, u8* out, u32 width, u32 height, u32, f64 scale, f64 z)
{
    return FillSlice(handle, out, width, height, [=] { return PerlinPlane{.scale = scale, .z = z}; });
}

ZLV_EXPORT u32 ZLV40_GetPerlinNoise3DSliceDouble(void* handle, f64* out, u32 width, u32 height, u32 rowStride,
                                                 f64 scale, f64 z)
{
    return ZLV40_GetPerlinNoise3DSliceDoubleEx(handle, out, width, height, rowStride, scale, z, 0, 0, 0, 0, 0);
}

ZLV_EXPORT u32 ZLV40_GetPerlinNoise3DSliceDoubleEx(void* handle, f64* out, u32 width, u32 height, u32, f64 scale, f64 z,
                                                   f64 offsetX, f64 offsetY, f64 angle, f64 pivotX, f64 pivotY)
{
    return FillSlice(handle, out, width, height,
                     [=] { return PerlinPlane{scale, z, offsetX, offsetY, Cos(angle), Sin(angle), pivotX, pivotY}; });
}

ZLV_EXPORT u32 ZLV40_GeneratePerlinNoise(u8* out, u32 width, u32 height, i32, f64 scale)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        // The draws are used up even when the arguments are refused.
        PerlinNoise noise;
        noise.Build();
        if (!out || width == 0 || height == 0) return frame.Fail(Error::BadArgument);
        return FillPlane(frame, noise, {.scale = scale, .z = 0}, out, width, height);
    });
}
