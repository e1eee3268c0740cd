#include "plain/plain_tone.h"
#include "tone/tone_support.h"

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::Client;
using zlvtest::ImageShape;
using zlvtest::InPlaceEffect;
using zlvtest::Rows;

struct Levels {
    u32 low, high, mask = 255;
};

InPlaceEffect Threshold(const Levels& levels)
{
    return {[=](u8* image, const ImageShape& s) {
                return ZLV40_ThresholdFilter(image, s.width, s.height, i32(s.channels), s.Stride(), levels.low,
                                             levels.high, levels.mask);
            },
            [=](u8* image, const ImageShape& s) {
                PlainThreshold(image, s.width, s.height, s.channels, s.Stride(), levels.low, levels.high, levels.mask);
            }};
}

TEST(ThresholdFilter, EqualsPlain)
{
    for (u32 channels = 1; channels <= 8; ++channels) {
        for (const u32 mask : {0u, 1u, 2u, 5u, 0x80u, 0xFFu, 0xFFFFFF00u, 0xFFFFFFFFu}) {
            SCOPE(mask);
            zlvtest::ExpectPlain(Threshold({60, 190, mask}), channels);
        }
    }
}

const struct {
    const char* shows;
    u32 low, high;
    Bytes wanted;  // of 0, 1, 127, 128, 129, 254, 255
} kLevels[] = {
    {"0 and 256 leave everything", 0, 256, {0, 1, 127, 128, 129, 254, 255}},
    {"128 and 128 give two levels", 128, 128, {0, 0, 0, 255, 255, 255, 255}},
    {"what lies between stays", 128, 254, {0, 0, 0, 128, 129, 255, 255}},
    {"a high level below the low one counts as that", 129, 5, {0, 0, 0, 0, 255, 255, 255}},
    {"0 and 0 are white", 0, 0, {255, 255, 255, 255, 255, 255, 255}},
    {"256 and 256 are black", 256, 256, {0, 0, 0, 0, 0, 0, 0}},
    {"255 leaves only white", 255, 255, {0, 0, 0, 0, 0, 0, 255}},
    {"above 256 acts as 256", 1000, 0xFFFFFFFF, {0, 0, 0, 0, 0, 0, 0}},
    {"also above the middle of the numbers", 128, 0x80000000, {0, 0, 0, 128, 129, 254, 255}},
};

TEST(ThresholdFilter, LevelsOfKnownSamples)
{
    for (const auto& row : kLevels) {
        SCOPE(row.shows);
        Bytes image = {0, 1, 127, 128, 129, 254, 255};
        EXPECT_EQ(ZLV40_ThresholdFilter(image.data(), 7, 1, 1, 7, row.low, row.high, 1), 1u);
        EXPECT_EQ(image, row.wanted);
    }
}

// No counter is raised, so the forwarder never finds the depth of 1 at which it asks the client.
TEST(ThresholdFilter, ADirectCallNeitherReportsNorCancels)
{
    Client client(1);
    client.recorder.atReport = [] { FAIL(); };
    Bytes image = {100, 200, 100, 200};
    EXPECT_EQ(ZLV40_ThresholdFilter(image.data(), 1, 4, 1, 1, 128, 128, 1), 1u);
    EXPECT_EQ(image, (Bytes{0, 255, 0, 255}));
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    EXPECT_TRUE(client.recorder.reports.empty());
}

// Called at a depth of 1, as from within a client's callback: then its rows are reported, and a 0 ends the work. The
// result is 1 and no code is left whatever happens.
TEST(ThresholdFilter, AtADepthOfOneItReportsAndACancelStillSucceeds)
{
    for (const size_t cancelAt : {0u, 1u, 2u, 4u}) {
        SCOPE("cancelled at", cancelAt);
        const Client client(cancelAt);
        const InPlaceEffect effect = Threshold({128, 128});
        const u32 rows = cancelAt ? u32(cancelAt) : 4;
        Bytes image = zlvtest::RandomBytes(12, 1), wanted = image;
        effect.plain(wanted.data(), {3, rows, 1});
        ZLVThreadContext& context = *exportedContexts.Get();
        ++context.nestCount;
        EXPECT_EQ(effect.apply(image.data(), {3, 4, 1}), 1u);
        --context.nestCount;
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        EXPECT_EQ(client.recorder.reports, Rows(rows, 4));
        EXPECT_EQ(image, wanted);
    }
}

