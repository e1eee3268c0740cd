#include "base/table_pass.h"

#include "base/table_pass.kernels.h"
#include "plain/plain_table_pass.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"

#include <array>
#include <cstring>
#include <numeric>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ProgressRecorder;
using zlvtest::Rows;

using ByteTable = std::array<u8, 256>;

ByteTable RandomTable(u64 seed)
{
    ByteTable table;
    zlvtest::Random random(seed);
    for (u8& entry : table) entry = random.Byte();
    return table;
}

ByteTable XorTable(u8 mask)
{
    ByteTable table;
    for (u32 i = 0; i < 256; ++i) table[i] = u8(i ^ mask);
    return table;
}

ByteTable ThresholdTable(u32 low, u32 high)
{
    ByteTable table;
    for (u32 i = 0; i < 256; ++i) table[i] = u8(i < low ? 0 : i < high ? i : 255);
    return table;
}

// The tables that the tests below name by a letter each.
struct Tables {
    ByteTable a = RandomTable(1), b = RandomTable(2), c = RandomTable(3), d = RandomTable(4);
    ByteTable complement = XorTable(255), identity = XorTable(0), lowBits = XorTable(0x0F);
    ByteTable threshold = ThresholdTable(60, 190), twoLevels = ThresholdTable(128, 128);

    const void* Named(char name) const
    {
        switch (name) {
        case 'a': return a.data();
        case 'b': return b.data();
        case 'c': return c.data();
        case 'd': return d.data();
        case '~': return complement.data();
        case '=': return identity.data();
        case 'x': return lowBits.data();
        case 't': return threshold.data();
        case '2': return twoLevels.data();
        default: return nullptr;
        }
    }

    std::vector<const void*> Set(const char* names) const
    {
        std::vector<const void*> set;
        for (; *names; ++names) set.push_back(Named(*names));
        return set;
    }
};

// One letter a channel; '-' is a channel without a table.
const struct {
    const char* shows;
    const char* tables;
} kTableSets[] = {
    {"one channel, look-up", "a"},
    {"one channel, exclusive or", "~"},
    {"two channels, a table each", "ab"},
    {"two channels, one left alone", "-a"},
    {"three channels share a table", "aaa"},
    {"three channels, a table each", "abc"},
    {"three channels, exclusive ors of different masks", "~=x"},
    {"three channels, exclusive or and look-up mixed", "~a="},
    {"three channels, the middle one left alone", "a-b"},
    {"four channels share a table", "bbbb"},
    {"four channels, a table each", "abcd"},
    {"four channels, alpha left alone", "~~~-"},
    {"four channels, only alpha", "---a"},
    {"five channels, a table each", "abcda"},
    {"seven channels of exclusive ors", "~x=~x=-"},
    {"eight channels of exclusive ors", "~x=~x=-~"},
    {"eight channels, a table each", "abcdabcd"},
    {"nine channels share a table", "aaaaaaaaa"},
    {"nine channels share an exclusive or", "~~~~~~~~~"},
    {"one channel of few steps", "t"},
    {"three channels share a table of few steps", "ttt"},
    {"three channels, few steps, the middle one left alone", "t-t"},
    {"four channels, few steps, alpha left alone", "222-"},
    {"three channels, different tables of few steps", "t2t"},
    {"eight channels, few steps for the last one", "-------t"},
    {"nine channels share a table of few steps", "ttttttttt"},
    {"nine channels, few steps for all but one", "tttttttt-"},
    {"nine channels of exclusive ors", "~~~~~~~~x"},
};

TEST(ApplyLUTsToImage, EveryTargetEqualsPlainOnAllShapes)
{
    const Tables tables;
    zlvtest::OnEveryTarget([&] {
        for (const auto& row : kTableSets) {
            const std::vector<const void*> set = tables.Set(row.tables);
            const u32 channels = u32(set.size());
            // From 4,096 samples on tables are looked through for their steps.
            for (const u32 width : {1u, 2u, 5u, 15u, 16u, 21u, 22u, 31u, 43u, 64u, 65u, 171u, 4100u}) {
                for (const u32 padding : {0u, 1u, 7u}) {
                    for (const u32 height : {1u, 3u}) {
                        SCOPE(row.shows, width, padding, height);
                        const u32 stride = width * channels + padding;
                        Bytes wanted = zlvtest::RandomBytes(size_t(stride) * height, width * 31 + padding);
                        Bytes got = wanted;
                        PlainTablePass(wanted.data(), width, height, channels, stride, set.data());
                        EXPECT_EQ(MV40_ApplyLUTsToImage(got.data(), width, height, channels, stride, set.data(), 0),
                                  1u);
                        EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
                    }
                }
            }
        }
    });
}

