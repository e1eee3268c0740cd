// What the binary morphology computes.
#include "morphology/bit_morphology_cases.h"

#include "support/guarded_buffer.h"
#include "support/targets.h"

namespace zlv {
namespace {

using namespace zlvtest;

// ---- Equal to plain ----

TEST(BitMorphology, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const u32 width : {1u, 2u, 7u, 8u, 9u, 17u, 31u, 33u, 63u, 65u, 127u, 129u, 200u}) {
            for (const u32 height : {1u, 2u, 9u}) {
                for (const BitFunction& function : kBitFunctions) {
                    const BitPicture picture{width, height};
                    for (const PlainBitElement& element :
                         {Box(1, 1), Box(3, 3), Box(7, 7), Box(5, 1), Box(1, 5), Diamond(7), RandomElement(3, 3, width),
                          RandomElement(9, 5, width), Box(21, 3, 2)}) {
                        picture.ExpectPlain(function, element);
                    }
                }
            }
        }
    });
}

// Rare bits leave empty bytes, over which the erosion passes; frequent ones leave something of it.
TEST(BitMorphology, RareAndFrequentBitsEqualPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const u32 density : {0u, 4u, 40u, 128u, 200u, 250u, 256u}) {
            for (const u32 changes : {1u, 16u}) {
                const BitPicture picture{307, 12, density, 1, changes};
                for (const BitFunction& function : kBitFunctions) {
                    for (const PlainBitElement& element : {Box(3, 3), Box(7, 3), Diamond(5), RandomElement(3, 3, 4)}) {
                        picture.ExpectPlain(function, element);
                    }
                }
                picture.ExpectPlainHitOrMiss(Box(3, 3), RandomElement(5, 3, 4));
            }
        }
    });
}

TEST(BitMorphology, RandomSizesAndElementsEqualPlain)
{
    Random random(31);
    zlvtest::OnEveryTarget([&] {
        for (u32 round = 0; round < 250; ++round) {
            const BitPicture picture{1 + random.Below(150), 1 + random.Below(20), random.Below(257), random.Below(4),
                                     1 + random.Below(16)};
            const PlainBitElement element =
                RandomElement(1 + 2 * random.Below(10), 1 + 2 * random.Below(6), random.Next());
            for (const BitFunction& function : kBitFunctions) picture.ExpectPlain(function, element);
            picture.ExpectPlainHitOrMiss(
                element, RandomElement(1 + 2 * random.Below(4), 1 + 2 * random.Below(4), random.Next()));
        }
    });
}

TEST(BitMorphology, BoxesOfAnySizeEqualPlain)
{
    zlvtest::OnEveryTarget([] {
        for (long long width = 1; width <= 41; width += 4) {
            for (long long height = 1; height <= 25; height += 6) {
                for (const BitFunction& function : kBitFunctions) {
                    BitPicture{83, 21, 20}.ExpectPlain(function, Box(width, height));
                    BitPicture{83, 21, 250}.ExpectPlain(function, Box(width, height));
                }
            }
        }
    });
}

TEST(BitMorphology, ElementsLargerThanTheImageEqualPlain)
{
    zlvtest::OnEveryTarget([] {
        for (const auto& [width, height] : {std::pair(1u, 1u), std::pair(3u, 2u), std::pair(13u, 5u)}) {
            for (const u32 density : {60u, 240u}) {
                for (const BitFunction& function : kBitFunctions) {
                    BitPicture{width, height, density}.ExpectPlain(function, Box(61, 33));
                    BitPicture{width, height, density}.ExpectPlain(function, RandomElement(61, 33, 5));
                    BitPicture{width, height, density}.ExpectPlain(function, Diamond(31));
                }
            }
        }
    });
}

TEST(BitMorphology, RowsWithoutAByteInBetweenOverlapAsPlainOnesDo)
{
    // Strides below a row's bytes: rows begin within each other. The two simple functions take them.
    for (const u32 stride : {0u, 1u, 2u}) {
        for (int i = 0; i < 2; ++i) {
            SCOPE(stride, kBitFunctions[i].name);
            const Bytes src = RandomBits(40, 60, stride);
            Bytes wanted = RandomBytes(40, 4), got = wanted;
            const PlainBitElement element = Box(3, 3);
            kBitFunctions[i].plain({src.data(), 21, 6, stride}, element, {wanted.data(), stride});
            EXPECT_EQ(
                kBitFunctions[i].apply(src.data(), 21, 6, stride, got.data(), stride, element.entries.data(), 3, 3, 0),
                1u);
            EXPECT_EQ(got, wanted);
        }
    }
}

