// Opening, closing, top-hat and gradient of gray planes.
#include "plain/plain_gray_compositions.h"
#include "runtime/frame.h"
#include "support/base_watch.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"
#include "support/test_hooks.h"

#include "zlv40.h"

namespace zlv {
namespace {

using namespace zlvtest;

const struct Function {
    const char* name;
    u32 (*apply)(const u8* src, u32 width, u32 height, u32 srcRowStride, const u32* element, u32 elementSize, u8* dst,
                 u32 dstRowStride);
    void (*plain)(const PlainGrayPlane& plane);
    bool isGradient;
    bool needsDensePlanes;
} kFunctions[] = {
    {"opening", ZLV40_OpenGray, PlainOpenGray, false, false},
    {"closing", ZLV40_CloseGray, PlainCloseGray, false, false},
    {"top-hat", ZLV40_TophatGray, PlainTophatGray, false, true},
    {"gradient", ZLV40_MorphoGradientGray, PlainGradientGray, true, false},
};

std::vector<u32> Flat(u32 side, u32 value = 0) { return std::vector<u32>(size_t(side) * side, value); }

// Entries from -span to span.
std::vector<u32> Uneven(u32 side, u32 span, u64 seed)
{
    Random random(seed);
    std::vector<u32> element(size_t(side) * side);
    for (u32& entry : element) entry = random.Below(2 * span + 1) - span;
    return element;
}

struct Picture {
    u32 width, height, padding = 3;

    u32 SrcStride() const { return width + padding; }
    u32 DstStride() const { return width + 2 * padding; }
    // Top-hats write width * height bytes as one block, which may be more than the rows.
    size_t SrcBytes() const { return size_t(SrcStride()) * height; }
    size_t DstBytes() const { return size_t(DstStride()) * height; }

    void ExpectPlain(const Function& function, const std::vector<u32>& element, u32 side) const
    {
        SCOPE(function.name, width, "x", height, "padding", padding, "side", side);
        const Bytes src = RandomBytes(SrcBytes(), width);
        Bytes wanted = RandomBytes(DstBytes(), 2), got = wanted;
        function.plain({src.data(), width, height, SrcStride(), wanted.data(), DstStride(), element, side});
        EXPECT_EQ(function.apply(src.data(), width, height, SrcStride(), element.data(), side, got.data(), DstStride()),
                  1u);
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
    }
};

TEST(GrayCompositions, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 width : {1u, 2u, 16u, 33u, 71u}) {
            for (const u32 height : {1u, 2u, 13u}) {
                for (const u32 padding : {0u, 5u}) {
                    for (const Function& function : kFunctions) {
                        const Picture picture{width, height, padding};
                        for (const u32 side : {1u, 3u, 7u}) {
                            picture.ExpectPlain(function, Flat(side), side);
                            picture.ExpectPlain(function, Flat(side, 9), side);
                            picture.ExpectPlain(function, Uneven(side, 60, side), side);
                        }
                    }
                }
            }
        }
    });
}

TEST(GrayCompositions, ElementsLargerThanThePlaneEqualPlain)
{
    for (const Function& function : kFunctions) {
        Picture{5, 3}.ExpectPlain(function, Flat(21), 21);
        Picture{5, 3}.ExpectPlain(function, Uneven(21, 20, 1), 21);
    }
}

// Larger ones are done in strips.
TEST(GrayCompositions, PlanesOfManyRowsHaveNoSeams)
{
    for (const Function& function : kFunctions) {
        Picture{4001, 150, 0}.ExpectPlain(function, Flat(3), 3);
        Picture{1501, 401, 1}.ExpectPlain(function, Uneven(3, 30, 2), 3);
        Picture{9000, 61, 0}.ExpectPlain(function, Flat(7), 7);
    }
}

TEST(GrayCompositions, LargePlanesWorkInPlace)
{
    for (const Function& function : kFunctions) {
        SCOPE(function.name);
        const Bytes src = RandomBytes(4001 * 150, 1);
        Bytes wanted(src.size()), got = src;
        function.plain({src.data(), 4001, 150, 4001, wanted.data(), 4001, Flat(3), 3});
        EXPECT_EQ(function.apply(got.data(), 4001, 150, 4001, Flat(3).data(), 3, got.data(), 4001), 1u);
        EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
    }
}

