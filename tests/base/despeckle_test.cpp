#include "base/despeckle.h"

#include "plain/plain_despeckle.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"
#include "support/test_hooks.h"

#include <algorithm>

namespace zlv {
namespace {

using zlvtest::Bytes;
using zlvtest::ProgressRecorder;

struct Image {
    u32 width, height, channels, padding;
    u32 Stride() const { return width * channels + padding; }
    size_t Size() const { return size_t(Stride()) * height; }
};

// Kinds of pictures that passes treat differently.
Bytes Picture(const Image& image, u32 kind, u64 seed)
{
    zlvtest::Random random(seed);
    Bytes bytes(image.Size());
    for (u8& byte : bytes) {
        switch (kind) {
        case 0: byte = random.Byte(); break;                                    // noise
        case 1: byte = u8(100 + random.Below(4)); break;                        // levels next to each other
        case 2: byte = random.Below(4) ? u8(255) : u8(254); break;              // the wrap
        case 3: byte = random.Below(9) ? u8(random.Below(2)) : u8(255); break;  // white speckles on black
        default: byte = random.Below(9) ? u8(200) : random.Byte(); break;       // speckles on a flat ground
        }
    }
    return bytes;
}

void Twin(Bytes& bytes, const Image& image, u32 mask)
{
    for (u32 c = 0; c < image.channels; ++c) {
        if (mask >> c & 1) PlainDespeckle(bytes.data(), image.width, image.height, image.channels, image.Stride(), c);
    }
}

void ExpectPlain(const Image& image, u32 mask, u32 kind)
{
    Bytes wanted = Picture(image, kind, image.width + kind);
    Bytes got = wanted;
    Twin(wanted, image, mask);
    EXPECT_EQ(MV40_DespeckleImage(got.data(), image.width, image.height, image.channels, image.Stride(), i32(mask)),
              1u);
    EXPECT_EQ(MV40_GetLastError(), 0u);
    EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
}

TEST(Despeckle, EveryTargetEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 width : {1u, 2u, 3u, 15u, 16u, 31u, 64u, 65u, 130u, 333u}) {
            for (const u32 height : {1u, 2u, 5u, 7u, 13u, 14u, 31u, 32u, 33u, 47u, 64u, 83u, 101u}) {
                SCOPE(width, height);
                ExpectPlain({width, height, 1, 3}, 1, (width + height) % 5);
            }
        }
    });
}

TEST(Despeckle, EveryKindOfPictureEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (u32 kind = 0; kind < 5; ++kind) {
            SCOPE(kind);
            ExpectPlain({300, 80, 3, 0}, 7, kind);
            ExpectPlain({260, 40, 4, 5}, 15, kind);
        }
    });
}

TEST(Despeckle, EveryChannelCountAndMaskEqualsPlain)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 channels : {1u, 2u, 3u, 4u, 5u, 8u, 9u, 31u, 32u}) {
            for (const u32 mask : {0u, 1u, 2u, 5u, 0x80000001u, 0xAAAAAAAAu, 0xFFFFFFFFu}) {
                SCOPE(channels, mask);
                ExpectPlain({37, 21, channels, 2}, mask, channels % 5);
            }
        }
    });
}

TEST(Despeckle, OneChannelAfterTheOtherIsTheSame)
{
    for (const u32 mask : {7u, 5u, 2u}) {
        SCOPE(mask);
        const Image image = {90, 70, 3, 1};
        Bytes wanted = Picture(image, 1, mask);
        Bytes got = wanted;
        Twin(wanted, image, mask);
        ProgressRecorder recorder;
        MV40_SetCallback(recorder.Function, recorder.Data());
        EXPECT_EQ(MV40_DespeckleImage(got.data(), 90, 70, 3, image.Stride(), i32(mask)), 1u);
        MV40_SetCallback(nullptr, 0);
        EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
    }
}