// ---- Elements ----

struct OneRow {
    u8 src, dst;
    std::vector<u32> entries;
    u8 dilated, eroded;
    const char* shows;
};

const OneRow kElements[] = {
    {0x18, 0xFF, {0, 0, 0}, 0x00, 0xFF, "an element of all zeros clears in a dilation, sets in an erosion"},
    {0x00, 0xA5, {0, 0, 0}, 0x00, 0xFF, "and with its centre 0, the erosion visits all pixels"},
    {0x18, 0x00, {0, 1, 0}, 0x18, 0x18, "the centre alone copies"},
    {0x18, 0x00, {0, 2, 0}, 0x00, 0x18, "an entry of 2 is ignored by dilations and counted by erosions"},
    {0x18, 0x00, {2, 1, 2}, 0x18, 0x00, "an entry of 2 takes away pixels that one of 1 keeps"},
    {0x18, 0x00, {1, 0, 0}, 0x0C, 0x0C, "an element is not reflected: its left entry looks to the left"},
    {0x18, 0x00, {0, 0, 1}, 0x30, 0x30, "its right entry looks to the right"},
    {0x80, 0x00, {1, 0, 0}, 0xC0, 0xC0, "beyond the left edge its pixels repeat"},
    {0x01, 0x00, {0, 0, 1}, 0x03, 0x03, "beyond the right edge too"},
    {0x3C, 0x00, {1, 1, 1}, 0x7E, 0x18, "three in a row"},
    {0x18, 0x00, {0xFFFFFFFF, 1, 0}, 0x18, 0x08, "the largest entry counts in erosions alone"},
};

TEST(BitMorphology, EntriesOfAnElement)
{
    for (const OneRow& row : kElements) {
        SCOPE(row.shows);
        u8 dilated = row.dst, eroded = row.dst;
        EXPECT_EQ(ZLV40_MorphoDilation1Bit(&row.src, 8, 1, 1, &dilated, 1, row.entries.data(), 3, 1, 0), 1u);
        EXPECT_EQ(dilated, row.dilated);
        EXPECT_EQ(ZLV40_MorphoErosion1Bit(&row.src, 8, 1, 1, &eroded, 1, row.entries.data(), 3, 1, 0), 1u);
        EXPECT_EQ(eroded, row.eroded);
    }
}

TEST(BitMorphology, TheReservedArgumentHasNoEffect)
{
    const BitPicture picture{50, 9};
    const Bytes src = picture.Source();
    for (const BitFunction& function : kBitFunctions) {
        SCOPE(function.name);
        Bytes wanted = picture.Destination(), got = wanted;
        const PlainBitElement element = Box(3, 3);
        for (const auto& [dst, reserved] : {std::pair(&wanted, 0u), std::pair(&got, 0xFFFFFFFFu)}) {
            EXPECT_EQ(function.apply(src.data(), 50, 9, picture.SrcStride(), dst->data(), picture.DstStride(),
                                     element.entries.data(), 3, 3, reserved),
                      1u);
        }
        EXPECT_EQ(got, wanted);
    }
}

// ---- What the erosion leaves out ----

struct Skips {
    const char* shows;
    u32 width;
    Bytes src, dst, wanted;
};

