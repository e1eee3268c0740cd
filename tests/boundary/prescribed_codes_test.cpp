// What each family answers to arguments that are wrong together, or in ways that no range tells.
//
// Null pointers, sizes of zero and numbers out of their range stand in the description; boundary_sweep_test.cpp and
// every_argument_test.cpp go through them.
#include "boundary/described_call.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace zlvtest {
namespace {

constexpr Outcome kDone = {true, 0};
constexpr Outcome kBad = {false, ZLV40_ERROR_BAD_ARGUMENT};
constexpr Outcome kNoMemory = {false, ZLV40_ERROR_OUT_OF_MEMORY};
constexpr Outcome kQuietRefusal = {false, 0};

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// More than anything that is read or written here.
alignas(double) std::uint8_t other[16 * 8 * 16];

constexpr point kLine[4] = {{1, 1}, {2, 2}, {3, 3}, {4, 4}};

Setting Pointer(std::string_view argument, const void* to) { return {argument, {0, 0, const_cast<void*>(to)}}; }

const struct Prescribed {
    const char* shows;
    std::vector<const char*> exports;
    std::vector<Setting> settings;
    Outcome wanted;
} kPrescribed[] = {
    // ---- Artistic effects ----
    {"a relief of nothing that is known", {"ZLV40_CrackleRGB"}, {Number("morphKind", 5)}, kQuietRefusal},
    {"a relief of three columns", {"ZLV40_CrackleRGB"}, {Number("width", 3)}, kBad},
    {"a relief of three rows", {"ZLV40_CrackleRGB"}, {Number("height", 3)}, kBad},
    {"a fifth way to clean masks", {"ZLV40_SegmentedColorizeRGBImage"}, {Number("mode", 4)}, kBad},
    {"no colours", {"ZLV40_SegmentedColorizeRGBImage", "ZLV40_SegmentedColorizeRGB"}, {Number("colors", 0)}, kBad},
    {"a split below the picture", {"ZLV40_ReflectImage"}, {Number("splitRow", 8)}, kBad},
    {"a split at the end of the picture", {"ZLV40_ReflectImage"}, {Number("height", 4), Number("splitRow", 4)}, kDone},
    {"a fade from nowhere", {"ZLV40_ReflectImage"}, {Real("fadeStart", kNaN)}, kBad},
    {"a fade to nowhere", {"ZLV40_ReflectImage"}, {Real("fadeEnd", kNaN)}, kBad},

    // ---- Windows ----
    {"a window of one pixel",
     {"ZLV40_MedianFilterImage_O1", "ZLV40_DustAndScratches_O1"},
     {Number("filterSize", 1)},
     kBad},
    {"a window higher than the image",
     {"ZLV40_MedianFilterImage_O1", "ZLV40_DustAndScratches_O1", "ZLV40_BilateralFilterImage"},
     {Number("filterSize", 9)},
     kBad},
    {"source rows of no bytes",
     {"ZLV40_MedianFilterImage_O1", "ZLV40_DustAndScratches_O1"},
     {Number("srcRowStride", 0)},
     kBad},
    {"destination rows of no bytes",
     {"ZLV40_MedianFilterImage_O1", "ZLV40_DustAndScratches_O1"},
     {Number("dstRowStride", 0)},
     kBad},
    {"weights of no width", {"ZLV40_BilateralFilterImage"}, {Real("sigma", 0)}, kBad},

    // ---- Frequencies ----
    {"a width below a grid's", {"ZLV40_AllocFFTGrid"}, {Number("width", 2)}, kBad},
    {"a height below a grid's", {"ZLV40_AllocFFTGrid"}, {Number("height", 2)}, kBad},
    {"the smallest grid", {"ZLV40_AllocFFTGrid"}, {Number("width", 4), Number("height", 4)}, kDone},
    {"a width between powers of two", {"ZLV40_AllocFFTGrid"}, {Number("width", 12)}, kBad},
    {"a height between powers of two", {"ZLV40_AllocFFTGrid"}, {Number("height", 5)}, kBad},
    {"two sources", {"ZLV40_DoFFT"}, {Pointer("srcDoubles", other)}, kBad},
    {"no source", {"ZLV40_DoFFT"}, {Null("srcBytes")}, kBad},
    {"no grid", {"ZLV40_DoFFT", "ZLV40_DoFFTInverse"}, {Null("grid")}, kQuietRefusal},
    {"two pictures", {"ZLV40_MakeGrayscaleFromFFT"}, {Pointer("dstDoubles", other)}, kBad},
    {"a filter below all kinds", {"ZLV40_FilterFFT"}, {Number("kind", 0)}, kBad},
    {"a filter above all kinds", {"ZLV40_FilterFFT"}, {Number("kind", 16)}, kBad},
    {"a filter between the kinds", {"ZLV40_FilterFFT"}, {Number("kind", 11)}, kBad},
    {"the last filter between the kinds", {"ZLV40_FilterFFT"}, {Number("kind", 14)}, kBad},
    {"such a filter of no columns", {"ZLV40_FilterFFT"}, {Number("kind", 11), Number("width", 0)}, kDone},
    {"such a filter of no rows", {"ZLV40_FilterFFT"}, {Number("kind", 14), Number("height", 0)}, kDone},

    // ---- Morphology ----
    {"an element of an even width",
     {"ZLV40_MorphoDilation1Bit", "ZLV40_MorphoErosion1Bit", "ZLV40_MorphoOpen1Bit", "ZLV40_MorphoClose1Bit",
      "ZLV40_MorphoBoundaryExtraction1Bit"},
     {Number("elementWidth", 2)},
     kBad},
    {"an element of an even height",
     {"ZLV40_MorphoDilation1Bit", "ZLV40_MorphoErosion1Bit", "ZLV40_MorphoOpen1Bit", "ZLV40_MorphoClose1Bit",
      "ZLV40_MorphoBoundaryExtraction1Bit"},
     {Number("elementHeight", 2)},
     kBad},
    {"an even element of what must be foreground", {"ZLV40_MorphoHitOrMiss1Bit"}, {Number("hitWidth", 2)}, kBad},
    {"an even element of what must be background", {"ZLV40_MorphoHitOrMiss1Bit"}, {Number("missHeight", 2)}, kBad},
    {"source rows too short for their pixels",
     {"ZLV40_MorphoOpen1Bit", "ZLV40_MorphoClose1Bit", "ZLV40_MorphoBoundaryExtraction1Bit",
      "ZLV40_MorphoHitOrMiss1Bit"},
     {Number("srcRowStride", 1)},
     kBad},
    {"destination rows too short for their pixels",
     {"ZLV40_MorphoOpen1Bit", "ZLV40_MorphoClose1Bit", "ZLV40_MorphoBoundaryExtraction1Bit",
      "ZLV40_MorphoHitOrMiss1Bit"},
     {Number("dstRowStride", 1)},
     kBad},
    {"rows too short for their pixels", {"ZLV40_MorphoThinning1Bit"}, {Number("rowStride", 1)}, kBad},
    {"no passes", {"ZLV40_MorphoThinning1Bit"}, {Number("iterations", 0)}, kDone},
    {"no plane", {"ZLV40_OpenGray", "ZLV40_CloseGray", "ZLV40_TophatGray"}, {Null("src")}, kQuietRefusal},
    {"no element", {"ZLV40_OpenGray", "ZLV40_CloseGray", "ZLV40_TophatGray"}, {Null("element")}, kQuietRefusal},
    {"no result", {"ZLV40_OpenGray", "ZLV40_CloseGray", "ZLV40_TophatGray"}, {Null("dst")}, kQuietRefusal},
    {"an even element of a step that nobody looks at",
     {"ZLV40_OpenGray", "ZLV40_CloseGray"},
     {Number("elementSize", 2)},
     kDone},
    {"an even element of a step that counts", {"ZLV40_MorphoGradientGray"}, {Number("elementSize", 2)}, kQuietRefusal},
    {"a plane that no memory holds",
     {"ZLV40_OpenGray", "ZLV40_CloseGray", "ZLV40_TophatGray", "ZLV40_MorphoGradientGray"},
     {Number("width", 1 << 16), Number("height", 1 << 15), Number("srcRowStride", 1 << 16),
      Number("dstRowStride", 1 << 16)},
     kNoMemory},

    // ---- Generators ----
    {"no points", {"ZLV40_Get3DSplinePoints"}, {Number("outCount", 0)}, kBad},
    {"a single point", {"ZLV40_Get3DSplinePoints"}, {Number("outCount", 1)}, kDone},
    {"as many control points as the order", {"ZLV40_Get3DSplinePoints"}, {Number("controlCount", 3)}, kBad},
    {"two control points", {"ZLV40_Get3DSplinePoints"}, {Number("controlCount", 2), Number("order", 1)}, kBad},
    {"an order of nothing", {"ZLV40_Get3DSplinePoints"}, {Number("order", 0)}, kBad},
    {"a gradient from a point to itself",
     {"ZLV40_GradientFillImageLinear"},
     {Real("endX", 20), Real("endY", 10)},
     kBad},
    {"a gradient of no radius", {"ZLV40_GradientFillImageRadial"}, {Real("radius", 0)}, kBad},
    {"a gradient of less", {"ZLV40_GradientFillImageRadial"}, {Real("radius", -1)}, kBad},
    {"one stop", {"ZLV40_GradientFillImageLinear", "ZLV40_GradientFillImageRadial"}, {Number("stopCount", 1)}, kBad},
    {"no kind of noise", {"ZLV40_GenerateColoredNoise"}, {Number("noiseKind", 6)}, kBad},

    // ---- Warps ----
    {"a round area of one point",
     {"ZLV40_AddLensTransform", "ZLV40_AddPinchTransform", "ZLV40_AddRippleTransform", "ZLV40_AddSpinTransform",
      "ZLV40_AddSpinWaveTransform", "ZLV40_AddWowTransform"},
     {Real("radius", 0)},
     kBad},
    {"no columns",
     {"ZLV40_AddLensTransform", "ZLV40_AddPinchTransform", "ZLV40_AddPointAttractorTransform",
      "ZLV40_AddRandomTransform", "ZLV40_AddSpinTransform", "ZLV40_AddSpinWaveTransform", "ZLV40_AddWowTransform",
      "ZLV40_AddMarbleTransform", "ZLV40_AddWaveTransform", "ZLV40_AddZigZagTransform", "ZLV40_AddLineSliceTransform"},
     {Number("width", 0)},
     kBad},
    {"no rows",
     {"ZLV40_AddLensTransform", "ZLV40_AddPinchTransform", "ZLV40_AddPointAttractorTransform",
      "ZLV40_AddRandomTransform", "ZLV40_AddSpinTransform", "ZLV40_AddSpinWaveTransform", "ZLV40_AddWowTransform",
      "ZLV40_AddMarbleTransform", "ZLV40_AddWaveTransform", "ZLV40_AddZigZagTransform", "ZLV40_AddLineSliceTransform"},
     {Number("height", 0)},
     kBad},
    {"no columns where none are needed",
     {"ZLV40_AddRippleTransform", "ZLV40_AddOffsetTransform", "ZLV40_AddEllipticalTransform", "ZLV40_AddUserTransform",
      "ZLV40_AddPerlinDisplacementTransform", "ZLV40_AddBumpMapDisplacementTransform"},
     {Number("width", 0)},
     kDone},
    {"an ellipse of no width", {"ZLV40_AddEllipticalTransform"}, {Real("semiAxisX", 0)}, kBad},
    {"an ellipse of no height", {"ZLV40_AddEllipticalTransform"}, {Real("semiAxisY", 0)}, kBad},
    {"a squeeze above all modes", {"ZLV40_AddEllipticalTransform"}, {Number("mode", 3)}, kBad},
    {"a squeeze below all modes", {"ZLV40_AddEllipticalTransform"}, {Number("mode", -1)}, kDone},
    {"noise of no width",
     {"ZLV40_AddPerlinDisplacementTransform", "ZLV40_AddMarbleTransform"},
     {Real("scaleX", 0)},
     kNoMemory},
    {"noise of no height",
     {"ZLV40_AddPerlinDisplacementTransform", "ZLV40_AddMarbleTransform"},
     {Real("scaleY", 0)},
     kNoMemory},
    {"a relief of no columns", {"ZLV40_AddBumpMapDisplacementTransform"}, {Number("mapWidth", 0)}, kBad},
    {"a relief of no rows", {"ZLV40_AddBumpMapDisplacementTransform"}, {Number("mapHeight", 0)}, kBad},
    {"blocks of no width", {"ZLV40_AddGlassBlockTransform"}, {Number("tileWidth", 0)}, kBad},
    {"blocks of no height", {"ZLV40_AddGlassBlockTransform"}, {Number("tileHeight", 0)}, kBad},
    {"no teeth", {"ZLV40_AddZigZagTransform"}, {Number("teeth", 0)}, kBad},
    {"less than no teeth", {"ZLV40_AddZigZagTransform"}, {Number("teeth", -1)}, kBad},
    {"more teeth than columns", {"ZLV40_AddZigZagTransform"}, {Number("teeth", 14), Number("mode", 0)}, kBad},
    {"more teeth than rows", {"ZLV40_AddZigZagTransform"}, {Number("teeth", 8), Number("mode", 1)}, kBad},
    {"a table of more entries than an array counts",
     {"ZLV40_AddWaveTransform", "ZLV40_AddZigZagTransform", "ZLV40_AddLineSliceTransform"},
     {Number("width", 0x80000000), Number("mode", 0)},
     kNoMemory},
    {"two points", {"ZLV40_AddPolygonTransform"}, {Number("pointCount", 2)}, kBad},
    {"points in a line", {"ZLV40_AddPolygonTransform"}, {Pointer("polygon", kLine)}, kBad},

    // ---- Widths ----
    {"a result three columns wide", {"ZLV40_SeamCarve"}, {Number("seamCount", -10)}, kBad},
    {"a result four columns wide", {"ZLV40_SeamCarve"}, {Number("seamCount", -9)}, kDone},
    {"two columns", {"ZLV40_SeamCarve"}, {Number("width", 2)}, kBad},
    {"two rows", {"ZLV40_SeamCarve"}, {Number("height", 2)}, kBad},

    // ---- Layer styles ----
    {"a shadow of no channels", {"ZLV40_DropShadow", "ZLV40_DropShadowEx"}, {Number("bytesPerPixel", 0)}, kBad},
    {"a shadow of five channels", {"ZLV40_DropShadow", "ZLV40_DropShadowEx"}, {Number("bytesPerPixel", 5)}, kBad},
    {"the shadow of an alpha that there is not",
     {"ZLV40_DropShadow", "ZLV40_DropShadowEx"},
     {Number("bytesPerPixel", 3), Number("flags", ZLV40_SHADOW_OF_ALPHA)},
     kBad},
    {"a frame wider than half the image", {"ZLV40_ShadeBevelEdge"}, {Number("bevelWidth", 4)}, kBad},
};

const DescribedEffect& Export(std::string_view name)
{
    for (const DescribedEffect& effect : DescribedExports()) {
        if (effect.name == name) return effect;
    }
    ADD_FAILURE() << "no export is called " << name;
    std::abort();
}

TEST(PrescribedCodes, EachRefusalOfTheTable)
{
    for (const Prescribed& row : kPrescribed) {
        for (const char* const name : row.exports) {
            const DescribedEffect& effect = Export(name);
            for (const std::uint32_t channels : ChannelCounts(effect)) {
                SCOPE(row.shows, name, channels);
                DescribedCall call(effect, channels);
                for (const Setting& setting : row.settings) call.Set(setting);
                ClearLastError();
                EXPECT_EQ(call.RunWhole(), row.wanted);
                EXPECT_TRUE(row.wanted.isDone || call.IsUntouched() || (call.Row().manners & kWritesThenRefuses));
            }
        }
    }
}

// The transform that fails leaves its code, and the picture in the grid all the same.
TEST(PrescribedCodes, TransformsOfSizesThatAreNoPowersOfTwo)
{
    for (const char* const size : {"width", "height"}) {
        SCOPE(size);
        DescribedCall forward(Export("ZLV40_DoFFT"), 1);
        forward[size].integer = 6;
        EXPECT_EQ(forward.RunWhole(), (Outcome{true, ZLV40_ERROR_BAD_ARGUMENT}));
        DescribedCall inverse(Export("ZLV40_DoFFTInverse"), 1);
        inverse[size].integer = 6;
        EXPECT_EQ(inverse.RunWhole(), kBad);
    }
}

TEST(PrescribedCodes, WithoutAGridTheTransformsReturnTheCodeItself)
{
    for (const char* const name : {"ZLV40_DoFFT", "ZLV40_DoFFTInverse"}) {
        SCOPE(name);
        ClearLastError();
        DescribedCall call(Export(name), 1);
        call.Set(Null("grid"));
        EXPECT_EQ(call.Run(), std::uint64_t(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(call.Ended().code, 0u);
    }
}

const struct {
    std::uint64_t value, power;
} kPowers[] = {{0, 4}, {3, 4}, {4, 8}, {INT32_MAX, 0x80000000}, {0x80000000, 0}, {UINT32_MAX, 0}};

TEST(PrescribedCodes, PowersOfTwoEndAtThirtyTwoBits)
{
    for (const auto& row : kPowers) {
        SCOPE(row.value);
        DescribedCall call(Export("ZLV40_NextPowerOfTwo"), 1);
        call["value"].integer = row.value;
        EXPECT_EQ(call.Run(), row.power);
    }
}

TEST(PrescribedCodes, TheVersionFillsTwentyBytes)
{
    DescribedCall call(Export("ZLV40_GetLibVersion"), 1);
    void* const buffer = call["buffer"].pointer;
    EXPECT_EQ(call.Run(), reinterpret_cast<std::uint64_t>(buffer));
    EXPECT_EQ(std::memcmp(buffer, "ZLV 4.0.10.3\0\0\0\0\0\0\0", 20), 0);
}

}  // namespace
}  // namespace zlvtest
