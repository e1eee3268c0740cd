// Resizes images of any shape to any other, in any mode, on buffers of exactly the described size.
#include "base/resize.h"
#include "fuzz/listener.h"
#include "fuzz/topics.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace {

using namespace zlv;
using zlvtest::Input;
using zlvtest::Listener;
using zlvtest::Require;

// Pixels on one side and samples of a buffer that a run can afford; what is larger gets no buffers.
constexpr u64 kMostPixels = 1 << 14;
constexpr u64 kMostSamples = 1 << 18;

struct Shape {
    u32 width, height, stride;
};

struct Call {
    Shape source, destination;
    u32 channels, mode, flags;

    u32 BytesPerSample() const { return flags & kResizeSixteenBit ? 2 : 1; }
    bool IsSameSize() const { return source.width == destination.width && source.height == destination.height; }

    // Whether images of this size may be copied with what stands between their rows, and after the last one.
    bool MayCopyPadding() const { return IsSameSize() && mode >= u32(ResizeMode::BlockAverage); }

    // None for a shape that no buffer of a test can have.
    std::optional<size_t> BytesOf(const Shape& shape) const
    {
        const u64 row = u64(shape.width) * channels;
        if (u64(shape.width) * shape.height > kMostPixels || row > kMostSamples) return {};
        const u64 last = MayCopyPadding() ? std::max<u64>(row, shape.stride) : row;
        if (last == 0 || shape.height == 0) return 1;
        const u64 samples = u64(shape.stride) * (shape.height - 1) + last;
        if (samples > kMostSamples) return {};
        return samples * BytesPerSample();
    }
};

Shape ReadShape(Input& input, u32 channels)
{
    Shape shape = {u32(input.Size(70)), u32(input.Size(50)), 0};
    shape.stride = input.Byte() & 1 ? u32(input.Size(120)) : shape.width * channels + input.Byte() % 8;
    return shape;
}

Call ReadCall(Input& input)
{
    Call call{};
    call.mode = u32(input.Size(20));
    call.flags = input.Byte() & 1 ? kResizeSixteenBit : 0;
    if (input.Byte() & 1) call.flags |= u32(input.Number(4));
    call.channels = u32(input.Size(10));
    call.source = ReadShape(input, call.channels);
    call.destination = ReadShape(input, call.channels);
    if (input.Byte() % 4 == 0) call.destination = call.source;
    return call;
}

u32 Run(Input& input, const Call& call, const u8* source, u8* destination)
{
    const Shape &s = call.source, &d = call.destination;
    const u32 result = MV40_ResizeImage(source, s.width, s.height, s.stride, destination, d.width, d.height, d.stride,
                                        call.channels, call.mode, call.flags);
    zlvtest::RequireResult(input, "resize", result, MV40_GetLastError());
    return result;
}

bool IsNextRow(u32 current, u32 total, u32 heard) { return current == heard && current < total; }

u32 RunListening(Input& input, const Call& call, const u8* source, u8* destination, u32 cancelAt)
{
    const Listener listener(input, zlvtest::kBaseLayer, cancelAt, IsNextRow);
    const u32 result = Run(input, call, source, destination);
    Require((MV40_GetLastError() == u32(Error::Cancelled)) == listener.HasCancelled());
    return result;
}

bool IsPadding(const Call& call, size_t byte)
{
    const Shape& shape = call.destination;
    const u64 row = u64(shape.width) * call.channels;
    return shape.stride >= row && shape.stride > 0 && byte / call.BytesPerSample() % shape.stride >= row;
}

}  // namespace

void zlvtest::FuzzResize(Input& input)
{
    const Call call = ReadCall(input);
    const u32 cancelAt = input.Byte() % 16;
    const std::optional<size_t> sourceBytes = call.BytesOf(call.source), destBytes = call.BytesOf(call.destination);
    if (!sourceBytes || !destBytes) {
        u8 nothing = 0;
        Require(Run(input, call, nullptr, &nothing) == 0);
        Require(Run(input, call, &nothing, nullptr) == 0);
        return;
    }

    const auto source = zlvtest::Buffer(*sourceBytes, input);
    const auto destination = zlvtest::Buffer(*destBytes, input);
    const std::vector<u8> before(destination.get(), destination.get() + *destBytes);
    const u32 result = Run(input, call, source.get(), destination.get());
    for (size_t i = 0; i < before.size(); ++i) {
        const bool mayChange = result == 1 && (call.MayCopyPadding() || !IsPadding(call, i));
        Require(mayChange || destination[i] == before[i]);
    }

    const std::vector<u8> after(destination.get(), destination.get() + *destBytes);
    std::copy(before.begin(), before.end(), destination.get());
    const u32 heard = RunListening(input, call, source.get(), destination.get(), cancelAt);
    Require(heard == 0 || result == 1);
    if (heard == 1) Require(std::equal(after.begin(), after.end(), destination.get()));
}
