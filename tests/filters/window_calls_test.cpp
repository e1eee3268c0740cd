// How calls of the window statistic filters go: refusals, progress, cancels, memory.
#include "filters/window_filter_cases.h"

#include "runtime/frame.h"
#include "support/failing_memory.h"
#include "support/progress_recorder.h"

#include <cstring>

namespace zlv {
namespace {

using namespace zlvtest;

const struct {
    const char* shows;
    bool hasSrc, hasDst;
    u32 width, height, channels;
} kRefused[] = {
    {"a null source", false, true, 2, 2, 3},
    {"a null destination", true, false, 2, 2, 3},
    {"no columns", true, true, 0, 2, 3},
    {"no rows", true, true, 2, 0, 3},
    {"no channels", true, true, 2, 2, 0},
    {"nine channels", true, true, 2, 2, 9},
    {"all bits of channels", true, true, 2, 2, 0xFFFFFFFF},
};

TEST(WindowFilterCalls, RefuseWithNothingWritten)
{
    for (const WindowFilter& filter : WindowFilters()) {
        for (const auto& row : kRefused) {
            for (const u32 mask : {0u, 7u}) {
                SCOPE(filter.name, row.shows, mask);
                const Bytes src = RandomBytes(64, 9);
                Bytes dst(64, 77);
                EXPECT_EQ(filter.apply({row.hasSrc ? src.data() : nullptr, row.width, row.height,
                                        row.hasDst ? dst.data() : nullptr, row.channels, 8, 8, 3, mask}),
                          0u);
                EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
                EXPECT_EQ(dst, Bytes(64, 77));
            }
        }
    }
}

TEST(WindowFilterCalls, RefuseOneImageForBoth)
{
    for (const WindowFilter& filter : WindowFilters()) {
        SCOPE(filter.name);
        const Bytes before = RandomBytes(12, 3);
        Bytes image = before;
        EXPECT_EQ(filter.apply({image.data(), 2, 2, image.data(), 3, 6, 6, 3, 7}), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(image, before);
    }
}

TEST(WindowFilterCalls, RefuseWindowsWhoseSumsOrAreaOverflow)
{
    u32 seen = 0;
    for (const WindowFilter& filter : WindowFilters()) {
        if (filter.largestSize == INT32_MAX) continue;
        for (const i32 size :
             {filter.largestSize + 1, filter.largestSize + 2, 65535, 65537, INT32_MAX - 1, INT32_MAX}) {
            SCOPE(filter.name, size);
            const u8 sample = 9;
            u8 out = 77;
            EXPECT_EQ(filter.apply({&sample, 1, 1, &out, 1, 1, 1, size, 1}), 0u);
            EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
            EXPECT_EQ(out, 77);
            ++seen;
        }
    }
    EXPECT_EQ(seen, 7u * 6);
}

TEST(WindowFilterCalls, RefuseAmountsThatAreNoNumbers)
{
    const f64 nan = std::numeric_limits<f64>::quiet_NaN(), infinity = std::numeric_limits<f64>::infinity();
    for (const WindowFilter& filter : {Sharpen(nan), Sharpen(infinity), Sharpen(-infinity), Blur(nan)}) {
        SCOPE(filter.name);
        const Bytes src = RandomBytes(12, 3);
        Bytes dst(12, 77);
        EXPECT_EQ(filter.apply({src.data(), 2, 2, dst.data(), 3, 6, 6, 3, 7}), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(dst, Bytes(12, 77));
    }
}

TEST(WindowFilterCalls, InfiniteAmountsOfBlurAreLimited)
{
    const f64 infinity = std::numeric_limits<f64>::infinity();
    WindowComparison{5, 4, 3, 3}.Expect(Blur(infinity));
    WindowComparison{5, 4, 3, 3}.Expect(Blur(-infinity));
}

class ClientProgress {
public:
    explicit ClientProgress(size_t cancelAt = 0)
    {
        recorder.cancelAt = cancelAt;
        ZLV40_SetCallback(recorder.Function, recorder.Data());
    }
    ~ClientProgress() { ZLV40_SetCallback(nullptr, 0); }
    ClientProgress(const ClientProgress&) = delete;
    ClientProgress& operator=(const ClientProgress&) = delete;

    ProgressRecorder recorder;
};

// What a call of five rows and six channels reports, of which channels 1, 3 and 4 are selected.
constexpr u32 kChannels = 6, kRows = 5, kSelected = 0x1A;
const std::vector<Report> kSelectedChannels = {{1, kChannels}, {3, kChannels}, {4, kChannels}};

std::vector<Report> WholeProgress(const WindowFilter& filter)
{
    return filter.reportsRows ? Rows(kRows, kRows) : kSelectedChannels;
}

struct Scene {
    Bytes src = RandomBytes(7 * kChannels * kRows, 1);
    Bytes dst = Bytes(src.size(), 77);

    WindowCase Call(i32 size, u32 mask = kSelected)
    {
        return {src.data(), 7, kRows, dst.data(), kChannels, 7 * kChannels, 7 * kChannels, size, mask};
    }
};

TEST(WindowFilterCalls, ReportEachSelectedChannelOrEachRow)
{
    for (const WindowFilter& filter : AllWindowFilters()) {
        for (const i32 size : {1, 5, 17}) {
            SCOPE(filter.name, size);
            Scene told, untold;
            {
                ClientProgress client;
                EXPECT_EQ(filter.apply(told.Call(size)), 1u);
                EXPECT_EQ(client.recorder.reports, WholeProgress(filter));
            }
            EXPECT_EQ(filter.apply(untold.Call(size)), 1u);
            EXPECT_EQ(told.dst, untold.dst);
        }
    }
}

TEST(WindowFilterCalls, WithoutASelectedChannelOnlyRowsAreReported)
{
    for (const WindowFilter& filter : WindowFilters()) {
        SCOPE(filter.name);
        Scene scene;
        ClientProgress client;
        EXPECT_EQ(filter.apply(scene.Call(3, 0)), 1u);
        EXPECT_EQ(client.recorder.reports, filter.reportsRows ? Rows(kRows, kRows) : std::vector<Report>{});
        EXPECT_EQ(scene.dst, Bytes(scene.dst.size(), 77));
    }
}

// The selected channels of which `reports` have been made, or as many rows of all of them.
void KeepWhatWasDone(const WindowFilter& filter, size_t reports, Bytes& wanted)
{
    for (u32 y = 0; y < kRows; ++y) {
        for (u32 i = 0; i < 7 * kChannels; ++i) {
            bool isDone = y < reports;
            if (!filter.reportsRows) {
                isDone = false;
                for (size_t k = 0; k < reports; ++k) isDone = isDone || kSelectedChannels[k].current == i % kChannels;
            }
            if (!isDone) wanted[y * 7 * kChannels + i] = 77;
        }
    }
}

TEST(WindowFilterCalls, ACancelKeepsWhatWasReportedAndLeavesTheRest)
{
    for (const WindowFilter& filter : AllWindowFilters()) {
        for (size_t cancelAt = 1; cancelAt <= WholeProgress(filter).size(); ++cancelAt) {
            SCOPE(filter.name, cancelAt);
            Scene scene, whole;
            filter.plain(whole.Call(5).Plain(whole.dst.data()));
            KeepWhatWasDone(filter, cancelAt, whole.dst);
            ClientProgress client(cancelAt);
            EXPECT_EQ(filter.apply(scene.Call(5)), 0u);
            EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_CANCELLED));
            EXPECT_EQ(client.recorder.reports.size(), cancelAt);
            EXPECT_EQ(scene.dst, whole.dst);
            EXPECT_EQ(exportedContexts.Get()->nestCount, 0u);
            EXPECT_EQ(exportedContexts.Get()->callDepth, 0u);
        }
    }
}

TEST(WindowFilterCalls, AFilterCalledFromTheCallbackReportsNothing)
{
    for (const WindowFilter& filter : WindowFilters()) {
        SCOPE(filter.name);
        Scene scene, inner;
        ClientProgress client;
        u32 innerResult = 0;
        client.recorder.atReport = [&] { innerResult = filter.apply(inner.Call(5)); };
        EXPECT_EQ(filter.apply(scene.Call(5)), 1u);
        EXPECT_EQ(innerResult, 1u);
        EXPECT_EQ(client.recorder.reports, WholeProgress(filter));
        EXPECT_EQ(inner.dst, scene.dst);
    }
}

TEST(WindowFilterCalls, ACallbackThatIsTakenAwayMeanwhileIsNotCalledAgain)
{
    for (const WindowFilter& filter : WindowFilters()) {
        SCOPE(filter.name);
        Scene scene, whole;
        ClientProgress client;
        client.recorder.atReport = [] { ZLV40_SetCallback(nullptr, 0); };
        EXPECT_EQ(filter.apply(scene.Call(5)), 1u);
        EXPECT_EQ(client.recorder.reports.size(), 1u);
        filter.plain(whole.Call(5).Plain(whole.dst.data()));
        EXPECT_EQ(scene.dst, whole.dst);
    }
}

TEST(WindowFilterCalls, TheBaseLayersCallbackIsSilentAndComesBack)
{
    for (const WindowFilter& filter : WindowFilters()) {
        SCOPE(filter.name);
        ProgressRecorder recorder;
        MV40_SetCallback(recorder.Function, recorder.Data());
        Scene scene;
        EXPECT_EQ(filter.apply(scene.Call(5)), 1u);
        u64 data = 0;
        EXPECT_EQ(MV40_GetCallback(&data), recorder.Function);
        EXPECT_EQ(data, recorder.Data());
        MV40_SetCallback(nullptr, 0);
        EXPECT_TRUE(recorder.reports.empty());
    }
}

TEST(WindowFilterCalls, ARefusalClearsNothingButTheError)
{
    Scene scene;
    EXPECT_EQ(Minimum().apply({nullptr, 1, 1, scene.dst.data(), 1, 1, 1, 3, 1}), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
    EXPECT_EQ(Minimum().apply(scene.Call(3)), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
}

TEST(WindowFilterCalls, WithoutMemoryItIsCodeOneAndNothingIsWritten)
{
    (void)ZLV40_GetLastError();  // makes the thread's records
    Scene warm;
    EXPECT_EQ(Minimum().apply(warm.Call(3)), 1u);
    for (const WindowFilter& filter : AllWindowFilters()) {
        for (const bool isTold : {false, true}) {
            for (const i32 size : {1, 5, 17}) {
                SCOPE(filter.name, isTold, size);
                ClientProgress client;
                if (!isTold) ZLV40_SetCallback(nullptr, 0);
                zlvtest::ExpectCodeOneWithoutMemory(Scene().dst, [&](Bytes& dst) {
                    Scene scene;
                    const u32 result = filter.apply(scene.Call(size));
                    dst = scene.dst;
                    return result;
                });
            }
        }
    }
}

}  // namespace
}  // namespace zlv
