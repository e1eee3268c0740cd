// Every described effect as a row of a table, with a way to call it with any values.
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
    Handle,
    Callback,
    CallbackData
};

enum class Zero { Plain, Nothing, Refused };  // what a size of 0 gives

struct FlagBit {
    std::uint32_t value;
    std::vector<std::uint32_t> channels;  // the only counts with which it is accepted; empty for any
};

struct DescribedArgument {
    const char* name;
    Role role;
    std::uint32_t nullError = 0;  // 0: null is accepted
    Zero zero = Zero::Plain;
    double minimum = 0, maximum = 0, default_ = 0;
    bool hasMinimum = false, hasMaximum = false;
    bool isOutsideAccepted = false;  // limited or ignored instead of refused
    std::vector<FlagBit> flags = {};
};

struct DescribedEffect {
    const char* name;
    std::vector<std::uint32_t> channels;
    bool reports;
    bool canCancel;
    std::vector<DescribedArgument> arguments;
    std::uint32_t (*call)(const Value* values);
};

inline const std::vector<DescribedEffect>& DescribedEffects()
{
    static const std::vector<DescribedEffect> effects = {
#include "call_table.inc"
    };
    return effects;
}

}  // namespace zlvtest