// Raising needs a neighbour above and lowering one below, which only the frame of zeros offers.
TEST(Despeckle, AFlatImageStaysInside)
{
    for (const u32 level : {0u, 1u, 2u, 100u, 254u}) {
        SCOPE(level);
        // The four passes of a direction look six samples far: the frame reaches 24.
        Bytes image(80 * 80, u8(level));
        EXPECT_EQ(MV40_DespeckleImage(image.data(), 80, 80, 1, 80, 1), 1u);
        for (u32 y = 24; y < 56; ++y) {
            for (u32 x = 24; x < 56; ++x) EXPECT_EQ(image[y * 80 + x], level) << x << ' ' << y;
        }
    }
}

TEST(Despeckle, ASingleColumnByHand)
{
    // Direction down, rows 0 to 2; the frame gives 0 above and below.
    //   raise, down    first  1 100 0: row 0 looks at 100     second  as it is: row 0 has p = 0, row 2 has n = 0
    //   raise, up      first  1 100 1: row 2 looks at 100     second  as it is: row 0 has n = 0, row 2 has p = 0
    //   lower, up      first  1  99 1: 100 > 1 + 1            second  1 98 1: 1 + 1 < 99 and 1 < 99
    //   lower, down    first  1  97 1: 98 > 1 + 1             second  1 96 1
    // Direction right and the diagonals see zeros on both sides of every sample. Nothing rises; each lowering half
    // takes one level off 96, and leaves 1 alone (1 > 0 + 1 fails). Three times four levels: 84.
    Bytes image = {0, 100, 0};
    EXPECT_EQ(MV40_DespeckleImage(image.data(), 1, 3, 1, 1, 1), 1u);
    EXPECT_EQ(image, (Bytes{1, 84, 1}));
}

// Next to a neighbour of 255 the comparison is with 0: 255 is lowered although it does not stand out.
TEST(Despeckle, ANeighbourOf255ComparesAs0)
{
    // Direction down: no sample is above another, so nothing rises.
    //   lower, up      first  254 254 254: row 0 compares with 0 + 1, the others with 255 + 1 = 0
    //                  second as it is: row 2 has p = 0, but n = 254 < 254 fails
    //   lower, down    first  254 254 253: rows 0 and 1 compare with 254 + 1, row 2 with 0 + 1
    //                  second as it is: row 0 has p = 0, but n = 254 < 254 fails; row 2 has p + 1 = 255
    // Direction right and the diagonals have zeros on both sides: four levels each.
    Bytes image = {255, 255, 255};
    EXPECT_EQ(MV40_DespeckleImage(image.data(), 1, 3, 1, 1, 1), 1u);
    EXPECT_EQ(image, (Bytes{242, 242, 241}));
}

TEST(Despeckle, TheFrameOfZerosLowersTheEdges)
{
    // A single pixel: both neighbours are the frame in all four directions.
    for (const u32 level : {0u, 1u, 2u, 3u, 16u, 17u, 18u, 255u}) {
        SCOPE(level);
        Bytes image = {u8(level)};
        EXPECT_EQ(MV40_DespeckleImage(image.data(), 1, 1, 1, 1, 1), 1u);
        // 16 steps of one level, each only from 2 up.
        EXPECT_EQ(image[0], level < 2 ? level : std::max(level, 17u) - 16);
    }
}

TEST(Despeckle, StaysInsideItsBuffer)
{
    zlvtest::OnEveryTarget([&] {
        for (const u32 width : {1u, 21u, 43u, 64u}) {
            for (const u32 height : {1u, 2u, 40u}) {
                for (const zlvtest::Flush flush : {zlvtest::Flush::ToStart, zlvtest::Flush::ToEnd}) {
                    for (const i32 mask : {7, 2}) {
                        SCOPE(width, height, int(flush), mask);
                        zlvtest::GuardedBuffer buffer(size_t(width) * 3 * height, flush, 200);
                        EXPECT_EQ(MV40_DespeckleImage(buffer.Data(), width, height, 3, width * 3, mask), 1u);
                    }
                }
            }
        }
    });
}

