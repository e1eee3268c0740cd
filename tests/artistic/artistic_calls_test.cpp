// All artistic effects in all modes: equal to their plain twins, and how their calls go.
#include "artistic/artistic_cases.h"

#include "runtime/base_call.h"
#include "runtime/frame.h"
#include "support/base_watch.h"
#include "support/failing_memory.h"

namespace zlv {
namespace {

using namespace zlvtest;

TEST(ArtisticEffects, EveryTargetEqualsPlain)
{
    const ArtisticShape kShapes[] = {{16, 12, 0}, {37, 21, 5}, {70, 33, 0}, {131, 9, 2}};
    for (const ArtisticEffect& effect : ArtisticEffects()) {
        for (const ArtisticShape& shape : kShapes) {
            zlvtest::OnEveryTarget([&] {
                for (const bool hasClient : {false, true}) {
                    SCOPE(effect.name, shape.width, shape.height, hasClient);
                    ArtisticComparison(effect, shape).Expect(0, hasClient);
                }
            });
        }
    }
}

TEST(ArtisticEffects, TinyPicturesAndWindowsLargerThanThem)
{
    for (const ArtisticEffect& effect : ArtisticEffects()) {
        for (u32 width = 1; width <= 8; ++width) {
            for (u32 height = 1; height <= 8; ++height) {
                SCOPE(effect.name, width, height);
                ArtisticComparison(effect, {width, height, 1}).Expect(0, true);
                ArtisticComparison(effect, {width, height, 0}).Expect(0, false);
            }
        }
    }
}

// Result, code, reports and what has been written, whichever report is answered by 0.
TEST(ArtisticEffects, ACancelAtAnyReport)
{
    for (const ArtisticEffect& effect : ArtisticEffects()) {
        for (const ArtisticShape& shape : {ArtisticShape{12, 8, 3}, ArtisticShape{9, 10, 0}}) {
            const ArtisticComparison comparison(effect, shape);
            const std::size_t reports = comparison.Wanted(0).reports.size();
            for (std::size_t cancelAt = 1; cancelAt <= reports; ++cancelAt) {
                SCOPE(effect.name, shape.width, cancelAt, "of", reports);
                EXPECT_EQ(comparison.Expect(cancelAt, true), cancelAt);
            }
        }
    }
}

TEST(ArtisticEffects, EveryAllocationFailing)
{
    u32 seen = 0;
    for (const ArtisticEffect& effect : ArtisticEffects()) {
        const ArtisticShape shape = {17, 11, 0};
        const Bytes source = RandomBytes(effect.Bytes(shape), 3);
        for (const bool hasClient : {false, true}) {
            SCOPE(effect.name, hasClient);
            ProgressRecorder recorder;
            if (hasClient) ZLV40_SetCallback(recorder.Function, recorder.Data());
            seen += zlvtest::WithEachFailing(
                FailingCalls::Of::Allocate,
                [&] {
                    Bytes destination = source;
                    return effect.apply(
                        {source.data(), destination.data(), shape.width, shape.height, effect.Stride(shape)});
                },
                [&](u32 result, u32 failed, u32) {
                    EXPECT_EQ(result, failed ? 0u : 1u);
                    EXPECT_EQ(ZLV40_GetLastError(), failed ? u32(ZLV40_ERROR_OUT_OF_MEMORY) : 0u);
                });
            ZLV40_SetCallback(nullptr, 0);
        }
    }
    EXPECT_GT(seen, 100u);
}

TEST(ArtisticEffects, LeaveTheCountersAndTheBaseCallbackAsTheyWere)
{
    zlvtest::BaseWatch base;
    ProgressRecorder client;
    for (const ArtisticEffect& effect : ArtisticEffects()) {
        for (const std::size_t cancelAt : {0u, 1u}) {
            SCOPE(effect.name, cancelAt);
            const ArtisticShape shape = {9, 8, 0};
            const Bytes source = RandomBytes(effect.Bytes(shape), 3);
            Bytes destination = source;
            client = {};
            client.cancelAt = cancelAt;
            ZLV40_SetCallback(client.Function, client.Data());
            effect.apply({source.data(), destination.data(), shape.width, shape.height, effect.Stride(shape)});
            ZLV40_SetCallback(nullptr, 0);
            base.ExpectUntouched();
        }
    }
}

// An effect that the client calls while it is told of another one reports nothing, its reporting steps neither.
TEST(ArtisticEffects, CalledFromTheCallbackTheyAreSilent)
{
    const ArtisticShape shape = {9, 8, 0};
    for (const ArtisticEffect& effect : ArtisticEffects()) {
        SCOPE(effect.name);
        const Bytes source = RandomBytes(effect.Bytes(shape), 3);
        Bytes destination = source;
        ProgressRecorder client;
        u32 result = 0;
        client.atReport = [&] {
            result = effect.apply({source.data(), destination.data(), shape.width, shape.height, effect.Stride(shape)});
        };
        ZLV40_SetCallback(client.Function, client.Data());
        Bytes pixel = {1, 2, 3};
        EXPECT_EQ(ZLV40_PosterizeRGB(pixel.data(), 1, 1, 3, 0), 1u);
        ZLV40_SetCallback(nullptr, 0);
        EXPECT_EQ(result, 1u);
        EXPECT_EQ(client.reports, Rows(1, 1));
    }
}

}  // namespace
}  // namespace zlv
