// Base layer: resizing, each mode to a smaller and to a larger picture.
#include "base/resize.h"
#include "golden/golden.h"
#include "plain/plain_resize.h"
#include "support/base_layer.h"

#include <cmath>

namespace zlvtest {
namespace {

using namespace zlv;

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;

struct Sizes {
    const char* name;
    u32 sourceWidth, sourceHeight, destWidth, destHeight;
};

constexpr Sizes kSmaller = {"smaller", kWidth, kHeight, 40, 23};
constexpr Sizes kHalf = {"to a half", 60, 36, 30, 18};
constexpr Sizes kLarger = {"larger", 40, 23, kWidth, kHeight};

const PlainResizeMath kMath = {[](double x) { return std::exp(x); }, [](double x) { return std::sin(x); },
                               [](double x) { return std::cos(x); }};

constexpr const char* kModeNames[] = {"box",          "triangle",      "Hamming",        "Gaussian",    "bell",
                                      "B-spline",     "Hermite",       "B-spline again", "Lanczos3",    "Mitchell",
                                      "sinc",         "Hermite again", "Hanning",        "Catmull-Rom", "block average",
                                      "area average", "bilinear",      "bicubic",        "nearest"};

template <class T>
GoldenRow Row(ResizeMode mode, const Sizes& sizes, u64 checksum)
{
    const char* const width = sizeof(T) == 2 ? ", words, " : ", ";
    return {"ResizeImage, " + std::string(kModeNames[u32(mode)]) + width + sizes.name,
            3,
            sizeof(T),
            [=](GoldenPicture& p) {
                return MV40_ResizeImage(p.Image<T>(), sizes.sourceWidth, sizes.sourceHeight, p.Stride<T>(),
                                        p.Output<T>(), sizes.destWidth, sizes.destHeight, p.Stride<T>(), 3, u32(mode),
                                        sizeof(T) == 2 ? kResizeSixteenBit : 0);
            },
            [=](GoldenPicture& p) {
                PlainResizer<T>({p.Image<T>(), sizes.sourceWidth, sizes.sourceHeight, p.Stride<T>()},
                                {p.Output<T>(), sizes.destWidth, sizes.destHeight, p.Stride<T>()}, 3, kMath,
                                [](u32, u32) { return true; })
                    .Run(u32(mode));
            },
            checksum};
}

}  // namespace

std::vector<GoldenRow> ResizeGolden()
{
    return {
        Row<u8>(ResizeMode::Box, kSmaller, 0x6D0EC5FA4CF922D3),
        Row<u8>(ResizeMode::Box, kLarger, 0x136C67BE2AC05667),
        Row<u8>(ResizeMode::Triangle, kSmaller, 0x2D322B951BE88A5D),
        Row<u8>(ResizeMode::Triangle, kLarger, 0x83AE1A298C102149),
        Row<u8>(ResizeMode::Hamming, kSmaller, 0x01993E183BE6C1A9),
        Row<u8>(ResizeMode::Hamming, kLarger, 0x64D29756E06A440C),
        Row<u8>(ResizeMode::Gaussian, kSmaller, 0x1AA630BE816945F6),
        Row<u8>(ResizeMode::Gaussian, kLarger, 0x50A9681F9D148372),
        Row<u8>(ResizeMode::Bell, kSmaller, 0x410CCC224CE2E889),
        Row<u8>(ResizeMode::Bell, kLarger, 0xF7802AA71D66DDB7),
        Row<u8>(ResizeMode::BSpline, kSmaller, 0x4984A46CCBA9F3C0),
        Row<u8>(ResizeMode::BSpline, kLarger, 0x7AF959508CFFABD4),
        Row<u8>(ResizeMode::Hermite, kSmaller, 0xFF4EE6E879709845),
        Row<u8>(ResizeMode::Hermite, kLarger, 0x493E24FB63554ADE),
        Row<u8>(ResizeMode::BSplineAgain, kSmaller, 0x4984A46CCBA9F3C0),
        Row<u8>(ResizeMode::BSplineAgain, kLarger, 0x7AF959508CFFABD4),
        Row<u8>(ResizeMode::Lanczos3, kSmaller, 0xEBD55F88B96C0E2D),
        Row<u8>(ResizeMode::Lanczos3, kLarger, 0xDFAD44C22E7F223A),
        Row<u8>(ResizeMode::Mitchell, kSmaller, 0xF7734C5987D03C96),
        Row<u8>(ResizeMode::Mitchell, kLarger, 0xD25C81E6BEC21F78),
        Row<u8>(ResizeMode::Sinc, kSmaller, 0x665A2AC414621D84),
        Row<u8>(ResizeMode::Sinc, kLarger, 0x6E494B1F49AEF04E),
        Row<u8>(ResizeMode::HermiteAgain, kSmaller, 0xFF4EE6E879709845),
        Row<u8>(ResizeMode::HermiteAgain, kLarger, 0x493E24FB63554ADE),
        Row<u8>(ResizeMode::Hanning, kSmaller, 0xC297DA72260A125B),
        Row<u8>(ResizeMode::Hanning, kLarger, 0x14185C884C1382B7),
        Row<u8>(ResizeMode::CatmullRom, kSmaller, 0x7F8A1DF5CDA2117F),
        Row<u8>(ResizeMode::CatmullRom, kLarger, 0x19895981549B1E91),
        Row<u8>(ResizeMode::BlockAverage, kSmaller, 0x7A709D51435F4AA8),
        Row<u8>(ResizeMode::BlockAverage, kHalf, 0x663346A4651C146C),
        Row<u16>(ResizeMode::BlockAverage, kSmaller, 0x7B7E8150B135BAA8),
        Row<u16>(ResizeMode::BlockAverage, kHalf, 0xB9A1C4D1D4F23EB5),
        Row<u8>(ResizeMode::AreaAverage, kSmaller, 0x2038B5F940D23478),
        Row<u8>(ResizeMode::AreaAverage, kHalf, 0x663346A4651C146C),
        Row<u16>(ResizeMode::AreaAverage, kSmaller, 0xBB02EA1AD0723D02),
        Row<u16>(ResizeMode::AreaAverage, kHalf, 0xB9A1C4D1D4F23EB5),
        Row<u8>(ResizeMode::Bilinear, kSmaller, 0x12735221714281D9),
        Row<u8>(ResizeMode::Bilinear, kLarger, 0x255847C2DF42BA1D),
        Row<u8>(ResizeMode::Bilinear, kHalf, 0x1523FDD3DC495A64),
        Row<u16>(ResizeMode::Bilinear, kSmaller, 0x7A0DBC5B4AFC4602),
        Row<u16>(ResizeMode::Bilinear, kLarger, 0x624460DBDB1652CA),
        Row<u16>(ResizeMode::Bilinear, kHalf, 0xB9C0AE98D9652732),
        Row<u8>(ResizeMode::Bicubic, kSmaller, 0xE65CFAA010A5BCA7),
        Row<u8>(ResizeMode::Bicubic, kLarger, 0xA918370F51B8DA97),
        Row<u8>(ResizeMode::Bicubic, kHalf, 0x1523FDD3DC495A64),
        Row<u16>(ResizeMode::Bicubic, kSmaller, 0x4F917DD889C34B45),
        Row<u16>(ResizeMode::Bicubic, kLarger, 0xDC8EF4FA0EDDD890),
        Row<u16>(ResizeMode::Bicubic, kHalf, 0xB9C0AE98D9652732),
        Row<u8>(ResizeMode::Nearest, kSmaller, 0x7A709D51435F4AA8),
        Row<u8>(ResizeMode::Nearest, kLarger, 0xAAF1658EA39069A3),
        Row<u16>(ResizeMode::Nearest, kSmaller, 0x7B7E8150B135BAA8),
        Row<u16>(ResizeMode::Nearest, kLarger, 0xB4C70E086D4E567A),
    };
}

}  // namespace zlvtest
