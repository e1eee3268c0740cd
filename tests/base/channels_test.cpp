#include "base/channels.h"

#include "plain/plain_channels.h"
#include "support/base_layer.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ForBothWidths;
using zlvtest::kWidthFlag;
using zlvtest::ProgressRecorder;
using zlvtest::Rows;

template <class T>
std::vector<T> RandomSamples(size_t count, u64 seed)
{
    zlvtest::Random random(seed);
    std::vector<T> samples(count);
    for (T& sample : samples) sample = T(random.Next());
    return samples;
}

TEST(ImageToGray, EveryTargetEqualsPlain)
{
    ForBothWidths([]<class T>() {
        zlvtest::OnEveryTarget([&] {
            for (const u32 channels : {3u, 4u}) {
                for (const u32 width : {1u, 2u, 15u, 31u, 32u, 33u, 34u, 65u, 66u, 100u, 131u}) {
                    for (const u32 flags : {0u, kGrayFromBgr}) {
                        SCOPE(channels, width, flags);
                        const u32 stride = width * channels + 3, grayStride = width + 5;
                        const std::vector<T> image = RandomSamples<T>(size_t(stride) * 4, width);
                        std::vector<T> wanted = RandomSamples<T>(size_t(grayStride) * 4, 1);
                        std::vector<T> got = wanted;
                        PlainGray(image.data(), width, 4, channels, stride, wanted.data(), grayStride, flags != 0);
                        EXPECT_EQ(MV40_ImageToGrayScale8Bit(image.data(), width, 4, channels, stride, got.data(),
                                                            grayStride, flags | kWidthFlag<T>),
                                  1u);
                        EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
                    }
                }
            }
        });
    });
}

TEST(ImageToGray, TheEndsOfTheRangeAreExact)
{
    ForBothWidths([]<class T>() {
        constexpr T kMost = T(~T(0));
        zlvtest::OnEveryTarget([&] {
            std::vector<T> image(3 * 3 * 40);
            for (u32 x = 0; x < 120; ++x) {
                for (u32 c = 0; c < 3; ++c) image[x * 3 + c] = (x >> c & 1) ? kMost : T(0);
            }
            std::vector<T> wanted(120), got(120);
            PlainGray(image.data(), 120, 1, 3, 360, wanted.data(), 120, false);
            EXPECT_EQ(MV40_ImageToGrayScale8Bit(image.data(), 120, 1, 3, 360, got.data(), 120, kWidthFlag<T>), 1u);
            EXPECT_EQ(got, wanted);
            EXPECT_EQ(got[7], kMost);  // white: the weights add up to 1024
            EXPECT_EQ(got[8], 0);
        });
    });
}

TEST(ImageToGray, ByHand)
{
    // 601 * 100 + 306 * 50 + 117 * 200 = 98800, / 1024 = 96.4; with red and blue exchanged 127150 / 1024 = 124.1.
    const Bytes image = {50, 100, 200, 9};
    u8 gray = 0;
    EXPECT_EQ(MV40_ImageToGrayScale8Bit(image.data(), 1, 1, 4, 4, &gray, 1, 0), 1u);
    EXPECT_EQ(gray, 96);
    EXPECT_EQ(MV40_ImageToGrayScale8Bit(image.data(), 1, 1, 4, 4, &gray, 1, kGrayFromBgr), 1u);
    EXPECT_EQ(gray, 124);
}

TEST(ImageToGray, StaysInsideItsBuffers)
{
    using zlvtest::Flush;
    zlvtest::OnEveryTarget([&] {
        for (const u32 channels : {3u, 4u}) {
            for (const u32 width : {1u, 31u, 32u, 33u, 34u, 64u, 66u}) {
                for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
                    SCOPE(channels, width, int(flush));
                    zlvtest::GuardedBuffer image(size_t(width) * channels, flush, 7), gray(width, flush);
                    EXPECT_EQ(MV40_ImageToGrayScale8Bit(image.Data(), width, 1, channels, width * channels, gray.Data(),
                                                        width, 0),
                              1u);
                }
            }
        }
    });
}

