#include "base/gray_morphology.h"

#include "plain/plain_gray_morphology.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"
#include "support/test_hooks.h"

#include <cstring>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ProgressRecorder;
using zlvtest::Rows;
using Entries = std::vector<u32>;

using Function = u32 (*)(const u8*, u32, u32, u32, const u32*, i32, u8*, u32);

const struct {
    const char* name;
    Function run;
    bool isDilation;
} kFunctions[] = {
    {"dilation", MV40_MorphoDilationGray, true},
    {"erosion", MV40_MorphoErosionGray, false},
};

struct Image {
    u32 width, height, padding;
    u32 Stride() const { return width + padding; }
    u32 OutStride() const { return width + 2 * padding; }
};

void ExpectPlain(const Image& image, const Entries& element, u32 side, const Bytes& src)
{
    for (const auto& function : kFunctions) {
        SCOPE(function.name);
        Bytes wanted = zlvtest::RandomBytes(size_t(image.OutStride()) * image.height, 5);
        Bytes got = wanted;
        PlainGrayMorphology(src.data(), image.width, image.height, image.Stride(), element, side, function.isDilation,
                            wanted.data(), image.OutStride());
        EXPECT_EQ(function.run(src.data(), image.width, image.height, image.Stride(), element.data(), i32(side),
                               got.data(), image.OutStride()),
                  1u);
        EXPECT_EQ(MV40_GetLastError(), 0u);
        EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
    }
}

void ExpectPlain(const Image& image, const Entries& element, u32 side, u64 seed)
{
    ExpectPlain(image, element, side, zlvtest::RandomBytes(size_t(image.Stride()) * image.height, seed));
}

Entries RandomEntries(u32 side, u32 limit, u64 seed, u32 lowest = 0)
{
    zlvtest::Random random(seed);
    Entries entries(size_t(side) * side);
    for (u32& entry : entries) entry = lowest + random.Below(limit);
    return entries;
}

constexpr u32 kWidths[] = {1, 2, 3, 15, 16, 33, 64, 65, 127, 260};

TEST(GrayMorphology, FlatElementsOnEveryTargetEqualPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 side : {1u, 3u, 5u, 7u, 9u, 15u, 17u, 33u}) {
            for (const u32 width : kWidths) {
                for (const u32 height : {1u, 2u, 7u, 20u}) {
                    SCOPE(side, width, height);
                    ExpectPlain({width, height, 3}, Entries(size_t(side) * side, side % 4 - 2), side, width);
                }
            }
        }
    });
}

TEST(GrayMorphology, OtherElementsOnEveryTargetEqualPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 side : {3u, 5u, 7u, 11u}) {
            for (const u32 limit : {2u, 60u, 300u}) {
                for (const u32 width : kWidths) {
                    SCOPE(side, limit, width);
                    ExpectPlain({width, 9, 2}, RandomEntries(side, limit, width), side, width);
                    ExpectPlain({width, 9, 2}, RandomEntries(side, limit, width, u32(-20)), side, width);
                }
            }
        }
    });
}

TEST(GrayMorphology, AWindowLargerThanTheImageEqualsPlain)
{
    for (const auto& [width, height] : {std::pair{1u, 1u}, {1u, 9u}, {9u, 1u}, {4u, 3u}}) {
        for (const u32 side : {19u, 41u}) {
            SCOPE(width, height, side);
            ExpectPlain({width, height, 1}, Entries(size_t(side) * side, 1), side, width);
            ExpectPlain({width, height, 1}, RandomEntries(side, 9, 1), side, width);
        }
    }
}

TEST(GrayMorphology, BrightAndDarkRegionsEqualPlain)
{
    Bytes src(300 * 20);
    for (size_t i = 0; i < src.size(); ++i) src[i] = i % 300 < 150 ? u8(i % 3) : u8(255 - i % 3);
    ExpectPlain({300, 20, 0}, RandomEntries(7, 20, 1), 7, src);
    ExpectPlain({300, 20, 0}, Entries(49, 2), 7, src);
}

TEST(GrayMorphology, LargeEntriesReachTheEndsOfTheRange)
{
    for (const u32 entry : {254u, 255u, 256u, 511u, 65536u, 0x7FFFFFFFu, 0x80000000u, 0xFFFF0000u, 0xFFFFFF00u,
                            0xFFFFFF01u, 0xFFFFFF02u, 0xFFFFFFFFu}) {
        SCOPE(entry);
        ExpectPlain({20, 6, 1}, {entry}, 1, 1);
        ExpectPlain({20, 6, 1}, {0, 0, 0, 0, entry, 0, 0, 0, 0}, 3, 1);
        ExpectPlain({20, 6, 1}, {0, 0, entry, 1, 2, 0, 0, 0, 0}, 3, Bytes(21 * 6, 0));
        ExpectPlain({20, 6, 1}, {entry, 255, 0xFFFFFFFF, 300, 255, entry, 255, 255, 256}, 3, 1);
    }
}

