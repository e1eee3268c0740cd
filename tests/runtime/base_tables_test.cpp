#include "runtime/base_tables.h"

#include <gtest/gtest.h>

#include <cstring>

namespace zlv {
namespace {

TEST(BaseTables, ProductsAreTruncated)
{
    for (u32 b = 0; b < 256; ++b) {
        for (u32 a = 0; a < 256; ++a) {
            const double product = double(a) * (double(b) / 255.0);
            ASSERT_EQ(baseTables.product[b][a], u8(int(product))) << b << " " << a;
        }
    }
}

const struct {
    const char* shows;
    u32 b, a;
    u8 want;
} kProducts[] = {
    {"nothing of everything", 0, 255, 0}, {"all of a value", 255, 200, 200},        {"all of the top", 255, 255, 255},
    {"half of the top", 128, 255, 128},   {"truncated, not rounded", 128, 127, 63},  // 63.749...
    {"just below one", 1, 254, 0},
};

TEST(BaseTables, ProductsByHand)
{
    for (const auto& row : kProducts) EXPECT_EQ(baseTables.product[row.b][row.a], row.want) << row.shows;
}

TEST(BaseTables, GrayRamp)
{
    for (u32 i = 0; i < 256; ++i) {
        const u8 want[4] = {u8(i), u8(i), u8(i), 0};
        EXPECT_EQ(std::memcmp(baseTables.grayRamp[i].bytes, want, 4), 0) << i;
    }
}

TEST(BaseTables, BitMasks)
{
    const u8 up[8] = {1, 2, 4, 8, 16, 32, 64, 128};
    const u8 down[8] = {128, 64, 32, 16, 8, 4, 2, 1};
    const u8 cleared[8] = {0xFE, 0xFD, 0xFB, 0xF7, 0xEF, 0xDF, 0xBF, 0x7F};
    EXPECT_EQ(std::memcmp(baseTables.bit, up, 8), 0);
    EXPECT_EQ(std::memcmp(baseTables.bitFromTop, down, 8), 0);
    EXPECT_EQ(std::memcmp(baseTables.bitCleared, cleared, 8), 0);
}

TEST(BaseTables, BitReversal)
{
    for (u32 i = 0; i < 256; ++i) {
        for (u32 bit = 0; bit < 8; ++bit) {
            EXPECT_EQ((baseTables.reversed[i] >> bit) & 1, int(i >> (7 - bit)) & 1) << i << " " << bit;
        }
        EXPECT_EQ(baseTables.reversedInverted[i], 255 - baseTables.reversed[i]) << i;
    }
    EXPECT_EQ(baseTables.reversed[0x01], 0x80);
    EXPECT_EQ(baseTables.reversed[0x35], 0xAC);
}

TEST(BaseTables, RunsAreTheBitsFromColumnUpToRow)
{
    for (u32 r = 0; r < 8; ++r) {
        for (u32 c = 0; c < 8; ++c) {
            u8 want = 0;
            for (u32 bit = c; bit <= r; ++bit) want = u8(want | (1u << bit));
            EXPECT_EQ(baseTables.run[r][c], want) << r << " " << c;
        }
    }
}

TEST(BaseTables, ExpansionIsMostSignificantBitFirst)
{
    const u8 want[8] = {1, 0, 1, 1, 0, 0, 0, 1};
    EXPECT_EQ(std::memcmp(baseTables.expanded[0xB1], want, 8), 0);
    for (u32 v = 0; v < 256; ++v) {
        u32 back = 0;
        for (u32 i = 0; i < 8; ++i) {
            ASSERT_LE(baseTables.expanded[v][i], 1);
            back = back * 2 + baseTables.expanded[v][i];
        }
        EXPECT_EQ(back, v);
        EXPECT_EQ(std::memcmp(baseTables.expandedWords[v], baseTables.expanded[v], 8), 0) << v;
    }
}

}  // namespace
}  // namespace zlv
