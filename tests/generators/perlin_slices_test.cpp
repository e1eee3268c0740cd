#include "generators/perlin.h"
#include "plain/plain_perlin.h"
#include "runtime/math.h"
#include "runtime/random.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"
#include "support/test_hooks.h"

#include "zlv40.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <thread>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ProgressRecorder;

constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();
constexpr f64 kNaN = std::numeric_limits<f64>::quiet_NaN();

// A field of the library's and its twin.
struct Field {
    void* handle;
    PlainPerlin plain;

    explicit Field(u32 seed) : handle(New(seed)), plain(Plain(seed)) {}
    ~Field() { EXPECT_EQ(ZLV40_DestroyPerlinNoise3D(handle), 1u); }

    static void* New(u32 seed)
    {
        SeedRandom(*baseContexts.Get(), seed);
        return ZLV40_InitializePerlinNoise3D();
    }
    static PlainPerlin Plain(u32 seed)
    {
        PlainGenerator generator = {seed};
        return PlainPerlin(generator);
    }
};

// NaN is like NaN.
void ExpectSame(const std::vector<f64>& wanted, const f64* got)
{
    for (size_t i = 0; i < wanted.size(); ++i) {
        const bool isSame = wanted[i] == got[i] || (std::isnan(wanted[i]) && std::isnan(got[i]));
        ASSERT_TRUE(isSame) << "number " << i << ": wanted " << wanted[i] << ", got " << got[i];
    }
}

const struct {
    const char* shows;
    f64 scale, z;
} kPlanes[] = {
    {"wide cells", 0.02, 0},
    {"cells of a few pixels", 0.21, 3.5},
    {"a cell a pixel", 1.01, -2.25},
    {"many cells between two pixels", 17.3, 0.5},
    {"to the left", -0.03, 0.1},
    {"beyond the seam", -37.7, 0.1},
    {"lattice points only", 1, 7},
    {"one point", 0, 0.4},
    {"far away", 2e7, 0.4},
    {"beyond 32 bits", 1e12, 0.4},
    {"far too far", 1e300, 0.4},
    {"an infinite scale", kInfinity, 0.4},
    {"a scale that is no number", kNaN, 0.4},
    {"an infinite height", 0.1, kInfinity},
    {"a height that is no number", 0.1, kNaN},
};

TEST(PerlinSlices, EveryTargetEqualsPlain)
{
    const Field field(11);
    for (const Target target : zlvtest::RunnableTargets()) {
        const zlvtest::ScopedTarget scoped(target);
        for (const auto& plane : kPlanes) {
            for (const u32 width : {1u, 2u, 7u, 33u, 255u, 257u, 600u}) {
                SCOPE(zlvtest::NameOf(target), plane.shows, width);
                const u32 height = width > 100 ? 2 : 5;
                Bytes bytes(size_t(width) * height);
                ASSERT_EQ(ZLV40_GetPerlinNoise3DSliceBYTE(field.handle, bytes.data(), width, height, width, plane.scale,
                                                          plane.z),
                          1u);
                const Bytes wanted = PlainPerlinBytes(field.plain, width, height, plane.scale, plane.z);
                EXPECT_EQ(zlvtest::Difference(wanted.data(), bytes.data(), bytes.size()), "");

                std::vector<f64> numbers(bytes.size());
                ASSERT_EQ(ZLV40_GetPerlinNoise3DSliceDouble(field.handle, numbers.data(), width, height, width,
                                                            plane.scale, plane.z),
                          1u);
                ExpectSame(PlainPerlinSlice(field.plain, width, height, {plane.scale, plane.z}), numbers.data());
            }
        }
    }
}

