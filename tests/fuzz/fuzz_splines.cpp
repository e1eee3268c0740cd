// Evaluates splines of any order through any points, on arrays of exactly their size.
#include "fuzz/topics.h"

#include "zlv40.h"

void zlvtest::FuzzSplines(Input& input)
{
    const std::uint32_t outCount = std::uint32_t(input.Number(2)) % 500, controlCount = input.Byte() % 60;
    const std::uint32_t order = std::uint32_t(input.Size(60));
    const std::uint8_t nulls = input.Byte();
    zlvtest::Buffer arrays[6];
    double* pointers[6];
    for (int i = 0; i < 6; ++i) {
        arrays[i] = zlvtest::Buffer((i < 3 ? controlCount : outCount) * sizeof(double), input);
        pointers[i] = nulls == i + 1 ? nullptr : reinterpret_cast<double*>(arrays[i].get());
    }
    const std::uint32_t result = ZLV40_Get3DSplinePoints(outCount, controlCount, order, pointers[0], pointers[1],
                                                         pointers[2], pointers[3], pointers[4], pointers[5]);
    zlvtest::RequireResult(input, "Get3DSplinePoints", result, ZLV40_GetLastError());
}
