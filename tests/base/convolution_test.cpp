#include "base/convolution.h"

#include "base/sample.h"
#include "plain/plain_convolution.h"
#include "support/base_layer.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"
#include "support/test_hooks.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ForBothWidths;
using zlvtest::kWidthFlag;
using zlvtest::ProgressRecorder;
using zlvtest::Rows;

constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();
constexpr f64 kNaN = std::numeric_limits<f64>::quiet_NaN();

template <class T>
std::vector<T> RandomSamples(size_t count, u64 seed)
{
    zlvtest::Random random(seed);
    std::vector<T> samples(count);
    for (T& sample : samples) sample = T(random.Next());
    return samples;
}

struct Image {
    u32 width, height, channels, padding;
    u32 Stride() const { return width * channels + padding; }
    u32 OutStride() const { return width * channels + 2 * padding; }
};

// Runs the function and its twin; every byte of the destination counts, so padding and other channels must keep theirs.
template <class T>
void ExpectPlain(const Image& image, const PlainKernel& kernel, u32 flags, u64 seed)
{
    const std::vector<T> src = RandomSamples<T>(size_t(image.Stride()) * image.height, seed);
    std::vector<T> wanted = RandomSamples<T>(size_t(image.OutStride()) * image.height, seed + 1);
    std::vector<T> got = wanted;
    for (u32 c = 0; c < image.channels; ++c) {
        if (!(flags >> c & 1)) continue;
        PlainConvolve(src.data(), image.width, image.height, image.channels, image.Stride(), wanted.data(),
                      image.OutStride(), kernel, (flags & kPlainSum) != 0, c);
    }
    EXPECT_EQ(MV40_ApplyConvolutionFilterToImage(src.data(), image.width, image.height, image.channels, image.Stride(),
                                                 got.data(), image.OutStride(), u32(kernel.width), u32(kernel.height),
                                                 kernel.entries.data(), kernel.scale, flags | kWidthFlag<T>),
              1u);
    EXPECT_EQ(MV40_GetLastError(), 0u);
    EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
}

PlainKernel RandomKernel(size_t width, size_t height, u64 seed, f64 scale, f64 (*entry)(zlvtest::Random&))
{
    zlvtest::Random random(seed);
    PlainKernel kernel = {width, height, std::vector<f64>(width * height), scale};
    for (f64& value : kernel.entries) value = entry(random);
    return kernel;
}

f64 Fraction(zlvtest::Random& random) { return random.Next() / 4294967296.0 - 0.25; }
f64 MostlyZero(zlvtest::Random& random) { return random.Below(3) ? 0.0 : Fraction(random); }
f64 SmallInteger(zlvtest::Random& random) { return f64(random.Below(9)) - 4; }
f64 Quarters(zlvtest::Random& random) { return (f64(random.Below(33)) - 16) / 4; }
f64 Ninth(zlvtest::Random&) { return 1.0 / 9; }
f64 LargeInteger(zlvtest::Random& random) { return f64(random.Below(80000)) - 40000; }

const struct {
    const char* shows;
    f64 (*entry)(zlvtest::Random&);
    f64 scale;
} kKernels[] = {
    {"fractions", Fraction, 0.3},
    {"fractions, most of them zero", MostlyZero, 1.0},
    {"small integers", SmallInteger, 0.125},
    {"small integers, a scale that rounds", SmallInteger, 1.0 / 7},
    {"quarters", Quarters, 0.1},
    {"a mean", Ninth, 0.36},
    {"integers beyond 16 bits", LargeInteger, 1.0 / 40000},
};

TEST(Convolution, EveryTargetEqualsPlain)
{
    ForBothWidths([]<class T>() {
        zlvtest::OnEveryTarget([&] {
            for (const auto& row : kKernels) {
                for (const auto& [kernelWidth, kernelHeight] :
                     {std::pair{1, 1}, {3, 3}, {5, 5}, {7, 1}, {1, 9}, {3, 5}}) {
                    for (const u32 width : {1u, 2u, 15u, 64u, 67u}) {
                        SCOPE(row.shows, kernelWidth, kernelHeight, width);
                        const PlainKernel kernel =
                            RandomKernel(size_t(kernelWidth), size_t(kernelHeight), width, row.scale, row.entry);
                        ExpectPlain<T>({width, 6, 1, 3}, kernel, 1 | kPlainSum, width);
                        ExpectPlain<T>({width, 3, 3, 0}, kernel, 7, width);
                    }
                }
            }
        });
    });
}