TEST(Despeckle, ReportsEveryChannelOfThree)
{
    for (const u32 channels : {1u, 3u, 4u}) {
        for (const i32 mask : {0, 1, 15}) {
            for (const u32 width : {3u, 0u}) {
                SCOPE(channels, mask, width);
                Bytes image(100, 50);
                ProgressRecorder recorder;
                MV40_SetCallback(recorder.Function, recorder.Data());
                EXPECT_EQ(MV40_DespeckleImage(image.data(), width, 4, channels, 3 * channels, mask), 1u);
                MV40_SetCallback(nullptr, 0);
                EXPECT_EQ(recorder.reports, zlvtest::Rows(channels, 3));
            }
        }
    }
}

TEST(Despeckle, ACancelKeepsTheChannelsDone)
{
    for (const u32 cancelAt : {1u, 2u, 3u}) {
        SCOPE(cancelAt);
        const Image image = {20, 10, 3, 2};
        Bytes wanted = Picture(image, 0, 1);
        Bytes got = wanted;
        Twin(wanted, image, (1u << cancelAt) - 1);
        ProgressRecorder recorder;
        recorder.cancelAt = cancelAt;
        MV40_SetCallback(recorder.Function, recorder.Data());
        EXPECT_EQ(MV40_DespeckleImage(got.data(), 20, 10, 3, image.Stride(), 7), 0u);
        EXPECT_EQ(MV40_GetLastError(), u32(Error::Cancelled));
        MV40_SetCallback(nullptr, 0);
        EXPECT_EQ(recorder.reports, zlvtest::Rows(cancelAt, 3));
        EXPECT_EQ(got, wanted);
        EXPECT_EQ(baseContexts.Get()->nestCount, 0u);
    }
}

const struct {
    const char* shows;
    bool hasImage;
    u32 width, height, channels;
    u32 result;
    Error error;
} kEdges[] = {
    {"a null image is refused", false, 2, 2, 1, 0, Error::BadArgument},
    {"a null image is refused even with nothing to do", false, 0, 0, 1, 0, Error::BadArgument},
    {"no channels are nothing to do", true, 2, 2, 0, 1, Error::None},
    {"more channels than a mask has bits are refused", true, 1, 1, 33, 0, Error::BadArgument},
    {"no columns are nothing to do", true, 0, 2, 3, 1, Error::None},
    {"no rows are nothing to do", true, 2, 0, 3, 1, Error::None},
};

TEST(Despeckle, EdgesWriteNothing)
{
    for (const auto& row : kEdges) {
        SCOPE(row.shows);
        const Bytes before = zlvtest::RandomBytes(64, 9);
        Bytes image = before;
        EXPECT_EQ(
            MV40_DespeckleImage(row.hasImage ? image.data() : nullptr, row.width, row.height, row.channels, 8, -1),
            row.result);
        EXPECT_EQ(MV40_GetLastError(), u32(row.error));
        EXPECT_EQ(image, before);
    }
}

TEST(Despeckle, WithoutMemoryItIsCodeOne)
{
    (void)MV40_GetLastError();  // makes the thread's record
    const Bytes before = zlvtest::RandomBytes(60, 1);
    for (const u32 succeeding : {0u, 1u, 2u, 3u}) {
        SCOPE(succeeding);
        Bytes image = before;
        {
            const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, succeeding);
            EXPECT_EQ(MV40_DespeckleImage(image.data(), 5, 4, 3, 15, 7), 0u);
        }
        EXPECT_EQ(MV40_GetLastError(), u32(Error::OutOfMemory));
        EXPECT_EQ(image, before);
    }
}

TEST(Despeckle, NothingToDoNeedsNoMemory)
{
    (void)MV40_GetLastError();
    Bytes image(4, 1);
    const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, 0);
    EXPECT_EQ(MV40_DespeckleImage(image.data(), 2, 2, 1, 2, 0), 1u);
    EXPECT_EQ(MV40_DespeckleImage(image.data(), 0, 2, 1, 2, 1), 1u);
}

}  // namespace
}  // namespace zlv
