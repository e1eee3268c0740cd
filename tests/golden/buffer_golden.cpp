// Base layer: tables, channels, masks and rectangles.
#include "base/bit_masks.h"
#include "base/buffer_rows.h"
#include "base/channels.h"
#include "base/emboss.h"
#include "base/solid_rect.h"
#include "base/table_pass.h"
#include "golden/golden.h"
#include "plain/plain_bit_masks.h"
#include "plain/plain_buffer_rows.h"
#include "plain/plain_channels.h"
#include "plain/plain_emboss.h"
#include "plain/plain_solid_rect.h"
#include "plain/plain_table_pass.h"
#include "support/base_layer.h"

#include <cmath>

namespace zlvtest {
namespace {

using namespace zlv;

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;

// Tables of three channels, the middle one left out.
template <class T>
struct Tables {
    std::vector<T> first, last;
    const void* pointers[3];

    Tables()
    {
        for (u32 i = 0; i <= T(~T(0)); ++i) {
            first.push_back(T(i * 7 + 3));
            last.push_back(T(i * i >> (sizeof(T) * 4)));
        }
        pointers[0] = first.data();
        pointers[1] = nullptr;
        pointers[2] = last.data();
    }
};

template <class T>
GoldenRow TablePassRow(const char* name, u64 checksum)
{
    return {
        name,
        3,
        sizeof(T),
        [](GoldenPicture& p) {
            return MV40_ApplyLUTsToImage(p.Image<T>(), kWidth, kHeight, 3, p.Stride<T>(), Tables<T>().pointers,
                                         kWidthFlag<T>);
        },
        [](GoldenPicture& p) { PlainTablePass(p.Image<T>(), kWidth, kHeight, 3, p.Stride<T>(), Tables<T>().pointers); },
        checksum};
}

template <class T>
GoldenRow GrayRow(const char* name, u32 flags, u64 checksum)
{
    return {name,
            3,
            sizeof(T),
            [=](GoldenPicture& p) {
                return MV40_ImageToGrayScale8Bit(p.Image<T>(), kWidth, kHeight, 3, p.Stride<T>(), p.Output<T>(), kWidth,
                                                 flags | kWidthFlag<T>);
            },
            [=](GoldenPicture& p) {
                PlainGray(p.Image<T>(), kWidth, kHeight, 3, p.Stride<T>(), p.Output<T>(), kWidth,
                          (flags & kGrayFromBgr) != 0);
            },
            checksum};
}

// Three planes of the picture become an image of three channels.
template <class T>
GoldenRow CombineRow(const char* name, u64 checksum)
{
    constexpr size_t kPlane = size_t(kWidth) * kHeight;
    return {name,
            3,
            sizeof(T),
            [](GoldenPicture& p) {
                const void* const planes[] = {p.Image<T>(), p.Image<T>() + kPlane, p.Image<T>() + 2 * kPlane};
                return MV40_CombineImageChannels(planes, kWidth, kHeight, 3, kWidth, p.Output<T>(), p.Stride<T>(),
                                                 kWidthFlag<T>);
            },
            [](GoldenPicture& p) {
                const T* const planes[] = {p.Image<T>(), p.Image<T>() + kPlane, p.Image<T>() + 2 * kPlane};
                PlainCombine(planes, kWidth, kHeight, 3, kWidth, p.Output<T>(), p.Stride<T>());
            },
            checksum};
}

template <class T>
GoldenRow SplitRow(const char* name, u64 checksum)
{
    constexpr size_t kColours = size_t(kWidth) * 3 * kHeight;
    return {name,
            4,
            sizeof(T),
            [](GoldenPicture& p) {
                return MV40_SplitRGBAToRGBPlusA(p.Image<T>(), kWidth, kHeight, p.Stride<T>(), p.Output<T>(), kWidth * 3,
                                                p.Output<T>() + kColours, kWidth, kWidthFlag<T>);
            },
            [](GoldenPicture& p) {
                PlainSplit(p.Image<T>(), kWidth, kHeight, p.Stride<T>(), p.Output<T>(), kWidth * 3,
                           p.Output<T>() + kColours, kWidth);
            },
            checksum};
}

GoldenRow EmbossRow(const char* name, u32 flags, u64 checksum)
{
    constexpr f64 kAzimuth = 0.7, kElevation = 0.5;
    constexpr u32 kDepth = 8;
    return {name,
            3,
            1,
            [=](GoldenPicture& p) {
                return MV40_EmbossRGB(p.image.data(), kWidth, kHeight, kWidth, kAzimuth, kElevation, kDepth,
                                      p.image.data(), p.stride, p.output.data(), p.stride, nullptr, 0, flags);
            },
            [=](GoldenPicture& p) {
                PlainEmboss(
                    {p.image.data(), kWidth}, int(kWidth), int(kHeight),
                    {std::cos(kAzimuth), std::sin(kAzimuth), std::cos(kElevation), std::sin(kElevation), kDepth},
                    {p.image.data(), p.stride}, {nullptr, 0}, (flags & kEmbossBrightTexture) != 0,
                    (flags & kEmbossWholeImage) != 0, p.output.data(), p.stride);
            },
            checksum};
}

GoldenRow FillRow(const char* name, u32 channels, u32 flags, u64 checksum)
{
    return {name,
            channels,
            1,
            [=](GoldenPicture& p) {
                const SolidRect rect = {3, 4, 50, 33};
                return MV40_FillSolidRect(p.image.data(), kWidth, kHeight, channels, p.stride, &rect, 0x40302010,
                                          flags);
            },
            [=](GoldenPicture& p) {
                PlainFillRect(p.image.data(), kWidth, kHeight, channels, p.stride, 3, 4, 50, 33, 0x40302010,
                              (flags & kSwapFirstAndThird) != 0);
            },
            checksum};
}

constexpr u8 kMaskedValue = 77;
constexpr u32 kMaskStride = (kWidth + 7) / 8 + 1;

GoldenRow MakeMaskRow(const char* name, u64 checksum)
{
    return {name,
            1,
            1,
            [](GoldenPicture& p) {
                return MV40_Create1BitMaskFromColor(p.image.data(), kWidth, kHeight, p.stride, p.output.data(),
                                                    kMaskStride, kMaskedValue, 0);
            },
            [](GoldenPicture& p) {
                PlainMakeMask(p.image.data(), kWidth, kHeight, p.stride, p.output.data(), kMaskStride, kMaskedValue);
            },
            checksum};
}

GoldenRow SetWhereMaskedRow(const char* name, u64 checksum)
{
    return {name,
            1,
            1,
            [](GoldenPicture& p) {
                return MV40_SetColorFrom1BitMask(p.image.data(), kWidth, kHeight, kMaskStride, p.output.data(),
                                                 p.stride, kMaskedValue, 0);
            },
            [](GoldenPicture& p) {
                PlainSetWhereMasked(p.image.data(), kWidth, kHeight, kMaskStride, p.output.data(), p.stride,
                                    kMaskedValue);
            },
            checksum};
}

}  // namespace

std::vector<GoldenRow> BufferGolden()
{
    return {
        TablePassRow<u8>("ApplyLUTs, bytes", 0xB89889905ED00780),
        TablePassRow<u16>("ApplyLUTs, words", 0xC56E37BDE510BD0B),
        GrayRow<u8>("ImageToGrayScale8Bit, RGB", 0, 0xB526FB328072F6A0),
        GrayRow<u8>("ImageToGrayScale8Bit, BGR", kGrayFromBgr, 0x3FEA9D8934DF0DD7),
        GrayRow<u16>("ImageToGrayScale8Bit, words", 0, 0xCC3AB83B3BEEED9D),
        CombineRow<u8>("CombineImageChannels, bytes", 0x1D28B0059D8BEC90),
        CombineRow<u16>("CombineImageChannels, words", 0xA003319CC4B15BAF),
        SplitRow<u8>("SplitRGBAToRGBPlusA, bytes", 0x3C64ABFD281BD7F5),
        SplitRow<u16>("SplitRGBAToRGBPlusA, words", 0x961A8D6A6CC10AA3),
        EmbossRow("EmbossRGB, interior", 0, 0x140387285C447FA5),
        EmbossRow("EmbossRGB, whole and bright", kEmbossBrightTexture | kEmbossWholeImage, 0x0011C1021ABB8288),
        FillRow("FillSolidRect, gray", 1, 0, 0x95AD377BA07B6E19),
        FillRow("FillSolidRect, RGB swapped", 3, kSwapFirstAndThird, 0xB9D4F4A52E35CAC6),
        FillRow("FillSolidRect, RGBA", 4, 0, 0x60FAB582B2B1A815),
        MakeMaskRow("Create1BitMaskFromColor", 0xEBFAB4BB4527E84E),
        SetWhereMaskedRow("SetColorFrom1BitMask", 0xA79C7A14F9612ED5),
        {"VerticalFlipImage", 3, 1,
         [](GoldenPicture& p) { return MV40_VerticalFlipImage(p.image.data(), p.stride, kHeight); },
         [](GoldenPicture& p) { p.image = PlainFlip(p.image, p.stride, kHeight); }, 0x2EDD4D341E9C288B},
        {"CopyBuffer to shorter rows", 3, 1,
         [](GoldenPicture& p) { return MV40_CopyBuffer(p.image.data(), p.stride, kHeight, kWidth, p.output.data()); },
         [](GoldenPicture& p) { PlainCopyRows(p.image.data(), p.stride, kHeight, kWidth, p.output.data()); },
         0xC2F3ADCFC1BD02DD},
    };
}

}  // namespace zlvtest
