#include "base/stepped_table.h"

#include "support/bytes.h"

#include <array>

namespace zlv {
namespace {

using Table = std::array<u8, 256>;

u8 EntryOf(const SteppedTable& steps, u32 value)
{
    u32 k = 0;
    while (k + 1 < kMaxSteps && value >= steps.first[k + 1]) ++k;
    return u8((value & steps.keep[k]) ^ steps.flip[k]);
}

Table TableOf(u8 (*level)(u32))
{
    Table table;
    for (u32 i = 0; i < 256; ++i) table[i] = level(i);
    return table;
}

const struct {
    const char* shows;
    u8 (*level)(u32);
    bool isStepped;
} kTables[] = {
    {"the identity", [](u32 i) { return u8(i); }, true},
    {"the complement", [](u32 i) { return u8(255 - i); }, true},
    {"one level for all", [](u32) { return u8(99); }, true},
    {"two levels", [](u32 i) { return u8(i < 128 ? 0 : 255); }, true},
    {"a step at the first entry", [](u32 i) { return u8(i < 1 ? 7 : i); }, true},
    {"a step at the last entry", [](u32 i) { return u8(i < 255 ? i : 3); }, true},
    {"solarised", [](u32 i) { return u8(i < 127 ? i : 255 - i); }, true},
    {"black, what lies between, white", [](u32 i) { return u8(i < 60    ? 0
                                                              : i < 190 ? i
                                                                        : 255); }, true},
    {"three levels", [](u32 i) { return u8(i / 100 * 70); }, true},
    {"four levels", [](u32 i) { return u8(i / 64 * 70); }, false},
    {"half as bright", [](u32 i) { return u8(i / 2); }, false},
    {"one entry of the identity off", [](u32 i) { return u8(i == 9 ? 200 : i); }, true},
    {"two entries of it off", [](u32 i) { return u8(i == 9 || i == 90 ? 200 : i); }, false},
};

TEST(SteppedTable, FoundStepsGiveTheTable)
{
    for (const auto& row : kTables) {
        SCOPE(row.shows);
        const Table table = TableOf(row.level);
        SteppedTable steps;
        ASSERT_EQ(FindSteps(table.data(), steps), row.isStepped);
        for (u32 i = 0; row.isStepped && i < 256; ++i) ASSERT_EQ(EntryOf(steps, i), table[i]) << i;
    }
}

TEST(SteppedTable, EveryPairOfThresholdsIsFound)
{
    for (u32 low = 0; low <= 256; ++low) {
        for (u32 high = 0; high <= 256; high += 3) {
            Table table;
            for (u32 i = 0; i < 256; ++i) table[i] = u8(i < low ? 0 : i < high ? i : 255);
            SteppedTable steps;
            ASSERT_TRUE(FindSteps(table.data(), steps)) << low << ' ' << high;
            for (u32 i = 0; i < 256; ++i) ASSERT_EQ(EntryOf(steps, i), table[i]) << low << ' ' << high << ' ' << i;
        }
    }
}

TEST(SteppedTable, RandomTablesAreNone)
{
    for (u64 seed = 0; seed < 50; ++seed) {
        const zlvtest::Bytes table = zlvtest::RandomBytes(256, seed);
        SteppedTable steps;
        EXPECT_FALSE(FindSteps(table.data(), steps));
    }
}

}  // namespace
}  // namespace zlv
