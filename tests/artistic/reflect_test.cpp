// Reflections: what they refuse, and what their steps do.
#include "artistic/artistic_cases.h"

#include "support/failing_memory.h"
#include "warp/warp_support.h"

#include <limits>

namespace zlv {
namespace {

using namespace zlvtest;

constexpr f64 kNan = std::numeric_limits<f64>::quiet_NaN();
constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();

// A call with usable arguments, to be changed in one place.
struct Call {
    u32 width = 8, height = 6, channels = 3;
    u32 splitRow = 4, reflectionHeight = 5;
    f64 fadeStart = 0.2, fadeEnd = 1.1;
    u32 color = 0x204060, fadeShape = 0;
    f64 ripple = 0.5;
    u32 rippleScale = 4, flags = 0;

    u32 Stride() const { return width * 3; }

    u32 On(const u8* source, u8* destination) const
    {
        SeedArtisticNoise();
        return ZLV40_ReflectImage(source, width, height, channels, Stride(), destination, Stride(), splitRow,
                                  reflectionHeight, fadeStart, fadeEnd, color, fadeShape, ripple, rippleScale, flags);
    }

    Bytes Source() const { return ArtisticPicture(std::size_t(Stride()) * height, Stride(), 3, 5); }
    Bytes Untouched() const { return Bytes(std::size_t(Stride()) * (splitRow + reflectionHeight), 77); }

    Bytes Make() const
    {
        const Bytes source = Source();
        Bytes made = Untouched();
        EXPECT_EQ(On(source.data(), made.data()), 1u);
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        return made;
    }

