// What the library keeps for a thread, set and asked for in any order, beside what should be there.
#include "fuzz/listener.h"
#include "fuzz/topics.h"

#include <algorithm>
#include <iterator>

namespace {

using zlvtest::Input;
using zlvtest::Require;

std::uint32_t GoOn(std::uint32_t, std::uint32_t, std::uint64_t) { return 1; }
std::uint32_t Stop(std::uint32_t, std::uint32_t, std::uint64_t) { return 0; }

constexpr ZLVProgressCallback kCallbacks[] = {nullptr, GoOn, Stop};

struct Records {
    ZLVProgressCallback callback = nullptr;
    std::uint64_t data = 0;
    std::uint32_t error = 0;
    bool isNested = false;
};

void Solarize(Records& records, bool isRefused)
{
    std::uint8_t pixel[3] = {100, 150, 200};
    const std::uint32_t result = ZLV40_SolarizeImage(isRefused ? nullptr : pixel, 1, 1, 3, 3, 0);
    // Effects that are called from within a callback report nothing.
    const bool isCancelled = !isRefused && !records.isNested && records.callback == Stop;
    records.error = isRefused ? ZLV40_ERROR_BAD_ARGUMENT : isCancelled ? ZLV40_ERROR_CANCELLED : 0;
    Require(result == (records.error == 0));
    Require(pixel[0] == 100 && pixel[1] == (isRefused ? 150 : 105) && pixel[2] == (isRefused ? 200 : 55));
}

void AskForVersion(Input& input)
{
    Require(ZLV40_GetLibVersion(nullptr) == nullptr);
    const zlvtest::Buffer text(ZLV40_VERSION_BYTES, input);
    auto* const buffer = reinterpret_cast<char*>(text.get());
    Require(ZLV40_GetLibVersion(buffer) == buffer);
    constexpr char kVersion[ZLV40_VERSION_BYTES] = "ZLV 4.0.10.3";
    Require(std::equal(std::begin(kVersion), std::end(kVersion), buffer));
}

void FindPower(std::uint32_t value)
{
    std::uint64_t power = 4;
    while (power <= value) power *= 2;
    Require(ZLV40_NextPowerOfTwo(value) == std::uint32_t(power));
}

void TakeStep(Input& input, Records& records)
{
    switch (input.Byte() % 8) {
    case 0:
        records.callback = kCallbacks[input.Byte() % std::size(kCallbacks)];
        records.data = input.Number(8);
        return ZLV40_SetCallback(records.callback, records.data);
    case 1: return Solarize(records, true);
    case 2: return Solarize(records, false);
    case 3:
        ZLV40_ThreadExit();
        if (!records.isNested) records = {};
        return;
    case 4:
        ZLV40_Exit();
        records.error = 0;
        return;
    case 5: return AskForVersion(input);
    case 6: return FindPower(std::uint32_t(input.Number(4)));
    default:
        ZLV40_ClearAllTransforms();
        records.error = 0;
        return;
    }
}

}  // namespace

void zlvtest::FuzzRecords(Input& input)
{
    const KeptCallback kept(kExports);
    Records records;
    records.isNested = input.GetHost().IsNested();
    ZLV40_SetCallback(nullptr, 0);
    ZLV40_ClearAllTransforms();
    const int steps = 1 + input.Byte() % 16;
    for (int step = 0; step < steps; ++step) {
        TakeStep(input, records);
        std::uint64_t data = 0;
        Require(ZLV40_GetCallback(&data) == records.callback && data == records.data);
        Require(ZLV40_GetCallback(nullptr) == records.callback);
        Require(ZLV40_GetLastError() == records.error);
    }
}
