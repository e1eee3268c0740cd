// Every export as a row of a table, with a way to call it with any values. Link boundary/call_table.cpp.
#pragma once

#include "zlv40.h"

#include <cstdint>
#include <vector>

namespace zlvtest {

struct Value {
    std::uint64_t integer = 0;
    double real = 0;
    void* pointer = nullptr;
};

enum class Role {
    Image,
    Width,
    Height,
    Channels,
    Stride,
    Mask,
    Flags,
    Number,
    Choice,
    Count,
    Out,
    In,
    Point,
    Handle,
    Callback,
    CallbackData
};

enum class ArgumentKind { Pointer, Function, Integer, Real };

// How a call tells that it refused: 0 in place of 1, a null object, or not at all.
enum class Answer { Status, Object, Nothing };

enum class Zero { Plain, Nothing, Refused };  // what a size of 0 gives

struct FlagBit {
    std::uint32_t value;
    std::vector<std::uint32_t> channels;  // the only counts with which it is accepted; empty for any
};

// Where an image finds its numbers: indexes of arguments, -1 for none. Without a stride its rows are dense.
struct DescribedImage {
    int width = -1, height = -1, channels = -1, stride = -1;
    std::uint32_t strideBytes = 1;    // what the stride counts
    std::uint32_t fixedChannels = 0;  // when no argument tells the count; 0: the count that the effect is called with
    std::uint32_t sampleBits = 8;
    bool isWritten = false;
    bool hasWholeRows = false;  // rows are read or written whole, padding included, the last one too
    bool isPerChannel = false;  // one sample a channel, whatever the picture's size
    bool isText = false;        // each row ends with a line feed, and a zero follows the last one
    int wider = -1;             // the number by which it is wider than `width` says

    std::uint64_t RowBytes(std::uint64_t pixels, std::uint64_t channelCount) const
    {
        return (pixels * channelCount * sampleBits + 7) / 8 + isText;
    }
};

struct DescribedArgument {
    const char* name;
    Role role;
    ArgumentKind kind;
    std::uint32_t nullError = 0;  // 0: null is accepted
    Zero zero = Zero::Plain;
    std::uint32_t zeroError = 0;  // of a refused one
    double minimum = 0, maximum = 0, default_ = 0;
    bool hasMinimum = false, hasMaximum = false;
    bool costs = false;  // the time that a call takes grows with it
    bool isSigned = false;
    std::uint32_t bits = 0;          // of an integer
    bool isOutsideAccepted = false;  // limited or ignored instead of refused
    std::vector<FlagBit> flags = {};
    std::uint32_t unsweptFlags = 0;  // bits with which the call keeps to rules of its own
    DescribedImage image = {};
    point defaultPoint = {};
    std::vector<std::uint8_t> bytes = {};  // of an array that is only read: what it holds by default
    std::size_t elementBytes = 0;          // of an array
    std::size_t count = 0;                 // of its elements, times the values of countOf; 0: not described
    std::vector<int> countOf = {};         // indexes of arguments
    bool isRead = false;                   // an array that is only read
};

struct DescribedEffect {
    const char* name;
    bool isSwept;  // can be called knowing no more than this row
    Answer answer;
    std::vector<std::uint32_t> channels;
    std::vector<std::uint32_t> errors;
    bool reports;
    bool canCancel;
    bool repeats = true;        // a call on a fresh thread gives the same bytes again
    std::uint32_t cancelError;  // 0: a cancel leaves no code
    bool isCancelQuiet;         // some cancels leave none, whatever cancelError is
    std::vector<DescribedArgument> arguments;
    std::uint64_t (*call)(const Value* values);  // what it returned: a number, or a pointer's
};

const std::vector<DescribedEffect>& DescribedExports();

// Those that are effects of pictures alone.
const std::vector<DescribedEffect>& DescribedEffects();

}  // namespace zlvtest