    Bytes Plain() const
    {
        const Bytes source = Source();
        Bytes made = Untouched();
        PlainGenerator generator = {kArtisticSeed};
        PlainReflection{source.data(), width,   height, Stride(),  made.data(), Stride(),    splitRow, reflectionHeight,
                        fadeStart,     fadeEnd, color,  fadeShape, ripple,      rippleScale, flags}
            .Run(generator, PlainSilence);
        return made;
    }
};

constexpr u32 kRippled = ZLV40_REFLECT_RIPPLED;

const struct {
    const char* shows;
    bool hasSource, hasDestination;
    Call call;
    u32 code;
} kRefused[] = {
    {"a null source", false, true, {}, 5},
    {"a null destination", true, false, {}, 5},
    {"one channel", true, true, {.channels = 1}, 5},
    {"four channels", true, true, {.channels = 4}, 5},
    {"no channels", true, true, {.channels = 0}, 5},
    {"a split below the last row", true, true, {.splitRow = 7}, 5},
    {"a split far below", true, true, {.splitRow = 0xFFFFFFFF}, 5},
    {"a start that is no number", true, true, {.fadeStart = kNan}, 5},
    {"an end that is no number", true, true, {.fadeEnd = kNan}, 5},
    {"a ramp from infinity", true, true, {.fadeStart = kInfinity}, 5},
    {"a ramp from what overflows", true, true, {.fadeStart = 1e308}, 5},
    {"no columns", true, true, {.width = 0}, 1},
    {"no rows of reflection", true, true, {.reflectionHeight = 0}, 1},
    {"a null source of no columns", false, true, {.width = 0}, 5},
};

TEST(ReflectImage, RefusesWithNothingWritten)
{
    for (const auto& row : kRefused) {
        for (const u32 flags : {0u, kRippled}) {
            SCOPE(row.shows, flags);
            const Bytes source = RandomBytes(8 * 6 * 3, 1);
            Bytes made(8 * 11 * 3, 77);
            Call call = row.call;
            call.flags = flags;
            EXPECT_EQ(call.On(row.hasSource ? source.data() : nullptr, row.hasDestination ? made.data() : nullptr), 0u);
            EXPECT_EQ(ZLV40_GetLastError(), row.code);
            EXPECT_EQ(made, Bytes(made.size(), 77));
        }
    }
}

TEST(ReflectImage, RipplesOfASourceWithoutRowsAreRefused)
{
    Bytes made(8 * 5 * 3, 77);
    const Call call = {.height = 0, .splitRow = 0, .flags = kRippled};
    EXPECT_EQ(call.On(made.data(), made.data()), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_OUT_OF_MEMORY));
    EXPECT_EQ(made, Bytes(made.size(), 77));
}

TEST(ReflectImage, ASplitAtTheHeightIsValid)
{
    for (const u32 flags : {0u, kRippled}) {
        const Call call = {.splitRow = 6, .flags = flags};
        EXPECT_EQ(call.Make(), call.Plain());
    }
}

TEST(ReflectImage, ReflectionsOfAnyHeight)
{
    for (const u32 height : {1u, 2u, 3u, 4u, 6u, 7u, 40u}) {
        for (const u32 flags : {0u, kRippled}) {
            SCOPE(height, flags);
            const Call call = {.reflectionHeight = height, .flags = flags};
            EXPECT_EQ(call.Make(), call.Plain());
        }
    }
}

// The rows above are copied whatever is below them, and nothing but pixels is written.
TEST(ReflectImage, CopiesTheRowsAboveAndLeavesPaddingAlone)
{
    const Call call = {};
    constexpr u32 kSourceStride = 24 + 5, kStride = 24 + 3;
    const Bytes packed = call.Source(), wanted = call.Make();
    GuardedBuffer source(5 * kSourceStride + 24, Flush::ToEnd), made(8 * kStride + 24, Flush::ToEnd);
    std::memset(made.Data(), 77, made.Size());
    for (u32 y = 0; y < 6; ++y) std::copy_n(&packed[y * 24], 24, source.Data() + y * kSourceStride);
    EXPECT_EQ(ZLV40_ReflectImage(source.Data(), 8, 6, 3, kSourceStride, made.Data(), kStride, 4, 5, call.fadeStart,
                                 call.fadeEnd, call.color, 0, 0, 0, 0),
              1u);
    for (std::size_t i = 0; i < made.Size(); ++i) {
        const std::size_t x = i % kStride, y = i / kStride;
        EXPECT_EQ(int(made.Data()[i]), x < 24 ? int(wanted[y * 24 + x]) : 77) << i;
        if (x < 24 && y < 4) {
            EXPECT_EQ(int(made.Data()[i]), int(packed[y * 24 + x])) << i;
        }
    }
}

u32 RandomState() { return baseContexts.Get()->randomState; }

TEST(ReflectImage, WithoutRipplesTheWarpIsSkipped)
{
    const Bytes flat = Call{.ripple = 0, .flags = 0}.Make();
    const Call kFlat[] = {{.ripple = 0, .flags = kRippled},    {.ripple = -0.5, .flags = kRippled},
                          {.ripple = kNan, .flags = kRippled}, {.ripple = -kInfinity, .flags = kRippled},
                          {.ripple = 1, .flags = 0},           {.ripple = 1, .flags = 0xFFFFFFFE}};
    for (const Call& call : kFlat) {
        SCOPE(call.ripple, call.flags);
        EXPECT_EQ(call.Make(), flat);
        EXPECT_EQ(RandomState(), kArtisticSeed) << "a field of noise has been made";
    }
    EXPECT_NE((Call{.ripple = 1, .flags = kRippled}.Make()), flat);
    EXPECT_NE(RandomState(), kArtisticSeed);
}

TEST(ReflectImage, RipplesAreLimitedTo1)
{
    for (const f64 ripple : {1.5, 1e300, kInfinity}) {
        EXPECT_EQ((Call{.ripple = ripple, .flags = kRippled}.Make()), (Call{.ripple = 1, .flags = kRippled}.Make()));
    }
}

TEST(ReflectImage, RipplesOfNoSizeAreNone)
{
    const Call call = {.rippleScale = 0, .flags = kRippled};
    EXPECT_EQ(call.Make(), Call{}.Make());
    EXPECT_EQ(RandomState(), kArtisticSeed);
}

TEST(ReflectImage, NoRampIsAllColor)
{
    for (u32 fadeShape = 0; fadeShape <= 2; ++fadeShape) {
        const Bytes made = Call{.fadeStart = 0, .fadeEnd = 0, .color = 0xFF204060, .fadeShape = fadeShape}.Make();
        for (std::size_t i = 4 * 24; i < made.size(); ++i)
            EXPECT_EQ(int(made[i]), i % 3 == 0 ? 0x60 : i % 3 == 1 ? 0x40 : 0x20);
    }
}

// The reflection of white in black is 255 less the coverage. A ramp over 4 rows from the first one has quarters.
TEST(ReflectImage, FadesByHand)
{
    const struct {
        const char* shows;
        f64 start, end;
        u32 shape;
        int coverage[4];
    } kRows[] = {
        {"linear", 0, 1, 0, {0, 63, 127, 191}},
        {"smooth: 127.5 * (1 - cos)", 0, 1, 1, {0, 37, 127, 217}},
        {"fast: 255 * sin", 0, 1, 2, {0, 97, 180, 235}},
        {"a positive start is above the first row", 1, 1, 0, {127, 159, 191, 223}},
        {"a negative one below it", -0.5, 1, 0, {0, 0, 0, 127}},
        {"an end above the last row", 0, 0.5, 0, {0, 127, 255, 255}},
        {"all below the reflection", -1, 2, 0, {0, 0, 0, 0}},
        {"all above it", 2, -1, 0, {255, 255, 255, 255}},
        {"an end in front of the start", -1, -2, 0, {0, 0, 0, 0}},
        {"never begun", -kInfinity, 1, 0, {0, 0, 0, 0}},
        {"never done", 0, kInfinity, 0, {0, 0, 0, 0}},
        {"ended before it came from infinity", kInfinity, 0, 0, {255, 255, 255, 255}},
    };
    for (const auto& row : kRows) {
        SCOPE(row.shows);
        const Bytes white(4 * 4 * 3, 255);
        Bytes made(8 * 4 * 3, 77);
        EXPECT_EQ(ZLV40_ReflectImage(white.data(), 4, 4, 3, 12, made.data(), 12, 4, 4, row.start, row.end, 0, row.shape,
                                     0, 0, 0),
                  1u);
        for (u32 y = 0; y < 4; ++y) EXPECT_EQ(255 - made[(4 + y) * 12], row.coverage[y]) << y;
    }
}

TEST(ReflectImage, OtherFadeShapesAreLinear)
{
    for (const u32 fadeShape : {3u, 4u, 0xFFFFFFFFu}) EXPECT_EQ((Call{.fadeShape = fadeShape}.Make()), Call{}.Make());
    for (const u32 fadeShape : {1u, 2u}) EXPECT_NE((Call{.fadeShape = fadeShape}.Make()), Call{}.Make());
}

// The first row of the reflection is that above it. A filter of the same size keeps samples but for their truncation.
TEST(ReflectImage, TheReflectionIsMirrored)
{
    const Call call = {.splitRow = 5, .reflectionHeight = 5, .fadeStart = -1, .fadeEnd = 2};
    const Bytes source = call.Source(), made = call.Make();
    for (u32 y = 0; y < 5; ++y) {
        for (u32 i = 0; i < 24; ++i) EXPECT_NEAR(made[(5 + y) * 24 + i], source[(4 - y) * 24 + i], 1) << y;
    }
}

TEST(ReflectImage, TooFewPixelsForTheFilterReflectBlack)
{
    const Call kCalls[] = {
        {.width = 1}, {.width = 2}, {.reflectionHeight = 1}, {.reflectionHeight = 2}, {.splitRow = 0}};
    for (Call call : kCalls) {
        for (const u32 flags : {0u, kRippled}) {
            SCOPE(call.width, call.reflectionHeight, call.splitRow, flags);
            call.flags = flags;
            call.fadeEnd = 100;
            call.fadeStart = -50;
            const Bytes made = call.Make();
            for (std::size_t i = call.splitRow * call.Stride(); i < made.size(); ++i) EXPECT_EQ(int(made[i]), 0);
        }
    }
}

TEST(ReflectImage, OnlyThePaintReports)
{
    for (const u32 flags : {0u, kRippled}) {
        ProgressRecorder client;
        ZLV40_SetCallback(client.Function, client.Data());
        Call{.flags = flags}.Make();
        ZLV40_SetCallback(nullptr, 0);
        EXPECT_EQ(client.reports, Rows(5, 5));
    }
}

TEST(ReflectImage, ACancelLeavesTheReflectionUnwritten)
{
    for (const u32 flags : {0u, kRippled}) {
        const Call call = {.flags = flags};
        const Bytes source = call.Source(), whole = call.Make();
        for (u32 cancelAt = 1; cancelAt <= 5; ++cancelAt) {
            SCOPE(flags, cancelAt);
            ProgressRecorder client;
            client.cancelAt = cancelAt;
            Bytes made = call.Untouched(), wanted = made;
            std::copy_n(whole.begin(), 4 * 24, wanted.begin());
            ZLV40_SetCallback(client.Function, client.Data());
            EXPECT_EQ(call.On(source.data(), made.data()), 0u);
            ZLV40_SetCallback(nullptr, 0);
            EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_CANCELLED));
            EXPECT_EQ(made, wanted);
        }
    }
}

