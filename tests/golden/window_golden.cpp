// Window statistics.
#include "golden/golden.h"
#include "plain/plain_window_filters.h"

#include "zlv40.h"

namespace zlvtest {
namespace {

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;

// One export with its own argument, if it has one, on all channels but the second.
template <class Export, class Plain, class... Extra>
GoldenRow WindowRow(const char* name, std::uint32_t channels, std::int32_t size, std::uint64_t checksum,
                    Export function, Plain plain, Extra... extra)
{
    constexpr std::uint32_t kMask = 0xFD;
    return {name,
            channels,
            1,
            [=](GoldenPicture& p) {
                return function(p.image.data(), kWidth, kHeight, p.output.data(), channels, p.stride, p.stride, size,
                                extra..., kMask);
            },
            [=](GoldenPicture& p) {
                plain({p.image.data(), kWidth, kHeight, p.output.data(), channels, p.stride, p.stride, size, kMask},
                      extra...);
            },
            checksum};
}

void PowerMean(const PlainWindowImage& image, std::int32_t order) { PlainYpMean(image, order); }
void GeometricMean(const PlainWindowImage& image) { PlainGeometricMean(image); }

}  // namespace

std::vector<GoldenRow> WindowGolden()
{
    return {
        WindowRow("MidpointFilter, RGB", 3, 7, 0x555DF3DD37FDA4D1, ZLV40_MidpointFilter, PlainMidpoint),
        WindowRow("MinimumFilter, gray", 1, 3, 0x96A538D6BB8D2F9E, ZLV40_MinimumFilter, PlainMinimum),
        WindowRow("MinimumFilter, RGB", 3, 15, 0xC45BDC3367159777, ZLV40_MinimumFilter, PlainMinimum),
        WindowRow("MaximumFilter, eight channels", 8, 5, 0x752232A4C4AA0D83, ZLV40_MaximumFilter, PlainMaximum),
        WindowRow("MaximumFilter, higher than the picture", 3, 91, 0x829E7F97ACA5E873, ZLV40_MaximumFilter,
                  PlainMaximum),
        WindowRow("ArithmeticMeanFilter, RGB", 3, 5, 0x44396598DCD3FF09, ZLV40_ArithmeticMeanFilter,
                  PlainArithmeticMean),
        WindowRow("ArithmeticMeanFilter, gray, large", 1, 51, 0x2A3E337BA17B9401, ZLV40_ArithmeticMeanFilter,
                  PlainArithmeticMean),
        WindowRow("GeometricMeanFilter, RGBA", 4, 5, 0x060C68455B969E35, ZLV40_GeometricMeanFilter, GeometricMean),
        WindowRow("HarmonicMeanFilter, RGB", 3, 3, 0x5AB44533B6A49C79, ZLV40_HarmonicMeanFilter, PlainHarmonicMean),
        WindowRow("YpMeanFilter of order 1, gray", 1, 5, 0xF8CD30CF36944B2C, ZLV40_YpMeanFilter, PowerMean, 1),
        WindowRow("YpMeanFilter of order 2, RGB", 3, 5, 0x876D39E114AA865A, ZLV40_YpMeanFilter, PowerMean, 2),
        WindowRow("YpMeanFilter of order 3, RGB", 3, 3, 0x3DD4263924B0E369, ZLV40_YpMeanFilter, PowerMean, 3),
        WindowRow("YpMeanFilter of order -1, RGB", 3, 3, 0x4D333C62D3753BE1, ZLV40_YpMeanFilter, PowerMean, -1),
        WindowRow("SharpenImage, RGB", 3, 3, 0xDDCD78D5A41398F5, ZLV40_SharpenImage, PlainSharpen, 0.07),
        WindowRow("SharpenImage, RGB, large and negative", 3, 21, 0x27DBD91350ADF84F, ZLV40_SharpenImage, PlainSharpen,
                  -0.0013),
        WindowRow("BlurImage, RGBA", 4, 5, 0x9B6F458E18E16FEC, ZLV40_BlurImage, PlainBlur, 0.5),
        WindowRow("BlurImage, gray, large", 1, 31, 0xBB028BDB0BEA057E, ZLV40_BlurImage, PlainBlur, 1.0 / 49),
    };
}

}  // namespace zlvtest