// Of an element of one entry: what is visited becomes a copy.
const Skips kSkips[] = {
    {"an empty byte and the pixel behind it keep what they are", 16, {0x00, 0xFF}, {0xAA, 0x00}, {0xAA, 0x7F}},
    {"so does a set one", 16, {0x00, 0x00}, {0xFF, 0xFF}, {0xFF, 0xFF}},
    {"the pixel behind is lost even where it is set", 24, {0xFF, 0x00, 0x80}, {0, 0, 0}, {0xFF, 0x00, 0x00}},
    {"it is kept where the destination has it", 24, {0xFF, 0x00, 0x00}, {0, 0x55, 0xC3}, {0xFF, 0x55, 0xC3}},
    {"four empty bytes are one stretch", 48, {0, 0, 0, 0, 0xFF, 0xFF}, {0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0x7F, 0xFF}},
    {"five of them too", 48, {0, 0, 0, 0, 0, 0xFF}, {0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0x7F}},
    {"a stretch ends at a multiple of 32",
     72,
     {0xFF, 0, 0, 0, 0, 0xFF, 0, 0, 0xFF},
     {0, 0, 0, 0, 0, 0, 0, 0, 0},
     {0xFF, 0, 0, 0, 0, 0x7F, 0, 0, 0x7F}},
    {"padding bits fill a byte", 12, {0xFF, 0x01}, {0xFF, 0xFF}, {0xFF, 0x0F}},
    {"without them it is empty", 12, {0xFF, 0x00}, {0xFF, 0xFF}, {0xFF, 0xFF}},
};

TEST(BitErosion, PassesOverEmptyBytesAndThePixelBehind)
{
    zlvtest::OnEveryTarget([] {
        for (const Skips& row : kSkips) {
            SCOPE(row.shows);
            const u32 one = 1, stride = u32(row.src.size());
            Bytes got = row.dst;
            EXPECT_EQ(ZLV40_MorphoErosion1Bit(row.src.data(), row.width, 1, stride, got.data(), stride, &one, 1, 1, 0),
                      1u);
            EXPECT_EQ(got, row.wanted);
        }
    });
}

TEST(BitErosion, AStretchEndsWithItsRow)
{
    const Bytes src = {0xFF, 0x00, 0xFF, 0xFF};
    Bytes dst(4, 0);
    const u32 one = 1;
    EXPECT_EQ(ZLV40_MorphoErosion1Bit(src.data(), 16, 2, 2, dst.data(), 2, &one, 1, 1, 0), 1u);
    EXPECT_EQ(dst, (Bytes{0xFF, 0x00, 0xFF, 0xFF}));
}

TEST(BitErosion, ACentreOf0VisitsEveryPixel)
{
    const std::vector<u32> leftNeighbour = {1, 0, 0};
    const Bytes src = {0x00, 0xFF};
    Bytes dst = {0xFF, 0xFF};
    EXPECT_EQ(ZLV40_MorphoErosion1Bit(src.data(), 16, 1, 2, dst.data(), 2, leftNeighbour.data(), 3, 1, 0), 1u);
    EXPECT_EQ(dst, (Bytes{0x00, 0x7F}));
}

// The erosion is the complement of the complement's dilation, but for the pixels that it passes over.
TEST(BitErosion, IsTheDualOfTheDilationWhereItVisits)
{
    for (const u32 density : {30u, 128u, 240u}) {
        const BitPicture picture{201, 15, density, 0};
        const Bytes src = picture.Source();
        const u32 stride = picture.SrcStride();
        Bytes complement = src;
        EXPECT_EQ(ZLV40_InvertBuffer(complement.data(), u32(complement.size())), 1u);
        u32 lost = 0, visited = 0;
        for (const PlainBitElement& element : {Box(3, 3), Diamond(5), Box(1, 7)}) {
            Bytes eroded(src.size()), dilated(src.size());
            const i32 w = i32(element.width), h = i32(element.height);
            const u32* const entries = element.entries.data();
            EXPECT_EQ(ZLV40_MorphoErosion1Bit(src.data(), 201, 15, stride, eroded.data(), stride, entries, w, h, 0),
                      1u);
            EXPECT_EQ(
                ZLV40_MorphoDilation1Bit(complement.data(), 201, 15, stride, dilated.data(), stride, entries, w, h, 0),
                1u);
            for (u32 y = 0; y < 15; ++y) {
                for (u32 x = 0; x < 201; ++x) {
                    const u32 at = y * stride + x / 8;
                    const bool isEroded = eroded[at] & (0x80 >> x % 8), isDilated = dilated[at] & (0x80 >> x % 8);
                    const bool isBehind = x % 8 == 0 && x > 0 && src[at - 1] == 0;
                    if (isBehind) {
                        ASSERT_FALSE(isEroded);
                        ++lost;
                    } else {
                        ASSERT_EQ(isEroded, !isDilated) << x << " " << y;
                        ++visited;
                    }
                }
            }
        }
        EXPECT_GT(visited, 0u);
        if (density == 30) {
            EXPECT_GT(lost, 0u);
        }
    }
}

