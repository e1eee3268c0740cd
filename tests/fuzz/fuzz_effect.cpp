// Calls one effect with whatever arguments the fuzzer's bytes spell, on buffers of exactly the described size.
//
// The address sanitizer watches the buffers' ends. Bytes of a buffer that the input does not spell start as
// ZLV_FUZZ_FILL, so that two runs of a corpus with different fills meet different memory.
#include "boundary/call_table.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

namespace {

using zlvtest::DescribedArgument;
using zlvtest::DescribedEffect;
using zlvtest::Role;
using zlvtest::Value;

// The fuzzer's bytes, taken from the front; zeros when they are used up.
class Input {
public:
    Input(const std::uint8_t* bytes, std::size_t count) : next_(bytes), end_(bytes + count) {}
    std::uint8_t Byte() { return next_ == end_ ? 0 : *next_++; }
    std::uint64_t Number(int bytes)
    {
        std::uint64_t number = 0;
        for (int i = 0; i < bytes; ++i) number = number << 8 | Byte();
        return number;
    }
    double Real()
    {
        const std::uint64_t bits = Number(8);
        double real;
        std::memcpy(&real, &bits, sizeof real);
        return real;
    }
    std::size_t Rest() const { return std::size_t(end_ - next_); }

private:
    const std::uint8_t* next_;
    const std::uint8_t* end_;
};

const DescribedEffect& EffectUnderTest()
{
    for (const DescribedEffect& effect : zlvtest::DescribedEffects()) {
        if (std::string_view(effect.name) == ZLV_FUZZ_EFFECT) return effect;
    }
    std::fputs("the effect is not described\n", stderr);
    std::abort();
}

int Fill()
{
    const char* const text = std::getenv("ZLV_FUZZ_FILL");
    return text ? std::atoi(text) : 0;
}

// Small sizes mostly, any value sometimes (the top bit of the kind byte).
std::uint64_t Size(Input& input, std::uint32_t small)
{
    const std::uint8_t kind = input.Byte();
    return kind & 0x80 ? input.Number(4) : kind % small;
}

struct Shape {
    std::uint64_t width = 0, height = 0, channels = 1, stride = 0;

    // 0 for a shape that no buffer of a test can have.
    std::size_t Bytes() const
    {
        constexpr std::uint64_t kLargest = 1 << 20;
        const std::uint64_t channelsUsed = std::int32_t(channels) < 0 ? 0 : channels;
        if (width == 0 || height == 0 || channelsUsed == 0) return 1;
        if (width > kLargest || height > kLargest || channelsUsed > kLargest || stride > kLargest) return 0;
        const std::uint64_t bytes = (height - 1) * stride + width * channelsUsed;
        return bytes > kLargest ? 0 : std::size_t(bytes);
    }
};

std::uint32_t KeepGoing(std::uint32_t current, std::uint32_t total, std::uint64_t data)
{
    if (current >= total) std::abort();
    return data == 0 || current < data;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    static const DescribedEffect& effect = EffectUnderTest();
    static const int fill = Fill();
    Input input(bytes, count);
    std::vector<Value> values(effect.arguments.size());
    Shape shape;
    for (std::size_t i = 0; i < values.size(); ++i) {
        Value& value = values[i];
        switch (effect.arguments[i].role) {
        case Role::Image: break;
        case Role::Width: value.integer = shape.width = Size(input, 40); break;
        case Role::Height: value.integer = shape.height = Size(input, 20); break;
        case Role::Channels: value.integer = shape.channels = Size(input, 10); break;
        case Role::Stride:
            shape.stride = input.Byte() & 1 ? Size(input, 100) : shape.width * shape.channels + input.Byte() % 8;
            value.integer = shape.stride = std::uint32_t(shape.stride);
            break;
        default:
            value.integer = Size(input, 16);
            value.real = input.Byte() & 1 ? input.Real() : double(value.integer);
            break;
        }
    }
    const std::size_t size = shape.Bytes();
    if (size == 0) return 0;

    std::vector<std::unique_ptr<std::uint8_t[]>> buffers;
    const std::uint8_t nulls = input.Byte();
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (effect.arguments[i].role != Role::Image || (nulls >> (i % 4) & 3) == 3) continue;
        buffers.push_back(std::make_unique<std::uint8_t[]>(size));
        std::uint8_t* const buffer = buffers.back().get();
        std::memset(buffer, fill, size);
        for (std::size_t k = 0; k < size && input.Rest() > 1; ++k) buffer[k] = input.Byte();
        values[i].pointer = buffer;
    }
    ZLV40_SetCallback(KeepGoing, input.Byte() % 8);
    const std::uint32_t result = effect.call(values.data());
    const std::uint32_t error = ZLV40_GetLastError();
    ZLV40_SetCallback(nullptr, 0);
    if (result > 1 || (result == 1 && error != 0) || (result == 0 && error == 0)) {
        std::fprintf(stderr, "%s returned %u with error %u\n", effect.name, result, error);
        std::abort();
    }
    return 0;
}