TEST(ImageToGray, ReportsRowsAndCancels)
{
    const Bytes image = zlvtest::RandomBytes(60, 1);
    for (const u32 cancelAt : {0u, 1u, 3u, 4u}) {
        SCOPE(cancelAt);
        const u32 done = cancelAt ? cancelAt : 4;
        Bytes wanted(20, 77), gray(20, 77);
        PlainGray(image.data(), 5, done, 3, 15, wanted.data(), 5, false);
        ProgressRecorder recorder;
        recorder.cancelAt = cancelAt;
        MV40_SetCallback(recorder.Function, recorder.Data());
        EXPECT_EQ(MV40_ImageToGrayScale8Bit(image.data(), 5, 4, 3, 15, gray.data(), 5, 0), cancelAt ? 0u : 1u);
        EXPECT_EQ(MV40_GetLastError(), u32(cancelAt ? Error::Cancelled : Error::None));
        MV40_SetCallback(nullptr, 0);
        EXPECT_EQ(recorder.reports, Rows(done, 4));
        EXPECT_EQ(gray, wanted);
    }
}

TEST(CombineChannels, EqualsPlain)
{
    ForBothWidths([]<class T>() {
        for (const u32 channels : {1u, 2u, 3u, 4u, 7u, 9u}) {
            for (const u32 missing : {0u, 1u, 2u, 0x1FFu}) {
                SCOPE(channels, missing);
                const u32 planeStride = 13, stride = 11 * channels + 2;
                const std::vector<T> samples = RandomSamples<T>(size_t(planeStride) * 6 * channels, channels);
                std::vector<const T*> planes;
                std::vector<const void*> pointers;
                for (u32 c = 0; c < channels; ++c) {
                    planes.push_back(missing >> c & 1 ? nullptr : samples.data() + size_t(planeStride) * 6 * c);
                    pointers.push_back(planes.back());
                }
                std::vector<T> wanted = RandomSamples<T>(size_t(stride) * 6, 2);
                std::vector<T> got = wanted;
                PlainCombine(planes.data(), 11, 6, channels, planeStride, wanted.data(), stride);
                EXPECT_EQ(MV40_CombineImageChannels(pointers.data(), 11, 6, channels, planeStride, got.data(), stride,
                                                    kWidthFlag<T>),
                          1u);
                EXPECT_EQ(got, wanted);
            }
        }
    });
}

TEST(SplitRGBA, EqualsPlainWithEitherOutput)
{
    ForBothWidths([]<class T>() {
        for (const u32 width : {1u, 5u, 33u}) {
            for (const u32 outputs : {1u, 2u, 3u}) {
                SCOPE(width, outputs);
                const u32 stride = width * 4 + 1, rgbStride = width * 3 + 2, alphaStride = width + 3;
                const std::vector<T> image = RandomSamples<T>(size_t(stride) * 5, width);
                std::vector<T> wantedRgb(size_t(rgbStride) * 5, 77), wantedAlpha(size_t(alphaStride) * 5, 78);
                std::vector<T> rgb = wantedRgb, alpha = wantedAlpha;
                const bool hasRgb = outputs & 1, hasAlpha = outputs & 2;
                PlainSplit(image.data(), width, 5, stride, hasRgb ? wantedRgb.data() : nullptr, rgbStride,
                           hasAlpha ? wantedAlpha.data() : nullptr, alphaStride);
                EXPECT_EQ(
                    MV40_SplitRGBAToRGBPlusA(image.data(), width, 5, stride, hasRgb ? rgb.data() : nullptr, rgbStride,
                                             hasAlpha ? alpha.data() : nullptr, alphaStride, kWidthFlag<T>),
                    1u);
                EXPECT_EQ(rgb, wantedRgb);
                EXPECT_EQ(alpha, wantedAlpha);
            }
        }
    });
}

TEST(Channels, CombineAndSplitStayInsideTheirBuffers)
{
    using zlvtest::Flush;
    for (const u32 bytesPerSample : {1u, 2u}) {
        for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
            SCOPE(bytesPerSample, int(flush));
            const u32 flags = bytesPerSample == 2 ? kSixteenBitSamples : 0;
            zlvtest::GuardedBuffer image(size_t(7) * 4 * 3 * bytesPerSample, flush),
                plane(7 * 3 * bytesPerSample, flush), rgb(7 * 3 * 3 * bytesPerSample, flush);
            const void* const planes[] = {plane.Data(), nullptr, plane.Data(), plane.Data()};
            EXPECT_EQ(MV40_CombineImageChannels(planes, 7, 3, 4, 7, image.Data(), 28, flags), 1u);
            EXPECT_EQ(MV40_SplitRGBAToRGBPlusA(image.Data(), 7, 3, 28, rgb.Data(), 21, plane.Data(), 7, flags), 1u);
        }
    }
}

