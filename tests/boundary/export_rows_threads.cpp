// Rows of exports that deal with what belongs to a thread: callbacks, warp lists, fields of noise.
#include "boundary/described_call.h"

#include <cstring>

namespace zlvtest {

namespace {

// ---- Callbacks ----

thread_local ZLVProgressCallback callbackBefore = nullptr;
thread_local std::uint64_t callbackDataBefore = 0;

std::uint32_t GoOn(std::uint32_t, std::uint32_t, std::uint64_t) { return 1; }

void KeepCallback(DescribedCall&) { callbackBefore = ZLV40_GetCallback(&callbackDataBefore); }

void InstallAnother(DescribedCall& call)
{
    KeepCallback(call);
    call["callback"].pointer = reinterpret_cast<void*>(&GoOn);
}

void RestoreCallback(DescribedCall&, std::uint64_t) { ZLV40_SetCallback(callbackBefore, callbackDataBefore); }

// ---- Fields of noise ----

void MakeField(DescribedCall& call)
{
    call.handle = ZLV40_InitializePerlinNoise3D();
    call["handle"].pointer = call.handle;
}

void FreeField(DescribedCall& call) { ZLV40_DestroyPerlinNoise3D(call.handle); }

void FreeNewField(DescribedCall&, std::uint64_t field) { ZLV40_DestroyPerlinNoise3D(reinterpret_cast<void*>(field)); }

void MakeFieldAgain(DescribedCall& call, std::uint64_t result)
{
    if (result == 1) MakeField(call);
}

// ---- Warps ----

void Clear(DescribedCall&) { ZLV40_ClearAllTransforms(); }
void ClearAfter(DescribedCall&, std::uint64_t) { ZLV40_ClearAllTransforms(); }

std::int32_t Stay(double x, double y, double* outX, double* outY, void*)
{
    *outX = x;
    *outY = y;
    return 1;
}

void TakeFunction(DescribedCall& call) { call["callback"].pointer = reinterpret_cast<void*>(&Stay); }

// A list of two warps, one of them with memory of its own.
void MakeList(DescribedCall& call)
{
    const std::uint32_t width = std::uint32_t(call["width"].integer), height = std::uint32_t(call["height"].integer);
    ZLV40_ClearAllTransforms();
    ZLV40_AddSpinTransform(width, height, 5, 30, 0, 0);
    ZLV40_AddWaveTransform(width, height, 15, 4, ZLV40_WAVE_SINE_Y);
}

void DrawSquare(DescribedCall& call)
{
    constexpr point kSquare[4] = {{1, 1}, {11, 1}, {11, 6}, {1, 6}};
    std::memcpy(call["polygon"].pointer, kSquare, sizeof kSquare);
}

}  // namespace

const std::vector<ExportRow>& StateRows()
{
    static const std::vector<ExportRow> rows = {
        {.name = "ZLV40_SetCallback", .build = InstallAnother, .giveBack = RestoreCallback},
        {.name = "ZLV40_ThreadExit", .build = KeepCallback, .giveBack = RestoreCallback},
        {.name = "ZLV40_InitializePerlinNoise3D", .giveBack = FreeNewField},
        {.name = "ZLV40_DestroyPerlinNoise3D", .build = MakeField, .giveBack = MakeFieldAgain, .tearDown = FreeField},
        {.name = "ZLV40_GetPerlinNoise3DSliceBYTE", .build = MakeField, .tearDown = FreeField},
        {.name = "ZLV40_GetPerlinNoise3DSliceDouble", .build = MakeField, .tearDown = FreeField},
        {.name = "ZLV40_GetPerlinNoise3DSliceDoubleEx", .build = MakeField, .tearDown = FreeField},
    };
    return rows;
}

const std::vector<ExportRow>& WarpRows()
{
    static const std::vector<ExportRow> rows = [] {
        std::vector<ExportRow> all = {
            {.name = "ZLV40_GetTransformDimensions", .build = MakeList, .tearDown = Clear},
            {.name = "ZLV40_TransformProcess", .build = MakeList, .tearDown = Clear},
            {.name = "ZLV40_AddUserTransform", .build = TakeFunction, .giveBack = ClearAfter},
            {.name = "ZLV40_AddPolygonTransform",
             .settings = {Number("pointCount", 4)},
             .build = DrawSquare,
             .giveBack = ClearAfter},
        };
        for (const char* const name : {"BumpMapDisplacement", "Elliptical", "GlassBlock", "Lens", "LineSlice", "Marble",
                                       "Offset", "PerlinDisplacement", "Pinch", "PointAttractor", "Random", "Ripple",
                                       "Spin", "SpinWave", "Wave", "Wow", "ZigZag"}) {
            for (const DescribedEffect& effect : DescribedExports()) {
                if (effect.name != "ZLV40_Add" + std::string(name) + "Transform") continue;
                all.push_back({.name = effect.name, .giveBack = ClearAfter});
            }
        }
        return all;
    }();
    return rows;
}

}  // namespace zlvtest