const struct {
    const char* shows;
    f64 scale, offsetX, offsetY, angle, pivotX, pivotY;
} kTurns[] = {
    {"moved", 0.02, 3.3, -7.1, 0, 0, 0},
    {"turned", 0.02, 0, 0, 0.7, 0, 0},
    {"turned about a point", 0.05, 1, 2, -2.5, 3.25, 4.5},
    {"turned, a cell a pixel", 0.9, 0, 0, 1.1, 10, 20},
    {"turned to the other axis", 0.07, 5, 5, 1.5707963267948966, 0, 0},
    {"turned beyond the seam", 40, -3000, 100, 2, 0, 0},
    {"turned far away", 1e10, 0, 0, 1, 0, 0},
    {"a turn without end", 0.02, 0, 0, kInfinity, 0, 0},
    {"an offset that is no number", 0.02, kNaN, 0, 0, 0, 0},
    {"a pivot without end", 0.02, 0, 0, 0.5, kInfinity, 0},
    {"an offset without end, not turned", 0.02, 0, kInfinity, 0, 0, 0},
};

TEST(PerlinSlices, EveryTargetTurnsLikePlain)
{
    const Field field(12);
    for (const Target target : zlvtest::RunnableTargets()) {
        const zlvtest::ScopedTarget scoped(target);
        for (const auto& turn : kTurns) {
            for (const u32 width : {1u, 9u, 64u, 300u}) {
                SCOPE(zlvtest::NameOf(target), turn.shows, width);
                std::vector<f64> numbers(size_t(width) * 4);
                ASSERT_EQ(ZLV40_GetPerlinNoise3DSliceDoubleEx(field.handle, numbers.data(), width, 4, 0, turn.scale,
                                                              0.3, turn.offsetX, turn.offsetY, turn.angle, turn.pivotX,
                                                              turn.pivotY),
                          1u);
                const PlainPerlinPlane plane = {
                    turn.scale,      0.3,         turn.offsetX, turn.offsetY, Cos(turn.angle),
                    Sin(turn.angle), turn.pivotX, turn.pivotY};
                ExpectSame(PlainPerlinSlice(field.plain, width, 4, plane), numbers.data());
            }
        }
    }
}

TEST(PerlinSlices, NoNoiseIsLevel127)
{
    const Field field(1);
    Bytes out(12, 3);
    EXPECT_EQ(ZLV40_GetPerlinNoise3DSliceBYTE(field.handle, out.data(), 4, 3, 4, 1, 2), 1u);
    EXPECT_EQ(out, Bytes(12, 127));
}

TEST(PerlinSlices, AnyStrideGivesTheSamePackedRows)
{
    const Field field(2);
    const Bytes wanted = PlainPerlinBytes(field.plain, 10, 6, 0.3, 0.5);
    for (const u32 stride : {0u, 1u, 10u, 64u, 0xFFFFFFFFu}) {
        for (const zlvtest::Flush flush : {zlvtest::Flush::ToStart, zlvtest::Flush::ToEnd}) {
            SCOPE(stride, int(flush));
            zlvtest::GuardedBuffer out(60, flush);
            EXPECT_EQ(ZLV40_GetPerlinNoise3DSliceBYTE(field.handle, out.Data(), 10, 6, stride, 0.3, 0.5), 1u);
            EXPECT_EQ(zlvtest::Difference(wanted.data(), out.Data(), 60), "");
            zlvtest::GuardedBuffer numbers(480, flush);
            f64* const doubles = reinterpret_cast<f64*>(numbers.Data());
            EXPECT_EQ(ZLV40_GetPerlinNoise3DSliceDouble(field.handle, doubles, 10, 6, stride, 0.3, 0.5), 1u);
            EXPECT_EQ(doubles[59], field.plain.Noise3(9 * 0.3, 5 * 0.3, 0.5));
            SeedRandom(*baseContexts.Get(), 2);
            EXPECT_EQ(ZLV40_GeneratePerlinNoise(out.Data(), 10, 6, i32(stride), 0.3), 1u);
            EXPECT_EQ(zlvtest::Difference(PlainPerlinBytes(field.plain, 10, 6, 0.3, 0).data(), out.Data(), 60), "");
        }
    }
}

