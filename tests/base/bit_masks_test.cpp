#include "base/bit_masks.h"

#include "plain/plain_bit_masks.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"
#include "support/test_hooks.h"

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ProgressRecorder;
using zlvtest::Rows;

// Bytes of a few values, so that masks have bits of both kinds.
Bytes FewValues(size_t count, u64 seed)
{
    Bytes bytes = zlvtest::RandomBytes(count, seed);
    for (u8& byte : bytes) byte = u8(byte % 3 + 4);
    return bytes;
}

TEST(PackRow, EveryDepthEqualsPlain)
{
    for (u32 depth = 1; depth <= 8; ++depth) {
        for (size_t width = 0; width < 40; ++width) {
            SCOPE(depth, width);
            const Bytes pixels = zlvtest::RandomBytes(width, depth);
            const Bytes wanted = PlainPack(pixels, depth);
            ASSERT_EQ(wanted.size(), PackedRowBytes(width, depth));
            zlvtest::GuardedBuffer got(wanted.size(), zlvtest::Flush::ToEnd, 0xA5);
            EXPECT_EQ(PackRow(pixels.data(), width, depth, got.Data()), Error::None);
            EXPECT_EQ(Bytes(got.Data(), got.Data() + got.Size()), wanted);
        }
    }
}

TEST(PackRow, OtherDepthsAreRefused)
{
    const u8 pixel = 1;
    for (const u32 depth : {0u, 9u, 32u, 0xFFFFFFFFu}) {
        u8 packed = 0xA5;
        EXPECT_EQ(PackRow(&pixel, 1, depth, &packed), Error::BadArgument) << depth;
        EXPECT_EQ(packed, 0xA5);
    }
}

TEST(UnpackBits, IsThePackingBackwards)
{
    for (size_t width = 0; width < 40; ++width) {
        SCOPE(width);
        Bytes pixels = zlvtest::RandomBytes(width, 1);
        for (u8& pixel : pixels) pixel &= 1;
        const Bytes packed = PlainPack(pixels, 1);
        zlvtest::GuardedBuffer from(packed.size(), zlvtest::Flush::ToEnd), to(width, zlvtest::Flush::ToEnd);
        std::copy(packed.begin(), packed.end(), from.Data());
        UnpackBits(from.Data(), width, to.Data());
        EXPECT_EQ(Bytes(to.Data(), to.Data() + width), pixels);
    }
}

TEST(Create1BitMask, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 width : {1u, 7u, 8u, 9u, 16u, 37u, 63u, 64u, 65u, 72u, 127u, 191u, 200u}) {
            SCOPE(width);
            const u32 stride = width + 2, maskStride = (width + 7) / 8 + 1;
            const Bytes plane = FewValues(size_t(stride) * 5, width);
            Bytes wanted(size_t(maskStride) * 5, 0xA5), got(size_t(maskStride) * 5, 0xA5);
            PlainMakeMask(plane.data(), width, 5, stride, wanted.data(), maskStride, 5);
            EXPECT_EQ(MV40_Create1BitMaskFromColor(plane.data(), width, 5, stride, got.data(), maskStride, 5, 0), 1u);
            EXPECT_EQ(got, wanted);
        }
    });
}

TEST(Create1BitMask, TenPixelsTakeTwoBytesWithSixZeros)
{
    const Bytes plane(10, 9);
    Bytes mask(3, 0xFF);
    EXPECT_EQ(MV40_Create1BitMaskFromColor(plane.data(), 10, 1, 10, mask.data(), 2, 9, 0), 1u);
    EXPECT_EQ(mask, (Bytes{0xFF, 0xC0, 0xFF}));
}

TEST(Create1BitMask, TheLeftmostPixelIsTheTopBit)
{
    const Bytes plane = {9, 0, 0, 9, 0, 0, 0, 0};
    u8 mask = 0;
    EXPECT_EQ(MV40_Create1BitMaskFromColor(plane.data(), 8, 1, 8, &mask, 1, 9, 0), 1u);
    EXPECT_EQ(mask, 0x90);
}

TEST(SetColorFrom1BitMask, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 width : {1u, 7u, 8u, 9u, 16u, 37u, 63u, 64u, 65u, 72u, 127u, 191u, 200u}) {
            SCOPE(width);
            const u32 stride = width + 2, maskStride = (width + 7) / 8 + 1;
            const Bytes mask = zlvtest::RandomBytes(size_t(maskStride) * 5, width);
            Bytes wanted = zlvtest::RandomBytes(size_t(stride) * 5, 2);
            Bytes got = wanted;
            PlainSetWhereMasked(mask.data(), width, 5, maskStride, wanted.data(), stride, 200);
            EXPECT_EQ(MV40_SetColorFrom1BitMask(mask.data(), width, 5, maskStride, got.data(), stride, 200, 0), 1u);
            EXPECT_EQ(got, wanted);
        }
    });
}

