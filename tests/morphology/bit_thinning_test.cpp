// Thinning.
#include "morphology/bit_morphology_cases.h"

#include "support/guarded_buffer.h"
#include "support/targets.h"

namespace zlv {
namespace {

using namespace zlvtest;

// Pairs of square elements.
struct Pairs {
    std::vector<PlainBitElement> hits, misses;

    static std::vector<const u32*> Pointers(const std::vector<PlainBitElement>& elements)
    {
        std::vector<const u32*> pointers;
        for (const PlainBitElement& element : elements) pointers.push_back(element.entries.data());
        return pointers;
    }
    i32 HitSize() const { return hits.empty() ? 3 : i32(hits[0].width); }
    i32 MissSize() const { return misses.empty() ? 3 : i32(misses[0].width); }

    u32 Thin(const u8* src, u32 width, u32 height, u32 stride, u8* dst, u32 iterations) const
    {
        std::vector<const u32*> hit = Pointers(hits), miss = Pointers(misses);
        hit.push_back(nullptr);  // an array without elements is an address too
        miss.push_back(nullptr);
        return ZLV40_MorphoThinning1Bit(src, width, height, stride, dst, hit.data(), HitSize(), miss.data(), MissSize(),
                                        u32(hits.size()), iterations, 0);
    }
};

// The eight directions from which the classical thinning takes pixels off.
Pairs EightDirections()
{
    PlainBitElement edge = {{0, 0, 0, 0, 1, 0, 1, 1, 1}, 3, 3}, edgeMiss = {{1, 1, 1, 0, 0, 0, 0, 0, 0}, 3, 3};
    PlainBitElement corner = {{0, 0, 0, 1, 1, 0, 0, 1, 0}, 3, 3}, cornerMiss = {{0, 1, 1, 0, 0, 1, 0, 0, 0}, 3, 3};
    const auto turned = [](const PlainBitElement& from) {
        PlainBitElement to = from;
        for (size_t j = 0; j < 3; ++j) {
            for (size_t i = 0; i < 3; ++i) to.entries[i * 3 + 2 - j] = from.entries[j * 3 + i];
        }
        return to;
    };
    Pairs pairs;
    for (int turn = 0; turn < 4; ++turn) {
        pairs.hits.insert(pairs.hits.end(), {edge, corner});
        pairs.misses.insert(pairs.misses.end(), {edgeMiss, cornerMiss});
        for (PlainBitElement* element : {&edge, &corner, &edgeMiss, &cornerMiss}) *element = turned(*element);
    }
    return pairs;
}

TEST(BitThinning, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 width : {1u, 8u, 13u, 70u, 129u}) {
            for (const u32 padding : {0u, 3u}) {
                for (const u32 iterations : {0u, 1u, 2u, 100u}) {
                    for (const u32 changes : {2u, 16u}) {
                        SCOPE(width, padding, iterations, changes);
                        const u32 stride = (width + 7) / 8 + padding;
                        const Bytes src = RandomBits(size_t(stride) * 17, 160, width + changes, changes);
                        Bytes wanted = RandomBytes(src.size(), 2), got = wanted;
                        const Pairs pairs = EightDirections();
                        PlainThinning({src.data(), width, 17, stride}, wanted.data(), pairs.hits, pairs.misses,
                                      iterations);
                        EXPECT_EQ(pairs.Thin(src.data(), width, 17, stride, got.data(), iterations), 1u);
                        EXPECT_EQ(ZLV40_GetLastError(), 0u);
                        EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
                    }
                }
            }
        }
    });
}

