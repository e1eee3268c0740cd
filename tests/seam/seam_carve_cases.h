// Calls of the seam carver as the library and as the plain twin do them.
#pragma once

#include "plain/plain_seam.h"
#include "runtime/contexts.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"

#include "zlv40.h"

#include <cstring>

namespace zlv {

using zlvtest::Bytes;

constexpr u8 kFill = 0xA7;

struct CarveCase {
    u32 width = 9, height = 6, channels = 3;
    i32 seams = -3;
    u32 flags = ZLV40_ONE_THREAD;
    bool hasMask = false;
    u16 penalty = 200;
    u32 srcPadding = 0, maskPadding = 0;
    i32 dstPadding = 0;  // may take bytes away
    u32 levels = 256;    // of samples: few levels give many ties
    u32 seed = 1;

    u32 SrcStride() const { return width * channels + srcPadding; }
    u32 MaskStride() const { return width + maskPadding; }
    u32 DstStride() const { return u32(i32((i32(width) + seams) * i32(channels)) + dstPadding); }
    size_t SrcBytes() const { return size_t(height - 1) * SrcStride() + width * channels; }
    size_t MaskBytes() const { return size_t(height - 1) * MaskStride() + width; }
    size_t DstBytes() const { return size_t(height) * DstStride(); }

    Bytes Source() const
    {
        Bytes bytes = zlvtest::RandomBytes(SrcBytes(), seed);
        for (u8& byte : bytes) byte = u8(byte * levels / 256 * (256 / levels));
        return bytes;
    }
    Bytes Mask() const { return zlvtest::RandomBytes(MaskBytes(), seed + 100); }
};

inline void SetRandomState(u32 state) { baseContexts.Get()->randomState = state; }
inline u32 RandomState() { return baseContexts.Get()->randomState; }

inline u32 Carve(const CarveCase& c, const u8* src, const u8* mask, u8* dst)
{
    return ZLV40_SeamCarve(src, c.width, c.height, c.channels, c.SrcStride(), mask, c.MaskStride(), dst, c.DstStride(),
                           c.seams, c.penalty, c.flags);
}

struct Carved {
    Bytes dst;
    u32 randomState;
};

inline PlainCarveCall PlainCallOf(const CarveCase& c, const Bytes& src, const Bytes& mask, Bytes& dst)
{
    return {
        src.data(),     int(c.width), int(c.height), int(c.channels), c.SrcStride(), c.hasMask ? mask.data() : nullptr,
        c.MaskStride(), dst.data(),   c.DstStride(), c.seams,         c.penalty,     !(c.flags & ZLV40_ONE_THREAD),
        c.seed};
}

inline Carved PlainCarve(const CarveCase& c, const Bytes& src, const Bytes& mask)
{
    Carved carved = {Bytes(c.DstBytes(), kFill), 0};
    PlainCarver carver(PlainCallOf(c, src, mask, carved.dst));
    carver.Run();
    carved.randomState = carver.RandomState();
    return carved;
}

inline zlvtest::GuardedBuffer& Fill(zlvtest::GuardedBuffer& buffer, const Bytes& bytes)
{
    std::copy(bytes.begin(), bytes.end(), buffer.Data());
    return buffer;
}

// Between pages that fault: a byte too many read or written ends the program.
inline void ExpectPlainCarving(const CarveCase& c, const Bytes& src, const Bytes& mask)
{
    SCOPE(c.width, 'x', c.height, 'x', c.channels, "seams", c.seams, "flags", c.flags, "mask", c.hasMask, "levels",
          c.levels, "seed", c.seed, "paddings", c.srcPadding, c.maskPadding, c.dstPadding);
    const Carved wanted = PlainCarve(c, src, mask);
    for (const auto flush : {zlvtest::Flush::ToStart, zlvtest::Flush::ToEnd}) {
        zlvtest::GuardedBuffer from(src.size(), flush), by(mask.size(), flush), to(c.DstBytes(), flush, kFill);
        Fill(from, src);
        Fill(by, mask);
        SetRandomState(c.seed);
        EXPECT_EQ(Carve(c, from.Data(), c.hasMask ? by.Data() : nullptr, to.Data()), 1u);
        EXPECT_EQ(ZLV40_GetLastError(), 0u);
        EXPECT_EQ(zlvtest::Difference(wanted.dst.data(), to.Data(), wanted.dst.size()), "");
        EXPECT_EQ(RandomState(), wanted.randomState);
        EXPECT_EQ(std::memcmp(from.Data(), src.data(), src.size()), 0) << "the source is only read";
    }
}

inline void ExpectPlainCarving(const CarveCase& c) { ExpectPlainCarving(c, c.Source(), c.Mask()); }

}  // namespace zlv
