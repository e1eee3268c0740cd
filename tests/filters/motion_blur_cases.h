// Pictures in motion for the tests of motion blur, through the library and through its plain twin.
#pragma once

#include "plain/plain_motion_blur.h"
#include "runtime/math.h"
#include "support/bytes.h"

#include "zlv40.h"

namespace zlv {

inline constexpr PlainMotionMath kMotionMath = {Sin, Cos, Atan2};
inline constexpr u8 kMotionFill = 0x2A;

struct MotionImage {
    i32 width, height;
    u32 channels;
    u32 srcPadding = 0, dstPadding = 0;
    u32 Row() const { return u32(width) * channels; }
    u32 SrcStride() const { return Row() + srcPadding; }
    u32 DstStride() const { return Row() + dstPadding; }
    size_t Size(u32 stride) const { return size_t(stride) * (u32(height) - 1) + Row(); }
};

struct MotionSettings {
    f64 angle = 0, amount = 1;
    i32 steps = 15, mode = 0;
};

inline u32 Call(const MotionImage& image, const zlvtest::Bytes& src, zlvtest::Bytes& dst, const MotionSettings& motion)
{
    return ZLV40_MotionBlur(src.data(), image.width, image.height, image.SrcStride(), dst.data(), image.DstStride(),
                            image.channels, motion.angle, motion.amount, motion.steps, motion.mode);
}

inline zlvtest::Bytes Plainly(const MotionImage& image, const zlvtest::Bytes& src, const MotionSettings& motion)
{
    zlvtest::Bytes dst(image.Size(image.DstStride()), kMotionFill);
    PlainMotionBlur({src.data(), image.width, image.height, image.SrcStride(), image.channels}, dst.data(),
                    image.DstStride(), {motion.angle, motion.amount, motion.steps, motion.mode, kMotionMath});
    return dst;
}

// Padding keeps its fill; the source is not written.
inline void ExpectPlainMotion(const MotionImage& image, const MotionSettings& motion)
{
    const zlvtest::Bytes src =
        zlvtest::RandomBytes(image.Size(image.SrcStride()), u64(image.width) * 1000 + u64(image.height));
    const zlvtest::Bytes before = src;
    zlvtest::Bytes dst(image.Size(image.DstStride()), kMotionFill);
    EXPECT_EQ(Call(image, src, dst, motion), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    const zlvtest::Bytes wanted = Plainly(image, src, motion);
    EXPECT_EQ(zlvtest::Difference(wanted.data(), dst.data(), dst.size()), "");
    EXPECT_EQ(src, before);
}

}  // namespace zlv
