#include "base/gray_morphology.h"
#include "plain/plain_crackle.h"
#include "runtime/frame.h"
#include "support/base_watch.h"
#include "support/bytes.h"
#include "support/failing_memory.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"

#include "zlv40.h"

namespace zlv {
namespace {

using namespace zlvtest;

constexpr u32 kBad = ZLV40_ERROR_BAD_ARGUMENT, kMemory = ZLV40_ERROR_OUT_OF_MEMORY;
constexpr u32 kKinds[] = {ZLV40_CRACKLE_OPEN, ZLV40_CRACKLE_TOPHAT, ZLV40_CRACKLE_CLOSE, ZLV40_CRACKLE_DILATE,
                          ZLV40_CRACKLE_ERODE};

// Kinds whose step is an export: it goes on quietly when a client cancels.
bool IsExport(u32 kind) { return kind <= ZLV40_CRACKLE_CLOSE; }

struct CrackleCase {
    u32 width, height, kind;
    i32 strength = 50;
    u32 flags = 0;
    u32 padding = 5;

    u32 SourceStride() const { return 3 * width + padding; }
    u32 Stride() const { return 3 * width + 2 * padding; }
    Bytes Source() const { return RandomBytes(size_t(SourceStride()) * height, width + height); }
    // What stands there before: the border keeps it, but for its brightness.
    Bytes Destination() const { return RandomBytes(size_t(Stride()) * height, 2); }

    u32 Apply(const Bytes& source, Bytes& destination) const
    {
        return ZLV40_CrackleRGB(source.data(), width, height, SourceStride(), destination.data(), Stride(), kind,
                                strength, flags);
    }
    PlainCrackleCall Plain(const Bytes& source, Bytes& destination) const
    {
        return {source.data(), width, height, SourceStride(), destination.data(), Stride(), kind, strength, flags};
    }
    void ExpectPlain() const
    {
        SCOPE(width, "x", height, "kind", kind, "strength", strength, "flags", flags);
        const Bytes source = Source();
        Bytes wanted = Destination(), got = Destination();
        PlainCrackle(Plain(source, wanted));
        EXPECT_EQ(Apply(source, got), 1u);
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
    }
};

TEST(Crackle, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 kind : kKinds) {
            for (const u32 width : {4u, 5u, 16u, 33u, 71u}) {
                for (const u32 height : {4u, 13u}) CrackleCase{width, height, kind}.ExpectPlain();
            }
        }
    });
}

// Windows of the morphology (7) and the sharpening (5) are larger than these.
TEST(Crackle, TinyPicturesEqualPlain)
{
    for (const u32 kind : kKinds) {
        for (u32 width = 4; width <= 8; ++width) {
            for (u32 height = 4; height <= 8; ++height) CrackleCase{width, height, kind}.ExpectPlain();
        }
    }
}

TEST(Crackle, StrengthsAndRangesEqualPlain)
{
    for (const i32 strength : {0, 1, 33, 99, 100, 101, -1, INT32_MIN, INT32_MAX}) {
        for (const u32 flags : {0u, 1u, 2u, 0xFFFFFFFFu}) {
            CrackleCase{40, 21, ZLV40_CRACKLE_OPEN, strength, flags}.ExpectPlain();
        }
    }
}

TEST(Crackle, AStrengthOf0DoesNotSharpen)
{
    const CrackleCase c{40, 21, ZLV40_CRACKLE_CLOSE, 0};
    const Bytes source = c.Source();
    Bytes wanted = c.Destination(), got = c.Destination();
    // The relief of the spots as they are.
    std::vector<std::uint8_t> gray(40 * 21);
    PlainGray(source.data(), 40, 21, 3, c.SourceStride(), gray.data(), 40, false);
    const std::vector<std::uint8_t> spots = PlainSpots(c.Plain(source, wanted), gray);
    const PlainLight light = {std::cos(0.5), std::sin(0.5), std::cos(0.5), std::sin(0.5), 5};
    PlainEmboss({spots.data(), 40}, 40, 21, light, {source.data(), c.SourceStride()}, {nullptr, 0}, false, false,
                wanted.data(), c.Stride());
    PlainEqualizeBrightness(wanted.data(), {40, 21, 3, c.Stride()}, 50, 200);
    EXPECT_EQ(c.Apply(source, got), 1u);
    EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
}