TEST(SetColorFrom1BitMask, AnEmptyMaskChangesNothing)
{
    const Bytes mask(10, 0);
    const Bytes before = zlvtest::RandomBytes(80, 1);
    Bytes plane = before;
    EXPECT_EQ(MV40_SetColorFrom1BitMask(mask.data(), 16, 5, 2, plane.data(), 16, 200, 0), 1u);
    EXPECT_EQ(plane, before);
}

TEST(BitMasks, StayInsideTheirBuffers)
{
    using zlvtest::Flush;
    for (const u32 width : {1u, 8u, 13u, 64u, 111u}) {
        for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
            SCOPE(width, int(flush));
            const u32 maskStride = (width + 7) / 8;
            zlvtest::GuardedBuffer plane(size_t(width) * 3, flush), mask(size_t(maskStride) * 3, flush);
            EXPECT_EQ(MV40_Create1BitMaskFromColor(plane.Data(), width, 3, width, mask.Data(), maskStride, 0, 0), 1u);
            EXPECT_EQ(MV40_SetColorFrom1BitMask(mask.Data(), width, 3, maskStride, plane.Data(), width, 1, 0), 1u);
        }
    }
}

u32 CreateMask(u8* plane, u8* mask, u32 width, u32 height)
{
    return MV40_Create1BitMaskFromColor(plane, width, height, 8, mask, 1, 5, 0);
}

u32 SetColor(u8* plane, u8* mask, u32 width, u32 height)
{
    return MV40_SetColorFrom1BitMask(mask, width, height, 1, plane, 8, 5, 0);
}

const struct {
    const char* name;
    u32 (*run)(u8* plane, u8* mask, u32 width, u32 height);
} kFunctions[] = {{"create", CreateMask}, {"set", SetColor}};

TEST(BitMasks, ReportRowsAndCancel)
{
    for (const auto& function : kFunctions) {
        for (const u32 cancelAt : {0u, 1u, 3u, 4u}) {
            SCOPE(function.name, cancelAt);
            const u32 done = cancelAt ? cancelAt : 4;
            Bytes plane(32, 4), mask(4, 0xFF);
            ProgressRecorder recorder;
            recorder.cancelAt = cancelAt;
            MV40_SetCallback(recorder.Function, recorder.Data());
            EXPECT_EQ(function.run(plane.data(), mask.data(), 8, 4), cancelAt ? 0u : 1u);
            EXPECT_EQ(MV40_GetLastError(), u32(cancelAt ? Error::Cancelled : Error::None));
            MV40_SetCallback(nullptr, 0);
            EXPECT_EQ(recorder.reports, Rows(done, 4));
            const bool isCreate = function.run == CreateMask;
            for (u32 y = 0; y < 4; ++y) {
                EXPECT_EQ(mask[y], isCreate && y < done ? 0 : 0xFF);
                EXPECT_EQ(plane[y * 8 + 7], !isCreate && y < done ? 5 : 4);
            }
        }
    }
}

const struct {
    const char* shows;
    bool hasPlane, hasMask;
    u32 width, height;
    Error error;
} kRefusals[] = {
    {"a null plane", false, true, 8, 4, Error::BadArgument},
    {"a null mask", true, false, 8, 4, Error::BadArgument},
    {"null pointers come before an empty image", false, false, 0, 0, Error::BadArgument},
    {"no columns", true, true, 0, 4, Error::OutOfMemory},
    {"no rows", true, true, 8, 0, Error::OutOfMemory},
};

TEST(BitMasks, RefusalsWriteNothing)
{
    for (const auto& function : kFunctions) {
        for (const auto& row : kRefusals) {
            SCOPE(function.name, row.shows);
            Bytes plane(32, 4), mask(4, 0xFF);
            EXPECT_EQ(function.run(row.hasPlane ? plane.data() : nullptr, row.hasMask ? mask.data() : nullptr,
                                   row.width, row.height),
                      0u);
            EXPECT_EQ(MV40_GetLastError(), u32(row.error));
            EXPECT_EQ(plane, Bytes(32, 4));
            EXPECT_EQ(mask, Bytes(4, 0xFF));
        }
    }
}

TEST(BitMasks, NeedNoMemory)
{
    (void)MV40_GetLastError();  // makes the thread's record
    for (const auto& function : kFunctions) {
        SCOPE(function.name);
        Bytes plane(32, 4), mask(4, 0xFF);
        const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, 0);
        EXPECT_EQ(function.run(plane.data(), mask.data(), 8, 4), 1u);
        EXPECT_EQ(failing.Failed(), 0u);
    }
}

}  // namespace
}  // namespace zlv
