// Generators: Perlin and Hugo noise beside plain loops of our own, gradients beside cairo.
#include "bench_row.h"
#include "generators/perlin.h"
#include "runtime/random.h"

#include "zlv40.h"

#include <cmath>
#include <memory>

#ifdef ZLV_BENCH_CAIRO
#include <cairo.h>
#endif

namespace zlvbench {

namespace {

constexpr u32 kStopCount = 3;
constexpr u8 kColors[] = {255, 200, 0, 255, 200, 30, 60, 255, 20, 20, 90, 255};
constexpr f64 kPositions[] = {0, 40, 100};

// One field for all rows, as a client keeps it.
void* Field()
{
    static void* const field = [] {
        SeedRandom(*baseContexts.Get(), 1);
        return ZLV40_InitializePerlinNoise3D();
    }();
    return field;
}

u8 Level(f64 value) { return u8(value < 0 ? 0 : value > 255 ? 255 : value); }

BenchRow PerlinBytes(const Shape& shape, const std::string& name, f64 scale)
{
    return {"GetPerlinNoise3DSliceBYTE/" + name,
            shape,
            0,
            [=](const Buffers& buffers) {
                ZLV40_GetPerlinNoise3DSliceBYTE(Field(), buffers.image, shape.width, shape.height, shape.width, scale,
                                                0.5);
            },
            {"point by point", [=](const Buffers& buffers) {
                 PerlinNoise& noise = *static_cast<PerlinNoise*>(Field());
                 for (u32 y = 0; y < shape.height; ++y) {
                     for (u32 x = 0; x < shape.width; ++x) {
                         const f64 v[3] = {x * scale, y * scale, 0.5};
                         buffers.image[size_t(y) * shape.width + x] = Level(noise.Noise3(v) * 128.0 + 127.0);
                     }
                 }
             }}};
}

Work Doubles(const Shape& shape, f64 scale)
{
    return [=](const Buffers& buffers) {
        ZLV40_GetPerlinNoise3DSliceDouble(Field(), reinterpret_cast<f64*>(buffers.image), shape.width, shape.height,
                                          shape.width, scale, 0.5);
    };
}

Work TurnedDoubles(const Shape& shape, f64 scale, f64 angle)
{
    return [=](const Buffers& buffers) {
        ZLV40_GetPerlinNoise3DSliceDoubleEx(Field(), reinterpret_cast<f64*>(buffers.image), shape.width, shape.height,
                                            shape.width, scale, 0.5, 0, 0, angle, 0, 0);
    };
}

BenchRow PerlinDoubles(const std::string& name, const Shape& shape, const Work& work, f64 scale, f64 angle = 0)
{
    return {name,
            shape,
            0,
            work,
            {"point by point",
             [=](const Buffers& buffers) {
                 PerlinNoise& noise = *static_cast<PerlinNoise*>(Field());
                 const f64 c = std::cos(angle), s = std::sin(angle);
                 f64* const out = reinterpret_cast<f64*>(buffers.image);
                 for (u32 y = 0; y < shape.height; ++y) {
                     for (u32 x = 0; x < shape.width; ++x) {
                         const f64 a = x * scale, b = y * scale;
                         const f64 v[3] = {a * c + b * s, b * c - a * s, 0.5};
                         out[size_t(y) * shape.width + x] = noise.Noise3(v);
                     }
                 }
             },
             angle == 0}};
}

// A field of its own each time.
BenchRow FieldAndSlice(const Shape& shape, const std::string& name, f64 scale)
{
    return {"GeneratePerlinNoise/" + name, shape, 0, [=](const Buffers& buffers) {
                SeedRandom(*baseContexts.Get(), 1);
                ZLV40_GeneratePerlinNoise(buffers.image, shape.width, shape.height, i32(shape.width), scale);
            }};
}

// Value noise as it is usually written: nothing is kept from one pixel to the next.
f64 Hash(i32 x, i32 y)
{
    const u32 n = u32(y) * 57 + u32(x), m = n ^ (n << 13);
    return 1.0 - ((m * (m * m * 15731 + 789221) + 1376312589) & 0x7FFFFFFF) / 1073741824.0;
}

f64 Smoothed(i32 x, i32 y)
{
    f64 corners = 0, sides = 0;
    for (const i32 d : {-1, 1}) {
        corners += Hash(x + d, y - 1) + Hash(x + d, y + 1);
        sides += Hash(x + d, y) + Hash(x, y + d);
    }
    return corners / 16 + sides / 8 + Hash(x, y) / 4;
}

f64 Blend(f64 a, f64 b, f64 t)
{
    const f64 u = (1 - std::cos(t * 3.141596)) * 0.5;
    return a * (1 - u) + b * u;
}

f64 ValueNoise(f64 x, f64 y)
{
    const i32 ix = i32(x), iy = i32(y);
    const f64 top = Blend(Smoothed(ix, iy), Smoothed(ix + 1, iy), x - ix);
    return Blend(top, Blend(Smoothed(ix, iy + 1), Smoothed(ix + 1, iy + 1), x - ix), y - iy);
}

// Into memory of its own: what the clock decides is not compared.
BenchRow Hugo(const Shape& shape, const std::string& name, i32 octaves, f64 scale)
{
    const auto out = std::make_shared<std::vector<u8>>(shape.Pixels());
    return {"GenerateHugoNoise/" + name,
            shape,
            0,
            [=](const Buffers& buffers) {
                buffers.image[0] = u8(~buffers.image[0]);  // what is compared shows that this has run
                ZLV40_GenerateHugoNoise(out->data(), shape.width, shape.height, shape.width, octaves, 0.5, scale);
            },
            {"pixel by pixel",
             [=](const Buffers&) {
                 for (u32 y = 0; y < shape.height; ++y) {
                     for (u32 x = 0; x < shape.width; ++x) {
                         f64 sum = 0, amplitude = 1, frequency = scale;
                         for (i32 i = 0; i + 1 < octaves; ++i, amplitude /= 2, frequency *= 2) {
                             sum += amplitude * ValueNoise(x * frequency, y * frequency);
                         }
                         (*out)[size_t(y) * shape.width + x] = Level(127 + sum * 128);
                     }
                 }
             },
             false}};
}

BenchRow Colored(const Shape& shape, const std::string& name, u32 kind)
{
    return {"GenerateColoredNoise/" + name, shape, 0, [=](const Buffers& buffers) {
                SeedRandom(*baseContexts.Get(), 1);
                ZLV40_GenerateColoredNoise(buffers.image, shape.width, shape.height, shape.width * 3, 0xC08000, 98,
                                           kind);
            }};
}

#ifdef ZLV_BENCH_CAIRO

// Into four bytes a pixel: cairo has no three. `makePattern` is asked at each run, as a client would.
Peer Cairo(const Shape& shape, const char* name, const std::function<cairo_pattern_t*()>& makePattern)
{
    const int stride = cairo_format_stride_for_width(CAIRO_FORMAT_RGB24, int(shape.width));
    const auto pixels = std::make_shared<std::vector<u8>>(size_t(stride) * shape.height);
    return {name,
            [=](const Buffers&) {
                cairo_surface_t* const surface = cairo_image_surface_create_for_data(
                    pixels->data(), CAIRO_FORMAT_RGB24, int(shape.width), int(shape.height), stride);
                cairo_t* const context = cairo_create(surface);
                cairo_pattern_t* const pattern = makePattern();
                for (u32 i = 0; i < kStopCount; ++i) {
                    cairo_pattern_add_color_stop_rgb(pattern, kPositions[i] / 100, kColors[4 * i] / 255.0,
                                                     kColors[4 * i + 1] / 255.0, kColors[4 * i + 2] / 255.0);
                }
                cairo_pattern_set_extend(pattern, CAIRO_EXTEND_PAD);
                cairo_set_source(context, pattern);
                cairo_set_operator(context, CAIRO_OPERATOR_SOURCE);
                cairo_paint(context);
                cairo_pattern_destroy(pattern);
                cairo_destroy(context);
                cairo_surface_destroy(surface);
            },
            false};
}

Peer CairoLine(const Shape& shape)
{
    return Cairo(shape, "cairo linear", [=] { return cairo_pattern_create_linear(0, 0, shape.width, shape.height); });
}

Peer CairoDisc(const Shape& shape)
{
    const f64 x = shape.width / 2, y = shape.height / 2;
    return Cairo(shape, "cairo radial", [=] { return cairo_pattern_create_radial(x, y, 0, x, y, x); });
}

#else

Peer CairoLine(const Shape&) { return {}; }
Peer CairoDisc(const Shape&) { return {}; }

#endif

BenchRow Line(const Shape& shape, const std::string& name, f64 gamma)
{
    return {"GradientFillImageLinear/" + name, shape, 0,
            [=](const Buffers& buffers) {
                ZLV40_GradientFillImageLinear(buffers.image, shape.width, shape.height, shape.channels,
                                              shape.width * shape.channels, 0, 0, shape.width, shape.height, kColors,
                                              kPositions, kStopCount, ZLV40_GRADIENT_MIRRORED, gamma,
                                              ZLV40_COLORS_AS_IMAGE);
            },
            CairoLine(shape)};
}

BenchRow Disc(const Shape& shape, const std::string& name, f64 gamma)
{
    return {"GradientFillImageRadial/" + name, shape, 0,
            [=](const Buffers& buffers) {
                ZLV40_GradientFillImageRadial(buffers.image, shape.width, shape.height, shape.channels,
                                              shape.width * shape.channels, shape.width / 2, i32(shape.width / 2),
                                              i32(shape.height / 2), kColors, kPositions, kStopCount, 0, gamma,
                                              ZLV40_COLORS_AS_IMAGE);
            },
            CairoDisc(shape)};
}

}  // namespace

std::vector<BenchRow> GenerateRows()
{
    const Shape tiny = {16, 16, 3}, gray = {kFullWidth, kFullHeight, 1}, rgb = {kFullWidth, kFullHeight, 3};
    const Shape tinyGray = {16, 16, 1}, reals = {kFullWidth, kFullHeight, 1, sizeof(f64)};
    return {
        PerlinBytes(tinyGray, "gray8/16x16/scale=0.02", 0.02),
        PerlinBytes(gray, "gray8/1920x1080/scale=0.02", 0.02),
        PerlinBytes(gray, "gray8/1920x1080/scale=0.2", 0.2),
        PerlinBytes(gray, "gray8/1920x1080/scale=0.97", 0.97),
        PerlinDoubles("GetPerlinNoise3DSliceDouble/f64/1920x1080/scale=0.02", reals, Doubles(reals, 0.02), 0.02),
        PerlinDoubles("GetPerlinNoise3DSliceDoubleEx/f64/1920x1080/scale=0.02", reals, TurnedDoubles(reals, 0.02, 0),
                      0.02),
        PerlinDoubles("GetPerlinNoise3DSliceDoubleEx/f64_turned/1920x1080/scale=0.02", reals,
                      TurnedDoubles(reals, 0.02, 0.5), 0.02, 0.5),
        FieldAndSlice(gray, "gray8/1920x1080/scale=0.02", 0.02),
        Hugo(tinyGray, "gray8/16x16/4_scale=0.05", 4, 0.05),
        Hugo(gray, "gray8/1920x1080/4_scale=0.05", 4, 0.05),
        Hugo(gray, "gray8/1920x1080/4_scale=0.97", 4, 0.97),
        Colored(rgb, "rgb8_perlin/1920x1080", ZLV40_NOISE_PERLIN),
        Colored(rgb, "rgb8_gaussian/1920x1080", ZLV40_NOISE_GAUSSIAN),
        Line(tiny, "rgb8/16x16", 1),
        Line(rgb, "rgb8/1920x1080", 1),
        Line(rgb, "rgb8_gamma2/1920x1080", 2),
        Disc(tiny, "rgb8/16x16", 1),
        Disc(rgb, "rgb8/1920x1080", 1),
        Disc(rgb, "rgb8_gamma2/1920x1080", 2),
    };
}

}  // namespace zlvbench
