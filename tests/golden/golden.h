// Golden rows: a checksum of every function on fixed inputs, which every build, instruction set and thread reproduces.
//
// A row says how the library does it (`apply`) and how the plain twin does it (`plain`). The checksum is the twin's:
// the test that runs the twins prints it when the row's is another. Never enter what the library gave.
#pragma once

#include "support/bytes.h"

#include <functional>
#include <string>
#include <vector>

namespace zlvtest {

// A picture of 61 x 37 pixels with rows that are padded by 6 bytes, and a second one for what is made of it.
struct GoldenPicture {
    static constexpr std::uint32_t kWidth = 61, kHeight = 37;
    std::uint32_t channels, stride;  // the stride counts bytes
    Bytes image, output;

    explicit GoldenPicture(std::uint32_t theChannels, std::uint32_t bytesPerSample = 1)
        : channels(theChannels),
          stride(kWidth * channels * bytesPerSample + 6),
          image(RandomBytes(std::size_t(stride) * kHeight, channels)),
          output(image.size(), 0x2A)
    {
    }

    // Both pictures as samples, and the stride that counts them.
    template <class T>
    T* Image()
    {
        return reinterpret_cast<T*>(image.data());
    }
    template <class T>
    T* Output()
    {
        return reinterpret_cast<T*>(output.data());
    }
    template <class T>
    std::uint32_t Stride() const
    {
        return stride / sizeof(T);
    }

    std::uint64_t Sum() const
    {
        Bytes both = image;
        both.insert(both.end(), output.begin(), output.end());
        return Checksum(both.data(), both.size());
    }
};

struct GoldenRow {
    std::string name;
    std::uint32_t channels;
    std::uint32_t bytesPerSample;
    std::function<std::uint32_t(GoldenPicture&)> apply;  // returns 1
    std::function<void(GoldenPicture&)> plain;
    std::uint64_t checksum;
};

// The exports, a file a family; they are also tried on the library that is shipped.
std::vector<GoldenRow> AdaptiveGolden();
std::vector<GoldenRow> ArtisticGolden();
std::vector<GoldenRow> CrackleGolden();
std::vector<GoldenRow> DisplacementGolden();
std::vector<GoldenRow> EdgesGolden();
std::vector<GoldenRow> FrequencyGolden();
std::vector<GoldenRow> GenerateGolden();
std::vector<GoldenRow> LayerStylesGolden();
std::vector<GoldenRow> MedianGolden();
std::vector<GoldenRow> MorphologyGolden();
std::vector<GoldenRow> NoiseGolden();
std::vector<GoldenRow> PushGolden();
std::vector<GoldenRow> ReflectionGolden();
std::vector<GoldenRow> SeamGolden();
std::vector<GoldenRow> SegmentedGolden();
std::vector<GoldenRow> ToneGolden();
std::vector<GoldenRow> WarpGolden();
std::vector<GoldenRow> WindowGolden();

// The base layer, a file a topic.
std::vector<GoldenRow> BufferGolden();
std::vector<GoldenRow> ConvolutionGolden();
std::vector<GoldenRow> GaussianGolden();
std::vector<GoldenRow> HistogramGolden();
std::vector<GoldenRow> OverlayGolden();
std::vector<GoldenRow> PaletteGolden();
std::vector<GoldenRow> PolygonGolden();
std::vector<GoldenRow> ResizeGolden();

}  // namespace zlvtest
