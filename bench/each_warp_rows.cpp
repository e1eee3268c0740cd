// Every warp by itself, sampled bilinearly; TransformProcess in warp_rows.cpp has the peers.
#include "bench_row.h"
#include "runtime/random.h"

#include "zlv40.h"

#include <cmath>
#include <cstring>
#include <memory>

namespace zlvbench {

namespace {

constexpr Shape kPicture = {kFullWidth, kFullHeight, 3};
constexpr u32 kWidth = kFullWidth, kHeight = kFullHeight;
constexpr f64 kRadius = 500;

void SendThrough(const u8* from, u8* to)
{
    constexpr u32 kStride = kWidth * 3;
    ZLV40_TransformProcess(from, kWidth, kHeight, kStride, to, kStride, 3, ZLV40_SAMPLING_BILINEAR, 0);
}

template <class Add>
Work OneWarp(Add add)
{
    return [=](const Buffers& buffers) {
        SeedRandom(*baseContexts.Get(), 1);
        ZLV40_ClearAllTransforms();
        add();
        SendThrough(buffers.image, buffers.output);
        ZLV40_ClearAllTransforms();
    };
}

template <class Add>
BenchRow Row(const char* function, Add add)
{
    return {std::string(function) + "/bilinear/rgb8/1920x1080", kPicture, kPicture.Bytes(), OneWarp(add)};
}

// Into memory of its own: what the clock decides is not compared.
BenchRow RandomRow()
{
    const auto out = std::make_shared<std::vector<u8>>(kPicture.Bytes());
    const auto scatter = [=](const Buffers& buffers) {
        buffers.image[0] = u8(~buffers.image[0]);  // what is compared shows that this has run
        ZLV40_ClearAllTransforms();
        ZLV40_AddRandomTransform(kWidth, kHeight, 12);
        SendThrough(buffers.image, out->data());
        ZLV40_ClearAllTransforms();
    };
    return {"AddRandomTransform/bilinear/rgb8/1920x1080", kPicture, 0, scatter};
}

BenchRow DimensionsRow()
{
    const auto measure = [](const Buffers& buffers) {
        ZLV40_ClearAllTransforms();
        ZLV40_AddWaveTransform(kWidth, kHeight, 15, 4, ZLV40_WAVE_SINE_Y);
        f64 spread[4];
        ZLV40_GetTransformDimensions(kWidth, kHeight, &spread[0], &spread[1], &spread[2], &spread[3]);
        std::memcpy(buffers.image, spread, sizeof spread);
        ZLV40_ClearAllTransforms();
    };
    return {"GetTransformDimensions/wave/1920x1080", {kWidth, kHeight, 1}, 0, measure};
}

void AddBumps()
{
    constexpr u32 kMapSide = 64;
    u8 map[kMapSide * kMapSide];
    RandomBytes random(7);
    for (u8& level : map) level = u8(random.Next());
    ZLV40_AddBumpMapDisplacementTransform(kWidth, kHeight, 4, map, kMapSide, kMapSide);
}

void AddPolygon()
{
    const point kPolygon[] = {{960, 20}, {1800, 500}, {1400, 1050}, {500, 1000}, {100, 400}};
    ZLV40_AddPolygonTransform(kWidth, kHeight, kPolygon, 5, ZLV40_POLYGON_BOTH);
}

i32 Mirror(f64 x, f64 y, f64* outX, f64* outY, void*)
{
    *outX = kWidth - 1 - x;
    *outY = y;
    return 1;
}

}  // namespace

std::vector<BenchRow> EachWarpRows()
{
    constexpr u32 w = kWidth, h = kHeight;
    return {
        Row("AddBumpMapDisplacementTransform", AddBumps),
        Row("AddEllipticalTransform", [] { ZLV40_AddEllipticalTransform(w, h, 900, 500, 0, 0, ZLV40_SQUEEZE_BOTH); }),
        Row("AddGlassBlockTransform", [] { ZLV40_AddGlassBlockTransform(w, h, 80, 80, 10, 12, 0, 0.85, 0.08, 0.1); }),
        Row("AddLensTransform", [] { ZLV40_AddLensTransform(w, h, kRadius, 0, 0); }),
        Row("AddLineSliceTransform", [] { ZLV40_AddLineSliceTransform(w, h, 300, 700, ZLV40_SHIFT_Y); }),
        Row("AddMarbleTransform", [] { ZLV40_AddMarbleTransform(w, h, 1, 40, 15); }),
        Row("AddOffsetTransform", [] { ZLV40_AddOffsetTransform(w, h, 40.5, 20.5, ZLV40_WRAP_BOTH); }),
        Row("AddPerlinDisplacementTransform", [] { ZLV40_AddPerlinDisplacementTransform(w, h, 60, 40, 40); }),
        Row("AddPinchTransform", [] { ZLV40_AddPinchTransform(w, h, kRadius, 80, 0, 0); }),
        Row("AddPointAttractorTransform",
            [] { ZLV40_AddPointAttractorTransform(w, h, 60, 0, 0, ZLV40_ATTRACT_SINE, 1); }),
        Row("AddPolygonTransform", AddPolygon),
        RandomRow(),
        Row("AddRippleTransform", [] { ZLV40_AddRippleTransform(w, h, kRadius, 10, 20, 0, 0, ZLV40_RIPPLE_LINEAR); }),
        Row("AddSpinTransform", [] { ZLV40_AddSpinTransform(w, h, kRadius, 90, 0, 0); }),
        Row("AddSpinWaveTransform", [] { ZLV40_AddSpinWaveTransform(w, h, kRadius, 30, 20, 0, 0); }),
        Row("AddUserTransform", [] { ZLV40_AddUserTransform(w, h, Mirror, nullptr); }),
        Row("AddWaveTransform", [] { ZLV40_AddWaveTransform(w, h, 15, 4, ZLV40_WAVE_SINE_Y); }),
        Row("AddWowTransform", [] { ZLV40_AddWowTransform(w, h, kRadius, ZLV40_WOW_LINEAR); }),
        Row("AddZigZagTransform", [] { ZLV40_AddZigZagTransform(w, h, 15, 8, ZLV40_SHIFT_Y); }),
        DimensionsRow(),
    };
}

}  // namespace zlvbench
