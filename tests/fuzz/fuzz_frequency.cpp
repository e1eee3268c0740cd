// Takes a picture through the frequency functions in any order, with any numbers, on buffers of exactly their size.
#include "fuzz/topics.h"

#include <vector>

#include "zlv40.h"

namespace {

using zlvtest::Input;

struct Session {
    std::uint32_t width, height, stride;
    zlvtest::Buffer bytes, doubles, grid, picture;

    std::size_t Samples() const { return width && height ? std::size_t(height - 1) * stride + width : 1; }
};

// Powers of two mostly.
std::uint32_t ReadSide(Input& input)
{
    const std::uint8_t byte = input.Byte();
    return byte & 0x80 ? byte % 40 : 1u << byte % 7;
}

Session ReadSession(Input& input)
{
    Session session = {ReadSide(input), ReadSide(input), 0, {}, {}, {}, {}};
    session.stride = session.width + input.Byte() % 4;
    const std::size_t count = session.Samples();
    session.bytes = zlvtest::Buffer(count, input);
    session.doubles = zlvtest::Buffer(count * sizeof(double), input);
    session.grid = zlvtest::Buffer(std::size_t(session.width) * session.height * 2 * sizeof(double), input);
    session.picture = zlvtest::Buffer(count * sizeof(double), input);
    return session;
}

template <class T>
T* OrNull(const zlvtest::Buffer& buffer, bool isThere)
{
    return isThere ? reinterpret_cast<T*>(buffer.get()) : nullptr;
}

void Transform(const Session& s, std::uint8_t nulls, Input& input)
{
    double* const grid = OrNull<double>(s.grid, !(nulls & 4));
    const std::uint32_t result = ZLV40_DoFFT(OrNull<std::uint8_t>(s.bytes, nulls & 1),
                                             OrNull<double>(s.doubles, nulls & 2), s.width, s.height, s.stride, grid);
    const std::uint32_t error = ZLV40_GetLastError();
    const bool isExpected = !grid ? result == 5 && error == 0 : result == 1 || (result == 0 && error == 5);
    zlvtest::Require(isExpected);
    zlvtest::NoteResult(input, result, error);
}

void TransformBack(const Session& s, std::uint8_t nulls, Input& input)
{
    double* const grid = OrNull<double>(s.grid, !(nulls & 4));
    const std::uint32_t result = ZLV40_DoFFTInverse(s.width, s.height, grid);
    if (!grid && result == 5 && ZLV40_GetLastError() == 0) return;
    zlvtest::RequireResult(input, "DoFFTInverse", result, ZLV40_GetLastError());
}

void Filter(const Session& s, std::uint8_t nulls, Input& input)
{
    const std::int32_t kind = input.Byte() & 0x80 ? std::int32_t(input.Number(4)) : input.Byte() % 17;
    double params[4];
    for (double& value : params) value = input.Byte() & 1 ? input.Real() : input.Byte() / 8.0;
    const std::uint32_t result =
        ZLV40_FilterFFT(OrNull<double>(s.grid, !(nulls & 4)), s.width, s.height, kind, nulls & 8 ? nullptr : params);
    zlvtest::RequireResult(input, "FilterFFT", result, ZLV40_GetLastError());
}

void MakePicture(const Session& s, std::uint8_t nulls, Input& input)
{
    const std::uint32_t result = ZLV40_MakeGrayscaleFromFFT(
        OrNull<std::uint8_t>(s.picture, nulls & 1), OrNull<double>(s.picture, nulls & 2),
        OrNull<double>(s.grid, !(nulls & 4)), s.width, s.height, s.stride, nulls & 16, nulls & 32);
    zlvtest::RequireResult(input, "MakeGrayscaleFromFFT", result, ZLV40_GetLastError());
}

void Allocate(Input& input)
{
    const std::uint32_t width = std::uint32_t(input.Size(100)), height = std::uint32_t(input.Size(100));
    if (std::uint64_t(width) * height > 1 << 20) return;
    double* const grid = ZLV40_AllocFFTGrid(width, height);
    zlvtest::RequireResult(input, "AllocFFTGrid", grid != nullptr, ZLV40_GetLastError());
    if (grid) grid[2 * std::size_t(width) * height - 1] = 1;
    ZLV40_FreeBlock(grid);
}

}  // namespace

void zlvtest::FuzzFrequency(Input& input)
{
    std::vector<std::uint8_t> steps(1 + input.Byte() % 4);
    for (std::uint8_t& step : steps) step = input.Byte();
    const std::uint8_t nulls = input.Byte();
    Allocate(input);
    const Session session = ReadSession(input);
    for (const std::uint8_t step : steps) {
        switch (step % 4) {
        case 0: Transform(session, nulls, input); break;
        case 1: TransformBack(session, nulls, input); break;
        case 2: Filter(session, nulls, input); break;
        default: MakePicture(session, nulls, input); break;
        }
    }
}
