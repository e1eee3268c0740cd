// Logic on buffers.
#include "runtime/contexts.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"

#include "zlv40.h"

namespace zlv {
namespace {

using namespace zlvtest;

const struct {
    const char* name;
    u32 (*apply)(const u8* a, const u8* b, u8* out, u32 size);
    int (*plain)(int a, int b);
} kLogic[] = {
    {"intersect", ZLV40_IntersectBuffers, [](int a, int b) { return a & b; }},
    {"union", ZLV40_UnionBuffers, [](int a, int b) { return a | b; }},
    {"XOR", ZLV40_XORBuffers, [](int a, int b) { return a ^ b; }},
};

TEST(BufferLogic, EveryTargetEqualsPlainOnAllPairsOfBytes)
{
    Bytes a, b;
    for (int i = 0; i < 65536; ++i) {
        a.push_back(u8(i));
        b.push_back(u8(i >> 8));
    }
    zlvtest::OnEveryTarget([&] {
        for (const auto& logic : kLogic) {
            SCOPE(logic.name);
            Bytes wanted(a.size()), got(a.size());
            for (size_t i = 0; i < a.size(); ++i) wanted[i] = u8(logic.plain(a[i], b[i]));
            EXPECT_EQ(logic.apply(a.data(), b.data(), got.data(), u32(a.size())), 1u);
            EXPECT_EQ(got, wanted);
        }
    });
}

TEST(BufferLogic, AnySizeAndAlignmentStaysInsideItsBuffers)
{
    zlvtest::OnEveryTarget([&] {
        for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
            for (u32 size = 1; size <= 140; ++size) {
                SCOPE(int(flush), size);
                GuardedBuffer a(size, flush, 0xC6), b(size, flush, 0xA3), out(size, flush, 0);
                for (const auto& logic : kLogic) {
                    EXPECT_EQ(logic.apply(a.Data(), b.Data(), out.Data(), size), 1u);
                    const Bytes wanted(size, u8(logic.plain(0xC6, 0xA3)));
                    EXPECT_EQ(Difference(wanted.data(), out.Data(), size), "");
                }
                EXPECT_EQ(ZLV40_InvertBuffer(a.Data(), size), 1u);
                EXPECT_EQ(Difference(Bytes(size, 0x39).data(), a.Data(), size), "");
            }
        }
    });
}

TEST(BufferLogic, TheOutputMayBeAnInput)
{
    for (const auto& logic : kLogic) {
        SCOPE(logic.name);
        const Bytes a = RandomBytes(101, 1), b = RandomBytes(101, 2);
        Bytes wanted(101), first = a, second = b;
        for (size_t i = 0; i < 101; ++i) wanted[i] = u8(logic.plain(a[i], b[i]));
        EXPECT_EQ(logic.apply(first.data(), b.data(), first.data(), 101), 1u);
        EXPECT_EQ(logic.apply(a.data(), second.data(), second.data(), 101), 1u);
        EXPECT_EQ(first, wanted);
        EXPECT_EQ(second, wanted);
    }
}

TEST(BufferLogic, InvertingTwiceGivesTheBufferBack)
{
    const Bytes before = RandomBytes(77, 1);
    Bytes buffer = before;
    EXPECT_EQ(ZLV40_InvertBuffer(buffer.data() + 1, 75), 1u);
    EXPECT_EQ(buffer[0], before[0]);
    EXPECT_EQ(buffer[76], before[76]);
    for (size_t i = 1; i < 76; ++i) ASSERT_EQ(buffer[i], 255 - before[i]) << i;
    EXPECT_EQ(ZLV40_InvertBuffer(buffer.data() + 1, 75), 1u);
    EXPECT_EQ(buffer, before);
}

TEST(BufferLogic, NoBytesAreNothingToDo)
{
    const u8 a = 1, b = 2;
    u8 out = 3;
    for (const auto& logic : kLogic) EXPECT_EQ(logic.apply(&a, &b, &out, 0), 1u);
    EXPECT_EQ(ZLV40_InvertBuffer(&out, 0), 1u);
    EXPECT_EQ(out, 3);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
}

TEST(BufferLogic, ANullPointerIsMissingMemory)
{
    for (const u32 size : {0u, 4u}) {
        for (const auto& logic : kLogic) {
            for (int missing = 0; missing < 3; ++missing) {
                SCOPE(logic.name, size, missing);
                const Bytes a(4, 1), b(4, 2);
                Bytes out(4, 77);
                EXPECT_EQ(logic.apply(missing == 0 ? nullptr : a.data(), missing == 1 ? nullptr : b.data(),
                                      missing == 2 ? nullptr : out.data(), size),
                          0u);
                EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_OUT_OF_MEMORY));
                EXPECT_EQ(out, Bytes(4, 77));
            }
        }
        EXPECT_EQ(ZLV40_InvertBuffer(nullptr, size), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_OUT_OF_MEMORY));
    }
    u8 byte = 7;
    EXPECT_EQ(ZLV40_InvertBuffer(&byte, 1), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u) << "the error of the call before is cleared";
}

TEST(BufferLogic, NeitherReportsNorCancels)
{
    ProgressRecorder recorder;
    recorder.cancelAt = 1;
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    u8 byte = 0x0F;
    EXPECT_EQ(ZLV40_InvertBuffer(&byte, 1), 1u);
    for (const auto& logic : kLogic) EXPECT_EQ(logic.apply(&byte, &byte, &byte, 1), 1u);
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_TRUE(recorder.reports.empty());
    EXPECT_EQ(exportedContexts.Get()->nestCount, 0u);
    EXPECT_EQ(exportedContexts.Get()->callDepth, 0u);
}

}  // namespace
}  // namespace zlv
