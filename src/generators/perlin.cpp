#include "generators/perlin.h"

#include "runtime/math.h"
#include "runtime/random.h"

#include <cstring>
#include <utility>

namespace zlv {

namespace {

constexpr u32 kExtra = kPerlinEntries - kPerlinSize;  // entries that repeat the first ones

// -1 to 255/256.
f64 DrawComponent(MVThreadContext& context) { return (i32(DrawRandom(context) & 511) - 256) * 0.00390625; }

// A vector of zeros becomes NaN, which its neighbourhood in the field then is.
template <size_t kDimensions>
void DrawUnitVector(MVThreadContext& context, f64 (&v)[kDimensions])
{
    f64 squares = 0;
    for (f64& component : v) {
        component = DrawComponent(context);
        squares += component * component;
    }
    const f64 length = Sqrt(squares);
    for (f64& component : v) component /= length;
}

f64 Dot(const f64 (&g)[2], f64 x, f64 y) { return g[0] * x + g[1] * y; }
f64 Dot(const f64 (&g)[3], f64 x, f64 y, f64 z) { return g[0] * x + g[1] * y + g[2] * z; }

// Whether a table's last entries are its first ones, as bytes: there may be NaN.
bool Repeats(const void* table, size_t entryBytes)
{
    const u8* const bytes = static_cast<const u8*>(table);
    return std::memcmp(bytes + kPerlinSize * entryBytes, bytes, kExtra * entryBytes) == 0;
}

// The entries of p for the four corners of a cell in the plane.
struct Corners {
    u32 b00, b10, b01, b11;

    Corners(const i32* p, const PerlinPlace& x, const PerlinPlace& y)
    {
        const u32 i = u32(p[x.b0]), j = u32(p[x.b1]);
        b00 = u32(p[i + y.b0]);
        b10 = u32(p[j + y.b0]);
        b01 = u32(p[i + y.b1]);
        b11 = u32(p[j + y.b1]);
    }
};

}  // namespace

PerlinPlace::PerlinPlace(f64 coordinate)
{
    // Numbers beyond are whole, and multiples of 256.
    constexpr f64 kLargest = 0x1p62;
    const f64 t = coordinate + kPerlinOffset;
    const bool isOrdinary = -kLargest < t && t < kLargest;
    const i64 whole = isOrdinary ? i64(t) : 0;
    b0 = u32(whole) & (kPerlinSize - 1);
    b1 = (b0 + 1) & (kPerlinSize - 1);
    r0 = isOrdinary ? t - f64(whole) : t - t;
    r1 = r0 - 1.0;
}

void PerlinNoise::Build()
{
    MVThreadContext& context = *baseContexts.Get();
    for (u32 i = 0; i < kPerlinSize; ++i) {
        p[i] = i32(i);
        g1[i] = DrawComponent(context);
        DrawUnitVector(context, g2[i]);
        DrawUnitVector(context, g3[i]);
    }
    for (u32 i = kPerlinSize - 1; i > 0; --i) std::swap(p[i], p[DrawRandom(context) & (kPerlinSize - 1)]);
    for (u32 i = 0; i < kExtra; ++i) {
        p[kPerlinSize + i] = p[i];
        g1[kPerlinSize + i] = g1[i];
        std::memcpy(g2[kPerlinSize + i], g2[i], sizeof g2[i]);
        std::memcpy(g3[kPerlinSize + i], g3[i], sizeof g3[i]);
    }
    start = 0;
}

bool PerlinNoise::IsBuilt() const
{
    if (start) return false;
    bool isThere[kPerlinSize] = {};
    for (u32 i = 0; i < kPerlinSize; ++i) {
        if (p[i] < 0 || p[i] >= i32(kPerlinSize) || isThere[p[i]]) return false;
        isThere[p[i]] = true;
    }
    return Repeats(p, sizeof *p) && Repeats(g1, sizeof *g1) && Repeats(g2, sizeof *g2) && Repeats(g3, sizeof *g3);
}

f64 PerlinNoise::Noise1(f64 x)
{
    BuildIfNeeded();
    const PerlinPlace place(x);
    return PerlinBlend(PerlinFade(place.r0), place.r0 * g1[p[place.b0]], place.r1 * g1[p[place.b1]]);
}

f64 PerlinNoise::Noise2(f64 x, f64 y)
{
    BuildIfNeeded();
    const PerlinPlace px(x), py(y);
    const Corners corner(p, px, py);
    const f64 sx = PerlinFade(px.r0);
    const f64 a = PerlinBlend(sx, Dot(g2[corner.b00], px.r0, py.r0), Dot(g2[corner.b10], px.r1, py.r0));
    const f64 b = PerlinBlend(sx, Dot(g2[corner.b01], px.r0, py.r1), Dot(g2[corner.b11], px.r1, py.r1));
    return PerlinBlend(PerlinFade(py.r0), a, b);
}

f64 PerlinNoise::Noise3(const f64 v[3])
{
    BuildIfNeeded();
    const PerlinPlace px(v[0]), py(v[1]), pz(v[2]);
    const Corners corner(p, px, py);
    const f64 sx = PerlinFade(px.r0), sy = PerlinFade(py.r0);
    const auto face = [&](u32 bz, f64 rz) {
        const f64 a =
            PerlinBlend(sx, Dot(g3[corner.b00 + bz], px.r0, py.r0, rz), Dot(g3[corner.b10 + bz], px.r1, py.r0, rz));
        const f64 b =
            PerlinBlend(sx, Dot(g3[corner.b01 + bz], px.r0, py.r1, rz), Dot(g3[corner.b11 + bz], px.r1, py.r1, rz));
        return PerlinBlend(sy, a, b);
    };
    return PerlinBlend(PerlinFade(pz.r0), face(pz.b0, pz.r0), face(pz.b1, pz.r1));
}

f64 PerlinNoise::Noise(const f64* v, i32 n)
{
    switch (n) {
    case 0: return 0;
    case 1: return Noise1(v[0]);
    case 2: return Noise2(v);
    default: return Noise3(v);
    }
}

}  // namespace zlv
