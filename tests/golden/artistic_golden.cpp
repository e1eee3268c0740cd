// Artistic effects.
#include "golden/golden.h"
#include "plain/plain_cells.h"
#include "plain/plain_sketches.h"

#include "zlv40.h"

namespace zlvtest {
namespace {

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;

PlainRgbCall PlainCall(GoldenPicture& p)
{
    return {p.image.data(), kWidth, kHeight, p.stride, p.output.data(), p.stride};
}

GoldenRow HalftoneRow(const char* name, std::uint32_t cellSize, bool isSmooth, std::uint64_t checksum)
{
    return {name,
            3,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_HalftoneImage(p.image.data(), kWidth, kHeight, 3, p.stride, cellSize, isSmooth);
            },
            [=](GoldenPicture& p) {
                PlainHalftone({p.image.data(), kWidth, kHeight, p.stride}, cellSize, isSmooth, PlainSilence);
            },
            checksum};
}

GoldenRow MosaicRow(const char* name, std::uint32_t channels, std::uint32_t cellSize, std::uint64_t checksum)
{
    return {name,
            channels,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_MosaicImage(p.image.data(), kWidth, kHeight, std::int32_t(channels), p.stride, cellSize);
            },
            [=](GoldenPicture& p) {
                PlainMosaic({p.image.data(), kWidth, kHeight, p.stride}, channels, cellSize, PlainSilence);
            },
            checksum};
}

GoldenRow AsciiRow(const char* name, std::uint32_t columns, std::uint32_t rows, std::uint64_t checksum)
{
    return {name,
            1,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_ASCIIizeGrayscaleImage(p.image.data(), kWidth, kHeight, p.stride, p.output.data(), columns,
                                                    rows, nullptr);
            },
            [=](GoldenPicture& p) {
                PlainAsciiArt({p.image.data(), kWidth, kHeight, p.stride}, p.output.data(), columns, rows,
                              "WM$@#%^x*o=+:~. ");
            },
            checksum};
}

GoldenRow OilPaintRow(const char* name, std::uint32_t radius, std::uint32_t levels, std::uint32_t flags,
                      std::uint64_t checksum)
{
    return {name,
            3,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_OilPaintRGB(p.image.data(), kWidth, std::int32_t(kHeight), p.stride, p.output.data(),
                                         p.stride, radius, levels, flags);
            },
            [=](GoldenPicture& p) { PlainOilPaint(PlainCall(p), radius, levels, flags, PlainSilence); },
            checksum};
}

GoldenRow WatercolorRow(const char* name, double amount, std::uint8_t flags, std::uint64_t checksum)
{
    return {name,
            3,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_WatercolorTintRGB(p.image.data(), kWidth, kHeight, p.stride, p.output.data(), p.stride,
                                               amount, flags);
            },
            [=](GoldenPicture& p) { PlainWatercolor(PlainCall(p), amount, flags, PlainSilence); },
            checksum};
}

GoldenRow GauzyRow(const char* name, double blur, std::uint32_t mode, std::uint64_t checksum)
{
    return {name,
            3,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_GauzyRGB(p.image.data(), kWidth, kHeight, p.stride, p.output.data(), p.stride, blur, 0.8,
                                      0.6, mode);
            },
            [=](GoldenPicture& p) { PlainGauzy(PlainCall(p), blur, 0.8, 0.6, mode, PlainSilence); },
            checksum};
}

// Scribbles are packed: the padding of the picture is one more piece of it.
GoldenRow ScribbleRow(const char* name, std::uint32_t baseKind, bool areEdgesFromResult, std::uint64_t checksum)
{
    return {name,
            3,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_Scribble(p.image.data(), kWidth, kHeight, p.output.data(), baseKind, areEdgesFromResult,
                                      70);
            },
            [=](GoldenPicture& p) {
                const PlainRgbCall call = {p.image.data(), kWidth, kHeight, 3 * kWidth, p.output.data(), 3 * kWidth};
                PlainScribble(call, baseKind, areEdgesFromResult, 70, PlainSilence);
            },
            checksum};
}

GoldenRow FingerprintRow(const char* name, double blur, std::uint32_t ridge, std::uint32_t flags,
                         std::uint64_t checksum)
{
    return {name,
            1,
            1,
            [=](GoldenPicture& p) {
                return ZLV40_Fingerprint(p.image.data(), kWidth, kHeight, p.stride, p.output.data(), p.stride, blur,
                                         ridge, flags);
            },
            [=](GoldenPicture& p) { PlainFingerprint(PlainCall(p), blur, ridge, flags, PlainSilence); },
            checksum};
}

}  // namespace

std::vector<GoldenRow> ArtisticGolden()
{
    return {
        HalftoneRow("HalftoneImage, hard", 3, false, 0x2586203EE72FC283),
        HalftoneRow("HalftoneImage, smooth", 4, true, 0xB20993E9152ADEBB),
        MosaicRow("MosaicImage, gray", 1, 5, 0x4B029129F798639C),
        MosaicRow("MosaicImage, RGB", 3, 7, 0xCA72ABCE60FC75A4),
        MosaicRow("MosaicImage, RGBA", 4, 2, 0x47448167A07CDA5F),
        AsciiRow("ASCIIizeGrayscaleImage", 40, 17, 0xE088F1ABF9D62C90),
        OilPaintRow("OilPaintRGB, 20 levels", 4, 20, 0, 0xCC09DDB4AEFFC7BE),
        OilPaintRow("OilPaintRGB, blended and equalised", 9, 255, 3, 0x17C4F505503316FF),
        WatercolorRow("WatercolorTintRGB, darker", 0.2, 0, 0x0691CDF7C088FA0F),
        WatercolorRow("WatercolorTintRGB, stretched and lighter", 0.05, 3, 0x423A191B05FC42F1),
        GauzyRow("GauzyRGB, gray", 0.3, 0, 0x7206B373D20B1119),
        GauzyRow("GauzyRGB, curve", 0.1, 1, 0x65BBD8511A33720C),
        GauzyRow("GauzyRGB, lighter", 0.02, 3, 0xC98B3946B0CB1A1F),
        ScribbleRow("Scribble, blurred", 0, false, 0xCBE0ABFA72087480),
        ScribbleRow("Scribble, edges of midpoints", 1, true, 0x0C5E0BAA38E2251B),
        ScribbleRow("Scribble, posterised", 2, false, 0x36C25D0D697F7735),
        ScribbleRow("Scribble, despeckled", 3, true, 0x0CF4C98F75B3231F),
        FingerprintRow("Fingerprint, dark", 20, 9, 0, 0x29BBC3C062252F38),
        FingerprintRow("Fingerprint, light", 0, 4, 1, 0x29FF42B1BE54FA9E),
    };
}

}  // namespace zlvtest
