// A call of a described effect that works, to be broken in one place after the other.
#pragma once

#include "boundary/call_table.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"

#include <cstring>
#include <memory>

namespace zlvtest {

class DescribedCall {
public:
    static constexpr std::uint32_t kWidth = 13, kHeight = 7, kPadding = 3;
    static constexpr std::uint8_t kFill = 0xA7;

    DescribedCall(const DescribedEffect& effect, std::uint32_t channels, Flush flush = Flush::ToEnd)
        : effect_(effect), channels_(channels), values(effect.arguments.size())
    {
        for (std::size_t i = 0; i < values.size(); ++i) SetDefault(i, flush);
        for (const auto& image : images_) before_.emplace_back(image->Data(), image->Data() + image->Size());
    }

    std::uint32_t Run() const { return effect_.call(values.data()); }

    // Every byte of every image as it was.
    bool IsUntouched() const
    {
        for (std::size_t i = 0; i < images_.size(); ++i) {
            if (!IsUntouched(i)) return false;
        }
        return true;
    }

    // Every byte of the images that are only read as it was.
    bool AreSourcesUntouched() const
    {
        for (std::size_t i = 0; i < images_.size(); ++i) {
            if (!layouts_[i].isWritten && !IsUntouched(i)) return false;
        }
        return true;
    }

    // The bytes between the rows as they were.
    bool IsPaddingUntouched() const
    {
        for (std::size_t i = 0; i < images_.size(); ++i) {
            for (std::size_t k = 0; k < images_[i]->Size(); ++k) {
                const bool isPadding = !layouts_[i].hasWholeRows && k % layouts_[i].stride >= layouts_[i].row;
                if (isPadding && images_[i]->Data()[k] != kFill) return false;
            }
        }
        return true;
    }

    Bytes Pixels() const
    {
        Bytes all;
        for (const auto& image : images_) all.insert(all.end(), image->Data(), image->Data() + image->Size());
        return all;
    }

private:
    struct Layout {
        std::size_t row, stride;  // in bytes
        bool isWritten, hasWholeRows;
    };

    const DescribedEffect& effect_;
    const std::uint32_t channels_;
    Random random_{7};
    std::vector<std::unique_ptr<GuardedBuffer>> images_;
    std::vector<Layout> layouts_;
    std::vector<std::unique_ptr<point>> points_;
    std::vector<std::unique_ptr<GuardedBuffer>> arrays_;
    std::vector<Bytes> before_;

    bool IsUntouched(std::size_t i) const
    {
        return std::memcmp(images_[i]->Data(), before_[i].data(), before_[i].size()) == 0;
    }

    void SetDefault(std::size_t i, Flush flush)
    {
        const DescribedArgument& argument = effect_.arguments[i];
        switch (argument.role) {
        case Role::Image: values[i].pointer = NewImage(argument.image, flush); break;
        case Role::Width: values[i].integer = kWidth; break;
        case Role::Height: values[i].integer = kHeight; break;
        case Role::Channels: values[i].integer = channels_; break;
        case Role::Stride: break;  // set with its image
        case Role::Point:
            // The default is a place in a picture of a usual size.
            points_.push_back(std::make_unique<point>(argument.defaultPoint));
            points_.back()->x %= std::int32_t(kWidth);
            points_.back()->y %= std::int32_t(kHeight);
            values[i].pointer = points_.back().get();
            break;
        case Role::In: values[i].pointer = NewArray(argument.bytes, flush); break;
        default:
            values[i].integer = std::uint64_t(std::int64_t(argument.default_));
            values[i].real = argument.default_;
            break;
        }
    }

    // The last row has no padding behind it: there the buffer ends, as a client's may.
    std::uint8_t* NewImage(const DescribedImage& image, Flush flush)
    {
        const std::uint32_t count = image.fixedChannels ? image.fixedChannels : channels_;
        const std::int64_t wider =
            image.wider < 0 ? 0 : std::int64_t(effect_.arguments[std::size_t(image.wider)].default_);
        const std::uint64_t width = image.isPerChannel ? 1 : std::uint64_t(kWidth + wider);
        const std::uint32_t height = image.isPerChannel ? 1 : kHeight;
        const std::size_t row = std::size_t(image.RowBytes(width, count));
        const std::size_t padding = kPadding * ((image.sampleBits + 7) / 8);  // keeps rows aligned to their samples
        const Layout layout = {row, image.stride >= 0 ? row + padding : row, image.isWritten, image.hasWholeRows};
        if (image.stride >= 0) values[std::size_t(image.stride)].integer = layout.stride / image.strideBytes;
        const std::size_t size =
            (height - 1) * layout.stride + (image.hasWholeRows ? layout.stride : row) + image.isText;
        images_.push_back(std::make_unique<GuardedBuffer>(size, flush, kFill));
        layouts_.push_back(layout);
        std::uint8_t* const data = images_.back()->Data();
        for (std::size_t y = 0; y < height; ++y) FillRow(data + y * layout.stride, row, image.sampleBits);
        return data;
    }

    void* NewArray(const Bytes& bytes, Flush flush)
    {
        if (bytes.empty()) return nullptr;
        arrays_.push_back(std::make_unique<GuardedBuffer>(bytes.size(), flush));
        std::memcpy(arrays_.back()->Data(), bytes.data(), bytes.size());
        return arrays_.back()->Data();
    }

    // Any bytes; reals from 0 to 1.
    void FillRow(std::uint8_t* row, std::size_t bytes, std::uint32_t sampleBits)
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

public:
    std::vector<Value> values;
};

// Runs check(call, what) for every way to break one argument of the effect whose answer is described as refused.
template <class Check>
void ForEachRefusal(const DescribedEffect& effect, std::uint32_t channels, Check check)
{
    const auto broken = [&](std::size_t i, const char* what, std::uint32_t error, auto breaker) {
        DescribedCall call(effect, channels);
        breaker(call.values[i]);
        check(call, Join(effect.arguments[i].name, what), error);
    };
    for (std::size_t i = 0; i < effect.arguments.size(); ++i) {
        const DescribedArgument& argument = effect.arguments[i];
        if (argument.nullError) broken(i, "is null", argument.nullError, [](Value& v) { v.pointer = nullptr; });
        if (argument.zero == Zero::Refused) {
            broken(i, "is zero", argument.zeroError, [](Value& v) { v.integer = 0; });
        }
        const auto setTo = [](double number) {
            return [=](Value& v) {
                v.real = number;
                v.integer = std::uint64_t(std::int64_t(number));
            };
        };
        if (argument.hasMinimum && !argument.isOutsideAccepted) {
            broken(i, "is below its minimum", ZLV40_ERROR_BAD_ARGUMENT, setTo(argument.minimum - 1));
        }
        if (argument.hasMaximum && !argument.isOutsideAccepted) {
            broken(i, "is above its maximum", ZLV40_ERROR_BAD_ARGUMENT, setTo(argument.maximum + 1));
        }
        for (const FlagBit& flag : argument.flags) {
            bool isAccepted = flag.channels.empty();
            for (const std::uint32_t count : flag.channels) isAccepted = isAccepted || count == channels;
            if (isAccepted) continue;
            broken(i, "has a flag for other channel counts", ZLV40_ERROR_BAD_ARGUMENT,
                   [&](Value& v) { v.integer |= flag.value; });
        }
    }
}

}  // namespace zlvtest