TEST(Crackle, WorksInPlace)
{
    for (const u32 kind : kKinds) {
        const CrackleCase c{30, 20, kind, 50, 0, 0};
        const Bytes source = c.Source();
        Bytes wanted = source, got = source;
        PlainCrackle(c.Plain(source, wanted));
        EXPECT_EQ(ZLV40_CrackleRGB(got.data(), 30, 20, 90, got.data(), 90, kind, 50, 0), 1u);
        EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
    }
}

TEST(Crackle, StaysInsideItsBuffers)
{
    zlvtest::OnEveryTarget([&] {
        for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
            for (const u32 width : {4u, 16u, 37u}) {
                for (const u32 kind : kKinds) {
                    SCOPE(int(flush), width, kind);
                    const u32 stride = 3 * width + 2;
                    GuardedBuffer source(size_t(stride) * 5 + 3 * width, flush, 120);
                    GuardedBuffer destination(size_t(stride) * 5 + 3 * width, flush, 9);
                    EXPECT_EQ(
                        ZLV40_CrackleRGB(source.Data(), width, 6, stride, destination.Data(), stride, kind, 50, 0), 1u);
                }
            }
        }
    });
}

// ---- Refusals ----

const struct {
    const char* shows;
    u32 error;
    bool hasSource = true, hasDestination = true;
    u32 width = 6, height = 5, kind = ZLV40_CRACKLE_OPEN;
} kRefused[] = {
    {.shows = "a null source", .error = kBad, .hasSource = false},
    {.shows = "a null destination", .error = kBad, .hasDestination = false},
    {.shows = "no columns", .error = kMemory, .width = 0},
    {.shows = "no rows", .error = kMemory, .height = 0},
    {.shows = "no pixels and an unknown kind", .error = kMemory, .height = 0, .kind = 5},
    {.shows = "more pixels than a plane has", .error = kMemory, .width = 65536, .height = 32768},
    {.shows = "as many pixels as wrap to a few", .error = kMemory, .width = 65536, .height = 65537},
    {.shows = "fewer columns than a relief has", .error = kBad, .width = 3},
    {.shows = "fewer rows than a relief has", .error = kBad, .height = 3},
    {.shows = "a single pixel", .error = kBad, .width = 1, .height = 1},
    {.shows = "the relief's refusal after a base function", .error = kBad, .width = 3, .kind = ZLV40_CRACKLE_DILATE},
    {.shows = "an unknown kind, whose code is the base layer's", .error = 0, .kind = 5},
    {.shows = "the largest kind", .error = 0, .kind = 0xFFFFFFFF},
    {.shows = "an unknown kind of a small picture", .error = 0, .width = 3, .kind = 5},
};

TEST(Crackle, RefusalsWriteNothing)
{
    const Bytes source = RandomBytes(18 * 5, 1);
    for (const auto& row : kRefused) {
        SCOPE(row.shows);
        Bytes destination(18 * 5, 77);
        EXPECT_EQ(ZLV40_CrackleRGB(row.hasSource ? source.data() : nullptr, row.width, row.height, 18,
                                   row.hasDestination ? destination.data() : nullptr, 18, row.kind, 50, 0),
                  0u);
        EXPECT_EQ(ZLV40_GetLastError(), row.error);
        EXPECT_EQ(destination, Bytes(18 * 5, 77));
    }
}