TEST(Convolution, EveryChannelCountAndMaskEqualsPlain)
{
    ForBothWidths([]<class T>() {
        for (u32 channels = 1; channels <= 8; ++channels) {
            for (const u32 mask : {0u, 1u, 2u, 0x55u, 0xAAu, 0xFFu}) {
                for (const auto entry : {Fraction, SmallInteger}) {
                    SCOPE(channels, mask, entry == Fraction);
                    const PlainKernel kernel = RandomKernel(3, 5, channels, 0.2, entry);
                    ExpectPlain<T>({11, 5, channels, 2}, kernel, mask, channels);
                    ExpectPlain<T>({11, 5, channels, 2}, kernel, mask | kPlainSum, channels);
                }
            }
        }
    });
}

TEST(Convolution, AWindowLargerThanTheImageEqualsPlain)
{
    ForBothWidths([]<class T>() {
        for (const auto entry : {Fraction, SmallInteger}) {
            for (const auto& [width, height] : {std::pair{1u, 1u}, {2u, 3u}, {5u, 2u}}) {
                SCOPE(width, height, entry == Fraction);
                ExpectPlain<T>({width, height, 3, 1}, RandomKernel(13, 11, 1, 0.05, entry), 7 | kPlainSum, 1);
            }
        }
    });
}

TEST(Convolution, TheLargestSumsOfIntegersAreExact)
{
    ForBothWidths([]<class T>() {
        zlvtest::OnEveryTarget([&] {
            // Up to 32767 for words and 8421504 for bytes, the absolute weights fit; one above they do not.
            for (const f64 weight : {32767.0, 32766.0, 16383.5, 32768.0, -32767.0, -16384.0}) {
                for (const f64 scale : {1 / 32767.0, -1 / 32767.0, 1e-9, 1.0}) {
                    SCOPE(weight, scale);
                    const PlainKernel kernel = {3, 1, {0, weight, 0.0}, scale};
                    ExpectPlain<T>({40, 3, 1, 0}, kernel, 1 | kPlainSum, 5);
                    ExpectPlain<T>({40, 3, 1, 0}, kernel, 1, 5);
                    ExpectPlain<T>({40, 3, 1, 0}, {3, 1, {weight, weight, -weight}, scale}, 1 | kPlainSum, 5);
                }
            }
        });
    });
}

TEST(Convolution, WhatIsNoNumberOrInfiniteIsDefined)
{
    zlvtest::OnEveryTarget([&] {
        for (const f64 odd : {kNaN, kInfinity, -kInfinity, 1e308, -1e308, 1e19, 5e-324}) {
            for (const u32 flags : {1u, 1u | kPlainSum}) {
                SCOPE(odd, flags);
                ExpectPlain<u8>({70, 3, 1, 0}, {3, 1, {0, odd, 0}, 1.0}, flags, 1);
                ExpectPlain<u8>({70, 3, 1, 0}, {3, 1, {1, 2, 0.1}, odd}, flags, 1);
                ExpectPlain<u8>({70, 3, 1, 0}, {3, 1, {1, 2, 1}, odd}, flags, 1);
                ExpectPlain<u16>({70, 3, 1, 0}, {3, 1, {odd, 1, -odd}, 1.0}, flags, 1);
            }
        }
    });
}