TEST(ThresholdFilter, AsAStepOfAStepItIsSilent)
{
    const Client client(1);
    Bytes image(4, 200);
    exportedContexts.Get()->nestCount += 2;
    EXPECT_EQ(ZLV40_ThresholdFilter(image.data(), 1, 4, 1, 1, 128, 128, 1), 1u);
    exportedContexts.Get()->nestCount -= 2;
    EXPECT_EQ(image, Bytes(4, 255));
    EXPECT_TRUE(client.recorder.reports.empty());
}

// The rows of the inner call are heard by the callback that made it, if the outer effect reports by itself. While a
// function of the base layer reports, another one that is called from there does not.
TEST(ThresholdFilter, FromWithinACallbackItReportsToThatCallback)
{
    const auto tint = [](u8* pixel) { return ZLV40_AdjustTint(pixel, 1, 1, 3, 3, 5, 0); };
    const auto solarize = [](u8* pixel) { return ZLV40_SolarizeImage(pixel, 1, 1, 3, 3, 0); };
    for (const bool isByItself : {true, false}) {
        SCOPE("by itself", isByItself);
        Client client;
        Bytes inner(2, 200), outer(3, 200);
        u32 calls = 0;
        client.recorder.atReport = [&] {
            EXPECT_EQ(exportedContexts.Get()->nestCount, 1u);
            EXPECT_EQ(exportedContexts.Get()->callDepth, 1u) << "of the outer call alone";
            if (calls++ > 0) return;
            EXPECT_EQ(ZLV40_ThresholdFilter(inner.data(), 1, 2, 1, 1, 128, 128, 1), 1u);
        };
        EXPECT_EQ(isByItself ? tint(outer.data()) : solarize(outer.data()), 1u);
        std::vector<zlvtest::Report> wanted = {{0, 1}};
        if (isByItself) wanted.insert(wanted.end(), {{0, 2}, {1, 2}});
        EXPECT_EQ(client.recorder.reports, wanted);
        EXPECT_EQ(inner, Bytes(2, 255));
    }
}

TEST(ThresholdFilter, TheBaseCallbackIsBackAfterwards)
{
    zlvtest::ProgressRecorder base;
    MV40_SetCallback(base.Function, base.Data());
    Bytes image(3, 200);
    for (u8* const buffer : {image.data(), static_cast<u8*>(nullptr)}) {
        ZLV40_ThresholdFilter(buffer, 1, 3, 1, 1, 128, 128, 1);
        u64 data = 0;
        EXPECT_EQ(MV40_GetCallback(&data), base.Function);
        EXPECT_EQ(data, base.Data());
        EXPECT_EQ(exportedContexts.Get()->nestCount, 0u);
        EXPECT_EQ(exportedContexts.Get()->callDepth, 0u);
    }
    MV40_SetCallback(nullptr, 0);
    EXPECT_TRUE(base.reports.empty());
}

TEST(ThresholdFilter, ClearsTheErrorOfTheCallBefore)
{
    u8 sample = 200;
    EXPECT_EQ(ZLV40_ThresholdFilter(&sample, 0, 1, 1, 1, 0, 0, 1), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
    EXPECT_EQ(ZLV40_ThresholdFilter(&sample, 1, 1, 1, 1, 0, 0, 1), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
}

TEST(ThresholdFilter, RefusesWhatItCannotWorkOn)
{
    const InPlaceEffect effect = Threshold({128, 128});
    zlvtest::ExpectRefused(effect, false, {2, 2, 3});
    zlvtest::ExpectRefused(effect, true, {0, 2, 3});
    zlvtest::ExpectRefused(effect, true, {2, 0, 3});
    for (const u32 channels : {0u, 9u, 255u, 0x80000001u, 0xFFFFFFFFu}) {
        SCOPE(channels);
        zlvtest::ExpectRefused(effect, true, {2, 2, channels});
    }
}

}  // namespace
}  // namespace zlv