TEST(ApplyLUTsToImage, EveryTargetStaysInsideTheBuffer)
{
    const Tables tables;
    zlvtest::OnEveryTarget([&] {
        for (const auto& row : kTableSets) {
            const std::vector<const void*> set = tables.Set(row.tables);
            const u32 channels = u32(set.size());
            for (const u32 width : {1u, 13u, 70u, 129u}) {
                for (const zlvtest::Flush flush : {zlvtest::Flush::ToStart, zlvtest::Flush::ToEnd}) {
                    SCOPE(row.shows, width, int(flush));
                    zlvtest::GuardedBuffer buffer(size_t(width) * channels * 2, flush);
                    EXPECT_EQ(MV40_ApplyLUTsToImage(buffer.Data(), width, 2, channels, width * channels, set.data(), 0),
                              1u);
                }
            }
        }
    });
}

TEST(ApplyLUTsToImage, EveryValueOfEveryExclusiveOrIsMapped)
{
    for (const zlv::Target target : zlvtest::RunnableTargets()) {
        const zlvtest::ScopedTarget scoped(target);
        for (u32 mask = 0; mask < 256; ++mask) {
            SCOPE(zlvtest::NameOf(target), mask);
            const ByteTable table = XorTable(u8(mask));
            const void* const set[] = {table.data()};
            ByteTable samples = XorTable(0);
            ASSERT_EQ(MV40_ApplyLUTsToImage(samples.data(), 256, 1, 1, 256, set, 0), 1u);
            ASSERT_EQ(samples, table);
        }
    }
}

TEST(ApplyLUTsToImage, EveryValueOfEveryThresholdIsMapped)
{
    constexpr u32 kRepeats = 16;  // an image large enough to be worth it
    for (const zlv::Target target : zlvtest::RunnableTargets()) {
        const zlvtest::ScopedTarget scoped(target);
        for (u32 low = 0; low <= 256; low += 5) {
            for (u32 high = 1; high <= 256; high += 15) {
                SCOPE(zlvtest::NameOf(target), low, high);
                const ByteTable table = ThresholdTable(low, high);
                const void* const set[] = {table.data()};
                Bytes samples(256 * kRepeats), wanted(256 * kRepeats);
                for (u32 i = 0; i < samples.size(); ++i) {
                    samples[i] = u8(i);
                    wanted[i] = table[i % 256];
                }
                ASSERT_EQ(MV40_ApplyLUTsToImage(samples.data(), 256, kRepeats, 1, 256, set, 0), 1u);
                ASSERT_EQ(samples, wanted);
            }
        }
    }
}

TEST(ApplyLUTsToImage, ATableThatIsNearlyAnExclusiveOrIsLookedUp)
{
    for (const zlv::Target target : zlvtest::RunnableTargets()) {
        const zlvtest::ScopedTarget scoped(target);
        for (u32 changed = 0; changed < 256; ++changed) {
            SCOPE(zlvtest::NameOf(target), changed);
            ByteTable table = XorTable(255);
            table[changed] ^= 1;
            const void* const set[] = {table.data()};
            ByteTable samples = XorTable(0);
            ASSERT_EQ(MV40_ApplyLUTsToImage(samples.data(), 256, 1, 1, 256, set, 0), 1u);
            ASSERT_EQ(samples, table);
        }
    }
}

TEST(ApplyLUTsToImage, OverlappingRowsAreMappedOneAfterTheOther)
{
    const Tables tables;
    for (const char* names : {"a", "~", "abc", "~a="}) {
        for (const u32 stride : {0u, 1u, 10u}) {
            SCOPE(names, stride);
            const std::vector<const void*> set = tables.Set(names);
            const u32 channels = u32(set.size());
            Bytes wanted = zlvtest::RandomBytes(500, stride);
            Bytes got = wanted;
            PlainTablePass(wanted.data(), 20, 5, channels, stride, set.data());
            EXPECT_EQ(MV40_ApplyLUTsToImage(got.data(), 20, 5, channels, stride, set.data(), 0), 1u);
            EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
        }
    }
}

