// A call of an export that works, to be broken in one place after the other.
#pragma once

#include "boundary/export_rows.h"
#include "support/bytes.h"
#include "support/guarded_buffer.h"
#include "support/last_error.h"

#include <memory>

namespace zlvtest {

// How a call ended.
struct Outcome {
    bool isDone;
    std::uint32_t code;  // the last error
    bool operator==(const Outcome&) const = default;
};

class DescribedCall {
public:
    static constexpr std::uint32_t kWidth = 13, kHeight = 7, kPadding = 3;
    static constexpr std::uint8_t kFill = 0xA7;

    DescribedCall(const DescribedEffect& effect, std::uint32_t channels, Flush flush = Flush::ToEnd);
    ~DescribedCall();
    DescribedCall(const DescribedCall&) = delete;
    DescribedCall& operator=(const DescribedCall&) = delete;

    // What the export returned. A call may run any number of times, with GiveBack after each.
    std::uint64_t Run();
    void GiveBack();
    // Runs, asks for the code, and gives back.
    Outcome RunWhole();
    // How the latest Run ended.
    Outcome Ended() const;

    void Set(const Setting& setting) { values[IndexOf(setting.argument)] = setting.value; }
    std::size_t IndexOf(std::string_view argument) const;
    Value& operator[](std::string_view argument) { return values[IndexOf(argument)]; }

    // Memory between guard pages for an argument that points; an argument's null is a value as any other.
    std::uint8_t* NewArray(std::string_view argument, std::size_t bytes, bool isWritten);

    // Every byte of all memory as it was when the call was made.
    bool IsUntouched() const;
    // Every byte of what is only read as it was.
    bool AreSourcesUntouched() const;
    // The bytes between the pixels that the arguments describe now as they were.
    bool IsPaddingUntouched() const;
    // Takes what is there for what was there.
    void Remember();
    // What the call has written.
    Bytes Written() const;

    const DescribedEffect& Effect() const { return effect_; }
    const ExportRow& Row() const { return row_; }

    std::vector<Value> values;
    void* handle = nullptr;         // of the row, which makes and frees it
    std::uint32_t blocksFreed = 0;  // by the row, of those that the library gave away

private:
    struct Memory {
        std::size_t argument;
        bool isWritten;
        std::unique_ptr<GuardedBuffer> buffer;
        Bytes before;
    };

    const DescribedEffect& effect_;
    const ExportRow& row_;
    const std::uint32_t channels_;
    const Flush flush_;
    Random random_{7};
    std::vector<Memory> memory_;
    std::vector<std::unique_ptr<point>> points_;
    std::uint64_t result_ = 0;
    std::uint32_t code_ = 0;

    std::uint32_t Width() const { return row_.width ? row_.width : kWidth; }
    std::uint32_t Height() const { return row_.height ? row_.height : kHeight; }
    std::uint8_t* NewMemory(std::size_t argument, std::size_t bytes, bool isWritten, std::uint8_t fill);
    void SetNumber(std::size_t i);
    void MakeMemory(std::size_t i);
    std::uint8_t* MakeImage(std::size_t i);
    std::uint8_t* MakeDescribedArray(std::size_t i);
    void FillRow(std::uint8_t* row, std::size_t bytes, std::uint32_t sampleBits);
    static bool IsUntouched(const Memory& memory);
    bool IsPixel(const Memory& memory, std::size_t offset) const;
};

// The counts with which an export is called; any one when it has no channels.
std::vector<std::uint32_t> ChannelCounts(const DescribedEffect& effect);

// Runs check(call, what, error) for every way to break one argument whose answer is described as refused.
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
        // What is below a minimum of 1 is the zero that may have a code of its own.
        if (argument.hasMinimum && !argument.isOutsideAccepted && !(argument.minimum == 1 && argument.zeroError)) {
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