// One row of samples, a kernel of one row.
const struct {
    const char* shows;
    std::vector<f64> kernel;
    f64 scale;
    u32 flags;
    Bytes before, after;
} kByHand[] = {
    {"one entry of 1 copies with the plain sum", {1}, 1, 1 | kPlainSum, {0, 1, 128, 255}, {0, 1, 128, 255}},
    {"one entry of 1 gives 0 without it", {1}, 1, 1, {0, 1, 128, 255}, {0, 0, 0, 0}},
    {"nothing selected, nothing written", {1}, 1, kPlainSum, {1, 2, 3, 4}, {77, 77, 77, 77}},
    {"borders repeat: the left neighbour", {1, 0, 0}, 1, 1 | kPlainSum, {10, 20, 30, 40}, {10, 10, 20, 30}},
    {"the kernel is not turned over: the right one", {0, 0, 1}, 1, 1 | kPlainSum, {10, 20, 30, 40}, {20, 30, 40, 40}},
    // sums: -10+20-20 = -10 (with the repeated border), -10+40-30, -20+60-40, -30+80-40
    {"a high pass sharpens", {-1, 2, -1}, 1, 1, {10, 20, 30, 40}, {20, 20, 30, 30}},
    {"values are truncated", {0.99}, 1, 1 | kPlainSum, {1, 2, 100, 101}, {0, 1, 99, 99}},
    {"values above the range are cut", {2}, 1, 1 | kPlainSum, {1, 127, 128, 200}, {2, 254, 255, 255}},
    {"values below the range are cut", {-1}, 1, 1 | kPlainSum, {1, 127, 128, 0}, {0, 0, 0, 0}},
    {"values above -1 are cut too", {-0.1}, 1, 1 | kPlainSum, {1, 9, 5, 0}, {0, 0, 0, 0}},
    {"the difference adds where the sum is negative", {-1}, 0.5, 1, {10, 11, 200, 255}, {15, 16, 255, 255}},
    {"what is no number is 0", {1}, kNaN, 1, {10, 11, 200, 255}, {0, 0, 0, 0}},
    {"infinity is the top, and 0 times infinity is 0",
     {1},
     kInfinity,
     1 | kPlainSum,
     {0, 11, 2, 3},
     {0, 255, 255, 255}},
};

TEST(Convolution, ByHand)
{
    for (const auto& row : kByHand) {
        SCOPE(row.shows);
        Bytes out(4, 77);
        EXPECT_EQ(
            MV40_ApplyConvolutionFilterToImage(row.before.data(), 4, 1, 1, 4, out.data(), 4, u32(row.kernel.size()), 1,
                                               row.kernel.data(), row.scale, row.flags),
            1u);
        EXPECT_EQ(out, row.after);
    }
}

// Rounding after each step, in the order of the kernel: 2^53 + 1 is 2^53 again, and -2^53 then leaves nothing.
TEST(Convolution, SumsGoInTheOrderOfTheKernel)
{
    constexpr f64 kLarge = 9007199254740992.0;
    const f64 ordered[] = {kLarge, 1, -kLarge}, other[] = {kLarge, -kLarge, 1};
    zlvtest::OnEveryTarget([&] {
        const Bytes ones(20, 1);
        Bytes out(20, 77);
        EXPECT_EQ(MV40_ApplyConvolutionFilterToImage(ones.data(), 20, 1, 1, 20, out.data(), 20, 3, 1, ordered, 1,
                                                     1 | kPlainSum),
                  1u);
        EXPECT_EQ(out, Bytes(20, 0));
        EXPECT_EQ(MV40_ApplyConvolutionFilterToImage(ones.data(), 20, 1, 1, 20, out.data(), 20, 1, 1, other + 2, 1,
                                                     1 | kPlainSum),
                  1u);
        EXPECT_EQ(out, Bytes(20, 1));
        EXPECT_EQ(MV40_ApplyConvolutionFilterToImage(ones.data(), 20, 1, 1, 20, out.data(), 20, 3, 1, other, 1,
                                                     1 | kPlainSum),
                  1u);
        EXPECT_EQ(out, Bytes(20, 1));
    });
}

TEST(Convolution, StaysInsideItsBuffers)
{
    using zlvtest::Flush;
    using zlvtest::GuardedBuffer;
    const PlainKernel kernels[] = {RandomKernel(5, 3, 1, 1, Fraction), RandomKernel(3, 5, 1, 1, SmallInteger)};
    zlvtest::OnEveryTarget([&] {
        for (const u32 bytesPerSample : {1u, 2u}) {
            for (const PlainKernel& kernel : kernels) {
                for (const u32 width : {1u, 5u, 21u, 43u}) {
                    for (const Flush flush : {Flush::ToStart, Flush::ToEnd}) {
                        for (const u32 mask : {7u, 5u}) {
                            SCOPE(bytesPerSample, kernel.width, width, int(flush), mask);
                            const size_t rowBytes = size_t(width) * 3 * bytesPerSample;
                            GuardedBuffer src(rowBytes * 2, flush, 9), dst(rowBytes * 2, flush);
                            GuardedBuffer entries(kernel.entries.size() * sizeof(f64), flush);
                            std::memcpy(entries.Data(), kernel.entries.data(), entries.Size());
                            const u32 flags = mask | (bytesPerSample == 2 ? kSixteenBitSamples : 0);
                            EXPECT_EQ(MV40_ApplyConvolutionFilterToImage(
                                          src.Data(), width, 2, 3, width * 3, dst.Data(), width * 3, u32(kernel.width),
                                          u32(kernel.height), reinterpret_cast<const f64*>(entries.Data()), 1, flags),
                                      1u);
                        }
                    }
                }
            }
        }
    });
}