TEST(ApplyLUTsToImage, SixteenBitSamplesGoThroughTablesOf65536Words)
{
    std::vector<u16> reversed(65536), shifted(65536);
    for (u32 i = 0; i < 65536; ++i) {
        reversed[i] = u16(65535 - i);
        shifted[i] = u16(i * 7 + 3);
    }
    const std::vector<const void*> sets[] = {
        {reversed.data()}, {reversed.data(), nullptr, shifted.data()}, {nullptr, nullptr, nullptr, shifted.data()}};
    for (const std::vector<const void*>& set : sets) {
        const u32 channels = u32(set.size());
        for (const u32 padding : {0u, 3u}) {
            SCOPE(channels, padding);
            const u32 stride = 17 * channels + padding;  // in words
            const Bytes bytes = zlvtest::RandomBytes(size_t(stride) * 4 * 2, channels);
            std::vector<u16> wanted(size_t(stride) * 4);
            std::memcpy(wanted.data(), bytes.data(), bytes.size());
            std::vector<u16> got = wanted;
            PlainTablePass(wanted.data(), 17, 4, channels, stride, set.data());
            EXPECT_EQ(MV40_ApplyLUTsToImage(got.data(), 17, 4, channels, stride, set.data(), kSixteenBitSamples), 1u);
            EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
        }
    }
}

// What a call answers, whether it reports, and that it leaves the pixels alone.
const struct {
    const char* shows;
    bool hasBuffer, hasSet;
    u32 width, height, channels;
    const char* tables;
    u32 result;
    Error error;
} kEdges[] = {
    {"a null buffer is refused", false, true, 2, 2, 3, "aaa", 0, Error::BadArgument},
    {"a null buffer is refused even with nothing to do", false, true, 0, 0, 0, "", 0, Error::BadArgument},
    {"no table set is refused", true, false, 2, 2, 3, "aaa", 0, Error::BadArgument},
    {"no channels are nothing to do", true, true, 2, 2, 0, "", 1, Error::None},
    {"no channels need no table set", true, false, 2, 2, 0, "", 1, Error::None},
    {"every table null is nothing to do", true, true, 2, 2, 3, "---", 1, Error::None},
    {"a height of 0 is nothing to do", true, true, 2, 0, 3, "abc", 1, Error::None},
};

TEST(ApplyLUTsToImage, EdgesTouchNothingAndReportNothing)
{
    const Tables tables;
    for (const u32 flags : {0u, kSixteenBitSamples}) {
        for (const auto& row : kEdges) {
            SCOPE(row.shows, flags);
            const std::vector<const void*> set = tables.Set(row.tables);
            const Bytes before = zlvtest::RandomBytes(64, 9);
            Bytes image = before;
            ProgressRecorder recorder;
            MV40_SetCallback(recorder.Function, recorder.Data());
            const u32 result = MV40_ApplyLUTsToImage(row.hasBuffer ? image.data() : nullptr, row.width, row.height,
                                                     row.channels, 6, row.hasSet ? set.data() : nullptr, flags);
            EXPECT_EQ(result, row.result);
            EXPECT_EQ(MV40_GetLastError(), u32(row.error));
            MV40_SetCallback(nullptr, 0);
            EXPECT_EQ(image, before);
            EXPECT_TRUE(recorder.reports.empty());
        }
    }
}

TEST(ApplyLUTsToImage, AWidthOf0StillReportsItsRows)
{
    const Tables tables;
    Bytes image(8, 7);
    ProgressRecorder recorder;
    MV40_SetCallback(recorder.Function, recorder.Data());
    EXPECT_EQ(MV40_ApplyLUTsToImage(image.data(), 0, 3, 1, 2, tables.Set("a").data(), 0), 1u);
    MV40_SetCallback(nullptr, 0);
    EXPECT_EQ(recorder.reports, Rows(3, 3));
    EXPECT_EQ(image, Bytes(8, 7));
}