TEST(BitMorphology, AnOpenedImageLiesInTheImageAndItInTheClosedOne)
{
    const BitPicture picture{96, 20, 150, 0, 3};
    const Bytes src = picture.Source();
    Bytes opened(src.size()), closed(src.size());
    const PlainBitElement element = Box(3, 3);
    EXPECT_EQ(ZLV40_MorphoOpen1Bit(src.data(), 96, 20, 12, opened.data(), 12, element.entries.data(), 3, 3, 0), 1u);
    EXPECT_EQ(ZLV40_MorphoClose1Bit(src.data(), 96, 20, 12, closed.data(), 12, element.entries.data(), 3, 3, 0), 1u);
    for (size_t i = 0; i < src.size(); ++i) {
        ASSERT_EQ(opened[i] & ~src[i], 0) << i;
        // What the closing's erosion passes over is not written; the closing itself fills holes of what it visits.
        const bool isBehindEmpty = i % 12 > 0 && closed[i - 1] == 0;
        ASSERT_EQ(src[i] & ~closed[i] & (isBehindEmpty ? 0x7F : 0xFF), 0) << i;
    }
    EXPECT_NE(opened, src);
    EXPECT_NE(closed, src);
}

// ---- Compositions ----

TEST(BitClosing, DoesNotClearTheDestination)
{
    const Bytes src(2, 0);
    Bytes dst = {0x12, 0x34};
    const PlainBitElement element = Box(3, 1);
    EXPECT_EQ(ZLV40_MorphoClose1Bit(src.data(), 16, 1, 2, dst.data(), 2, element.entries.data(), 3, 1, 0), 1u);
    EXPECT_EQ(dst, (Bytes{0x12, 0x34}));
}

TEST(BitOpening, WritesEveryPixel)
{
    const Bytes src(2, 0);
    Bytes dst = {0x12, 0x34};
    const PlainBitElement element = Box(3, 1);
    EXPECT_EQ(ZLV40_MorphoOpen1Bit(src.data(), 16, 1, 2, dst.data(), 2, element.entries.data(), 3, 1, 0), 1u);
    EXPECT_EQ(dst, (Bytes{0x00, 0x00}));
}

TEST(BitBoundary, TheTailOfARowLandsInItsFirstByte)
{
    // 11 pixels, all set; the element of 1 x 1 erodes nothing but the complement of its copy.
    const std::vector<u32> left = {1, 1, 0};
    const Bytes src = {0x0F, 0x60};  // pixels 4 to 7, 9 and 10
    Bytes dst = {0x00, 0x5A};
    EXPECT_EQ(ZLV40_MorphoBoundaryExtraction1Bit(src.data(), 11, 1, 2, dst.data(), 2, left.data(), 3, 1, 0), 1u);
    // The boundary is pixels 4 and 9: bit 9 is the second of the tail, whose three bits replace the row's first three.
    EXPECT_EQ(dst, (Bytes{0x48, 0x5A}));
}

TEST(BitBoundary, OfAWidthOfWholeBytesHasNoTail)
{
    const Bytes src = {0x3C};
    Bytes dst = {0xFF};
    EXPECT_EQ(ZLV40_MorphoBoundaryExtraction1Bit(src.data(), 8, 1, 1, dst.data(), 1, Box(3, 1).entries.data(), 3, 1, 0),
              1u);
    EXPECT_EQ(dst, (Bytes{0x24}));
}

TEST(BitBoundary, OfFewerThan8PixelsLandsWhereItBelongs)
{
    const Bytes src = {0x7F};
    Bytes dst = {0xC5};
    EXPECT_EQ(ZLV40_MorphoBoundaryExtraction1Bit(src.data(), 5, 1, 1, dst.data(), 1, Box(3, 1).entries.data(), 3, 1, 0),
              1u);
    EXPECT_EQ(dst, (Bytes{0x45}));  // pixel 1, and the three bits that are no pixels
}

