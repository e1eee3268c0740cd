// Rows of effects of pictures, of the frequency domain and of morphology.
#include "boundary/described_call.h"

#include <cstring>

namespace zlvtest {

namespace {

void TakeOnlyBytes(DescribedCall& call) { call["srcDoubles"].pointer = nullptr; }

void FreeGrid(DescribedCall& call, std::uint64_t grid)
{
    call.blocksFreed += grid != 0;
    ZLV40_FreeBlock(reinterpret_cast<void*>(grid));
}

// The image that a shadow was drawn into. Its address differs from call to call, and is forgotten.
void FreeShadow(DescribedCall& call, std::uint64_t result)
{
    if (result != 1) return;
    void* const place = call["outImage"].pointer;
    void* image;
    std::memcpy(&image, place, sizeof image);
    ++call.blocksFreed;
    ZLV40_FreeBlock(image);
    std::memset(place, 0, sizeof image);
}

constexpr std::uint32_t kHit[9] = {0, 0, 0, 0, 1, 0, 1, 1, 1}, kMiss[9] = {1, 1, 1, 0, 0, 0, 0, 0, 0};

// The same element for every pair.
void PointToElements(DescribedCall& call)
{
    const auto fill = [&](const char* argument, const std::uint32_t* element) {
        void* const pointers = call[argument].pointer;
        for (std::size_t i = 0; i < call["elementCount"].integer; ++i) {
            std::memcpy(static_cast<char*>(pointers) + i * sizeof element, &element, sizeof element);
        }
    };
    fill("hitElements", kHit);
    fill("missElements", kMiss);
}

}  // namespace

const std::vector<ExportRow>& FrequencyRows()
{
    static const std::vector<ExportRow> rows = {
        {.name = "ZLV40_AllocFFTGrid", .width = 16, .height = 8, .giveBack = FreeGrid},
        {.name = "ZLV40_DoFFT",
         .width = 16,
         .height = 8,
         .build = TakeOnlyBytes,
         .manners = kRefusesQuietly | kSucceedsWithCode | kHasRefusalsOfItsOwn},
        {.name = "ZLV40_DoFFTInverse",
         .width = 16,
         .height = 8,
         .manners = kRefusesQuietly | kWritesThenRefuses | kHasRefusalsOfItsOwn},
    };
    return rows;
}

const std::vector<ExportRow>& MorphologyRows()
{
    static const std::vector<ExportRow> rows = {
        {.name = "ZLV40_InvertBuffer", .settings = {Number("size", 61)}},
        {.name = "ZLV40_IntersectBuffers", .settings = {Number("size", 61)}},
        {.name = "ZLV40_UnionBuffers", .settings = {Number("size", 61)}},
        {.name = "ZLV40_XORBuffers", .settings = {Number("size", 61)}},
        {.name = "ZLV40_MorphoThinning1Bit", .settings = {Number("elementCount", 2)}, .build = PointToElements},
        {.name = "ZLV40_OpenGray", .manners = kRefusesQuietly},
        {.name = "ZLV40_CloseGray", .manners = kRefusesQuietly},
        // A block of width * height bytes is copied before the rows are written.
        {.name = "ZLV40_TophatGray", .manners = kRefusesQuietly | kAnswersOutsideItsPixels},
        {.name = "ZLV40_MorphoGradientGray", .manners = kRefusesQuietly},
    };
    return rows;
}

const std::vector<ExportRow>& PictureRows()
{
    static const std::vector<ExportRow> rows = {
        // A text of no lines is refused, and ended all the same.
        {.name = "ZLV40_ASCIIizeGrayscaleImage", .manners = kWritesThenRefuses},
        // Of the kind that a cancel stops.
        {.name = "ZLV40_CrackleRGB",
         .settings = {Number("morphKind", ZLV40_CRACKLE_DILATE)},
         .manners = kRefusesQuietly | kSucceedsWithCode},
        {.name = "ZLV40_SegmentedColorizeRGBImage", .manners = kSucceedsWithCode},
        {.name = "ZLV40_SegmentedColorizeRGB", .manners = kSucceedsWithCode},
        {.name = "ZLV40_ReflectImage", .settings = {Number("splitRow", 4), Number("reflectionHeight", 3)}},
        {.name = "ZLV40_DropShadow", .giveBack = FreeShadow},
        // The corners are known before the memory.
        {.name = "ZLV40_DropShadowEx", .giveBack = FreeShadow, .manners = kWritesThenRefuses},
        {.name = "ZLV40_Get3DSplinePoints",
         .settings = {Number("outCount", 9), Number("controlCount", 5), Number("order", 3)}},
    };
    return rows;
}

}  // namespace zlvtest