TEST(GrayMorphology, EverySampleWithEveryEntryEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        Bytes all(256);
        for (u32 i = 0; i < 256; ++i) all[i] = u8(i);
        for (i32 entry = -257; entry < 258; ++entry) {
            SCOPE(entry);
            ExpectPlain({256, 1, 0}, {u32(entry)}, 1, all);
            ExpectPlain({256, 1, 0}, {0, 0, 0, 0, u32(entry), 0, 0, 0, 0}, 3, all);
        }
    });
}

const struct {
    const char* shows;
    Function run;
    Entries element;
    Bytes before, after;  // one row of four
} kByHand[] = {
    {"one entry of 0 dilates to a copy", MV40_MorphoDilationGray, {0}, {0, 9, 254, 255}, {0, 9, 254, 255}},
    {"one entry of 0 erodes to a copy", MV40_MorphoErosionGray, {0}, {0, 9, 254, 255}, {0, 9, 254, 255}},
    {"dilation adds, at most 255", MV40_MorphoDilationGray, {3}, {0, 9, 254, 252}, {3, 12, 255, 255}},
    {"erosion subtracts, at least 0", MV40_MorphoErosionGray, {3}, {0, 9, 2, 255}, {0, 6, 0, 252}},
    {"a negative entry takes off, at least 0",
     MV40_MorphoDilationGray,
     {0xFFFFFFFA},
     {0, 9, 254, 255},
     {0, 3, 248, 249}},
    {"a negative entry adds, at most 255", MV40_MorphoErosionGray, {0xFFFFFFFA}, {0, 9, 254, 226}, {6, 15, 255, 232}},
    {"the largest of three", MV40_MorphoDilationGray, {0, 0, 0, 0, 0, 0, 0, 0, 0}, {1, 5, 2, 3}, {5, 5, 5, 3}},
    {"the smallest of three", MV40_MorphoErosionGray, {0, 0, 0, 0, 0, 0, 0, 0, 0}, {1, 5, 2, 3}, {1, 1, 2, 2}},
    // The left column counts 10 more: the pixel to the left wins, the first one repeats.
    {"dilation does not reflect the element",
     MV40_MorphoDilationGray,
     {0, 0, 0, 10, 0, 0, 0, 0, 0},
     {1, 5, 2, 3},
     {11, 11, 15, 12}},
    {"erosion neither", MV40_MorphoErosionGray, {0, 0, 0, 10, 0, 0, 0, 0, 0}, {21, 25, 22, 23}, {11, 11, 15, 12}},
};

TEST(GrayMorphology, ByHand)
{
    for (const auto& row : kByHand) {
        SCOPE(row.shows);
        Bytes out(4, 77);
        EXPECT_EQ(
            row.run(row.before.data(), 4, 1, 4, row.element.data(), row.element.size() == 1 ? 1 : 3, out.data(), 4),
            1u);
        EXPECT_EQ(out, row.after);
    }
}

TEST(GrayMorphology, StaysInsideItsBuffers)
{
    using zlvtest::Flush;
    using zlvtest::GuardedBuffer;
    zlvtest::OnEveryTarget([&] {
        for (const auto& function : kFunctions) {
            for (const Entries& element : {Entries(25, 1), RandomEntries(5, 9, 1)}) {
                for (const u32 width : {1u, 17u, 64u, 129u}) {
                    for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
                        SCOPE(function.name, element[1], width, int(flush));
                        GuardedBuffer src(size_t(width) * 3, flush, 9), dst(size_t(width) * 3, flush);
                        GuardedBuffer entries(element.size() * sizeof(u32), flush);
                        std::memcpy(entries.Data(), element.data(), entries.Size());
                        EXPECT_EQ(function.run(src.Data(), width, 3, width,
                                               reinterpret_cast<const u32*>(entries.Data()), 5, dst.Data(), width),
                                  1u);
                    }
                }
            }
        }
    });
}

TEST(GrayMorphology, ReportsAfterEachRow)
{
    const Bytes src = zlvtest::RandomBytes(20, 1);
    for (const auto& function : kFunctions) {
        for (const Entries& element : {Entries(9, 1), RandomEntries(3, 9, 1)}) {
            for (const u32 width : {5u, 0u}) {
                SCOPE(function.name, element[1], width);
                Bytes dst(20);
                ProgressRecorder recorder;
                MV40_SetCallback(recorder.Function, recorder.Data());
                EXPECT_EQ(function.run(src.data(), width, 4, 5, element.data(), 3, dst.data(), 5), 1u);
                MV40_SetCallback(nullptr, 0);
                EXPECT_EQ(recorder.reports, Rows(4, 4));
            }
        }
    }
}