TEST(BitThinning, RandomElementsEqualPlain)
{
    Random random(9);
    for (u32 round = 0; round < 60; ++round) {
        SCOPE(round);
        Pairs pairs;
        const u32 count = random.Below(4);
        const long long hitSide = 1 + 2 * random.Below(3), missSide = 1 + 2 * random.Below(3);
        for (u32 k = 0; k < count; ++k) {
            pairs.hits.push_back(RandomElement(hitSide, hitSide, random.Next()));
            pairs.misses.push_back(RandomElement(missSide, missSide, random.Next()));
        }
        const u32 width = 1 + random.Below(60), stride = (width + 7) / 8 + random.Below(3);
        const Bytes src = RandomBits(size_t(stride) * 9, 128, round, 1 + random.Below(16));
        Bytes wanted = RandomBytes(src.size(), round), got = wanted;
        PlainThinning({src.data(), width, 9, stride}, wanted.data(), pairs.hits, pairs.misses, 3);
        EXPECT_EQ(pairs.Thin(src.data(), width, 9, stride, got.data(), 3), 1u);
        EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
    }
}

TEST(BitThinning, WithoutIterationsTheDestinationIsUntouched)
{
    const Bytes src(12, 0xFF);
    Bytes dst(12, 0x5A);
    EXPECT_EQ(EightDirections().Thin(src.data(), 16, 6, 2, dst.data(), 0), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    EXPECT_EQ(dst, Bytes(12, 0x5A));
}

TEST(BitThinning, WithoutElementsTheDestinationBecomesZero)
{
    const Bytes src(12, 0xFF);
    for (const u32 iterations : {1u, 2u, 0xFFFFFFFFu}) {
        SCOPE(iterations);
        Bytes dst(12, 0x5A);
        EXPECT_EQ(Pairs().Thin(src.data(), 13, 6, 2, dst.data(), iterations), 1u);
        EXPECT_EQ(dst, Bytes(12, 0));
    }
}

TEST(BitThinning, TakesAsManyPassesAsItNeeds)
{
    // A bar of 3 rows thins to its middle row, but for its ends.
    Bytes src(5 * 4, 0);
    for (size_t y = 1; y < 4; ++y) src[y * 4 + 1] = src[y * 4 + 2] = 0xFF;
    Bytes dst(src.size(), 0);
    EXPECT_EQ(EightDirections().Thin(src.data(), 32, 5, 4, dst.data(), 0xFFFFFFFF), 1u);
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(dst[i], 0) << i;
        EXPECT_EQ(dst[16 + i], 0) << i;
    }
    EXPECT_EQ(dst[2 * 4 + 1] & 0x3F, 0x3F);
    EXPECT_EQ(dst[2 * 4 + 2] & 0xF8, 0xF8);
    const Bytes once = dst;
    EXPECT_EQ(EightDirections().Thin(once.data(), 32, 5, 4, dst.data(), 1), 1u);
    EXPECT_EQ(dst, once);  // what is thin stays
}

TEST(BitThinning, ADestinationThatHoldsTheFirstPassEndsTheThinning)
{
    // Each pass takes the leftmost pixel off. The first one leaves 0x3F; a second one would leave 0x1F.
    Pairs pairs;
    pairs.hits.push_back(Box(1, 1));
    pairs.misses.push_back({{0, 0, 0, 1, 0, 0, 0, 0, 0}, 3, 3});
    const Bytes src = {0x7F, 0x7F, 0x7F};
    Bytes fresh = {0, 0, 0}, held = {0x3F, 0x3F, 0x3F};
    EXPECT_EQ(pairs.Thin(src.data(), 8, 3, 1, fresh.data(), 2), 1u);
    EXPECT_EQ(fresh, Bytes(3, 0x1F));
    EXPECT_EQ(pairs.Thin(src.data(), 8, 3, 1, held.data(), 2), 1u);
    EXPECT_EQ(held, Bytes(3, 0x3F));
}

TEST(BitThinning, PaddingIsComparedAndCopied)
{
    Pairs pairs;
    pairs.hits.push_back(Box(1, 1));
    pairs.misses.push_back({{0, 0, 0, 1, 0, 0, 0, 0, 0}, 3, 3});
    const Bytes src = {0x7F, 0xA5};
    // The pixels are those of the first pass, the padding is not: the thinning goes on.
    Bytes dst = {0x3F, 0x00};
    EXPECT_EQ(pairs.Thin(src.data(), 8, 1, 2, dst.data(), 2), 1u);
    EXPECT_EQ(dst, (Bytes{0x1F, 0xA5}));
}