TEST(Convolution, ReportsAfterEachRow)
{
    const f64 one = 1;
    const Bytes src = zlvtest::RandomBytes(20, 1);
    for (const u32 width : {5u, 0u}) {
        for (const u32 mask : {1u, 0u}) {
            SCOPE(width, mask);
            Bytes dst(20);
            ProgressRecorder recorder;
            MV40_SetCallback(recorder.Function, recorder.Data());
            EXPECT_EQ(MV40_ApplyConvolutionFilterToImage(src.data(), width, 4, 1, 5, dst.data(), 5, 1, 1, &one, 1,
                                                         mask | kPlainSum),
                      1u);
            MV40_SetCallback(nullptr, 0);
            EXPECT_EQ(recorder.reports, Rows(4, 4));
        }
    }
}

TEST(Convolution, ACancelKeepsTheRowsDoneAndLeavesTheRest)
{
    const f64 one = 1;
    const Bytes src = zlvtest::RandomBytes(20, 1);
    for (const u32 cancelAt : {1u, 3u, 4u}) {
        SCOPE(cancelAt);
        Bytes wanted(20, 77), dst(20, 77);
        std::copy_n(src.begin(), cancelAt * 5, wanted.begin());
        ProgressRecorder recorder;
        recorder.cancelAt = cancelAt;
        MV40_SetCallback(recorder.Function, recorder.Data());
        EXPECT_EQ(
            MV40_ApplyConvolutionFilterToImage(src.data(), 5, 4, 1, 5, dst.data(), 5, 1, 1, &one, 1, 1 | kPlainSum),
            0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::Cancelled));
        MV40_SetCallback(nullptr, 0);
        EXPECT_EQ(recorder.reports, Rows(cancelAt, 4));
        EXPECT_EQ(dst, wanted);
        EXPECT_EQ(baseContexts.Get()->nestCount, 0u);
    }
}

const struct {
    const char* shows;
    bool hasSrc, hasDst, isInPlace, hasKernel;
    u32 width, height, channels, kernelWidth, kernelHeight;
    u32 result;
    Error error;
} kEdges[] = {
    {"a null source is refused", false, true, false, true, 2, 2, 1, 1, 1, 0, Error::BadArgument},
    {"a null destination is refused", true, false, false, true, 2, 2, 1, 1, 1, 0, Error::BadArgument},
    {"a null kernel is refused", true, true, false, false, 2, 2, 1, 1, 1, 0, Error::BadArgument},
    {"work in place is refused", true, true, true, true, 2, 2, 1, 1, 1, 0, Error::BadArgument},
    {"no channels are nothing to do", true, true, false, true, 2, 2, 0, 1, 1, 1, Error::None},
    {"nine channels are refused", true, true, false, true, 1, 1, 9, 1, 1, 0, Error::BadArgument},
    {"an even kernel width is refused", true, true, false, true, 2, 2, 1, 2, 1, 0, Error::BadArgument},
    {"an even kernel height is refused", true, true, false, true, 2, 2, 1, 1, 2, 0, Error::BadArgument},
    {"a kernel without columns is refused", true, true, false, true, 2, 2, 1, 0, 1, 0, Error::BadArgument},
    {"a kernel without rows is refused", true, true, false, true, 2, 2, 1, 1, 0, 0, Error::BadArgument},
    {"a kernel beyond all memory is refused", true, true, false, true, 2, 2, 1, 0xFFFFFFFF, 0xFFFFFFFF, 0,
     Error::BadArgument},
    {"an empty image with an even kernel is refused", true, true, false, true, 0, 0, 1, 2, 2, 0, Error::BadArgument},
    {"no columns are nothing to do", true, true, false, true, 0, 2, 1, 1, 1, 1, Error::None},
    {"no rows are nothing to do", true, true, false, true, 2, 0, 1, 1, 1, 1, Error::None},
};

