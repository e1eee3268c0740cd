// Perlin noise: coherent noise in one, two or three dimensions.
//
// Source: K. Perlin, "An image synthesizer", SIGGRAPH (1985), in the form of his reference program.
#pragma once

#include "platform/types.h"

namespace zlv {

inline constexpr u32 kPerlinSize = 256;
inline constexpr u32 kPerlinEntries = 2 * kPerlinSize + 2;

// Coordinates are moved by this much before they are looked up: those above -4096 become positive. Below, truncation
// goes the other way and the field has a seam there.
inline constexpr f64 kPerlinOffset = 4096;

// A field. No pointers: it is embedded by value in what uses it, and a handle of the client's is its address.
struct PerlinNoise {
    i32 p[kPerlinEntries];      // a permutation of 0 to 255, again, and its first two entries
    f64 g3[kPerlinEntries][3];  // gradients, repeated like p: unit vectors, but for one drawn as zero, which is NaN
    f64 g2[kPerlinEntries][2];
    f64 g1[kPerlinEntries];  // of no particular length
    u8 start = 1;            // the tables are still to be built

    // Builds the tables from draws of the calling thread's random generator, which is that of an open call frame.
    void Build();
    void BuildIfNeeded()
    {
        if (start) Build();
    }

    // Whether the tables are such as Build makes: then no look-up leaves them.
    bool IsBuilt() const;

    // The noise at a point, about -1 to 1 and 0 where all coordinates are whole. They build the tables if need be. A
    // coordinate that is not finite gives NaN.
    f64 Noise1(f64 x);
    f64 Noise2(f64 x, f64 y);
    f64 Noise2(const f64 v[2]) { return Noise2(v[0], v[1]); }
    f64 Noise3(const f64 v[3]);

    // The one for n dimensions: 0 for none, Noise3 for three and any other number.
    f64 Noise(const f64* v, i32 n);
};

// A coordinate between two points of the lattice.
struct PerlinPlace {
    u32 b0, b1;  // the two points, 0 to 255
    f64 r0, r1;  // the distances from them

    explicit PerlinPlace(f64 coordinate);
};

constexpr f64 PerlinFade(f64 t) { return t * t * (3.0 - 2.0 * t); }
constexpr f64 PerlinBlend(f64 s, f64 a, f64 b) { return a + s * (b - a); }

}  // namespace zlv