TEST(GrayCompositions, AnElementOfOne0IsNothing)
{
    const Bytes src = RandomBytes(6 * 4, 1);
    const u32 zero = 0;
    const struct {
        const Function& function;
        Bytes wanted;
    } rows[] = {
        {kFunctions[0], src}, {kFunctions[1], src}, {kFunctions[2], Bytes(24, 0)}, {kFunctions[3], Bytes(24, 0)}};
    for (const auto& row : rows) {
        SCOPE(row.function.name);
        Bytes dst(24, 77);
        EXPECT_EQ(row.function.apply(src.data(), 6, 4, 6, &zero, 1, dst.data(), 6), 1u);
        EXPECT_EQ(dst, row.wanted);
    }
}

TEST(GrayCompositions, AFlatElementTakesPeaksOffAndFillsHoles)
{
    const Bytes src = {10, 10, 90, 10, 50, 50, 50, 3, 50};
    Bytes opened(9), closed(9), hat(9), gradient(9);
    const std::vector<u32> element = Flat(3);
    const auto apply = [&](const Function& function, Bytes& dst) {
        EXPECT_EQ(function.apply(src.data(), 9, 1, 9, element.data(), 3, dst.data(), 9), 1u);
    };
    apply(kFunctions[0], opened);
    apply(kFunctions[1], closed);
    apply(kFunctions[2], hat);
    apply(kFunctions[3], gradient);
    EXPECT_EQ(opened, (Bytes{10, 10, 10, 10, 50, 50, 50, 3, 3}));
    EXPECT_EQ(closed, (Bytes{10, 10, 90, 50, 50, 50, 50, 50, 50}));
    EXPECT_EQ(hat, (Bytes{0, 0, 80, 0, 0, 0, 0, 0, 47}));
    EXPECT_EQ(gradient, (Bytes{0, 80, 80, 80, 40, 0, 47, 47, 47}));
}

TEST(GrayCompositions, ADilationBelowTheErosionWrapsInTheGradient)
{
    // 100 - 30 below 100 + 30: the difference of -60 is 196.
    const u8 src = 100;
    u8 dst = 0;
    const u32 minus30 = u32(-30);
    EXPECT_EQ(ZLV40_MorphoGradientGray(&src, 1, 1, 1, &minus30, 1, &dst, 1), 1u);
    EXPECT_EQ(dst, 196);
}

// The copy is one block: with padding, what is subtracted from a row is not that row's opening.
TEST(GrayCompositions, TheTopHatMixesTheRowsOfPaddedPlanes)
{
    const Bytes src = {1, 2, 50, 3, 4, 50};  // two rows of two pixels
    Bytes dst(6, 77);
    const u32 zero = 0;
    EXPECT_EQ(ZLV40_TophatGray(src.data(), 2, 2, 3, &zero, 1, dst.data(), 3), 1u);
    // The block is 1, 2, 50, 3. Rows of dst are (1, 2) and (3, 77), less (1, 2) and (3, 4).
    EXPECT_EQ(dst, (Bytes{0, 0, 50, 0, 73, 77}));
}

TEST(GrayCompositions, WorkInPlace)
{
    for (const Function& function : kFunctions) {
        for (const std::vector<u32>& element : {Flat(5), Uneven(5, 30, 1)}) {
            SCOPE(function.name);
            const Bytes src = RandomBytes(40 * 12, 1);
            Bytes wanted(src.size()), got = src;
            function.plain({src.data(), 40, 12, 40, wanted.data(), 40, element, 5});
            EXPECT_EQ(function.apply(got.data(), 40, 12, 40, element.data(), 5, got.data(), 40), 1u);
            EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
        }
    }
}

// ---- Refusals ----

constexpr u32 kBad = ZLV40_ERROR_BAD_ARGUMENT, kEmpty = ZLV40_ERROR_OUT_OF_MEMORY;

struct Arguments {
    const char* shows;
    u32 result, error;  // of opening, closing and top-hat
    u32 gradientResult, gradientError;
    bool hasSrc = true, hasDst = true, hasElement = true;
    u32 width = 4, height = 3, side = 3;
};

