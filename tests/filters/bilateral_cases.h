// Pictures for the tests of the bilateral filter, through the library and through its plain twin.
#pragma once

#include "plain/plain_bilateral.h"
#include "runtime/math.h"
#include "support/bytes.h"

#include "zlv40.h"

namespace zlv {

inline constexpr PlainBilateralMath kBilateralMath = {Exp, Cos};

inline constexpr u32 kBilateralSquare = 0, kBilateralSeparable = ZLV40_SEPARABLE,
                     kBilateralThreads = ZLV40_WORKER_THREADS;

struct BilateralShape {
    u32 width, height, channels = 1, srcPadding = 0, dstPadding = 0;

    u32 SrcStride() const { return width * channels + srcPadding; }
    u32 DstStride() const { return width * channels + dstPadding; }
};

struct BilateralSettings {
    u32 size, kind;
    f64 sigma;
    u32 flags;
};

enum class BilateralContent { Noise, FewLevels, Extremes, Steps };

inline zlvtest::Bytes Picture(size_t count, BilateralContent content, u64 seed)
{
    zlvtest::Random random(seed);
    zlvtest::Bytes bytes(count);
    u8 level = 100;
    for (u8& byte : bytes) {
        switch (content) {
        case BilateralContent::Noise: byte = random.Byte(); break;
        case BilateralContent::FewLevels: byte = u8(random.Below(12)); break;
        case BilateralContent::Extremes: byte = random.Below(2) ? u8(255) : u8(0); break;
        case BilateralContent::Steps: byte = level = random.Below(9) ? level : random.Byte(); break;
        }
    }
    return bytes;
}

inline u32 Smooth(const BilateralShape& shape, const u8* src, u8* dst, const BilateralSettings& filter)
{
    return ZLV40_BilateralFilterImage(src, shape.width, shape.height, shape.SrcStride(), shape.channels, dst,
                                      shape.DstStride(), filter.size, filter.kind, filter.sigma, filter.flags);
}

inline PlainBilateral Plain(const BilateralShape& shape, const u8* src, u8* dst, const BilateralSettings& filter)
{
    return {{src, int(shape.width), int(shape.height), shape.SrcStride(), int(shape.channels), dst, shape.DstStride(),
             int(filter.size), filter.kind, filter.sigma, filter.flags},
            kBilateralMath};
}

inline void ExpectPlainBilateral(const BilateralShape& shape, BilateralContent content, const BilateralSettings& filter)
{
    SCOPE(shape.width, 'x', shape.height, 'x', shape.channels, "size", filter.size, "kind", filter.kind, "sigma",
          filter.sigma, "flags", filter.flags, "content", int(content));
    const zlvtest::Bytes src = Picture(size_t(shape.SrcStride()) * shape.height, content, shape.width + filter.size);
    zlvtest::Bytes wanted = zlvtest::RandomBytes(size_t(shape.DstStride()) * shape.height, 9), got = wanted;
    Plain(shape, src.data(), wanted.data(), filter).Run([](u32, u32) { return true; });
    EXPECT_EQ(Smooth(shape, src.data(), got.data(), filter), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    EXPECT_EQ(zlvtest::Difference(wanted.data(), got.data(), got.size()), "");
}

}  // namespace zlv
