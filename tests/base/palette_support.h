// Palettes and pictures for the tests of palettes.
#pragma once

#include "base/palette.h"
#include "support/base_layer.h"
#include "support/bytes.h"

#include <algorithm>
#include <utility>

namespace zlvtest {

using zlv::u32;
using zlv::u8;

enum class PaletteKind { Random, GrayRamp, OneColor, Cluster, Lattice, BlackTail, Count };

// `count` entries of four bytes and not one more; the fourth bytes are anything.
inline Bytes MakePalette(PaletteKind kind, u32 count, std::uint64_t seed)
{
    Bytes palette = RandomBytes(std::size_t(count) * 4, seed);
    Random random(seed + 1);
    for (u32 i = 0; i < count; ++i) {
        u8* const entry = palette.data() + 4 * i;
        for (u32 c = 0; c < 3; ++c) {
            switch (kind) {
            case PaletteKind::GrayRamp: entry[c] = u8(i); break;
            case PaletteKind::OneColor: entry[c] = u8(90 + c); break;
            case PaletteKind::Cluster: entry[c] = u8(64 + random.Below(8)); break;  // all in one cell
            case PaletteKind::Lattice: entry[c] = u8(32 * random.Below(9) - (random.Below(9) == 0)); break;  // ties
            case PaletteKind::BlackTail: entry[c] = i < 5 ? entry[c] : u8(0); break;
            default: break;
            }
        }
    }
    return palette;
}

enum class PictureKind { Noise, Gradient, FewColors, Flat, NearWhite, Count };

// A picture of 3 or 4 bytes a pixel.
struct TestPicture {
    u32 width, height, channels, stride;
    Bytes bytes;

    TestPicture(PictureKind kind, u32 theWidth, u32 theHeight, std::uint64_t seed, u32 theChannels = 3, u32 padding = 2)
        : width(theWidth),
          height(theHeight),
          channels(theChannels),
          stride(width * channels + padding),
          bytes(RandomBytes(std::size_t(stride) * height + 1, seed))  // never empty
    {
        const Bytes colors = RandomBytes(64, seed + 1);
        Random random(seed + 2);
        for (u32 y = 0; y < height; ++y) {
            for (u32 x = 0; x < width; ++x) {
                const u32 color = random.Below(20);
                for (u32 c = 0; c < 3; ++c) {
                    u8& sample = bytes[std::size_t(y) * stride + x * channels + c];
                    switch (kind) {
                    case PictureKind::Gradient: sample = u8((x * (c + 1) + y * 2) / 2 + random.Below(3)); break;
                    case PictureKind::FewColors: sample = colors[color * 3 + c]; break;
                    case PictureKind::Flat: sample = u8(100 + c); break;
                    case PictureKind::NearWhite: sample = u8(255 - random.Below(12)); break;
                    default: break;
                    }
                }
            }
        }
    }
};

inline const char* NameOf(PaletteKind kind)
{
    const char* const names[] = {"random", "gray ramp", "one colour", "cluster", "lattice", "black tail"};
    return names[int(kind)];
}

inline const char* NameOf(PictureKind kind)
{
    const char* const names[] = {"noise", "gradient", "few colours", "flat", "near white"};
    return names[int(kind)];
}

// Runs a callable for every kind.
template <class Kind, class Test>
void ForEveryKind(Test test)
{
    for (int kind = 0; kind < int(Kind::Count); ++kind) test(Kind(kind));
}

struct DitherSettings {
    u32 colors = 256, ditherKind = 1;
    u8 limit = 20;
    u32 flags = 0;
};

// Room for a picture's indices, in rows with padding.
inline constexpr u32 kIndexPadding = 3;
inline Bytes BlankIndices(const TestPicture& picture)
{
    return Bytes(std::size_t(picture.width + kIndexPadding) * picture.height + 1, 77);
}

// Each pointer that must not be null, missing.
inline constexpr struct {
    const char* shows;
    bool hasSource, hasDestination, hasPalette;
} kMissingPointers[] = {
    {"a null source", false, true, true},
    {"a null destination", true, false, true},
    {"a null palette", true, true, false},
};

}  // namespace zlvtest
