// Runs the golden rows: the library on every instruction set and on several threads, and the plain twins.
#include "golden/golden.h"

#include <cstdio>
#include <thread>

#ifdef ZLV_TESTS_SEE_INSIDE
#include "support/targets.h"
#endif

namespace zlvtest {
namespace {

std::vector<GoldenRow> AllRows()
{
    std::vector<GoldenRow> rows;
    const auto add = [&](std::vector<GoldenRow> more) { rows.insert(rows.end(), more.begin(), more.end()); };
    add(AdaptiveGolden());
    add(ArtisticGolden());
    add(CrackleGolden());
    add(DisplacementGolden());
    add(EdgesGolden());
    add(FrequencyGolden());
    add(GenerateGolden());
    add(LayerStylesGolden());
    add(MedianGolden());
    add(MorphologyGolden());
    add(NoiseGolden());
    add(PushGolden());
    add(ReflectionGolden());
    add(SeamGolden());
    add(SegmentedGolden());
    add(ToneGolden());
    add(WarpGolden());
    add(WindowGolden());
#ifdef ZLV_TESTS_SEE_INSIDE
    add(BufferGolden());
    add(ConvolutionGolden());
    add(GaussianGolden());
    add(HistogramGolden());
    add(OverlayGolden());
    add(PaletteGolden());
    add(PolygonGolden());
    add(ResizeGolden());
#endif
    return rows;
}

void CheckLibrary(const std::vector<GoldenRow>& rows)
{
    EXPECT_FALSE(rows.empty());
    for (const GoldenRow& row : rows) {
        SCOPE(row.name);
        GoldenPicture picture(row.channels, row.bytesPerSample);
        EXPECT_EQ(row.apply(picture), 1u);
        EXPECT_EQ(picture.Sum(), row.checksum);
    }
}

TEST(Golden, LibraryGivesTheChecksums)
{
    const std::vector<GoldenRow> rows = AllRows();
#ifdef ZLV_TESTS_SEE_INSIDE
    OnEveryTarget([&] { CheckLibrary(rows); });
#else
    CheckLibrary(rows);
#endif
}

TEST(Golden, LibraryGivesTheChecksumsOnSeveralThreads)
{
    const std::vector<GoldenRow> rows = AllRows();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) threads.emplace_back([&] { CheckLibrary(rows); });
    for (std::thread& thread : threads) thread.join();
}

#ifndef _WIN32  // twins may use the C run-time's functions, whose last bits are another system's own
TEST(Golden, PlainTwinsGiveTheChecksums)
{
    for (const GoldenRow& row : AllRows()) {
        GoldenPicture picture(row.channels, row.bytesPerSample);
        row.plain(picture);
        char sum[20];
        std::snprintf(sum, sizeof sum, "0x%016llX", static_cast<unsigned long long>(picture.Sum()));
        EXPECT_EQ(picture.Sum(), row.checksum) << row.name << " has the checksum " << sum;
    }
}
#endif

}  // namespace
}  // namespace zlvtest
