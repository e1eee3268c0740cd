// Makes fields of noise and writes slices of any kind through them.
#include "fuzz/listener.h"
#include "fuzz/topics.h"

namespace {

using zlvtest::Buffer;
using zlvtest::Input;

std::uint32_t Slice(void* field, Input& input)
{
    const std::uint32_t width = input.Byte() % 40, height = input.Byte() % 30;
    const auto stride = std::uint32_t(input.Number(4));
    const std::uint8_t function = input.Byte() % 3, null = input.Byte();
    double numbers[7];
    for (double& number : numbers) number = input.Measure(10);
    const Buffer out(std::size_t(width) * height * (function == 0 ? 1 : sizeof(double)), input);
    void* const handle = null == 0x7F ? nullptr : field;
    auto* const doubles = reinterpret_cast<double*>(null == 0x7E ? nullptr : out.get());
    const zlvtest::Listener listener(input, zlvtest::kExports, input.Byte() % 16);
    switch (function) {
    case 0:
        return ZLV40_GetPerlinNoise3DSliceBYTE(handle, null == 0x7E ? nullptr : out.get(), width, height, stride,
                                               numbers[0], numbers[1]);
    case 1: return ZLV40_GetPerlinNoise3DSliceDouble(handle, doubles, width, height, stride, numbers[0], numbers[1]);
    default:
        return ZLV40_GetPerlinNoise3DSliceDoubleEx(handle, doubles, width, height, stride, numbers[0], numbers[1],
                                                   numbers[2], numbers[3], numbers[4], numbers[5], numbers[6]);
    }
}

}  // namespace

void zlvtest::FuzzPerlin(Input& input)
{
    void* fields[2];
    for (void*& field : fields) {
        field = ZLV40_InitializePerlinNoise3D();
        RequireResult(input, "InitializePerlinNoise3D", field != nullptr, ZLV40_GetLastError());
    }
    const int slices = 1 + input.Byte() % 4;
    for (int i = 0; i < slices; ++i) {
        const std::uint32_t result = Slice(fields[input.Byte() % 2], input);
        RequireResult(input, "a slice", result, ZLV40_GetLastError());
    }
    for (void* const field : fields) {
        const std::uint32_t result = ZLV40_DestroyPerlinNoise3D(field);
        RequireResult(input, "DestroyPerlinNoise3D", result, ZLV40_GetLastError());
    }
}