const Arguments kArguments[] = {
    {.shows = "a null source", .result = 0, .error = 0, .gradientResult = 0, .gradientError = kBad, .hasSrc = false},
    {.shows = "a null destination",
     .result = 0,
     .error = 0,
     .gradientResult = 0,
     .gradientError = kBad,
     .hasDst = false},
    {.shows = "a null element",
     .result = 0,
     .error = 0,
     .gradientResult = 0,
     .gradientError = kBad,
     .hasElement = false},
    {.shows = "a null element of an empty plane",
     .result = 0,
     .error = 0,
     .gradientResult = 0,
     .gradientError = kBad,
     .hasElement = false,
     .width = 0},
    {.shows = "no columns", .result = 0, .error = kEmpty, .gradientResult = 0, .gradientError = kEmpty, .width = 0},
    {.shows = "no rows", .result = 0, .error = kEmpty, .gradientResult = 0, .gradientError = kEmpty, .height = 0},
    {.shows = "more pixels than a work image has",
     .result = 0,
     .error = kEmpty,
     .gradientResult = 0,
     .gradientError = kEmpty,
     .width = 65536,
     .height = 65536},
    {.shows = "an even element is the base layer's error",
     .result = 1,
     .error = 0,
     .gradientResult = 0,
     .gradientError = 0,
     .side = 2},
    {.shows = "so is one without entries", .result = 1, .error = 0, .gradientResult = 0, .gradientError = 0, .side = 0},
    {.shows = "and one of a negative size",
     .result = 1,
     .error = 0,
     .gradientResult = 0,
     .gradientError = 0,
     .side = 0xFFFFFFFF},
};

TEST(GrayCompositions, RefusalsAndFailuresOfSteps)
{
    for (const Arguments& row : kArguments) {
        for (const Function& function : kFunctions) {
            SCOPE(row.shows, function.name);
            const Bytes src = RandomBytes(12, 1);
            const std::vector<u32> element = Flat(3);
            Bytes dst(12, 77);
            EXPECT_EQ(function.apply(row.hasSrc ? src.data() : nullptr, row.width, row.height, 4,
                                     row.hasElement ? element.data() : nullptr, row.side,
                                     row.hasDst ? dst.data() : nullptr, 4),
                      function.isGradient ? row.gradientResult : row.result);
            EXPECT_EQ(ZLV40_GetLastError(), function.isGradient ? row.gradientError : row.error);
            if (row.result == 0 || !function.needsDensePlanes) {
                EXPECT_EQ(dst, Bytes(12, 77));
            }
        }
    }
}

TEST(GrayCompositions, AFailedOpeningLeavesTheTopHatUnsubtracted)
{
    const Bytes src = RandomBytes(12, 1);
    Bytes dst(12, 77);
    EXPECT_EQ(ZLV40_TophatGray(src.data(), 4, 3, 4, Flat(3).data(), 2, dst.data(), 4), 1u);
    EXPECT_EQ(dst, src);
}

TEST(GrayCompositions, TheTopHatRefusesRowsThatOverlap)
{
    const Bytes src = RandomBytes(12, 1);
    Bytes dst(12, 77);
    const u32 zero = 0;
    for (const auto& [srcStride, dstStride] : {std::pair(3u, 4u), std::pair(4u, 3u), std::pair(0u, 0u)}) {
        EXPECT_EQ(ZLV40_TophatGray(src.data(), 4, 3, srcStride, &zero, 1, dst.data(), dstStride), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), kBad);
        EXPECT_EQ(dst, Bytes(12, 77));
    }
    EXPECT_EQ(ZLV40_TophatGray(src.data(), 12, 1, 0, &zero, 1, dst.data(), 0), 1u) << "one row has no stride";
    EXPECT_EQ(dst, Bytes(12, 0));
}

// ---- Progress ----

