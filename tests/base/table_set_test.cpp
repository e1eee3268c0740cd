#include "base/table_set.h"

#include "support/test_hooks.h"

#include <gtest/gtest.h>

namespace zlv {
namespace {

TEST(TableSet, PointsEveryChannelToTheTable)
{
    const u8 table[256] = {};
    for (const u32 channels : {1u, 8u, 9u, 300u}) {
        TableSet set;
        ASSERT_TRUE(set.Resize(channels, table));
        for (u32 c = 0; c < channels; ++c) EXPECT_EQ(set.Data()[c], table) << c << " of " << channels;
    }
}

TEST(TableSet, AChannelCanBeSkipped)
{
    const u8 table[256] = {};
    TableSet set;
    ASSERT_TRUE(set.Resize(4, table));
    set.Set(3, nullptr);
    EXPECT_EQ(set.Data()[2], table);
    EXPECT_EQ(set.Data()[3], nullptr);
}

TEST(TableSet, NeedsMemoryAboveEightChannelsOnly)
{
    const u8 table[256] = {};
    const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, 0);
    TableSet small, large;
    EXPECT_TRUE(small.Resize(8, table));
    EXPECT_FALSE(large.Resize(9, table));
}

}  // namespace
}  // namespace zlv
