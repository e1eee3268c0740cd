#include "plain/plain_table_pass.h"
#include "runtime/base_call.h"
#include "support/base_watch.h"
#include "support/bytes.h"
#include "support/progress_recorder.h"
#include "support/targets.h"

#include "zlv40.h"

namespace zlv {
namespace {

using zlvtest::Bytes;

TEST(InvertImage, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (u32 channels = 1; channels <= 10; ++channels) {
            for (const u32 width : {1u, 7u, 16u, 33u, 90u}) {
                for (const u32 padding : {0u, 5u}) {
                    for (const u32 flags : {0u, u32(ZLV40_PROTECT_ALPHA)}) {
                        if (flags && channels != 4) continue;
                        SCOPE(channels, width, padding, flags);
                        const u32 stride = width * channels + padding;
                        Bytes wanted = zlvtest::RandomBytes(size_t(stride) * 3, width);
                        Bytes got = wanted;
                        PlainInvert(wanted.data(), width, 3, channels, stride, flags != 0);
                        EXPECT_EQ(ZLV40_InvertImage(got.data(), width, 3, i32(channels), stride, flags), 1u);
                        EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
                        EXPECT_EQ(ZLV40_GetLastError(), 0u);
                    }
                }
            }
        }
    });
}

TEST(InvertImage, TwiceGivesTheImageBack)
{
    const Bytes before = zlvtest::RandomBytes(31 * 17 * 3, 5);
    Bytes image = before;
    EXPECT_EQ(ZLV40_InvertImage(image.data(), 31, 17, 3, 93, 0), 1u);
    EXPECT_NE(image, before);
    EXPECT_EQ(ZLV40_InvertImage(image.data(), 31, 17, 3, 93, 0), 1u);
    EXPECT_EQ(image, before);
}

TEST(InvertImage, ProtectedAlphaLeavesEveryFourthByte)
{
    const Bytes before = zlvtest::RandomBytes(9 * 5 * 4, 6);
    Bytes image = before;
    EXPECT_EQ(ZLV40_InvertImage(image.data(), 9, 5, 4, 36, ZLV40_PROTECT_ALPHA), 1u);
    for (size_t i = 0; i < image.size(); ++i) EXPECT_EQ(image[i], i % 4 == 3 ? before[i] : 255 - before[i]) << i;
}

const struct {
    const char* shows;
    bool hasBuffer;
    u32 width, height;
    i32 channels;
    u32 flags;
    u32 result, error;
} kArguments[] = {
    {"a null buffer is refused", false, 2, 2, 3, 0, 0, ZLV40_ERROR_BAD_ARGUMENT},
    {"a null buffer is refused even with nothing to do", false, 0, 0, 0, 0, 0, ZLV40_ERROR_BAD_ARGUMENT},
    {"alpha cannot be protected with three channels", true, 2, 2, 3, 1, 0, ZLV40_ERROR_BAD_ARGUMENT},
    {"alpha cannot be protected with five channels", true, 2, 2, 5, 1, 0, ZLV40_ERROR_BAD_ARGUMENT},
    {"alpha cannot be protected with no channels", true, 2, 2, 0, 1, 0, ZLV40_ERROR_BAD_ARGUMENT},
    {"a negative channel count is refused", true, 2, 2, -1, 0, 0, ZLV40_ERROR_BAD_ARGUMENT},
    {"the most negative channel count is refused", true, 2, 2, INT32_MIN, 0, 0, ZLV40_ERROR_BAD_ARGUMENT},
    {"no channels are nothing to do", true, 2, 2, 0, 0, 1, ZLV40_ERROR_NONE},
    {"a width of 0 is nothing to do", true, 0, 2, 3, 0, 1, ZLV40_ERROR_NONE},
    {"a height of 0 is nothing to do", true, 2, 0, 3, 0, 1, ZLV40_ERROR_NONE},
    {"no rows of any channel count are nothing to do", true, 2, 0, INT32_MAX, 0, 1, ZLV40_ERROR_NONE},
};

TEST(InvertImage, RefusesWithNothingWritten)
{
    for (const auto& row : kArguments) {
        SCOPE(row.shows);
        const Bytes before = zlvtest::RandomBytes(64, 4);
        Bytes image = before;
        EXPECT_EQ(ZLV40_InvertImage(row.hasBuffer ? image.data() : nullptr, row.width, row.height, row.channels, 12,
                                    row.flags),
                  row.result);
        EXPECT_EQ(ZLV40_GetLastError(), row.error);
        EXPECT_EQ(image, before);
    }
}

TEST(InvertImage, OtherFlagBitsAreIgnored)
{
    Bytes image = {0, 1, 254, 255};
    EXPECT_EQ(ZLV40_InvertImage(image.data(), 4, 1, 1, 4, 0xFFFFFFFE), 1u);
    EXPECT_EQ(image, (Bytes{255, 254, 1, 0}));
}

TEST(InvertImage, NeitherReportsNorCancels)
{
    zlvtest::ProgressRecorder recorder;
    recorder.cancelAt = 1;
    ZLV40_SetCallback(recorder.Function, recorder.Data());
    Bytes image = {0, 1, 254, 255};
    EXPECT_EQ(ZLV40_InvertImage(image.data(), 1, 4, 1, 1, 0), 1u);
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_EQ(image, (Bytes{255, 254, 1, 0}));
    EXPECT_TRUE(recorder.reports.empty());
}

TEST(InvertImage, ClearsTheErrorOfTheCallBefore)
{
    EXPECT_EQ(ZLV40_InvertImage(nullptr, 1, 1, 1, 1, 0), 0u);
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
    u8 sample = 7;
    EXPECT_EQ(ZLV40_InvertImage(&sample, 1, 1, 1, 1, 0), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_NONE));
    EXPECT_EQ(sample, 248);
}

TEST(InvertImage, LeavesTheCountersAndTheBaseCallbackAsTheyWere)
{
    zlvtest::BaseWatch base;
    u8 sample = 7;
    for (u8* buffer : {&sample, static_cast<u8*>(nullptr)}) {
        ZLV40_InvertImage(buffer, 1, 1, 1, 1, 0);
        base.ExpectUntouched();
    }
}

}  // namespace
}  // namespace zlv