TEST(PerlinSlices, TwoCallsOnOneThreadDiffer)
{
    std::thread([] {
        Bytes first(100), second(100);
        EXPECT_EQ(ZLV40_GeneratePerlinNoise(first.data(), 10, 10, 10, 0.3), 1u);
        EXPECT_EQ(ZLV40_GeneratePerlinNoise(second.data(), 10, 10, 10, 0.3), 1u);
        EXPECT_NE(first, second);
        PlainGenerator generator;
        EXPECT_EQ(first, PlainPerlinBytes(PlainPerlin(generator), 10, 10, 0.3, 0));
        EXPECT_EQ(second, PlainPerlinBytes(PlainPerlin(generator), 10, 10, 0.3, 0));
    }).join();
}

TEST(PerlinSlices, TheDrawsAreUsedEvenByARefusedCall)
{
    PlainGenerator generator = {33};
    const PlainPerlin used(generator);
    Bytes out(4, 9);
    const struct {
        u8* out;
        u32 width, height;
    } rows[] = {{nullptr, 2, 2}, {out.data(), 0, 2}, {out.data(), 2, 0}};
    for (const auto& row : rows) {
        SeedRandom(*baseContexts.Get(), 33);
        EXPECT_EQ(ZLV40_GeneratePerlinNoise(row.out, row.width, row.height, 2, 0.1), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(baseContexts.Get()->randomState, generator.state);
    }
    EXPECT_EQ(out, Bytes(4, 9));
}

TEST(PerlinSlices, NullAndZeroAreRefused)
{
    const Field field(3);
    f64 numbers[4] = {1, 2, 3, 4};
    u8 bytes[4] = {1, 2, 3, 4};
    for (i32 broken = 0; broken < 4; ++broken) {
        SCOPE(broken);
        void* const handle = broken == 0 ? nullptr : field.handle;
        const bool hasOut = broken != 1;
        const u32 width = broken == 2 ? 0 : 2, height = broken == 3 ? 0 : 2;
        EXPECT_EQ(ZLV40_GetPerlinNoise3DSliceBYTE(handle, hasOut ? bytes : nullptr, width, height, 2, 0.1, 0), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(ZLV40_GetPerlinNoise3DSliceDouble(handle, hasOut ? numbers : nullptr, width, height, 2, 0.1, 0), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(ZLV40_GetPerlinNoise3DSliceDoubleEx(handle, hasOut ? numbers : nullptr, width, height, 2, 0.1, 0, 0,
                                                      0, 0, 0, 0),
                  0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
    }
    EXPECT_EQ(bytes[3], 4);
    EXPECT_EQ(numbers[3], 4);
    EXPECT_EQ(ZLV40_DestroyPerlinNoise3D(nullptr), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
}

void ExpectRefused(void* handle)
{
    u8 bytes[4] = {1, 2, 3, 4};
    f64 numbers[4] = {1, 2, 3, 4};
    EXPECT_EQ(ZLV40_GetPerlinNoise3DSliceBYTE(handle, bytes, 2, 2, 2, 0.1, 0), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_COULD_NOT_RUN));
    EXPECT_EQ(ZLV40_GetPerlinNoise3DSliceDouble(handle, numbers, 2, 2, 2, 0.1, 0), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_COULD_NOT_RUN));
    EXPECT_EQ(bytes[0], 1);
    EXPECT_EQ(numbers[0], 1);
    EXPECT_EQ(exportedContexts.Get()->nestCount, 0u);
}

TEST(PerlinSlices, AHandleToNowhereEndsInCode17)
{
    ExpectRefused(reinterpret_cast<void*>(16));
    ExpectRefused(reinterpret_cast<void*>(~u64(0) - 4096));
    zlvtest::GuardedBuffer tooShort(1000, zlvtest::Flush::ToEnd);  // unreadable memory follows
    ExpectRefused(tooShort.Data());
}

TEST(PerlinSlices, AHandleToSomethingElseEndsInCode17)
{
    Bytes zeros(sizeof(PerlinNoise)), noise = zlvtest::RandomBytes(sizeof(PerlinNoise), 1);
    ExpectRefused(zeros.data());
    ExpectRefused(noise.data());
}

TEST(PerlinSlices, AStaleHandleEndsInCode17)
{
    void* const handle = ZLV40_InitializePerlinNoise3D();
    EXPECT_EQ(ZLV40_DestroyPerlinNoise3D(handle), 1u);
    ExpectRefused(handle);
}

TEST(PerlinSlices, AFieldThatTheCallbackDestroysIsStillDrawn)
{
    void* const handle = Field::New(6);
    const Bytes wanted = PlainPerlinBytes(Field::Plain(6), 30, 4, 0.1, 0);
    ProgressRecorder recorder;
    recorder.atReport = [&] {
        if (recorder.reports.size() == 1) ZLV40_DestroyPerlinNoise3D(handle);
    };
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    Bytes out(120);
    EXPECT_EQ(ZLV40_GetPerlinNoise3DSliceBYTE(handle, out.data(), 30, 4, 30, 0.1, 0), 1u);
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_EQ(out, wanted);
}

TEST(PerlinSlices, ReportsEveryRowAndACancelKeepsTheRowsDone)
{
    const Field field(7);
    const Bytes whole = PlainPerlinBytes(field.plain, 20, 5, 0.1, 0);
    for (u32 cancelAt = 0; cancelAt <= 5; ++cancelAt) {
        for (const bool isGenerated : {false, true}) {
            SCOPE(cancelAt, isGenerated);
            ProgressRecorder recorder;
            recorder.cancelAt = cancelAt;
            Bytes out(100, 0xA5);
            SeedRandom(*baseContexts.Get(), 7);
            ZLV40_SetCallback(recorder.Function, recorder.Data());
            const u32 result = isGenerated
                                   ? ZLV40_GeneratePerlinNoise(out.data(), 20, 5, 20, 0.1)
                                   : ZLV40_GetPerlinNoise3DSliceBYTE(field.handle, out.data(), 20, 5, 20, 0.1, 0);
            EXPECT_EQ(result, cancelAt ? 0u : 1u);
            EXPECT_EQ(ZLV40_GetLastError(), cancelAt ? u32(ZLV40_ERROR_CANCELLED) : 0u);
            ZLV40_SetCallback(nullptr, 0);
            const u32 done = cancelAt ? cancelAt : 5;
            EXPECT_EQ(recorder.reports, zlvtest::Rows(done, 5));
            Bytes wanted(100, 0xA5);
            std::copy_n(whole.begin(), done * 20, wanted.begin());
            EXPECT_EQ(out, wanted);
        }
    }
}

TEST(PerlinSlices, WithoutMemoryThereIsNoField)
{
    ZLV40_SetCallback(nullptr, 0);  // makes the thread's records
    SeedRandom(*baseContexts.Get(), 8);
    {
        const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, 0);
        EXPECT_EQ(ZLV40_InitializePerlinNoise3D(), nullptr);
    }
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_OUT_OF_MEMORY));
    EXPECT_EQ(baseContexts.Get()->randomState, 8u);
}

TEST(PerlinSlices, ThreadsShareAField)
{
    const Field field(10);
    const Bytes wanted = PlainPerlinBytes(field.plain, 50, 20, 0.1, 0.5);
    std::vector<Bytes> images(4, Bytes(1000));
    std::vector<std::thread> threads;
    for (Bytes& image : images) {
        threads.emplace_back(
            [&] { EXPECT_EQ(ZLV40_GetPerlinNoise3DSliceBYTE(field.handle, image.data(), 50, 20, 50, 0.1, 0.5), 1u); });
    }
    for (std::thread& thread : threads) thread.join();
    for (const Bytes& image : images) EXPECT_EQ(image, wanted);
}

}  // namespace
}  // namespace zlv
