// What the tests of the medians share: pictures, and calls beside their plain twins.
#pragma once

#include "plain/plain_median.h"
#include "support/bytes.h"
#include "support/progress_recorder.h"

#include "zlv40.h"

namespace zlvtest {

// Pictures that medians treat differently.
enum class Kind { Noise, NearTop, MostlyTop, BlackAndWhite, Stripes, Specks };
inline constexpr Kind kKinds[] = {Kind::Noise,         Kind::NearTop, Kind::MostlyTop,
                                  Kind::BlackAndWhite, Kind::Stripes, Kind::Specks};

inline Bytes MedianPicture(std::size_t bytes, Kind kind, std::uint64_t seed)
{
    Random random(seed);
    Bytes picture(bytes);
    for (std::size_t i = 0; i < bytes; ++i) {
        switch (kind) {
        case Kind::Noise: picture[i] = random.Byte(); break;
        case Kind::NearTop: picture[i] = std::uint8_t(252 + random.Below(4)); break;
        case Kind::MostlyTop: picture[i] = random.Below(40) ? 255 : std::uint8_t(random.Below(256)); break;
        case Kind::BlackAndWhite: picture[i] = random.Below(2) ? 255 : 0; break;
        // Long stretches of one level, most of them the top one.
        case Kind::Stripes: picture[i] = i / 37 % 3 ? 255 : std::uint8_t(i / 111 * 50); break;
        case Kind::Specks: picture[i] = random.Below(9) ? std::uint8_t(100 + i % 5) : random.Byte(); break;
        }
    }
    return picture;
}

// A call of one of the four medians of 8-bit images, and the same for its twin.
struct MedianCall {
    std::uint32_t width, height, channels;
    std::int32_t filterSize;
    std::uint32_t mask = 0xFF;          // of the running median
    std::uint32_t padFlags = 3;         // of the other one
    PlainMedianBlend blend = {0, 1.0};  // off
    std::uint32_t padding = 3;
    Kind kind = Kind::Noise;

    std::uint32_t SrcStride() const { return width * channels + padding; }
    std::uint32_t DstStride() const { return width * channels + 2 * padding; }
    Bytes Source() const { return MedianPicture(std::size_t(SrcStride()) * height, kind, width + height + channels); }
    Bytes Target() const { return RandomBytes(std::size_t(DstStride()) * height, 5); }

    std::uint32_t RunRunning(const Bytes& src, Bytes& dst) const
    {
        if (blend.threshold == 0 && blend.amount == 1.0) {
            return ZLV40_MedianFilterImage(src.data(), width, height, dst.data(), channels, SrcStride(), DstStride(),
                                           filterSize, mask);
        }
        return ZLV40_DustAndScratches(src.data(), width, height, dst.data(), channels, SrcStride(), DstStride(),
                                      filterSize, blend.threshold, blend.amount, mask);
    }

    std::uint32_t RunO1(const Bytes& src, Bytes& dst) const
    {
        if (blend.threshold == 0) {
            return ZLV40_MedianFilterImage_O1(src.data(), width, height, dst.data(), channels, SrcStride(), DstStride(),
                                              filterSize, padFlags);
        }
        return ZLV40_DustAndScratches_O1(src.data(), width, height, dst.data(), channels, SrcStride(), DstStride(),
                                         filterSize, blend.threshold, blend.amount, padFlags);
    }

    PlainMedianImage Plain(const Bytes& src, Bytes& dst) const
    {
        return {src.data(), width, height, dst.data(), channels, SrcStride(), DstStride(), filterSize};
    }

    std::string Text() const
    {
        return Join(width, "x", height, "x", channels, "window", filterSize, "mask", mask, "pads", padFlags,
                    "threshold", blend.threshold, "amount", blend.amount, "kind", int(kind));
    }

    void ExpectRunning() const
    {
        SCOPE(Text());
        const Bytes src = Source();
        Bytes wanted = Target(), got = wanted;
        PlainDustAndScratches(Plain(src, wanted), blend, mask);
        EXPECT_EQ(RunRunning(src, got), 1u);
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
    }

    void ExpectO1() const
    {
        SCOPE(Text());
        const Bytes src = Source();
        Bytes wanted = Target(), got = wanted;
        PlainDustAndScratchesO1(Plain(src, wanted), blend, padFlags);
        EXPECT_EQ(RunO1(src, got), 1u);
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        EXPECT_EQ(Difference(wanted.data(), got.data(), got.size()), "");
    }
};

// One row of one channel.
inline Bytes RunningMedianOfRow(const Bytes& row, std::int32_t filterSize)
{
    Bytes out(row.size(), 77);
    const std::uint32_t width = std::uint32_t(row.size());
    EXPECT_EQ(ZLV40_MedianFilterImage(row.data(), width, 1, out.data(), 1, width, width, filterSize, 1), 1u);
    return out;
}

// While it lives, progress of this thread goes to the recorder, which may cancel.
class ClientProgress {
public:
    explicit ClientProgress(std::size_t cancelAt = 0)
    {
        recorder.cancelAt = cancelAt;
        ZLV40_SetCallback(recorder.Function, recorder.Data());
    }
    ~ClientProgress() { ZLV40_SetCallback(nullptr, 0); }
    ClientProgress(const ClientProgress&) = delete;
    ClientProgress& operator=(const ClientProgress&) = delete;

    ProgressRecorder recorder;
};

}  // namespace zlvtest
