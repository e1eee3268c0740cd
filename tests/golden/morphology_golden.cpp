// Binary and gray morphology.
#include "golden/golden.h"
#include "morphology/bit_morphology_cases.h"
#include "plain/plain_gray_compositions.h"

namespace zlvtest {
namespace {

constexpr auto kWidth = GoldenPicture::kWidth, kHeight = GoldenPicture::kHeight;
constexpr uint32_t kBits = 8 * kWidth - 3;  // a row's bytes as pixels, but for the last three bits

// Long stretches, so that elements fit somewhere and bytes are empty.
void Smooth(GoldenPicture& p) { p.image = RandomBits(p.image.size(), 110, 5, 1); }

PlainBits Source(GoldenPicture& p) { return {p.image.data(), kBits, kHeight, p.stride}; }

GoldenRow BitRow(const char* name, const BitFunction& function, const PlainBitElement& element, uint64_t checksum)
{
    return {name,
            1,
            1,
            [=](GoldenPicture& p) {
                Smooth(p);
                return function.apply(p.image.data(), kBits, kHeight, p.stride, p.output.data(), p.stride,
                                      element.entries.data(), int32_t(element.width), int32_t(element.height), 0);
            },
            [=](GoldenPicture& p) {
                Smooth(p);
                function.plain(Source(p), element, {p.output.data(), p.stride});
            },
            checksum};
}

// What an upper left corner is, and what it is not.
const PlainBitElement kCorner = {{0, 0, 0, 0, 1, 1, 0, 1, 1}, 3, 3};
const PlainBitElement kNoCorner = {{1, 1, 1, 1, 0, 0, 1, 0, 0}, 3, 3};

GoldenRow HitOrMissRow(uint64_t checksum)
{
    return {"MorphoHitOrMiss1Bit, 3",
            1,
            1,
            [](GoldenPicture& p) {
                Smooth(p);
                return ZLV40_MorphoHitOrMiss1Bit(p.image.data(), kBits, kHeight, p.stride, p.output.data(), p.stride,
                                                 kCorner.entries.data(), 3, 3, kNoCorner.entries.data(), 3, 3, 0);
            },
            [](GoldenPicture& p) {
                Smooth(p);
                PlainHitOrMiss(Source(p), kCorner, kNoCorner, {p.output.data(), p.stride});
            },
            checksum};
}

// An upper end of a line.
const PlainBitElement kEnd = {{0, 0, 0, 0, 1, 0, 0, 1, 0}, 3, 3};
const PlainBitElement kNoEnd = {{0, 1, 0, 0, 0, 0, 0, 0, 0}, 3, 3};

GoldenRow ThinningRow(uint64_t checksum)
{
    return {"MorphoThinning1Bit, 2 passes",
            1,
            1,
            [](GoldenPicture& p) {
                Smooth(p);
                const uint32_t* const hits[] = {kCorner.entries.data(), kEnd.entries.data()};
                const uint32_t* const misses[] = {kNoCorner.entries.data(), kNoEnd.entries.data()};
                return ZLV40_MorphoThinning1Bit(p.image.data(), kBits, kHeight, p.stride, p.output.data(), hits, 3,
                                                misses, 3, 2, 2, 0);
            },
            [](GoldenPicture& p) {
                Smooth(p);
                PlainThinning(Source(p), p.output.data(), {kCorner, kEnd}, {kNoCorner, kNoEnd}, 2);
            },
            checksum};
}

GoldenRow GrayRow(const char* name, decltype(&ZLV40_OpenGray) apply, void (*plain)(const PlainGrayPlane& plane),
                  uint32_t entry, uint64_t checksum)
{
    // Equal entries, or one that stands out.
    std::vector<uint32_t> element(25, entry);
    element[12] = 10;
    return {name,
            1,
            1,
            [=](GoldenPicture& p) {
                return apply(p.image.data(), kWidth, kHeight, p.stride, element.data(), 5, p.output.data(), p.stride);
            },
            [=](GoldenPicture& p) {
                plain({p.image.data(), kWidth, kHeight, p.stride, p.output.data(), p.stride, element, 5});
            },
            checksum};
}

}  // namespace

std::vector<GoldenRow> MorphologyGolden()
{
    return {
        BitRow("MorphoDilation1Bit, 3", kBitFunctions[0], Box(3, 3), 0xCDD8416B4D4649CF),
        BitRow("MorphoDilation1Bit, diamond", kBitFunctions[0], Diamond(7), 0xF59C69833207FE7C),
        BitRow("MorphoErosion1Bit, 3", kBitFunctions[1], Box(3, 3), 0x0420357586B2160D),
        BitRow("MorphoErosion1Bit, 21 x 5", kBitFunctions[1], Box(21, 5), 0x81074E434B3C0EBE),
        BitRow("MorphoOpen1Bit, 7", kBitFunctions[2], Box(7, 7), 0x0B18ABB5DE25AE3F),
        BitRow("MorphoClose1Bit, 7", kBitFunctions[3], Box(7, 7), 0xCD3C29D489AF451A),
        BitRow("MorphoBoundaryExtraction1Bit, 3", kBitFunctions[4], Box(3, 3), 0xCF997CD167C73DF4),
        HitOrMissRow(0xEBD7B093E7BC008A),
        ThinningRow(0xECC65726835C70F9),
        GrayRow("OpenGray, flat", ZLV40_OpenGray, PlainOpenGray, 10, 0x9E506CED72041C21),
        GrayRow("OpenGray", ZLV40_OpenGray, PlainOpenGray, 0, 0x5B631088CC854FDA),
        GrayRow("CloseGray", ZLV40_CloseGray, PlainCloseGray, 3, 0xCFC4D4EB0C13213A),
        GrayRow("TophatGray", ZLV40_TophatGray, PlainTophatGray, 3, 0x847D1560B3F7429F),
        GrayRow("MorphoGradientGray", ZLV40_MorphoGradientGray, PlainGradientGray, 3, 0xE812D1C6C3573FB3),
    };
}

}  // namespace zlvtest
