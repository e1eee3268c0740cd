// The Gaussian blur as a call: buffers, reports, cancels, refusals, memory.
#include "base/gaussian_cases.h"
#include "support/failing_memory.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"

#include <algorithm>
#include <limits>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::Flush;
using zlvtest::ForBothWidths;
using zlvtest::ForTargetsAndWidths;
using zlvtest::GuardedBuffer;
using zlvtest::kWidthFlag;
using zlvtest::Recording;
using zlvtest::Report;

constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();

TEST(GaussianBlur, ReadsAndWritesNothingOutsideTheImages)
{
    ForTargetsAndWidths([]<class T>() {
        for (const BlurShape& shape :
             {BlurShape{7, 9, 3, 2, 1}, BlurShape{33, 34, 1}, BlurShape{1, 1, 4}, BlurShape{70, 3, 2, 0, 5}}) {
            // The padding of the last row is not the image's.
            const size_t sourceSize = size_t(shape.SourceStride()) * shape.height - shape.sourcePadding;
            const size_t destinationSize = size_t(shape.DestinationStride()) * shape.height - shape.destinationPadding;
            for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
                GuardedBuffer source(sourceSize * sizeof(T), flush, 0xC3);
                GuardedBuffer destination(destinationSize * sizeof(T), flush);
                for (const f64 sigma : {0.0, 0.9, 2.0, 7.0}) {
                    for (const u32 mask : {1u, 0xFFu}) {
                        EXPECT_EQ(MV40_GaussianBlurImage(source.Data(), shape.width, shape.height, shape.channels,
                                                         shape.SourceStride(), destination.Data(),
                                                         shape.DestinationStride(), sigma, mask | kWidthFlag<T>),
                                  1u);
                    }
                }
            }
        }
    });
}

// A row or column a report, in order, with the same result as without anybody listening.
TEST(GaussianBlur, ReportsEveryLineOfTheRecursionAndEachDirectPass)
{
    ForTargetsAndWidths([]<class T>() {
        for (const f64 sigma : {0.8, 2.0, 6.0}) {
            for (const u32 mask : {1u, 5u, 7u}) {
                SCOPE(sigma, mask);
                const BlurShape shape = {40, 35, 3, 1, 2};
                const std::vector<T> source = Picture<T>(shape, BlurContent::Noise, 6);
                std::vector<T> wanted = Fill<T>(shape, 0x21), got = wanted;
                const std::vector<Report> reports = BlurPlainly(shape, source, wanted, sigma, mask);
                const Recording recording;
                EXPECT_EQ(Blur(shape, source, got, sigma, mask), 1u);
                EXPECT_EQ(recording.recorder.reports, reports);
                EXPECT_EQ(got, wanted);
            }
        }
    });
}

TEST(GaussianBlur, ReportsByHand)
{
    const std::vector<u8> source(2 * 3 * 2);
    std::vector<u8> got(source.size());
    {
        const Recording recording;
        EXPECT_EQ(Blur({2, 3, 2}, source, got, 1, 2), 1u);
        EXPECT_EQ(recording.recorder.reports, (std::vector<Report>{{0, 3}, {1, 3}, {2, 3}, {0, 2}, {1, 2}}));
    }
    const Recording recording;
    EXPECT_EQ(Blur({2, 3, 3}, std::vector<u8>(18), got = std::vector<u8>(18), 0.5, 5), 1u);
    EXPECT_EQ(recording.recorder.reports, (std::vector<Report>{{0, 6}, {1, 6}, {4, 6}, {5, 6}}));
}

TEST(GaussianBlur, ACancelKeepsTheColumnsDoneAndWritesNoOthers)
{
    ForBothWidths([]<class T>() {
        const BlurShape shape = {40, 6, 2, 1, 2};
        const std::vector<T> source = Picture<T>(shape, BlurContent::Noise, 6);
        for (const f64 sigma : {0.8, 2.0, 6.0}) {
            const size_t reportCount = sigma < 1 ? 4 : 2 * (40 + 6);
            for (size_t cancelAt = 1; cancelAt <= reportCount; ++cancelAt) {
                SCOPE(sigma, cancelAt);
                std::vector<T> wanted = Fill<T>(shape, 0x21), got = wanted;
                const std::vector<Report> reports = BlurPlainly(shape, source, wanted, sigma, 3, cancelAt);
                ASSERT_EQ(reports.size(), cancelAt);
                const Recording recording(cancelAt);
                EXPECT_EQ(Blur(shape, source, got, sigma, 3), 0u);
                EXPECT_EQ(MV40_GetLastError(), u32(Error::Cancelled));
                EXPECT_EQ(recording.recorder.reports, reports);
                EXPECT_EQ(got, wanted);
            }
        }
    });
}