TEST(ReflectImage, TheDestinationMayBeTheSource)
{
    for (const u32 flags : {0u, kRippled}) {
        const Call call = {.flags = flags};
        Bytes image = call.Source();
        image.resize(call.Untouched().size());
        EXPECT_EQ(call.On(image.data(), image.data()), 1u);
        EXPECT_EQ(image, call.Make());
    }
}

// What the client's list makes of a picture.
Bytes Warped()
{
    const Bytes picture = RandomBytes(20 * 15 * 3, 3);
    Bytes made(picture.size(), 77);
    EXPECT_EQ(ZLV40_TransformProcess(picture.data(), 20, 15, 60, made.data(), 60, 3, ZLV40_SAMPLING_BILINEAR, 0), 1u);
    return made;
}

TEST(ReflectImage, TheClientsWarpListIsAsItWas)
{
    const WarpList list;
    EXPECT_EQ(ZLV40_AddOffsetTransform(20, 15, 3, 2, ZLV40_WRAP_BOTH), 1u);
    EXPECT_EQ(ZLV40_AddSpinTransform(20, 15, 40, 10, 0, 0), 1u);
    const Bytes wanted = Warped(), flat = Call{.flags = kRippled}.Plain();
    for (const u32 rippleScale : {4u, 0u}) {
        for (std::size_t cancelAt = 0; cancelAt <= 5; ++cancelAt) {
            SCOPE(rippleScale, cancelAt);
            const Call call = {.rippleScale = rippleScale, .flags = kRippled};
            const Bytes source = call.Source();
            Bytes made = call.Untouched();
            ProgressRecorder client;
            client.cancelAt = cancelAt;
            ZLV40_SetCallback(client.Function, client.Data());
            EXPECT_EQ(call.On(source.data(), made.data()), cancelAt == 0 ? 1u : 0u);
            ZLV40_SetCallback(nullptr, 0);
            EXPECT_EQ(exportedContexts.Get()->transforms.GetCount(), 2u);
            EXPECT_EQ(Warped(), wanted);
            // The client's warps have no part in the ripples.
            if (cancelAt == 0 && rippleScale != 0) {
                EXPECT_EQ(made, flat);
            }
        }
    }
}

TEST(ReflectImage, TheClientsWarpListIsBackWhenMemoryIsOut)
{
    const WarpList list;
    EXPECT_EQ(ZLV40_AddOffsetTransform(20, 15, 3, 2, ZLV40_WRAP_BOTH), 1u);
    const Bytes wanted = Warped();
    const Call call = {.flags = kRippled};
    const Bytes source = call.Source();
    const u32 allocations = zlvtest::WithEachFailing(
        FailingCalls::Of::Allocate,
        [&] {
            Bytes made = call.Untouched();
            return call.On(source.data(), made.data());
        },
        [&](u32 result, u32 failed, u32) {
            EXPECT_EQ(result, failed ? 0u : 1u);
            EXPECT_EQ(ZLV40_GetLastError(), failed ? u32(ZLV40_ERROR_OUT_OF_MEMORY) : 0u);
            EXPECT_EQ(exportedContexts.Get()->transforms.GetCount(), 1u);
            EXPECT_EQ(Warped(), wanted);
        });
    EXPECT_GE(allocations, 4u);
}

}  // namespace
}  // namespace zlv
