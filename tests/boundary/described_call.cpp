#include "boundary/described_call.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace zlvtest {

namespace {

// The least and the most significant half of a value are the same number to 32-bit arguments of either sign.
std::int64_t SignedNumber(const DescribedEffect& effect, const std::vector<Value>& values, int at)
{
    const DescribedArgument& argument = effect.arguments[std::size_t(at)];
    const std::uint64_t number = values[std::size_t(at)].integer;
    if (argument.bits == 32) return argument.isSigned ? std::int64_t(std::int32_t(number)) : std::uint32_t(number);
    return std::int64_t(number);
}

}  // namespace

DescribedCall::DescribedCall(const DescribedEffect& effect, std::uint32_t channels, Flush flush)
    : values(effect.arguments.size()), effect_(effect), row_(RowOf(effect.name)), channels_(channels), flush_(flush)
{
    for (std::size_t i = 0; i < values.size(); ++i) SetNumber(i);
    for (const Setting& setting : row_.settings) Set(setting);
    for (std::size_t i = 0; i < values.size(); ++i) MakeMemory(i);
    if (row_.build) row_.build(*this);
    Remember();
}

DescribedCall::~DescribedCall()
{
    if (row_.tearDown) row_.tearDown(*this);
}

std::uint64_t DescribedCall::Run()
{
    result_ = effect_.call(values.data());
    code_ = ZLV40_GetLastError();
    return result_;
}

void DescribedCall::GiveBack()
{
    if (row_.giveBack) row_.giveBack(*this, result_);
}

Outcome DescribedCall::RunWhole()
{
    Run();
    GiveBack();
    return Ended();
}

Outcome DescribedCall::Ended() const
{
    switch (effect_.answer) {
    case Answer::Status: return {std::uint32_t(result_) == 1, code_};
    case Answer::Object: return {result_ != 0, code_};
    default: return {true, code_};
    }
}

std::size_t DescribedCall::IndexOf(std::string_view argument) const
{
    for (std::size_t i = 0; i < effect_.arguments.size(); ++i) {
        if (effect_.arguments[i].name == argument) return i;
    }
    ADD_FAILURE() << effect_.name << " has no argument " << argument;
    std::abort();
}

std::uint8_t* DescribedCall::NewMemory(std::size_t argument, std::size_t bytes, bool isWritten, std::uint8_t fill)
{
    memory_.push_back({argument, isWritten, std::make_unique<GuardedBuffer>(bytes, flush_, fill), {}});
    return memory_.back().buffer->Data();
}

std::uint8_t* DescribedCall::NewArray(std::string_view argument, std::size_t bytes, bool isWritten)
{
    const std::size_t i = IndexOf(argument);
    std::uint8_t* const data = NewMemory(i, bytes, isWritten, 0);
    values[i].pointer = data;
    return data;
}

void DescribedCall::SetNumber(std::size_t i)
{
    const DescribedArgument& argument = effect_.arguments[i];
    switch (argument.role) {
    case Role::Width: values[i].integer = Width(); break;
    case Role::Height: values[i].integer = Height(); break;
    case Role::Channels: values[i].integer = channels_; break;
    case Role::Stride: break;  // set with its image
    default:
        values[i].integer = std::uint64_t(std::int64_t(argument.default_));
        values[i].real = argument.default_;
        break;
    }
}

void DescribedCall::MakeMemory(std::size_t i)
{
    const DescribedArgument& argument = effect_.arguments[i];
    switch (argument.role) {
    case Role::Image: values[i].pointer = MakeImage(i); break;
    case Role::Point:
        // The default is a place in a picture of a usual size.
        points_.push_back(std::make_unique<point>(argument.defaultPoint));
        points_.back()->x %= std::int32_t(Width());
        points_.back()->y %= std::int32_t(Height());
        values[i].pointer = points_.back().get();
        break;
    case Role::In:
    case Role::Out: values[i].pointer = MakeDescribedArray(i); break;
    default: break;
    }
}

// The last row has no padding behind it: there the buffer ends, as a client's may.
std::uint8_t* DescribedCall::MakeImage(std::size_t i)
{
    const DescribedImage& image = effect_.arguments[i].image;
    const std::uint32_t count = image.fixedChannels ? image.fixedChannels : channels_;
    const std::int64_t wider = image.wider < 0 ? 0 : std::int64_t(effect_.arguments[std::size_t(image.wider)].default_);
    const std::uint64_t width = image.isPerChannel ? 1 : std::uint64_t(Width() + wider);
    const std::uint32_t height = image.isPerChannel ? 1 : Height();
    const std::size_t row = std::size_t(image.RowBytes(width, count));
    const std::size_t padding = kPadding * ((image.sampleBits + 7) / 8);  // keeps rows aligned to their samples
    const std::size_t stride = image.stride >= 0 ? row + padding : row;
    if (image.stride >= 0) values[std::size_t(image.stride)].integer = stride / image.strideBytes;
    const std::size_t size = (height - 1) * stride + (image.hasWholeRows ? stride : row) + image.isText;
    std::uint8_t* const data = NewMemory(i, size, image.isWritten, kFill);
    for (std::size_t y = 0; y < height; ++y) FillRow(data + y * stride, row, image.sampleBits);
    return data;
}

