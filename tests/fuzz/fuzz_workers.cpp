// Calls the filters that start threads, and those whose flags promise memory beyond the image, with that memory there.
#include "fuzz/listener.h"
#include "fuzz/topics.h"

namespace {

using zlvtest::Buffer;
using zlvtest::Input;

// An image with so much around it that any promise of a call is kept.
struct Surrounded {
    std::uint32_t width, height, channels, margin, stride;
    Buffer bytes;

    Surrounded(Input& input, std::uint32_t channelCount, std::uint32_t neededMargin)
        : width(1 + input.Byte() % 30), height(1 + input.Byte() % 20), channels(channelCount), margin(neededMargin)
    {
        stride = (width + 2 * margin) * channels;
        bytes = Buffer(std::size_t(stride) * (height + 2 * margin), input);
    }
    const std::uint8_t* Data() const { return bytes.get() + std::size_t(stride) * margin + margin * channels; }
};

void Smooth(Input& input)
{
    const std::uint32_t filterSize = input.Byte() % 16, weights = input.Byte() % 5;
    constexpr std::uint32_t kPromises = ZLV40_ROWS_ABOVE | ZLV40_ROWS_BELOW;
    constexpr std::uint32_t kKinds[] = {0,
                                        ZLV40_SEPARABLE,
                                        ZLV40_WORKER_THREADS,
                                        kPromises,
                                        ZLV40_ROWS_ABOVE,
                                        ZLV40_ROWS_BELOW,
                                        ZLV40_SEPARABLE | ZLV40_WORKER_THREADS,
                                        ZLV40_WORKER_THREADS | kPromises};
    const std::uint32_t flags = kKinds[input.Byte() % 8] | input.Byte();
    const double sigma = input.Measure(40);
    const Surrounded image(input, 1 + input.Byte() % 5, filterSize / 2 + 1);
    const Buffer out(std::size_t(image.stride) * image.height, input);
    const zlvtest::Listener listener(input, zlvtest::kExports, input.Byte() % 16);
    const std::uint32_t result =
        ZLV40_BilateralFilterImage(image.Data(), image.width, image.height, image.stride, image.channels, out.get(),
                                   image.stride, filterSize, weights, sigma, flags);
    zlvtest::RequireResult(input, "BilateralFilterImage", result, ZLV40_GetLastError());
}

void FindEdges(Input& input)
{
    const std::uint32_t kind = input.Byte();
    const bool isThreaded = kind & 1;
    const std::uint32_t promises = kind & 2 ? std::uint32_t(input.Byte() & 15) * ZLV40_COLUMN_LEFT : 0;
    const std::uint32_t flags = promises | (isThreaded ? ZLV40_COMBINED | ZLV40_WORKER_THREADS : ZLV40_COMBINED);
    const Surrounded image(input, 3 + (isThreaded ? 0 : input.Byte() % 2), 1);
    const Buffer out(std::size_t(image.width) * image.height * sizeof(std::uint16_t), input);
    const zlvtest::Listener listener(input, zlvtest::kExports, input.Byte() % 16);
    ZLV40_ClearAllTransforms();  // the threaded form leaves the last error alone
    const std::uint32_t result =
        ZLV40_SobelFilter(image.Data(), image.width, image.height, image.channels, image.stride,
                          reinterpret_cast<std::uint16_t*>(out.get()), image.width, flags);
    const std::uint32_t error = ZLV40_GetLastError();
    if (!isThreaded) return zlvtest::RequireResult(input, "SobelFilter", result, error);
    zlvtest::Require(error == 0 && (result == 0 || result == ZLV40_ERROR_BAD_ARGUMENT));
    zlvtest::NoteResult(input, result, error);
}

// With two kernels in place the first response is overwritten by the second.
void Sharpen(Input& input)
{
    const Surrounded image(input, 1 + input.Byte() % 5, 0);
    const auto flags = std::int8_t(input.Byte());
    const double amount = input.Measure(4);
    const std::uint32_t threshold = input.Byte();
    const bool isInPlace = input.Byte() & 1;
    const Buffer out(std::size_t(image.stride) * image.height, input);
    const zlvtest::Listener listener(input, zlvtest::kExports, input.Byte() % 16, zlvtest::IsUpToTotal);
    const std::uint32_t result =
        ZLV40_AdaptiveUnsharpMask(image.Data(), image.width, image.height, std::int32_t(image.channels), image.stride,
                                  image.stride, isInPlace ? image.bytes.get() : out.get(), threshold, amount, flags);
    zlvtest::RequireResult(input, "AdaptiveUnsharpMask", result, ZLV40_GetLastError());
}

}  // namespace

void zlvtest::FuzzWorkers(Input& input)
{
    switch (input.Byte() % 3) {
    case 0: return Smooth(input);
    case 1: return FindEdges(input);
    default: return Sharpen(input);
    }
}