TEST(GrayCompositions, ReportTheirLastStepAndEndQuietly)
{
    const Bytes src = RandomBytes(20 * 9, 4);
    for (const Function& function : kFunctions) {
        for (const std::vector<u32>& element : {Flat(5), Uneven(5, 9, 2)}) {
            Bytes whole(src.size(), 77);
            function.plain({src.data(), 20, 9, 20, whole.data(), 20, element, 5});
            for (u32 cancelAt = 0; cancelAt <= 9; ++cancelAt) {
                SCOPE(function.name, cancelAt);
                ProgressRecorder recorder;
                recorder.cancelAt = cancelAt;
                ZLV40_SetCallback(recorder.Function, recorder.Data());
                Bytes got(src.size(), 77);
                const u32 result = function.apply(src.data(), 20, 9, 20, element.data(), 5, got.data(), 20);
                const u32 error = ZLV40_GetLastError();
                ZLV40_SetCallback(nullptr, 0);
                const bool isTold = function.isGradient && cancelAt;
                EXPECT_EQ(result, isTold ? 0u : 1u);
                EXPECT_EQ(error, isTold ? u32(ZLV40_ERROR_CANCELLED) : 0u);
                const u32 rows = cancelAt ? cancelAt : 9;
                EXPECT_EQ(recorder.reports, Rows(rows, 9));
                // The rows that are left are as they were, or copies in a top-hat.
                Bytes wanted = function.needsDensePlanes ? src : Bytes(src.size(), 77);
                std::copy_n(whole.begin(), size_t(rows) * 20, wanted.begin());
                EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
            }
        }
    }
}

TEST(GrayCompositions, LeaveTheCountersAndTheBaseCallbackAsTheyWere)
{
    zlvtest::BaseWatch base;
    const u8 src = 9;
    u8 dst = 0;
    const u32 zero = 0;
    for (const Function& function : kFunctions) {
        for (const u32 side : {1u, 2u}) {
            function.apply(&src, 1, 1, 1, &zero, side, &dst, 1);
            base.ExpectUntouched();
        }
    }
}

// ---- Memory ----

// Work images are an export's own: without them code 1 tells. What the base layer lacks is a failure of a step.
TEST(GrayCompositions, WithoutMemoryForWorkImages)
{
    ZLV40_GetLastError();  // makes the thread's records
    const Bytes src = RandomBytes(12, 1);
    const std::vector<u32> element = Flat(3);
    for (const Function& function : kFunctions) {
        const u32 workImages = function.needsDensePlanes || function.isGradient ? 2 : 1;
        for (u32 succeeding = 0; succeeding < workImages; ++succeeding) {
            SCOPE(function.name, succeeding);
            Bytes dst(12, 77);
            const FailingCalls failing(FailingCalls::Of::Allocate, succeeding);
            EXPECT_EQ(function.apply(src.data(), 4, 3, 4, element.data(), 3, dst.data(), 4), 0u);
            EXPECT_EQ(ZLV40_GetLastError(), kEmpty);
        }
        for (u32 succeeding = workImages; succeeding < 40; ++succeeding) {
            SCOPE(function.name, succeeding);
            Bytes dst(12, 77);
            const FailingCalls failing(FailingCalls::Of::Allocate, succeeding);
            const u32 result = function.apply(src.data(), 4, 3, 4, element.data(), 3, dst.data(), 4);
            EXPECT_EQ(result, function.isGradient && failing.Failed() ? 0u : 1u);
            EXPECT_EQ(ZLV40_GetLastError(), 0u);
        }
    }
}

TEST(GrayCompositions, StayInsideTheirBuffers)
{
    zlvtest::OnEveryTarget([&] {
        for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
            for (const u32 width : {1u, 8u, 21u, 64u, 300u}) {
                for (const Function& function : kFunctions) {
                    SCOPE(int(flush), width, function.name);
                    GuardedBuffer src(size_t(width) * 4, flush, 200), dst(src.Size(), flush, 1);
                    EXPECT_EQ(function.apply(src.Data(), width, 4, width, Flat(5).data(), 5, dst.Data(), width), 1u);
                    EXPECT_EQ(function.apply(src.Data(), width, 4, width, Uneven(5, 9, 1).data(), 5, dst.Data(), width),
                              1u);
                }
            }
        }
    });
}

}  // namespace
}  // namespace zlv