TEST(Channels, CombineAndSplitNeverReport)
{
    Bytes image(48), plane(12), rgb(36);
    const void* const planes[] = {plane.data(), plane.data(), plane.data(), plane.data()};
    ProgressRecorder recorder;
    recorder.cancelAt = 1;
    MV40_SetCallback(recorder.Function, recorder.Data());
    EXPECT_EQ(MV40_CombineImageChannels(planes, 4, 3, 4, 4, image.data(), 16, 0), 1u);
    EXPECT_EQ(MV40_SplitRGBAToRGBPlusA(image.data(), 4, 3, 16, rgb.data(), 12, plane.data(), 4, 0), 1u);
    MV40_SetCallback(nullptr, 0);
    EXPECT_TRUE(recorder.reports.empty());
}

// Each call answers 1, or 0 with its code, and writes nothing.
struct Call {
    const char* shows;
    u32 (*run)(u8* image, u8* out, u32 flags);
    u32 result;
    Error error;
};

const Call kCalls[] = {
    {"gray of a null image",
     [](u8*, u8* out, u32 flags) { return MV40_ImageToGrayScale8Bit(nullptr, 1, 1, 3, 3, out, 1, flags); }, 0,
     Error::BadArgument},
    {"gray into nothing",
     [](u8* image, u8*, u32 flags) { return MV40_ImageToGrayScale8Bit(image, 1, 1, 3, 3, nullptr, 1, flags); }, 0,
     Error::BadArgument},
    {"gray of two channels",
     [](u8* image, u8* out, u32 flags) { return MV40_ImageToGrayScale8Bit(image, 1, 1, 2, 3, out, 1, flags); }, 0,
     Error::BadArgument},
    {"gray of five channels",
     [](u8* image, u8* out, u32 flags) { return MV40_ImageToGrayScale8Bit(image, 1, 1, 5, 5, out, 1, flags); }, 0,
     Error::BadArgument},
    {"gray of no rows",
     [](u8* image, u8* out, u32 flags) { return MV40_ImageToGrayScale8Bit(image, 1, 0, 3, 3, out, 1, flags); }, 1,
     Error::None},
    {"gray of no columns",
     [](u8* image, u8* out, u32 flags) { return MV40_ImageToGrayScale8Bit(image, 0, 1, 3, 3, out, 1, flags); }, 1,
     Error::None},
    {"combine no planes",
     [](u8*, u8* out, u32 flags) { return MV40_CombineImageChannels(nullptr, 1, 1, 1, 1, out, 1, flags); }, 0,
     Error::BadArgument},
    {"combine into nothing",
     [](u8* image, u8*, u32 flags) {
         const void* const planes[] = {image};
         return MV40_CombineImageChannels(planes, 1, 1, 1, 1, nullptr, 1, flags);
     },
     0, Error::BadArgument},
    {"combine no channels",
     [](u8* image, u8* out, u32 flags) {
         const void* const planes[] = {image};
         return MV40_CombineImageChannels(planes, 1, 1, 0, 1, out, 1, flags);
     },
     0, Error::BadArgument},
    {"combine no rows",
     [](u8* image, u8* out, u32 flags) {
         const void* const planes[] = {image};
         return MV40_CombineImageChannels(planes, 1, 0, 1, 1, out, 1, flags);
     },
     1, Error::None},
    {"split nothing",
     [](u8*, u8* out, u32 flags) { return MV40_SplitRGBAToRGBPlusA(nullptr, 1, 1, 4, out, 3, out + 8, 1, flags); }, 0,
     Error::BadArgument},
    {"split into nothing",
     [](u8* image, u8*, u32 flags) { return MV40_SplitRGBAToRGBPlusA(image, 1, 1, 4, nullptr, 3, nullptr, 1, flags); },
     0, Error::BadArgument},
    {"split no columns",
     [](u8* image, u8* out, u32 flags) { return MV40_SplitRGBAToRGBPlusA(image, 0, 1, 4, out, 3, out, 1, flags); }, 1,
     Error::None},
};

TEST(Channels, EdgesWriteNothing)
{
    for (const u32 flags : {0u, kSixteenBitSamples}) {
        for (const Call& call : kCalls) {
            SCOPE(call.shows, flags);
            const Bytes before = zlvtest::RandomBytes(16, 3);
            Bytes image = before, out = before;
            EXPECT_EQ(call.run(image.data(), out.data(), flags), call.result);
            EXPECT_EQ(MV40_GetLastError(), u32(call.error));
            EXPECT_EQ(image, before);
            EXPECT_EQ(out, before);
        }
    }
}

}  // namespace
}  // namespace zlv