TEST(GrayMorphology, ACancelKeepsTheRowsDoneAndLeavesTheRest)
{
    const Bytes src = zlvtest::RandomBytes(30, 1);
    for (const auto& function : kFunctions) {
        for (const Entries& element : {Entries(9, 1), RandomEntries(3, 9, 1)}) {
            for (const u32 cancelAt : {1u, 2u, 4u, 6u}) {
                SCOPE(function.name, element[1], cancelAt);
                Bytes wanted(30, 77), dst(30, 77);
                PlainGrayMorphology(src.data(), 5, 6, 5, element, 3, function.isDilation, wanted.data(), 5);
                std::fill(wanted.begin() + cancelAt * 5, wanted.end(), u8(77));
                ProgressRecorder recorder;
                recorder.cancelAt = cancelAt;
                MV40_SetCallback(recorder.Function, recorder.Data());
                EXPECT_EQ(function.run(src.data(), 5, 6, 5, element.data(), 3, dst.data(), 5), 0u);
                EXPECT_EQ(MV40_GetLastError(), u32(Error::Cancelled));
                MV40_SetCallback(nullptr, 0);
                EXPECT_EQ(recorder.reports, Rows(cancelAt, 6));
                EXPECT_EQ(dst, wanted);
                EXPECT_EQ(baseContexts.Get()->nestCount, 0u);
            }
        }
    }
}

const struct {
    const char* shows;
    bool hasSrc, hasDst, hasElement;
    u32 width, height;
    i32 side;
    u32 result;
    Error error;
} kEdges[] = {
    {"a null source is refused", false, true, true, 2, 2, 1, 0, Error::BadArgument},
    {"a null destination is refused", true, false, true, 2, 2, 1, 0, Error::BadArgument},
    {"a null element is refused", true, true, false, 2, 2, 1, 0, Error::BadArgument},
    {"an empty element is refused", true, true, true, 2, 2, 0, 0, Error::BadArgument},
    {"a negative size is refused", true, true, true, 2, 2, -1, 0, Error::BadArgument},
    {"the lowest size is refused", true, true, true, 2, 2, INT32_MIN, 0, Error::BadArgument},
    {"an even size is refused", true, true, true, 2, 2, 2, 0, Error::BadArgument},
    {"an element beyond all memory is refused", true, true, true, 2, 2, INT32_MAX, 0, Error::BadArgument},
    {"an empty image with an even size is refused", true, true, true, 0, 0, 2, 0, Error::BadArgument},
    {"no columns are nothing to do", true, true, true, 0, 2, 1, 1, Error::None},
    {"no rows are nothing to do", true, true, true, 2, 0, 1, 1, Error::None},
};

TEST(GrayMorphology, EdgesWriteNothing)
{
    const u32 element[4] = {1, 2, 3, 4};
    for (const auto& function : kFunctions) {
        for (const auto& row : kEdges) {
            SCOPE(function.name, row.shows);
            const Bytes src = zlvtest::RandomBytes(64, 9);
            Bytes dst(64, 77);
            EXPECT_EQ(function.run(row.hasSrc ? src.data() : nullptr, row.width, row.height, 8,
                                   row.hasElement ? element : nullptr, row.side, row.hasDst ? dst.data() : nullptr, 8),
                      row.result);
            EXPECT_EQ(MV40_GetLastError(), u32(row.error));
            EXPECT_EQ(dst, Bytes(64, 77));
        }
    }
}

TEST(GrayMorphology, WithoutMemoryItIsCodeOne)
{
    (void)MV40_GetLastError();  // makes the thread's record
    const Bytes src = zlvtest::RandomBytes(20, 1);
    const struct {
        Entries element;
        u32 allocations;
    } kinds[] = {{Entries(9, 1), 5}, {RandomEntries(3, 9, 1), 3}};
    for (const auto& function : kFunctions) {
        for (const auto& kind : kinds) {
            for (u32 succeeding = 0; succeeding <= kind.allocations; ++succeeding) {
                SCOPE(function.name, kind.allocations, succeeding);
                Bytes dst(20, 77);
                u32 result = 0;
                {
                    const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, succeeding);
                    result = function.run(src.data(), 5, 4, 5, kind.element.data(), 3, dst.data(), 5);
                }
                EXPECT_EQ(result, succeeding == kind.allocations ? 1u : 0u);
                EXPECT_EQ(MV40_GetLastError(), u32(result ? Error::None : Error::OutOfMemory));
                EXPECT_TRUE(result || dst == Bytes(20, 77));
            }
        }
    }
}

}  // namespace
}  // namespace zlv
