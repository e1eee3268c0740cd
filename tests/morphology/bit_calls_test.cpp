// How calls of the binary morphology go: refusals, progress, cancels, memory.
#include "morphology/bit_morphology_cases.h"

#include "runtime/frame.h"
#include "support/base_watch.h"
#include "support/failing_memory.h"
#include "support/progress_recorder.h"

#include <climits>

namespace zlv {
namespace {

using namespace zlvtest;

constexpr u32 kBad = ZLV40_ERROR_BAD_ARGUMENT, kEmpty = ZLV40_ERROR_OUT_OF_MEMORY;

// ---- Refusals ----

struct Arguments {
    const char* shows;
    u32 simple, composed;  // codes of dilation and erosion, and of the others
    bool hasSrc = true, hasDst = true, hasElement = true;
    u32 width = 12, height = 3, srcStride = 4, dstStride = 4;
    i32 elementWidth = 3, elementHeight = 3;
};

const Arguments kRefused[] = {
    {.shows = "a null source", .simple = kBad, .composed = kBad, .hasSrc = false},
    {.shows = "a null destination", .simple = kBad, .composed = kBad, .hasDst = false},
    {.shows = "a null element", .simple = kBad, .composed = kBad, .hasElement = false},
    {.shows = "no columns", .simple = kBad, .composed = kEmpty, .width = 0},
    {.shows = "no rows", .simple = kBad, .composed = kEmpty, .height = 0},
    {.shows = "no pixels, and a null source", .simple = kBad, .composed = kEmpty, .hasSrc = false, .height = 0},
    {.shows = "no pixels, and all null",
     .simple = kBad,
     .composed = kEmpty,
     .hasSrc = false,
     .hasDst = false,
     .hasElement = false,
     .width = 0},
    {.shows = "an even element width", .simple = kBad, .composed = kBad, .elementWidth = 2},
    {.shows = "an even element height", .simple = kBad, .composed = kBad, .elementHeight = 4},
    {.shows = "an element without columns", .simple = kBad, .composed = kBad, .elementWidth = 0},
    {.shows = "an element without rows", .simple = kBad, .composed = kBad, .elementHeight = 0},
    {.shows = "a negative odd width", .simple = kBad, .composed = kBad, .elementWidth = -3},
    {.shows = "a negative odd height", .simple = kBad, .composed = kBad, .elementHeight = -1},
    {.shows = "the most negative width", .simple = kBad, .composed = kBad, .elementWidth = INT_MIN},
    {.shows = "two negative sides", .simple = kBad, .composed = kBad, .elementWidth = -3, .elementHeight = -3},
    {.shows = "more entries than memory holds",
     .simple = kBad,
     .composed = kBad,
     .elementWidth = INT_MAX,
     .elementHeight = INT_MAX},
};

const Arguments kRowsTooShort[] = {
    {.shows = "a source row of a byte too few", .simple = 0, .composed = kBad, .srcStride = 1},
    {.shows = "a destination row of a byte too few", .simple = 0, .composed = kBad, .dstStride = 1},
    {.shows = "rows of no bytes", .simple = 0, .composed = kBad, .srcStride = 0, .dstStride = 0},
    {.shows = "short rows of an image without any", .simple = kBad, .composed = kBad, .height = 0, .srcStride = 1},
};

void ExpectRefused(const Arguments& row)
{
    SCOPE(row.shows);
    const std::vector<u32> element(9, 1);
    const Bytes src(64, 0xFF);
    const u8* const from = row.hasSrc ? src.data() : nullptr;
    const u32* const entries = row.hasElement ? element.data() : nullptr;
    for (const BitFunction& function : kBitFunctions) {
        const u32 code = function.isComposed ? row.composed : row.simple;
        if (code == 0) continue;
        SCOPE(function.name);
        Bytes dst(64, 77);
        EXPECT_EQ(function.apply(from, row.width, row.height, row.srcStride, row.hasDst ? dst.data() : nullptr,
                                 row.dstStride, entries, row.elementWidth, row.elementHeight, 0),
                  0u);
        EXPECT_EQ(ZLV40_GetLastError(), code);
        EXPECT_EQ(dst, Bytes(64, 77));
    }
    for (const bool isHitBroken : {true, false}) {
        SCOPE("hit-or-miss", isHitBroken);
        const u32* const hit = isHitBroken ? entries : element.data();
        const u32* const miss = isHitBroken ? element.data() : entries;
        Bytes dst(64, 77);
        EXPECT_EQ(ZLV40_MorphoHitOrMiss1Bit(
                      from, row.width, row.height, row.srcStride, row.hasDst ? dst.data() : nullptr, row.dstStride, hit,
                      isHitBroken ? row.elementWidth : 3, isHitBroken ? row.elementHeight : 3, miss,
                      isHitBroken ? 3 : row.elementWidth, isHitBroken ? 3 : row.elementHeight, 0),
                  0u);
        EXPECT_EQ(ZLV40_GetLastError(), row.composed);
        EXPECT_EQ(dst, Bytes(64, 77));
    }
}

TEST(BitMorphologyCalls, RefuseWithNothingWritten)
{
    for (const Arguments& row : kRefused) ExpectRefused(row);
}

TEST(BitMorphologyCalls, CompositionsRefuseRowsThatAreTooShort)
{
    for (const Arguments& row : kRowsTooShort) ExpectRefused(row);
}

// ---- Progress ----

// Each reports its last step alone.
TEST(BitMorphologyCalls, ReportEachRowAndStopAtACancel)
{
    const BitPicture picture{60, 9};
    const Bytes src = picture.Source();
    const PlainBitElement element = Box(5, 5);
    for (const BitFunction& function : kBitFunctions) {
        Bytes whole = picture.Destination();
        function.plain(picture.View(src), element, {whole.data(), picture.DstStride()});
        for (u32 cancelAt = 0; cancelAt <= 9; ++cancelAt) {
            SCOPE(function.name, cancelAt);
            ProgressRecorder recorder;
            recorder.cancelAt = cancelAt;
            ZLV40_SetCallback(recorder.Function, recorder.Data());
            Bytes got = picture.Destination();
            const u32 result = function.apply(src.data(), 60, 9, picture.SrcStride(), got.data(), picture.DstStride(),
                                              element.entries.data(), 5, 5, 0);
            const u32 error = ZLV40_GetLastError();
            ZLV40_SetCallback(nullptr, 0);
            EXPECT_EQ(result, cancelAt ? 0u : 1u);
            EXPECT_EQ(error, cancelAt ? u32(ZLV40_ERROR_CANCELLED) : 0u);
            const u32 rows = cancelAt ? cancelAt : 9;
            EXPECT_EQ(recorder.reports, Rows(rows, 9));
            Bytes wanted = picture.Destination();
            std::copy_n(whole.begin(), size_t(rows) * picture.DstStride(), wanted.begin());
            EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
        }
    }
}

TEST(BitMorphologyCalls, HitOrMissAndThinningAreSilent)
{
    ProgressRecorder recorder;
    recorder.cancelAt = 1;
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    const u32 one = 1, zero = 0;
    const u32* const hit = &one;
    const u32* const miss = &zero;
    const Bytes src(6, 0xF0);
    Bytes dst(6);
    EXPECT_EQ(ZLV40_MorphoHitOrMiss1Bit(src.data(), 8, 6, 1, dst.data(), 1, hit, 1, 1, miss, 1, 1, 0), 1u);
    EXPECT_EQ(ZLV40_MorphoThinning1Bit(src.data(), 8, 6, 1, dst.data(), &hit, 1, &miss, 1, 1, 3, 0), 1u);
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_TRUE(recorder.reports.empty());
}

TEST(BitMorphologyCalls, LeaveTheCountersAndTheBaseCallbackAsTheyWere)
{
    zlvtest::BaseWatch base;
    const u32 one = 1;
    const u8 src = 0xF0;
    u8 dst = 0;
    for (const BitFunction& function : kBitFunctions) {
        for (const u32* element : {&one, static_cast<const u32*>(nullptr)}) {
            function.apply(&src, 8, 1, 1, &dst, 1, element, 1, 1, 0);
            base.ExpectUntouched();
        }
    }
}

// ---- Memory ----

template <class Call>
void ExpectCodeOneWithoutMemory(Call call)
{
    EXPECT_GT(zlvtest::ExpectCodeOneWithoutMemory(Bytes(64, 77), [&](Bytes& dst) { return call(dst.data()); }), 0u);
}

TEST(BitMorphologyCalls, WithoutMemoryNothingIsWritten)
{
    ZLV40_GetLastError();  // makes the thread's records
    const Bytes src(64, 0xC3);
    const PlainBitElement element = Diamond(5);
    const u32* const entries = element.entries.data();
    for (const BitFunction& function : kBitFunctions) {
        SCOPE(function.name);
        ExpectCodeOneWithoutMemory(
            [&](u8* dst) { return function.apply(src.data(), 30, 8, 8, dst, 8, entries, 5, 5, 0); });
    }
    ExpectCodeOneWithoutMemory([&](u8* dst) {
        return ZLV40_MorphoHitOrMiss1Bit(src.data(), 30, 8, 8, dst, 8, entries, 5, 5, entries, 5, 5, 0);
    });
    ExpectCodeOneWithoutMemory([&](u8* dst) {
        return ZLV40_MorphoThinning1Bit(src.data(), 30, 8, 8, dst, &entries, 5, &entries, 5, 1, 1, 0);
    });
}

}  // namespace
}  // namespace zlv