// An earlier failure of the base layer on this thread is none of this call's.
TEST(Crackle, AnUnknownKindDoesNotTellEarlierErrors)
{
    EXPECT_EQ(MV40_MorphoErosionGray(nullptr, 1, 1, 1, nullptr, 1, nullptr, 1), 0u);
    EXPECT_EQ(MV40_GetLastError(), kBad);
    const CrackleCase c{6, 5, 5};
    Bytes destination = c.Destination();
    EXPECT_EQ(c.Apply(c.Source(), destination), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    EXPECT_EQ(destination, c.Destination());
}

// ---- Progress ----

// The rows of the morphology's last step, and nothing else.
TEST(Crackle, ReportsTheMorphologyAndEndsAtACancelOfABaseFunction)
{
    constexpr u32 kHeight = 9;
    for (const u32 kind : kKinds) {
        for (u32 cancelAt = 0; cancelAt <= kHeight; ++cancelAt) {
            SCOPE(kind, cancelAt);
            const CrackleCase c{21, kHeight, kind};
            const Bytes source = c.Source();
            const bool ends = cancelAt && !IsExport(kind);
            Bytes wanted = c.Destination(), got = c.Destination();
            PlainCrackleCall plain = c.Plain(source, wanted);
            if (cancelAt) plain.rows = cancelAt;
            if (!ends) PlainCrackle(plain);

            ProgressRecorder recorder;
            recorder.cancelAt = cancelAt;
            ZLV40_SetCallback(recorder.Function, recorder.Data());
            const u32 result = c.Apply(source, got);
            const u32 error = ZLV40_GetLastError();
            ZLV40_SetCallback(nullptr, 0);
            EXPECT_EQ(result, ends ? 0u : 1u);
            EXPECT_EQ(error, ends ? u32(ZLV40_ERROR_CANCELLED) : 0u);
            EXPECT_EQ(recorder.reports, Rows(cancelAt ? cancelAt : kHeight, kHeight));
            EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
        }
    }
}

TEST(Crackle, ReportsBeforeTheReliefRefuses)
{
    const CrackleCase c{3, 6, ZLV40_CRACKLE_ERODE};
    Bytes destination = c.Destination();
    ProgressRecorder recorder;
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    EXPECT_EQ(c.Apply(c.Source(), destination), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), kBad);
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_EQ(recorder.reports, Rows(6, 6));
    EXPECT_EQ(destination, c.Destination());
}

TEST(Crackle, LeavesTheCountersAndTheBaseCallbackAsTheyWere)
{
    zlvtest::BaseWatch base;
    for (const u32 kind : {0u, 1u, 2u, 3u, 4u, 5u}) {
        const CrackleCase c{6, 5, kind};
        Bytes destination = c.Destination();
        c.Apply(c.Source(), destination);
        base.ExpectUntouched();
    }
}

// ---- Memory ----

// Its own planes, the work image of an export and a base function that is a step by itself end the call: code 1 and
// nothing written. The rest goes on: an export whose base functions fail, and the sharpening.
TEST(Crackle, EveryAllocationThatFailsEndsAsPrescribed)
{
    constexpr u32 kOwn = 2;
    ZLV40_GetLastError();  // makes the thread's records
    for (const u32 kind : kKinds) {
        const CrackleCase c{21, 9, kind};
        const Bytes source = c.Source();
        Bytes unsharpened = c.Destination(), whole = c.Destination();
        PlainCrackleCall plain = c.Plain(source, unsharpened);
        plain.isSharpened = false;  // a relief of the gray picture itself
        PlainCrackle(plain);
        PlainCrackle(c.Plain(source, whole));
        u32 ended = 0, wentOn = 0;
        SCOPE(kind);
        Bytes got;
        zlvtest::WithEachFailing(
            FailingCalls::Of::Allocate,
            [&] {
                got = c.Destination();
                return c.Apply(source, got);
            },
            [&](u32 result, u32 failed, u32 succeeding) {
                EXPECT_EQ(ZLV40_GetLastError(), failed ? kMemory : 0u);
                EXPECT_TRUE(succeeding >= kOwn || result == 0);
                EXPECT_EQ(got, result == 0 ? c.Destination() : failed ? unsharpened : whole);
                ended += result == 0;
                wentOn += result != 0 && failed;
            });
        EXPECT_GT(ended, kOwn) << "the morphology needs memory too";
        EXPECT_GT(wentOn, 0u) << "and so does the sharpening";
    }
}

}  // namespace
}  // namespace zlv
