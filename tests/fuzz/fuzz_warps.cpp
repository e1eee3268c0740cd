// Puts warps into the list in any order and with any numbers, and sends pictures through it.
#include "fuzz/listener.h"
#include "fuzz/topics.h"

#include <cmath>
#include <iterator>

namespace {

using zlvtest::Buffer;
using zlvtest::Input;

// What the client's own warp does, and what it needs: alive until the list is empty.
struct Client {
    std::uint8_t kind = 0;
    std::uint32_t uses = 0;
};

// One topic's pictures and what its warps point to.
struct Stage {
    Input& input;
    std::uint32_t width, height;
    Client client;
    std::vector<Buffer> reliefs;
};

// What a warp may be told, read before it is known which it is: arguments of a call are read in any order.
struct Numbers {
    std::uint32_t width, height;  // the pictures' mostly, any sometimes
    std::int32_t offsetX, offsetY;
    std::uint32_t mode;
    double radius, strength, x, y, frequency;
};

std::int32_t ReadOffset(Input& input)
{
    return input.Byte() % 8 == 7 ? std::int32_t(input.Number(4)) : input.Byte() % 40 - 20;
}

Numbers ReadNumbers(const Stage& stage)
{
    Input& input = stage.input;
    const bool isOtherSize = input.Byte() % 8 == 7;
    return {isOtherSize ? std::uint32_t(input.Size(50)) : stage.width,
            isOtherSize ? std::uint32_t(input.Size(50)) : stage.height,
            ReadOffset(input),
            ReadOffset(input),
            std::uint32_t(input.Size(6)),
            input.Measure(40),
            input.Measure(40),
            input.Measure(20),
            input.Measure(20),
            input.Measure(10)};
}

// For warps that keep a table of a line: what fits into little memory.
std::uint32_t TableSize(std::uint32_t size) { return size % (1 << 16); }

// A client's warp may do what it likes, also to the list that it stands in. What leads back to itself it does once.
std::int32_t MapAsClient(double x, double y, double* outX, double* outY, void* userData)
{
    Client& client = *static_cast<Client*>(userData);
    const bool isTheTime = ++client.uses == 20;
    *outX = client.kind & 1 ? y : x + 0.5;
    *outY = client.kind & 2 ? x : y - 1;
    double extent[4];
    switch (client.kind >> 2 & 7) {
    case 1: return client.uses % 3 != 0;
    case 2: *outX = NAN; break;
    case 3:
        if (isTheTime) ZLV40_ClearAllTransforms();
        break;
    case 4:
        if (isTheTime) ZLV40_Exit();
        break;
    case 5:
        if (isTheTime) zlvtest::Require(ZLV40_AddUserTransform(0, 0, MapAsClient, userData) == 1);
        break;
    case 6:
        if (isTheTime) {
            zlvtest::Require(ZLV40_GetTransformDimensions(3, 2, &extent[0], &extent[1], &extent[2], &extent[3]) == 1);
        }
        break;
    case 7: ZLV40_ThreadExit(); break;  // does nothing here
    default: break;
    }
    return 1;
}

using AddWarp = std::uint32_t (*)(Stage& stage, const Numbers& numbers);

std::uint32_t AddPolygon(Stage& stage, const Numbers& n)
{
    Input& input = stage.input;
    std::vector<point> points(input.Byte() % 12);
    const bool isFar = input.Byte() % 8 == 7;
    for (point& corner : points) {
        const int x = std::int16_t(std::uint16_t(input.Number(2))), y = std::int16_t(std::uint16_t(input.Number(2)));
        corner = isFar ? point{x, y} : point{x % 40, y % 30};
    }
    return ZLV40_AddPolygonTransform(n.width, n.height, points.data(), std::uint32_t(points.size()), n.mode);
}

std::uint32_t AddBumps(Stage& stage, const Numbers& n)
{
    Input& input = stage.input;
    const std::uint32_t width = input.Byte() % 12, height = input.Byte() % 12;
    const bool isNull = input.Byte() == 0x7F;
    stage.reliefs.push_back(Buffer(std::size_t(width) * height, input));
    return ZLV40_AddBumpMapDisplacementTransform(n.width, n.height, n.strength,
                                                 isNull ? nullptr : stage.reliefs.back().get(), width, height);
}

// Ripples are made for each block of the picture when the warp is added: neither may be large.
std::uint32_t AddGlass(Stage& stage, const Numbers& n)
{
    Input& input = stage.input;
    const std::uint32_t tileWidth = input.Byte() % 40, tileHeight = input.Byte() % 40;
    const std::uint32_t bevelWidth = std::uint32_t(input.Size(10)), bevelStrength = std::uint32_t(input.Size(20));
    return ZLV40_AddGlassBlockTransform(stage.width, stage.height, tileWidth, tileHeight, bevelWidth, bevelStrength,
                                        n.mode & 1, n.frequency, n.x, n.strength);
}

// A seed that is the time.
std::uint32_t AddRandom(Stage& stage, const Numbers& n)
{
    stage.input.GetHost().MayDiffer();
    return ZLV40_AddRandomTransform(n.width, n.height, n.strength);
}

std::uint32_t AddClient(Stage& stage, const Numbers& n)
{
    const bool isNull = stage.client.kind == 0x7F;
    return ZLV40_AddUserTransform(n.width, n.height, isNull ? nullptr : MapAsClient, &stage.client);
}

constexpr AddWarp kWarps[] = {
    AddPolygon,
    AddBumps,
    AddGlass,
    AddRandom,
    AddClient,
    [](Stage&, const Numbers& n) {
        return ZLV40_AddPerlinDisplacementTransform(n.width, n.height, n.strength, n.x, n.y);
    },
    [](Stage&, const Numbers& n) { return ZLV40_AddMarbleTransform(n.width, n.height, n.frequency, n.x, n.y); },
    [](Stage&, const Numbers& n) {
        return ZLV40_AddEllipticalTransform(n.width, n.height, n.x, n.y, n.offsetX, n.offsetY,
                                            std::int32_t(n.mode) - 1);
    },
    [](Stage&, const Numbers& n) { return ZLV40_AddLensTransform(n.width, n.height, n.radius, n.offsetX, n.offsetY); },
    [](Stage&, const Numbers& n) { return ZLV40_AddOffsetTransform(n.width, n.height, n.x, n.y, n.mode); },
    [](Stage&, const Numbers& n) {
        return ZLV40_AddPinchTransform(n.width, n.height, n.radius, n.strength, n.offsetX, n.offsetY);
    },
    [](Stage&, const Numbers& n) {
        return ZLV40_AddPointAttractorTransform(n.width, n.height, n.strength, n.offsetX, n.offsetY, n.mode,
                                                n.frequency);
    },
    [](Stage&, const Numbers& n) {
        return ZLV40_AddRippleTransform(n.width, n.height, n.radius, n.strength, n.frequency, n.x, n.y, n.mode);
    },
    [](Stage&, const Numbers& n) {
        return ZLV40_AddSpinTransform(n.width, n.height, n.radius, n.strength * 20, n.offsetX, n.offsetY);
    },
    [](Stage&, const Numbers& n) {
        return ZLV40_AddSpinWaveTransform(n.width, n.height, n.radius, n.strength * 20, n.frequency, n.offsetX,
                                          n.offsetY);
    },
    [](Stage&, const Numbers& n) { return ZLV40_AddWowTransform(n.width, n.height, n.radius, n.mode); },
    [](Stage&, const Numbers& n) {
        return ZLV40_AddLineSliceTransform(TableSize(n.width), TableSize(n.height), n.offsetX, n.offsetY, n.mode);
    },
    [](Stage&, const Numbers& n) {
        return ZLV40_AddWaveTransform(TableSize(n.width), TableSize(n.height), n.strength, n.frequency, n.mode);
    },
    [](Stage&, const Numbers& n) {
        return ZLV40_AddZigZagTransform(TableSize(n.width), TableSize(n.height), n.strength, n.offsetX, n.mode);
    },
};

void Process(Stage& stage)
{
    Input& input = stage.input;
    const std::uint32_t channels = input.Byte() % 7, row = stage.width * channels;
    const std::uint32_t sourceStride = row + input.Byte() % 4, destinationStride = row + input.Byte() % 4;
    const auto flags = std::uint32_t(input.Size(16)), background = std::uint32_t(input.Number(4));
    const std::uint8_t nulls = input.Byte();
    const auto bytes = [&](std::uint32_t stride) {
        return stage.width && stage.height ? std::size_t(stride) * (stage.height - 1) + row : 0;
    };
    const Buffer source(bytes(sourceStride), input), destination(bytes(destinationStride), input);
    const zlvtest::Listener listener(input, zlvtest::kExports, input.Byte() % 16);
    const std::uint32_t result = ZLV40_TransformProcess(
        nulls == 0x7F ? nullptr : source.get(), stage.width, stage.height, sourceStride,
        nulls == 0x7E ? nullptr : destination.get(), destinationStride, std::int32_t(channels), flags, background);
    zlvtest::RequireResult(input, "TransformProcess", result, ZLV40_GetLastError());
}

void Measure(Stage& stage)
{
    double extent[4] = {};
    const std::uint32_t result =
        ZLV40_GetTransformDimensions(stage.width, stage.height, stage.input.Byte() == 0x7F ? nullptr : &extent[0],
                                     &extent[1], &extent[2], &extent[3]);
    zlvtest::RequireResult(stage.input, "GetTransformDimensions", result, ZLV40_GetLastError());
    zlvtest::Require(extent[0] <= stage.width && extent[1] <= stage.height && extent[2] >= 0 && extent[3] == extent[2]);
    stage.input.GetHost().Note(reinterpret_cast<const std::uint8_t*>(extent), sizeof extent);
}

}  // namespace

void zlvtest::FuzzWarps(Input& input)
{
    Stage stage = {input, input.Byte() % 24u, input.Byte() % 16u, {input.Byte(), 0}, {}};
    ZLV40_ClearAllTransforms();
    const int steps = 1 + input.Byte() % 12;
    for (int step = 0; step < steps; ++step) {
        const std::uint8_t kind = input.Byte() % 32;  // more than there are warps: the others use the list
        if (kind < std::size(kWarps)) {
            const std::uint32_t result = kWarps[kind](stage, ReadNumbers(stage));
            RequireResult(input, "a warp", result, ZLV40_GetLastError());
        } else if (kind < 20) {
            ZLV40_ClearAllTransforms();
        } else if (kind < 24) {
            Measure(stage);
        } else {
            Process(stage);
        }
    }
    ZLV40_ClearAllTransforms();  // the client's data and reliefs go
    Require(ZLV40_GetLastError() == 0);
}