TEST(Convolution, EdgesWriteNothing)
{
    const f64 kernel[4] = {1, 1, 1, 1};
    for (const u32 flags : {1u, 1u | kSixteenBitSamples}) {
        for (const auto& row : kEdges) {
            SCOPE(row.shows, flags);
            const Bytes before = zlvtest::RandomBytes(64, 9);
            Bytes src = before, dst = before;
            void* const to = row.isInPlace ? src.data() : row.hasDst ? dst.data() : nullptr;
            EXPECT_EQ(MV40_ApplyConvolutionFilterToImage(row.hasSrc ? src.data() : nullptr, row.width, row.height,
                                                         row.channels, 8, to, 8, row.kernelWidth, row.kernelHeight,
                                                         row.hasKernel ? kernel : nullptr, 0.5, flags),
                      row.result);
            EXPECT_EQ(MV40_GetLastError(), u32(row.error));
            EXPECT_EQ(src, before);
            EXPECT_EQ(dst, before);
        }
    }
}

TEST(Convolution, WithoutMemoryItIsCodeOne)
{
    (void)MV40_GetLastError();  // makes the thread's record
    const Bytes src = zlvtest::RandomBytes(20, 1);
    const f64 fraction = 0.1, integer = 2;
    for (const f64* kernel : {&fraction, &integer}) {
        const u32 allocations = kernel == &integer ? 5 : 4;
        for (u32 succeeding = 0; succeeding <= allocations; ++succeeding) {
            SCOPE(*kernel, succeeding);
            Bytes dst(20, 77);
            u32 result = 0;
            {
                const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, succeeding);
                result = MV40_ApplyConvolutionFilterToImage(src.data(), 5, 4, 1, 5, dst.data(), 5, 1, 1, kernel, 1, 1);
            }
            EXPECT_EQ(result, succeeding == allocations ? 1u : 0u);
            EXPECT_EQ(MV40_GetLastError(), u32(result ? Error::None : Error::OutOfMemory));
            EXPECT_TRUE(result || dst == Bytes(20, 77));
        }
    }
}

// Kernels of one entry but for the middle have windows that slide, from 289 entries on: on either side of that, with
// weights beyond 16 bits, in fractions, and with windows larger than the image.
TEST(Convolution, KernelsOfOneEntryButForTheMiddleEqualPlain)
{
    const struct {
        const char* shows;
        size_t width, height;
        f64 around, middle, scale;
    } kBoxes[] = {
        {"the largest that does not slide", 15, 19, -1, 284, 1},
        {"the smallest that slides", 17, 17, -1, 288, 1},
        {"a row", 301, 1, -1, 300, 1},
        {"a column", 1, 301, -1, 300, 1},
        {"a mean", 19, 17, 1, 1, 1 / 323.0},
        {"fractions", 17, 19, -0.25, 80.75, 0.5},
        {"a middle above 16 bits", 183, 183, -1, 183 * 183 - 1, 1},
        {"fractions that are not exact", 17, 17, -0.1, 29, 1},
        {"all 0", 17, 17, 0, 0, 1},
        {"a scale that is no number", 17, 17, -1, 288, kNaN},
        {"an infinite scale", 17, 17, -1, 288, kInfinity},
    };
    ForBothWidths([&]<class T>() {
        for (const auto& row : kBoxes) {
            PlainKernel kernel = {row.width, row.height, std::vector<f64>(row.width * row.height, row.around),
                                  row.scale};
            kernel.entries[kernel.entries.size() / 2] = row.middle;
            const bool isLarge = row.width > 100;
            for (const Image& image : {Image{1, 1, 1, 0}, Image{2, 5, 3, 1}, Image{23, isLarge ? 2u : 14u, 2, 3}}) {
                for (const u32 flags : {1u, 3u, 2 | kPlainSum, 7 | kPlainSum}) {
                    SCOPE(row.shows, image.width, flags);
                    ExpectPlain<T>(image, kernel, flags, image.width);
                }
            }
        }
    });
}

}  // namespace
}  // namespace zlv
