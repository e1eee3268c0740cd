// Calls one effect with whatever arguments the bytes spell, on buffers of exactly the described size.
#include "fuzz/listener.h"
#include "fuzz/topics.h"

#include <memory>

namespace {

using zlvtest::DescribedEffect;
using zlvtest::DescribedImage;
using zlvtest::Input;
using zlvtest::Role;
using zlvtest::Value;

// The integer at an index of the call, 0 where there is none, and for what is negative to the effect.
std::uint64_t NumberAt(const DescribedEffect& effect, const std::vector<Value>& values, int at)
{
    if (at < 0) return 0;
    const std::uint64_t number = values[std::size_t(at)].integer;
    return effect.arguments[std::size_t(at)].isSigned && std::int32_t(number) < 0 ? 0 : number;
}

// How wide the image is; below 1 for one that the call must refuse.
std::int64_t WidthOf(const DescribedEffect& effect, const DescribedImage& image, const std::vector<Value>& values)
{
    const auto width = image.isPerChannel ? 1 : std::int64_t(NumberAt(effect, values, image.width));
    return image.wider < 0 ? width : width + std::int32_t(values[std::size_t(image.wider)].integer);
}

std::uint64_t ChannelsOf(const DescribedEffect& effect, const DescribedImage& image, const std::vector<Value>& values)
{
    if (image.fixedChannels) return image.fixedChannels;
    return image.channels < 0 ? effect.channels.front() : NumberAt(effect, values, image.channels);
}

// The bytes of an image whose numbers stand in the call; 0 for one that no buffer of a test can have.
std::size_t ImageBytes(const DescribedEffect& effect, const DescribedImage& image, const std::vector<Value>& values)
{
    constexpr std::uint64_t kLargest = 1 << 20, kMostSamples = 1 << 22;
    const std::uint64_t height = image.isPerChannel ? 1 : NumberAt(effect, values, image.height);
    const std::uint64_t channels = ChannelsOf(effect, image, values);
    const std::int64_t signedWidth = WidthOf(effect, image, values);
    if (signedWidth <= 0 || height == 0 || channels == 0) return 1;
    const auto width = std::uint64_t(signedWidth);
    if (width > kLargest || height > kLargest || channels > kLargest) return 0;
    const std::uint64_t row = image.RowBytes(width, channels);
    const std::uint64_t stride = image.stride < 0 ? row : NumberAt(effect, values, image.stride) * image.strideBytes;
    if (row > kLargest || stride > kLargest) return 0;
    if (height > kMostSamples / row) return 0;  // rows that overlap fit into little memory, but not into little time
    const std::uint64_t bytes =
        (height - 1) * stride + (image.hasWholeRows && stride > row ? stride : row) + image.isText;
    return bytes > kLargest ? 0 : std::size_t(bytes);
}

// Dense rows with a few bytes of padding mostly; any stride sometimes, in multiples of the sample.
void SetStride(const DescribedEffect& effect, const DescribedImage& image, std::vector<Value>& values, Input& input)
{
    if (image.stride < 0) return;
    const std::uint64_t sampleBytes = (image.sampleBits + 7) / 8;
    const std::uint64_t row = image.RowBytes(NumberAt(effect, values, image.width), ChannelsOf(effect, image, values));
    const std::uint64_t stride =
        input.Byte() & 1 ? input.Size(100) * sampleBytes : row + input.Byte() % 8 * sampleBytes;
    values[std::size_t(image.stride)].integer = std::uint32_t(stride / image.strideBytes);
}

// Runs visit(index, image) for every argument that is an image.
template <class Visit>
void ForEachImage(const DescribedEffect& effect, Visit visit)
{
    for (std::size_t i = 0; i < effect.arguments.size(); ++i) {
        if (effect.arguments[i].role == Role::Image) visit(i, effect.arguments[i].image);
    }
}

// Below a thousand, on both sides of 0.
std::uint64_t CheapNumber(std::uint64_t number, bool isSigned)
{
    return isSigned ? std::uint64_t(std::int64_t(std::int32_t(number)) % 1000) : number % 1000;
}

}  // namespace

void zlvtest::FuzzEffect(const DescribedEffect& effect, Input& input)
{
    std::vector<Value> values(effect.arguments.size());
    std::vector<std::unique_ptr<point>> points;
    for (std::size_t i = 0; i < values.size(); ++i) {
        Value& value = values[i];
        switch (effect.arguments[i].role) {
        case Role::Image:
        case Role::Stride: break;
        case Role::Width: value.integer = input.Size(40); break;
        case Role::Height: value.integer = input.Size(20); break;
        case Role::Channels: value.integer = input.Size(10); break;
        case Role::Point:
            points.push_back(
                std::make_unique<point>(point{std::int32_t(input.Size(40)), std::int32_t(input.Size(20))}));
            value.pointer = input.Byte() == 0xFF ? nullptr : points.back().get();
            break;
        case Role::In: break;
        case Role::Count:
            value.integer = input.Byte() % (std::uint64_t(effect.arguments[i].default_) + 1);  // arrays have so many
            break;
        default:
            value.integer = input.Size(16);
            if (effect.arguments[i].costs) value.integer = CheapNumber(value.integer, effect.arguments[i].isSigned);
            value.real = input.Byte() & 1 ? input.Real() : double(value.integer);
            value.integer &= ~std::uint64_t(effect.arguments[i].unsweptFlags);
            break;
        }
    }
    ForEachImage(effect, [&](std::size_t, const DescribedImage& image) { SetStride(effect, image, values, input); });

    std::vector<zlvtest::Buffer> buffers;
    const std::uint8_t nulls = input.Byte();
    bool isPossible = true;
    ForEachImage(effect, [&](std::size_t i, const DescribedImage& image) {
        const std::size_t size = ImageBytes(effect, image, values);
        isPossible = isPossible && size != 0;
        if (!isPossible || (nulls >> (i % 4) & 3) == 3) return;
        buffers.push_back(zlvtest::Buffer(size, input));
        values[i].pointer = buffers.back().get();
    });
    if (!isPossible) return;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::size_t size = effect.arguments[i].bytes.size();
        if (size == 0 || input.Byte() % 8 == 7) continue;
        buffers.push_back(zlvtest::Buffer(size, input));
        values[i].pointer = buffers.back().get();
    }

    if (!effect.repeats) input.GetHost().MayDiffer();
    // Some count their stages from 1.
    const zlvtest::Listener listener(input, zlvtest::kExports, input.Byte() % 8, zlvtest::IsUpToTotal);
    ZLV40_ClearAllTransforms();  // some successes leave an older code standing
    const std::uint32_t result = effect.call(values.data());
    const std::uint32_t error = ZLV40_GetLastError();
    const bool mayBeQuiet = effect.canCancel && (effect.cancelError == 0 || effect.isCancelQuiet);
    if (result == 0 && error == 0 && mayBeQuiet) zlvtest::NoteResult(input, result, error);
    else zlvtest::RequireResult(input, effect.name, result, error);
}
