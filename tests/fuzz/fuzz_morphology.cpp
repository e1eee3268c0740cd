// Calls the morphology with elements of any kind, on buffers of exactly the described size.
#include "fuzz/listener.h"
#include "fuzz/topics.h"

#include "zlv40.h"

#include <iterator>
#include <vector>

namespace {

using zlvtest::Buffer;
using zlvtest::Input;

using Bits = decltype(&ZLV40_MorphoDilation1Bit);
using Gray = decltype(&ZLV40_OpenGray);
using Logic = decltype(&ZLV40_UnionBuffers);

constexpr Bits kBits[] = {ZLV40_MorphoDilation1Bit, ZLV40_MorphoErosion1Bit, ZLV40_MorphoOpen1Bit,
                          ZLV40_MorphoClose1Bit, ZLV40_MorphoBoundaryExtraction1Bit};
constexpr Gray kGray[] = {ZLV40_OpenGray, ZLV40_CloseGray, ZLV40_TophatGray, ZLV40_MorphoGradientGray};
constexpr Logic kLogic[] = {ZLV40_IntersectBuffers, ZLV40_UnionBuffers, ZLV40_XORBuffers};

enum Kind : std::uint8_t { kOneElement, kHitOrMiss, kThinning, kGrayPlane, kLogicOfBuffers, kKinds };

// Sides from 0 to 12, and the entries for them, mostly small; no array at all sometimes.
struct Element {
    std::int32_t width, height;
    std::vector<std::uint32_t> entries;
    bool isNull;

    Element(Input& input, bool isSquare) : width(input.Byte() % 13), height(isSquare ? width : input.Byte() % 13)
    {
        isNull = input.Byte() % 16 == 15;
        entries.resize(std::size_t(width) * std::size_t(height) + 1);
        for (std::uint32_t& entry : entries) {
            const std::uint8_t value = input.Byte();
            entry = value < 128 ? value % 3 : std::uint32_t(value - 192);
        }
    }
    const std::uint32_t* Data() const { return isNull ? nullptr : entries.data(); }
};

struct Picture {
    std::uint32_t width, height, srcStride, dstStride;

    Picture(Input& input, std::uint32_t pixelsPerByte) : width(input.Byte() % 80), height(input.Byte() % 20)
    {
        const std::uint32_t row = Row(pixelsPerByte), less = input.Byte() % 8 == 0 ? 1 : 0;
        srcStride = row + input.Byte() % 4 - (row ? less : 0);
        dstStride = row + input.Byte() % 4 - (row ? less : 0);
    }
    std::uint32_t Row(std::uint32_t pixelsPerByte) const { return (width + pixelsPerByte - 1) / pixelsPerByte; }
    std::size_t Bytes(std::uint32_t stride, std::uint32_t pixelsPerByte) const
    {
        return width && height ? std::size_t(stride) * (height - 1) + Row(pixelsPerByte) : 1;
    }
};

std::uint32_t CallBits(Kind kind, Input& input)
{
    Picture p(input, 8);
    const Element first(input, kind == kThinning), second(input, kind == kThinning);
    const std::uint8_t function = input.Byte(), reserved = input.Byte();
    if (kind == kThinning) {
        const std::uint32_t stride = p.srcStride, iterations = input.Byte() % 8;
        const std::size_t size = std::size_t(stride) * p.height + 1;
        const auto src = Buffer(size, input), dst = Buffer(size, input);
        const std::uint32_t* const hits[] = {first.Data(), first.Data()};
        const std::uint32_t* const misses[] = {second.Data(), second.Data()};
        return ZLV40_MorphoThinning1Bit(src.get(), p.width, p.height, stride, dst.get(), hits, first.width, misses,
                                        second.width, function % 3, iterations, reserved);
    }
    const auto src = Buffer(p.Bytes(p.srcStride, 8), input), dst = Buffer(p.Bytes(p.dstStride, 8), input);
    if (kind == kHitOrMiss) {
        return ZLV40_MorphoHitOrMiss1Bit(src.get(), p.width, p.height, p.srcStride, dst.get(), p.dstStride,
                                         first.Data(), first.width, first.height, second.Data(), second.width,
                                         second.height, reserved);
    }
    return kBits[function % std::size(kBits)](src.get(), p.width, p.height, p.srcStride, dst.get(), p.dstStride,
                                              first.Data(), first.width, first.height, reserved);
}

// Its failures may be quiet ones.
void CallGray(Input& input)
{
    const Picture p(input, 1);
    const Element element(input, true);
    const std::size_t function = input.Byte() % std::size(kGray);
    const auto src = Buffer(p.Bytes(p.srcStride, 1), input), dst = Buffer(p.Bytes(p.dstStride, 1), input);
    kGray[function](src.get(), p.width, p.height, p.srcStride, element.Data(), std::uint32_t(element.width), dst.get(),
                    p.dstStride);
}

std::uint32_t CallLogic(Input& input)
{
    const std::uint32_t size = input.Byte();
    const std::size_t function = input.Byte() % (std::size(kLogic) + 1);
    const auto a = Buffer(size, input), b = Buffer(size, input), out = Buffer(size, input);
    if (function == std::size(kLogic)) return ZLV40_InvertBuffer(a.get(), size);
    return kLogic[function](a.get(), b.get(), out.get(), size);
}

}  // namespace

void zlvtest::FuzzMorphology(Input& input)
{
    const Kind kind = Kind(input.Byte() % kKinds);
    const zlvtest::Listener listener(input, zlvtest::kExports, input.Byte() % 8);
    if (kind == kGrayPlane) {
        CallGray(input);
    } else {
        const std::uint32_t result = kind == kLogicOfBuffers ? CallLogic(input) : CallBits(kind, input);
        zlvtest::RequireResult(input, "morphology", result, ZLV40_GetLastError());
    }
}