// What is written when a report comes is what a cancel there would leave.
TEST(GaussianBlur, NoColumnIsWrittenAheadOfItsReport)
{
    const BlurShape shape = {40, 6, 1};
    const std::vector<u8> source(40 * 6, u8(100));
    for (const f64 sigma : {0.8, 2.0}) {
        std::vector<u8> got(source.size(), u8(1));
        Recording recording;
        std::vector<u32> columnsWritten;
        // The first row tells.
        recording.recorder.atReport = [&] {
            columnsWritten.push_back(u32(std::count_if(&got[0], &got[40], [](u8 v) { return v != 1; })));
        };
        EXPECT_EQ(Blur(shape, source, got, sigma, 1), 1u);
        std::vector<u32> wanted = {0, 40};
        if (sigma >= 1) {
            wanted.assign(6, 0);
            for (u32 x = 1; x <= 40; ++x) wanted.push_back(x);
        }
        EXPECT_EQ(columnsWritten, wanted);
    }
}

const struct {
    const char* shows;
    bool hasSource, hasDestination;
    u32 width, height, channels;
    f64 sigma;
    u32 flags;
    Error error;
} kRefusals[] = {
    {"a null source, direct", false, true, 4, 4, 1, 0.5, 1, Error::BadArgument},
    {"a null source, recursive", false, true, 4, 4, 1, 2, 1, Error::BadArgument},
    {"a null destination, direct", true, false, 4, 4, 1, 0.5, 1, Error::BadArgument},
    {"a null destination, recursive", true, false, 4, 4, 1, 2, 1, Error::BadArgument},
    {"a sigma that is no number", true, true, 4, 4, 1, std::numeric_limits<f64>::quiet_NaN(), 1, Error::BadArgument},
    {"no number in the direct engine", true, true, 4, 4, 1, std::numeric_limits<f64>::quiet_NaN(), 257,
     Error::BadArgument},
    {"an infinite sigma", true, true, 4, 4, 1, kInfinity, 1, Error::BadArgument},
    {"an infinite sigma below 0", true, true, 4, 4, 1, -kInfinity, 1, Error::BadArgument},
    {"a sigma that no float holds", true, true, 4, 4, 1, 1e39, 1, Error::BadArgument},
    {"a direct kernel of too many entries", true, true, 4, 4, 1, 3355443.3, 257, Error::BadArgument},
    {"a direct kernel without end", true, true, 4, 4, 1, 1e300, 257, Error::BadArgument},
    {"more channels than mask bits", true, true, 1, 1, 9, 2, 1, Error::BadArgument},
    {"more channels than mask bits, direct", true, true, 1, 1, 9, 0.5, 1, Error::BadArgument},
    {"no width", true, true, 0, 4, 1, 2, 1, Error::OutOfMemory},
    {"no height", true, true, 4, 0, 1, 2, 1, Error::OutOfMemory},
    {"no channels", true, true, 4, 4, 0, 2, 1, Error::OutOfMemory},
    {"no width, direct", true, true, 0, 4, 1, 0.5, 1, Error::OutOfMemory},
    {"a plane beyond any memory", true, true, 0xFFFFFFFF, 0xFFFFFFFF, 8, 2, 1, Error::OutOfMemory},
};

TEST(GaussianBlur, Refusals)
{
    for (const auto& row : kRefusals) {
        SCOPE(row.shows);
        const Bytes source(16, 5);
        Bytes destination(16, 6);
        EXPECT_EQ(MV40_GaussianBlurImage(row.hasSource ? source.data() : nullptr, row.width, row.height, row.channels,
                                         row.width * row.channels, row.hasDestination ? destination.data() : nullptr,
                                         row.width * row.channels, row.sigma, row.flags),
                  0u);
        EXPECT_EQ(MV40_GetLastError(), u32(row.error));
        EXPECT_EQ(destination, Bytes(16, 6));
    }
}

TEST(GaussianBlur, TheDirectEngineRefusesTheSameImageTwice)
{
    Bytes image(16, 5);
    for (const auto& [sigma, flags] : {std::pair{0.5, 1u}, {3.0, 257u}}) {
        EXPECT_EQ(MV40_GaussianBlurImage(image.data(), 4, 4, 1, 4, image.data(), 4, sigma, flags), 0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::BadArgument));
    }
}

TEST(GaussianBlur, WithoutMemoryItIsCodeOneAndNothingIsWritten)
{
    (void)MV40_GetLastError();  // makes the thread's record
    for (const f64 sigma : {0.8, 2.0, 6.0}) {
        SCOPE(sigma);
        const std::vector<u8> source(60 * 60 * 3, u8(9)), before(source.size(), u8(44));
        std::vector<u8> got;
        zlvtest::WithEachFailing(
            zlvtest::FailingCalls::Of::Allocate,
            [&] {
                got = before;
                return Blur({60, 60, 3}, source, got, sigma, 7);
            },
            [&](u32 result, u32 failed, u32) {
                EXPECT_EQ(result, failed ? 0u : 1u);
                EXPECT_EQ(MV40_GetLastError(), u32(failed ? Error::OutOfMemory : Error::None));
                EXPECT_EQ(got == before, failed != 0);
            });
    }
}

}  // namespace
}  // namespace zlv
