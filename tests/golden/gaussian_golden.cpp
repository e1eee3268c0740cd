// Base layer: the Gaussian blur, all three engines.
#include "base/gaussian_blur.h"
#include "golden/golden.h"
#include "plain/plain_gaussian_blur.h"
#include "support/base_layer.h"

#include <cmath>

namespace zlvtest {
namespace {

using namespace zlv;

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;
constexpr PlainBlurMath kMath = {std::exp, std::sin, std::cos, std::pow};

template <class T>
GoldenRow BlurRow(const char* name, f64 sigma, u32 flags, u64 checksum)
{
    return {name,
            3,
            sizeof(T),
            [=](GoldenPicture& p) {
                return MV40_GaussianBlurImage(p.Image<T>(), kWidth, kHeight, 3, p.Stride<T>(), p.Output<T>(),
                                              p.Stride<T>(), sigma, flags | kWidthFlag<T>);
            },
            [=](GoldenPicture& p) {
                PlainBlur<T>({p.Image<T>(), p.Stride<T>()}, {kWidth, kHeight, 3}, {p.Output<T>(), p.Stride<T>()}, sigma,
                             flags, kMath, [](u32, u32) { return true; });
            },
            checksum};
}

}  // namespace

std::vector<GoldenRow> GaussianGolden()
{
    return {
        BlurRow<u8>("GaussianBlurImage, direct", 0.8, 7, 0x2FE637CAEA3ED3AB),
        BlurRow<u8>("GaussianBlurImage, direct and truncated, one channel", 2.5, 2 | kBlurDirectly | kBlurTruncates,
                    0x8CA1EB06312EAC95),
        BlurRow<u8>("GaussianBlurImage, recursive in doubles", 2, 7, 0x178CBEBA4469D735),
        BlurRow<u8>("GaussianBlurImage, recursive in floats", 10, 7, 0x35B04622C73095F0),
        BlurRow<u16>("GaussianBlurImage, words, direct", 0.8, 7, 0x9E7253BE88762673),
        BlurRow<u16>("GaussianBlurImage, words, recursive in doubles", 2, 7, 0xFAF20FFA5744435B),
        BlurRow<u16>("GaussianBlurImage, words, recursive in floats", 10, 7, 0x8E3408EA2B67DA56),
    };
}

}  // namespace zlvtest