TEST(ApplyLUTsToImage, ReportsAfterEachRow)
{
    const Tables tables;
    for (const char* names : {"a", "~", "aaa", "abc", "~~~-"}) {
        SCOPE(names);
        const std::vector<const void*> set = tables.Set(names);
        const u32 channels = u32(set.size());
        Bytes image = zlvtest::RandomBytes(size_t(5) * channels * 4, 2);
        ProgressRecorder recorder;
        MV40_SetCallback(recorder.Function, recorder.Data());
        EXPECT_EQ(MV40_ApplyLUTsToImage(image.data(), 5, 4, channels, 5 * channels, set.data(), 0), 1u);
        MV40_SetCallback(nullptr, 0);
        EXPECT_EQ(recorder.reports, Rows(4, 4));
    }
}

TEST(ApplyLUTsToImage, ACancelKeepsTheRowsDoneAndLeavesTheRest)
{
    const Tables tables;
    const std::vector<const void*> set = tables.Set("abc");
    for (const u32 cancelAt : {1u, 2u, 4u}) {  // 4 is the last row: that too counts as a cancel
        SCOPE(cancelAt);
        Bytes wanted = zlvtest::RandomBytes(60, 2);
        Bytes image = wanted;
        PlainTablePass(wanted.data(), 5, cancelAt, 3, 15, set.data());
        ProgressRecorder recorder;
        recorder.cancelAt = cancelAt;
        MV40_SetCallback(recorder.Function, recorder.Data());
        EXPECT_EQ(MV40_ApplyLUTsToImage(image.data(), 5, 4, 3, 15, set.data(), 0), 0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::Cancelled));
        MV40_SetCallback(nullptr, 0);
        EXPECT_EQ(recorder.reports, Rows(cancelAt, 4));
        EXPECT_EQ(image, wanted);
        EXPECT_EQ(baseContexts.Get()->nestCount, 0u);
    }
}

TEST(ApplyLUTsToImage, InsideAnotherWorkerItNeverReports)
{
    const Tables tables;
    Bytes image = zlvtest::RandomBytes(60, 2);
    ProgressRecorder recorder;
    MV40_SetCallback(recorder.Function, recorder.Data());
    baseContexts.Get()->nestCount = 1;
    EXPECT_EQ(MV40_ApplyLUTsToImage(image.data(), 5, 4, 3, 15, tables.Set("abc").data(), 0), 1u);
    baseContexts.Get()->nestCount = 0;
    MV40_SetCallback(nullptr, 0);
    EXPECT_TRUE(recorder.reports.empty());
}

TEST(TablePassKernels, XorMasksRepeatAfterTheirPeriod)
{
    zlvtest::OnEveryTarget([&] {
        for (const size_t period : {size_t(1), size_t(3), size_t(5)}) {
            const Bytes masks = zlvtest::RandomBytes(period * kMaskBlock, period);
            for (size_t count : {0, 1, 63, 64, 65, 191, 192, 193, 400, 1001}) {
                SCOPE(period, count);
                Bytes wanted = zlvtest::RandomBytes(count, count);
                Bytes got = wanted;
                for (size_t i = 0; i < count; ++i) wanted[i] ^= masks[i % masks.size()];
                Kernels<TablePassKernels>().xorSamples(got.data(), count, masks.data(), period);
                EXPECT_EQ(got, wanted);
            }
        }
    });
}

TEST(TablePassKernels, MasksOfStepsRepeatAfterTheirPeriod)
{
    const SteppedTable table = {{0, 60, 190}, {0, 255, 0}, {0, 0, 255}};
    const ByteTable entries = ThresholdTable(60, 190);
    zlvtest::OnEveryTarget([&] {
        for (const size_t period : {size_t(1), size_t(3), size_t(5)}) {
            const Bytes masks = zlvtest::RandomBytes(period * kMaskBlock, period);
            for (size_t count : {0, 1, 63, 64, 65, 191, 192, 193, 400, 1001}) {
                SCOPE(period, count);
                Bytes wanted = zlvtest::RandomBytes(count, count);
                Bytes got = wanted;
                for (size_t i = 0; i < count; ++i) {
                    const u8 mask = masks[i % masks.size()];
                    wanted[i] = u8((wanted[i] & ~mask) | (entries[wanted[i]] & mask));
                }
                Kernels<TablePassKernels>().mapSteps(got.data(), count, table, masks.data(), period);
                EXPECT_EQ(got, wanted);
            }
        }
    });
}

}  // namespace
}  // namespace zlv
