// What the tests of layer styles share.
#pragma once

#include "plain/plain_layer_styles.h"
#include "runtime/math.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/progress_recorder.h"
#include "support/targets.h"
#include "support/test_hooks.h"

#include "zlv40.h"

#include <limits>

namespace zlvtest {

inline constexpr PlainBlurMath kStyleMath = {zlv::Exp, zlv::Sin, zlv::Cos, zlv::Pow};
inline constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

struct StyleImage {
    std::uint32_t width, height, channels, padding = 0;

    std::uint32_t Stride() const { return width * channels + padding; }
    std::size_t Size() const
    {
        return height == 0 ? 0 : std::size_t(Stride()) * (height - 1) + std::size_t(width) * channels;
    }
};

// Noise, but with large parts of alpha 0 and 255 where there is one.
inline Bytes StylePixels(const StyleImage& image, std::uint64_t seed)
{
    Bytes bytes = RandomBytes(image.Size(), seed);
    if (image.channels != 4) return bytes;
    for (std::uint32_t y = 0; y < image.height; ++y) {
        for (std::uint32_t x = 0; x < image.width; ++x) {
            std::uint8_t& alpha = bytes[std::size_t(y) * image.Stride() + x * 4 + 3];
            const std::uint32_t part = (x / 5 + y / 4) % 3;
            if (part != 1) alpha = part == 0 ? 0 : 255;
        }
    }
    return bytes;
}

template <class Test>
void OnEveryStyleTarget(Test test)
{
    OnEveryTarget([&] { test(); });
}

// Calls effect() from within a progress callback of another effect, where layer styles report. What they report, and
// at which report they are cancelled, is the recorder's.
inline void WithinACallback(ProgressRecorder& recorder, const std::function<void()>& effect)
{
    struct Outer {
        ProgressRecorder& recorder;
        const std::function<void()>& effect;
        bool isInside = false;

        static std::uint32_t Function(std::uint32_t current, std::uint32_t total, std::uint64_t data)
        {
            Outer& self = *reinterpret_cast<Outer*>(data);
            if (self.isInside) return ProgressRecorder::Function(current, total, self.recorder.Data());
            self.isInside = true;
            self.effect();
            return 0;
        }
    } outer = {recorder, effect};
    ZLV40_SetCallback(Outer::Function, reinterpret_cast<std::uint64_t>(&outer));
    const std::uint8_t pixel = 0;
    std::uint8_t copy = 0;
    EXPECT_EQ(ZLV40_TransformProcess(&pixel, 1, 1, 1, &copy, 1, 1, 0, 0), 0u);
    EXPECT_TRUE(outer.isInside);
    ZLV40_SetCallback(nullptr, 0);
}

// Every allocation of a call fails in turn: each leaves 0 and code 1; `untouched` says whether nothing was written.
inline void EveryAllocationFails(const std::function<std::uint32_t()>& call, const std::function<bool()>& untouched)
{
    for (const auto of : {FailingCalls::Of::Allocate, FailingCalls::Of::AllocateClientBlock}) {
        for (std::uint32_t succeeding = 0;; ++succeeding) {
            const FailingCalls failing(of, succeeding);
            const std::uint32_t result = call();
            if (failing.Failed() == 0) {
                EXPECT_EQ(result, 1u);
                break;
            }
            SCOPE("after", succeeding, "allocations");
            EXPECT_EQ(result, 0u);
            EXPECT_EQ(ZLV40_GetLastError(), std::uint32_t(ZLV40_ERROR_OUT_OF_MEMORY));
            EXPECT_TRUE(untouched());
        }
    }
}

}  // namespace zlvtest
