// Draws overlays of any shape at any position, on buffers of exactly the described size.
//
// Twice, on bases that begin alike: what comes out must be the same, and the bytes between the rows untouched.
#include "base/merge.h"
#include "base/overlay.h"
#include "fuzz/topics.h"

namespace {

using namespace zlv;
using zlvtest::Input;

struct Layer {
    u32 width, height, channels, stride, bytesPerSample;

    size_t Bytes() const
    {
        if (width == 0 || height == 0) return 1;
        return (size_t(stride) * (height - 1) + size_t(width) * channels) * bytesPerSample;
    }
};

Layer ReadLayer(Input& input, u32 channels, u32 bytesPerSample)
{
    Layer layer = {u32(input.Byte() % 40), u32(input.Byte() % 20), channels, 0, bytesPerSample};
    layer.stride = layer.width * channels + input.Byte() % 4;
    return layer;
}

// Near the base mostly; anywhere sometimes, the ends of the range among it.
i32 ReadPosition(Input& input)
{
    switch (input.Byte() % 8) {
    case 0: return i32(u32(input.Number(4)));
    case 1: return INT32_MIN;
    case 2: return INT32_MAX;
    case 3: return INT32_MIN + input.Byte();
    case 4: return INT32_MAX - input.Byte();
    default: return i32(input.Byte() % 80) - 40;
    }
}

f64 ReadReal(Input& input) { return input.Byte() & 1 ? input.Real() : input.Byte() / 200.0; }

enum Function : u8 { kOverlay, kKeyed, kIndexed, kMerge, kPaint, kFunctions };
constexpr const char* kNames[] = {"overlay", "keyed overlay", "indexed overlay", "merge", "paint"};

struct Draw {
    Function function;
    Layer base, overlay;
    i32 x, y;
    f64 opacity, parameter;
    u32 mode, flags, color, tolerance;
};

Draw ReadDraw(Input& input)
{
    Draw draw{};
    draw.function = Function(input.Byte() % kFunctions);
    draw.mode = input.Byte() % 34;
    draw.flags = input.Byte();
    const u32 sampleBytes = draw.function == kOverlay && (draw.flags & kOverlaySixteenBit) ? 2 : 1;
    u32 baseChannels = 3, overlayChannels = 1;
    switch (draw.function) {
    case kOverlay: baseChannels = overlayChannels = input.Byte() % 6; break;
    case kKeyed:
        baseChannels = draw.flags & kKeyedFourByteBase ? 4 : 3;
        overlayChannels = draw.flags & kKeyedFourByteOverlay ? 4 : 3;
        break;
    case kMerge:
        baseChannels = 3 + input.Byte() % 2;
        overlayChannels = 4;
        break;
    case kPaint: baseChannels = 3 + input.Byte() % 2; break;
    default: break;
    }
    draw.base = ReadLayer(input, baseChannels, sampleBytes);
    draw.overlay = ReadLayer(input, overlayChannels, sampleBytes);
    draw.x = ReadPosition(input);
    draw.y = ReadPosition(input);
    draw.opacity = ReadReal(input);
    draw.parameter = ReadReal(input) * 200;
    draw.color = u32(input.Number(4));
    draw.tolerance = u32(input.Number(2));
    return draw;
}

u32 Run(const Draw& d, u8* base, const u8* overlay, const u8* palette)
{
    const Layer &b = d.base, &o = d.overlay;
    switch (d.function) {
    case kOverlay:
        return MV40_OverlayImage(base, b.width, b.height, b.channels, b.stride, overlay, o.width, o.height, o.stride,
                                 d.x, d.y, d.opacity, d.parameter, d.mode, d.flags);
    case kKeyed:
        return MV40_OverlayRGBTrans(base, b.width, b.height, b.stride, overlay, o.width, o.height, o.stride, d.x, d.y,
                                    d.opacity, d.color, d.tolerance, d.flags);
    case kIndexed:
        return MV40_Overlay8BitToRGB(base, b.width, b.height, b.stride, overlay, o.width, o.height, o.stride, palette,
                                     d.x, d.y, d.opacity, d.color & 255, d.flags);
    case kMerge:
        return MV40_MergeRGBA(base, b.width, b.height, b.channels, b.stride, overlay, o.width, o.height, o.stride, d.x,
                              d.y, d.opacity, d.mode % 6);
    default:
        return MV40_AlphaBlendColor(base, b.width, b.height, b.channels, b.stride, overlay, o.width, o.height, o.stride,
                                    d.color, d.x, d.y, d.flags);
    }
}

bool IsPadding(const Layer& layer, size_t byte)
{
    return layer.stride != 0 && byte / layer.bytesPerSample % layer.stride >= layer.width * layer.channels;
}

}  // namespace

void zlvtest::FuzzOverlays(Input& input)
{
    const Draw draw = ReadDraw(input);
    const auto overlay = zlvtest::Buffer(draw.overlay.Bytes(), input);
    const auto base = zlvtest::Buffer(draw.base.Bytes(), input);
    const auto palette = std::make_unique<u8[]>(1024);
    const auto before = std::make_unique<u8[]>(draw.base.Bytes());
    const auto again = std::make_unique<u8[]>(draw.base.Bytes());
    std::memcpy(before.get(), base.get(), draw.base.Bytes());
    std::memcpy(again.get(), base.get(), draw.base.Bytes());

    const u32 result = Run(draw, base.get(), overlay.get(), palette.get());
    zlvtest::RequireResult(input, kNames[draw.function], result, MV40_GetLastError());
    zlvtest::Require(Run(draw, again.get(), overlay.get(), palette.get()) == result);
    for (size_t i = 0; i < draw.base.Bytes(); ++i) {
        zlvtest::Require(base[i] == again[i]);
        zlvtest::Require((result == 1 && !IsPadding(draw.base, i)) || base[i] == before[i]);
    }
}
