// Base layer: convolution, despeckle and gray morphology.
#include "base/convolution.h"
#include "base/despeckle.h"
#include "base/gray_morphology.h"
#include "golden/golden.h"
#include "plain/plain_convolution.h"
#include "plain/plain_despeckle.h"
#include "plain/plain_gray_morphology.h"
#include "support/base_layer.h"

namespace zlvtest {
namespace {

using namespace zlv;

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;

const PlainKernel kFractions = {3, 5, {.1, -.2, .3, .4, .5, -.6, .7, .8, .9, 1.1, 1.2, -1.3, 1.4, 1.5, -1.6}, 0.21};
const PlainKernel kWholeNumbers = {3, 3, {-1, -2, -1, -2, 12, -2, -1, -2, -1}, 0.25};

template <class T>
GoldenRow ConvolutionRow(const char* name, const PlainKernel& kernel, u32 flags, u64 checksum)
{
    return {name,
            3,
            sizeof(T),
            [=](GoldenPicture& p) {
                return MV40_ApplyConvolutionFilterToImage(
                    p.Image<T>(), kWidth, kHeight, 3, p.Stride<T>(), p.Output<T>(), p.Stride<T>(), u32(kernel.width),
                    u32(kernel.height), kernel.entries.data(), kernel.scale, 5 | flags | kWidthFlag<T>);
            },
            [=](GoldenPicture& p) {
                for (const u32 c : {0u, 2u}) {
                    PlainConvolve(p.Image<T>(), kWidth, kHeight, 3, p.Stride<T>(), p.Output<T>(), p.Stride<T>(), kernel,
                                  (flags & kPlainSum) != 0, c);
                }
            },
            checksum};
}

const std::vector<u32> kFlat = {0, 0, 0, 0, 0, 0, 0, 0, 0};
const std::vector<u32> kCone = {1, 5, 1, 5, 20, 5, 1, u32(-5), 1};

GoldenRow MorphologyRow(const char* name, const std::vector<u32>& element, bool isDilation, u64 checksum)
{
    return {name,
            1,
            1,
            [=](GoldenPicture& p) {
                return (isDilation ? MV40_MorphoDilationGray : MV40_MorphoErosionGray)(
                    p.image.data(), kWidth, kHeight, p.stride, element.data(), 3, p.output.data(), p.stride);
            },
            [=](GoldenPicture& p) {
                PlainGrayMorphology(p.image.data(), kWidth, kHeight, p.stride, element, 3, isDilation, p.output.data(),
                                    p.stride);
            },
            checksum};
}

}  // namespace

std::vector<GoldenRow> ConvolutionGolden()
{
    return {
        ConvolutionRow<u8>("ApplyConvolutionFilterToImage, bytes, fractions", kFractions, kPlainSum,
                           0x4407F9DACFA0726C),
        ConvolutionRow<u8>("ApplyConvolutionFilterToImage, bytes, whole numbers", kWholeNumbers, 0, 0x6A400ADE4EAF07CC),
        ConvolutionRow<u16>("ApplyConvolutionFilterToImage, words", kFractions, 0, 0x7D40A9219D480CBC),
        {"DespeckleImage", 3, 1,
         [](GoldenPicture& p) { return MV40_DespeckleImage(p.image.data(), kWidth, kHeight, 3, p.stride, 5); },
         [](GoldenPicture& p) {
             for (const u32 c : {0u, 2u}) PlainDespeckle(p.image.data(), kWidth, kHeight, 3, p.stride, c);
         },
         0x1991CE7E5A792E5C},
        MorphologyRow("MorphoDilationGray, flat", kFlat, true, 0xA8533E544184C71A),
        MorphologyRow("MorphoDilationGray, any element", kCone, true, 0x53F6F5F54CFB9266),
        MorphologyRow("MorphoErosionGray, flat", kFlat, false, 0x96A538D6BB8D2F9E),
        MorphologyRow("MorphoErosionGray, any element", kCone, false, 0x281FDF26B82E8D58),
    };
}

}  // namespace zlvtest