TEST(BitThinning, WorksInPlace)
{
    const Bytes src = RandomBits(9 * 20, 160, 4, 3);
    Bytes wanted(src.size(), 0xEE), got = src;
    const Pairs pairs = EightDirections();
    PlainThinning({src.data(), 70, 20, 9}, wanted.data(), pairs.hits, pairs.misses, 3);
    EXPECT_EQ(pairs.Thin(got.data(), 70, 20, 9, got.data(), 3), 1u);
    EXPECT_EQ(got, wanted);
}

struct Arguments {
    const char* shows;
    u32 error = ZLV40_ERROR_BAD_ARGUMENT;
    bool hasSrc = true, hasDst = true, hasHits = true, hasMisses = true;
    bool hasHit = true, hasMiss = true;
    u32 width = 12, height = 3, stride = 2;
    i32 hitSize = 3, missSize = 3;
};

constexpr u32 kEmpty = ZLV40_ERROR_OUT_OF_MEMORY;

const Arguments kRefused[] = {
    {.shows = "a null source", .hasSrc = false},
    {.shows = "a null destination", .hasDst = false},
    {.shows = "no array of hit elements", .hasHits = false},
    {.shows = "no array of miss elements", .hasMisses = false},
    {.shows = "a null hit element", .hasHit = false},
    {.shows = "a null miss element", .hasMiss = false},
    {.shows = "an even hit size", .hitSize = 2},
    {.shows = "an even miss size", .missSize = 2},
    {.shows = "a negative hit size", .hitSize = -3},
    {.shows = "a miss size of 0", .missSize = 0},
    {.shows = "a row that is too short", .stride = 1},
    {.shows = "no columns", .error = kEmpty, .width = 0},
    {.shows = "no rows", .error = kEmpty, .height = 0},
    {.shows = "rows of no bytes", .error = kEmpty, .stride = 0},
    {.shows = "no rows, and all null",
     .error = kEmpty,
     .hasSrc = false,
     .hasDst = false,
     .hasHits = false,
     .hasMisses = false,
     .height = 0},
    {.shows = "more bytes than a work image has", .error = kEmpty, .height = 0xFFFFFFFF, .stride = 0xFFFFFFFF},
};

TEST(BitThinning, RefusesWithNothingWritten)
{
    for (const Arguments& row : kRefused) {
        SCOPE(row.shows);
        const std::vector<u32> element(9, 1);
        const u32* const hit = row.hasHit ? element.data() : nullptr;
        const u32* const miss = row.hasMiss ? element.data() : nullptr;
        const Bytes src(64, 0xFF);
        Bytes dst(64, 77);
        EXPECT_EQ(ZLV40_MorphoThinning1Bit(row.hasSrc ? src.data() : nullptr, row.width, row.height, row.stride,
                                           row.hasDst ? dst.data() : nullptr, row.hasHits ? &hit : nullptr, row.hitSize,
                                           row.hasMisses ? &miss : nullptr, row.missSize, 1, 1, 0),
                  0u);
        EXPECT_EQ(ZLV40_GetLastError(), row.error);
        EXPECT_EQ(dst, Bytes(64, 77));
    }
}

TEST(BitThinning, StaysInsideItsBuffers)
{
    for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
        for (const u32 width : {1u, 13u, 64u, 200u}) {
            SCOPE(int(flush), width);
            const u32 stride = (width + 7) / 8 + 1;
            GuardedBuffer src(size_t(stride) * 5, flush, 0xE7), dst(src.Size(), flush, 1);
            EXPECT_EQ(EightDirections().Thin(src.Data(), width, 5, stride, dst.Data(), 3), 1u);
        }
    }
}

}  // namespace
}  // namespace zlv
