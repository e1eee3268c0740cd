#include "base/buffer_rows.h"

#include "plain/plain_buffer_rows.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/test_hooks.h"

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ProgressRecorder;
using zlvtest::Report;

std::vector<Report> Exchanges(u32 count, u32 rows)
{
    std::vector<Report> reports;
    for (u32 i = 0; i < count; ++i) reports.push_back({2 * i, rows});
    return reports;
}

TEST(VerticalFlip, EqualsPlain)
{
    for (const u32 rowBytes : {1u, 3u, 17u, 100u}) {
        for (const u32 rows : {0u, 1u, 2u, 3u, 4u, 7u, 20u}) {
            SCOPE(rowBytes, rows);
            const Bytes before = zlvtest::RandomBytes(size_t(rowBytes) * rows + 5, rows);  // 5 bytes behind it stay
            Bytes buffer = before;
            EXPECT_EQ(MV40_VerticalFlipImage(buffer.data(), rowBytes, rows), 1u);
            EXPECT_EQ(buffer, PlainFlip(before, rowBytes, rows));
        }
    }
}

const struct {
    const char* shows;
    u32 rows, exchanges;
} kFlips[] = {
    {"no rows, no exchange", 0, 0},
    {"one row is exchanged with itself once", 1, 1},
    {"two rows are one exchange", 2, 1},
    {"the middle of three rows is exchanged with itself", 3, 2},
    {"six rows", 6, 3},
};

TEST(VerticalFlip, ReportsEveryExchangeByTwos)
{
    for (const auto& row : kFlips) {
        SCOPE(row.shows);
        Bytes buffer = zlvtest::RandomBytes(24, 1);
        ProgressRecorder recorder;
        MV40_SetCallback(recorder.Function, recorder.Data());
        EXPECT_EQ(MV40_VerticalFlipImage(buffer.data(), 4, row.rows), 1u);
        MV40_SetCallback(nullptr, 0);
        EXPECT_EQ(recorder.reports, Exchanges(row.exchanges, row.rows));
    }
}

TEST(VerticalFlip, ACancelKeepsTheRowsExchanged)
{
    Bytes buffer = {1, 2, 3, 4, 5, 6};
    ProgressRecorder recorder;
    recorder.cancelAt = 2;
    MV40_SetCallback(recorder.Function, recorder.Data());
    EXPECT_EQ(MV40_VerticalFlipImage(buffer.data(), 1, 6), 0u);
    EXPECT_EQ(MV40_GetLastError(), u32(Error::Cancelled));
    MV40_SetCallback(nullptr, 0);
    EXPECT_EQ(recorder.reports, Exchanges(2, 6));
    EXPECT_EQ(buffer, (Bytes{6, 5, 3, 4, 2, 1}));
}

TEST(VerticalFlip, RefusalsWriteNothing)
{
    Bytes buffer = {1, 2, 3};
    EXPECT_EQ(MV40_VerticalFlipImage(nullptr, 1, 3), 0u);
    EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
    EXPECT_EQ(MV40_VerticalFlipImage(buffer.data(), 0, 3), 0u);
    EXPECT_EQ(MV40_GetLastError(), u32(Error::OutOfMemory));
    EXPECT_EQ(MV40_VerticalFlipImage(nullptr, 0, 3), 0u);
    EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
    {
        const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, 0);
        EXPECT_EQ(MV40_VerticalFlipImage(buffer.data(), 1, 3), 0u);
    }
    EXPECT_EQ(MV40_GetLastError(), u32(Error::OutOfMemory));
    EXPECT_EQ(buffer, (Bytes{1, 2, 3}));
}

TEST(CopyBuffer, EqualsPlain)
{
    for (const u32 from : {0u, 1u, 7u, 20u}) {
        for (const u32 to : {0u, 1u, 7u, 20u}) {
            for (const u32 rows : {0u, 1u, 6u}) {
                SCOPE(from, to, rows);
                const Bytes source = zlvtest::RandomBytes(200, 1);
                Bytes wanted(200, 77), got(200, 77);
                PlainCopyRows(source.data(), from, rows, to, wanted.data());
                EXPECT_EQ(MV40_CopyBuffer(source.data(), from, rows, to, got.data()), 1u);
                EXPECT_EQ(got, wanted);
            }
        }
    }
}

TEST(CopyBuffer, AShorterDestinationRowCutsEachRow)
{
    const Bytes source = {1, 2, 3, 4, 5, 6};
    Bytes out(6, 77);
    EXPECT_EQ(MV40_CopyBuffer(source.data(), 3, 2, 2, out.data()), 1u);
    EXPECT_EQ(out, (Bytes{1, 2, 4, 5, 77, 77}));
}

TEST(CopyBuffer, ALongerDestinationRowKeepsItsRest)
{
    const Bytes source = {1, 2, 3, 4};
    Bytes out(6, 77);
    EXPECT_EQ(MV40_CopyBuffer(source.data(), 2, 2, 3, out.data()), 1u);
    EXPECT_EQ(out, (Bytes{1, 2, 77, 3, 4, 77}));
}

TEST(CopyBuffer, NeverReports)
{
    Bytes source(6), out(6);
    ProgressRecorder recorder;
    recorder.cancelAt = 1;
    MV40_SetCallback(recorder.Function, recorder.Data());
    EXPECT_EQ(MV40_CopyBuffer(source.data(), 3, 2, 3, out.data()), 1u);
    MV40_SetCallback(nullptr, 0);
    EXPECT_TRUE(recorder.reports.empty());
}

TEST(CopyBuffer, ANullPointerIsRefused)
{
    Bytes bytes = {1, 2, 3};
    EXPECT_EQ(MV40_CopyBuffer(nullptr, 1, 1, 1, bytes.data()), 0u);
    EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
    EXPECT_EQ(MV40_CopyBuffer(bytes.data(), 1, 1, 1, nullptr), 0u);
    EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
    EXPECT_EQ(bytes, (Bytes{1, 2, 3}));
}

TEST(BufferRows, StayInsideTheirBuffers)
{
    using zlvtest::Flush;
    for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
        zlvtest::GuardedBuffer buffer(5 * 7, flush), smaller(5 * 4, flush);
        EXPECT_EQ(MV40_VerticalFlipImage(buffer.Data(), 7, 5), 1u);
        EXPECT_EQ(MV40_CopyBuffer(buffer.Data(), 7, 5, 4, smaller.Data()), 1u);
        EXPECT_EQ(MV40_CopyBuffer(smaller.Data(), 4, 5, 7, buffer.Data()), 1u);
    }
}

}  // namespace
}  // namespace zlv