TEST(BitHitOrMiss, FindsIsolatedPixels)
{
    std::vector<u32> hit(9, 0), miss(9, 1);
    hit[4] = 1;
    miss[4] = 0;
    // Pixel (2, 1) has no neighbours; (8, 1) and (9, 1) have each other.
    const Bytes src = {0x00, 0x00, 0x20, 0xC0, 0x00, 0x00};
    Bytes dst(6, 0xFF);
    EXPECT_EQ(ZLV40_MorphoHitOrMiss1Bit(src.data(), 16, 3, 2, dst.data(), 2, hit.data(), 3, 3, miss.data(), 3, 3, 0),
              1u);
    EXPECT_EQ(dst, (Bytes{0x00, 0x00, 0x20, 0x00, 0x00, 0x00}));
}

TEST(BitHitOrMiss, ClearsTheBitsBehindTheLastPixelOfARow)
{
    const u32 one = 1, zero = 0;
    const Bytes src = {0xFF, 0xFF};
    Bytes dst = {0xFF, 0xFF, 0xFF};
    EXPECT_EQ(ZLV40_MorphoHitOrMiss1Bit(src.data(), 11, 1, 2, dst.data(), 3, &one, 1, 1, &zero, 1, 1, 0), 1u);
    EXPECT_EQ(dst, (Bytes{0xFF, 0xE0, 0xFF}));
}

TEST(BitMorphology, CompositionsWorkInPlace)
{
    zlvtest::OnEveryTarget([] {
        for (const u32 density : {20u, 128u, 240u}) {
            const BitPicture picture{150, 23, density};
            const Bytes src = picture.Source();
            const u32 stride = picture.SrcStride();
            for (const PlainBitElement& element : {Box(1, 1), Box(3, 3), Box(7, 5), RandomElement(5, 7, 3)}) {
                const i32 w = i32(element.width), h = i32(element.height);
                for (const BitFunction& function : kBitFunctions) {
                    if (!function.isComposed) continue;
                    SCOPE(function.name, density, w, h);
                    Bytes wanted = src, got = src;
                    function.plain({wanted.data(), 150, 23, stride}, element, {wanted.data(), stride});
                    EXPECT_EQ(function.apply(got.data(), 150, 23, stride, got.data(), stride, element.entries.data(), w,
                                             h, 0),
                              1u);
                    EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
                }
                Bytes wanted = src, got = src;
                const PlainBitElement hit = Box(1, 3);
                PlainHitOrMiss({src.data(), 150, 23, stride}, hit, element, {wanted.data(), stride});
                EXPECT_EQ(ZLV40_MorphoHitOrMiss1Bit(got.data(), 150, 23, stride, got.data(), stride, hit.entries.data(),
                                                    1, 3, element.entries.data(), w, h, 0),
                          1u);
                EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
            }
        }
    });
}

TEST(BitMorphology, StaysInsideItsBuffers)
{
    zlvtest::OnEveryTarget([] {
        for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
            for (const u32 width : {1u, 8u, 21u, 64u, 65u, 300u}) {
                for (const PlainBitElement& element : {Box(3, 3), Box(31, 9), RandomElement(5, 3, width)}) {
                    SCOPE(int(flush), width, element.width);
                    const u32 row = (width + 7) / 8;
                    GuardedBuffer src(size_t(row) * 4, flush, 200), dst(src.Size(), flush, 1);
                    const size_t entryBytes = element.entries.size() * sizeof(u32);
                    GuardedBuffer entries(entryBytes, flush);
                    std::memcpy(entries.Data(), element.entries.data(), entryBytes);
                    const u32* const given = reinterpret_cast<const u32*>(entries.Data());
                    const i32 w = i32(element.width), h = i32(element.height);
                    for (const BitFunction& function : kBitFunctions) {
                        EXPECT_EQ(function.apply(src.Data(), width, 4, row, dst.Data(), row, given, w, h, 0), 1u);
                    }
                    EXPECT_EQ(ZLV40_MorphoHitOrMiss1Bit(src.Data(), width, 4, row, dst.Data(), row, given, w, h, given,
                                                        w, h, 0),
                              1u);
                }
            }
        }
    });
}

}  // namespace
}  // namespace zlv