// Of the described size, or null where the description tells none.
std::uint8_t* DescribedCall::MakeDescribedArray(std::size_t i)
{
    const DescribedArgument& argument = effect_.arguments[i];
    std::size_t count = argument.bytes.empty() ? argument.count : argument.bytes.size() / argument.elementBytes;
    if (argument.bytes.empty()) {
        for (const int factor : argument.countOf) count *= std::size_t(values[std::size_t(factor)].integer);
    }
    if (count == 0) return nullptr;
    std::uint8_t* const data = NewMemory(i, count * argument.elementBytes, !argument.isRead, 0);
    if (!argument.bytes.empty()) {
        std::memcpy(data, argument.bytes.data(), argument.bytes.size());
    } else if (argument.elementBytes == sizeof(std::uint32_t)) {
        std::fill_n(reinterpret_cast<std::uint32_t*>(data), count, 1u);  // elements of ones
    } else {
        FillRow(data, count * argument.elementBytes, std::uint32_t(argument.elementBytes * 8));
    }
    return data;
}

// Any bytes; reals from 0 to 1.
void DescribedCall::FillRow(std::uint8_t* row, std::size_t bytes, std::uint32_t sampleBits)
{
    if (sampleBits != 64) {
        for (std::size_t k = 0; k < bytes; ++k) row[k] = random_.Byte();
        return;
    }
    for (std::size_t k = 0; k < bytes; k += sizeof(double)) {
        const double sample = random_.Byte() / 255.0;
        std::memcpy(row + k, &sample, sizeof sample);
    }
}

void DescribedCall::Remember()
{
    for (Memory& memory : memory_) {
        memory.before.assign(memory.buffer->Data(), memory.buffer->Data() + memory.buffer->Size());
    }
}

bool DescribedCall::IsUntouched(const Memory& memory)
{
    return std::memcmp(memory.buffer->Data(), memory.before.data(), memory.before.size()) == 0;
}

bool DescribedCall::IsUntouched() const
{
    return std::all_of(memory_.begin(), memory_.end(), [](const Memory& memory) { return IsUntouched(memory); });
}

bool DescribedCall::AreSourcesUntouched() const
{
    return std::all_of(memory_.begin(), memory_.end(),
                       [](const Memory& memory) { return memory.isWritten || IsUntouched(memory); });
}

bool DescribedCall::IsPaddingUntouched() const
{
    if (row_.manners & kAnswersOutsideItsPixels) return true;
    for (const Memory& memory : memory_) {
        const DescribedArgument& argument = effect_.arguments[memory.argument];
        if (argument.role != Role::Image || argument.image.hasWholeRows) continue;
        for (std::size_t k = 0; k < memory.before.size(); ++k) {
            if (memory.buffer->Data()[k] != memory.before[k] && !IsPixel(memory, k)) return false;
        }
    }
    return true;
}

// Whether the byte belongs to a row of the image that the arguments describe.
bool DescribedCall::IsPixel(const Memory& memory, std::size_t offset) const
{
    const DescribedImage& image = effect_.arguments[memory.argument].image;
    const auto numberAt = [&](int at) { return SignedNumber(effect_, values, at); };
    const std::int64_t wider = image.wider < 0 ? 0 : numberAt(image.wider);
    const std::int64_t width = image.isPerChannel ? 1 : numberAt(image.width) + wider;
    const std::int64_t height = image.isPerChannel ? 1 : numberAt(image.height);
    const std::int64_t count = image.fixedChannels   ? image.fixedChannels
                               : image.channels >= 0 ? numberAt(image.channels)
                                                     : channels_;
    if (image.isText && height == 0 && offset == 0) return true;  // the zero that ends no lines
    if (width <= 0 || height <= 0 || count <= 0) return false;
    const auto row = std::int64_t(image.RowBytes(std::uint64_t(width), std::uint64_t(count)));
    const std::int64_t stride = image.stride < 0 ? row : numberAt(image.stride) * image.strideBytes;
    const auto at = std::int64_t(offset);
    const std::int64_t y = stride <= 0 ? 0 : std::min(at / stride, height - 1);
    return at - y * std::max<std::int64_t>(stride, 0) < row + (y == height - 1 && image.isText);
}

Bytes DescribedCall::Written() const
{
    Bytes all;
    for (const Memory& memory : memory_) {
        if (memory.isWritten)
            all.insert(all.end(), memory.buffer->Data(), memory.buffer->Data() + memory.buffer->Size());
    }
    return all;
}

std::vector<std::uint32_t> ChannelCounts(const DescribedEffect& effect)
{
    return effect.channels.empty() ? std::vector<std::uint32_t>{1} : effect.channels;
}

const ExportRow& RowOf(std::string_view name)
{
    static const ExportRow none = {.name = ""};
    for (const auto rows : {FrequencyRows, MorphologyRows, PictureRows, StateRows, WarpRows}) {
        for (const ExportRow& row : rows()) {
            if (row.name == name) return row;
        }
    }
    return none;
}

}  // namespace zlvtest
