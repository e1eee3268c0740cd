// Samples and their squares, added up lane by lane.
#include "filters/image_statistics.kernels.h"

namespace zlv::ZLV_TARGET {

namespace {

// Lines that are added up before they go to the lanes.
constexpr size_t kTogether = 4;

template <size_t kLines>
void AddSampleLines(const u8* __restrict samples, size_t lanes, u16* __restrict sums)
{
    for (size_t i = 0; i < lanes; ++i) {
        u16 sum = sums[i];
        for (size_t line = 0; line < kLines; ++line) sum = u16(sum + samples[line * lanes + i]);
        sums[i] = sum;
    }
}

template <size_t kLines>
void AddSquareLines(const u8* __restrict samples, size_t lanes, u16* __restrict sums, u32* __restrict squares)
{
    for (size_t i = 0; i < lanes; ++i) {
        u16 sum = sums[i];
        u32 square = squares[i];
        for (size_t line = 0; line < kLines; ++line) {
            const u16 sample = samples[line * lanes + i];
            sum = u16(sum + sample);
            square += u16(sample * sample);
        }
        sums[i] = sum;
        squares[i] = square;
    }
}

void AddSamples(const SampleLines& from, u16* sums)
{
    size_t line = 0;
    for (; line + kTogether <= from.lines; line += kTogether) {
        AddSampleLines<kTogether>(from.samples + line * from.lanes, from.lanes, sums);
    }
    for (; line < from.lines; ++line) AddSampleLines<1>(from.samples + line * from.lanes, from.lanes, sums);
}

void AddSquares(const SampleLines& from, u16* sums, u32* squares)
{
    size_t line = 0;
    for (; line + kTogether <= from.lines; line += kTogether) {
        AddSquareLines<kTogether>(from.samples + line * from.lanes, from.lanes, sums, squares);
    }
    for (; line < from.lines; ++line) AddSquareLines<1>(from.samples + line * from.lanes, from.lanes, sums, squares);
}

}  // namespace

extern const ImageStatisticsKernels kImageStatisticsKernels;
const ImageStatisticsKernels kImageStatisticsKernels = {AddSamples, AddSquares};

}  // namespace zlv::ZLV_TARGET
