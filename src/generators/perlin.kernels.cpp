// Rows of Perlin noise.
//
// Points of a row that lie in one cell of the lattice share eight gradients. Where many do, they go side by side
// through the arithmetic; where few do, the four edges of a cell that lead along x do. Every number is computed by the
// operations of PerlinNoise::Noise3 or Noise2 in their order.
#include "generators/perlin.kernels.h"

#include "base/kernel_vectors.h"

namespace zlv::ZLV_TARGET {

namespace {

using Reals = RealsOf<f64>;
constexpr size_t kLanes = Lanes<f64>::kCount;
constexpr size_t kEdges = 4;  // of a cell along x: (y0, z0), (y1, z0), (y0, z1), (y1, z1)
constexpr u32 kMask = kPerlinSize - 1;

// The points t of a row that are cut to the same whole number.
struct Cell {
    f64 whole;
    u32 b0, b1;

    explicit Cell(f64 t)
    {
        constexpr f64 kLargest = 0x1p62;  // beyond, numbers are multiples of 256
        const i64 cut = -kLargest < t && t < kLargest ? i64(t) : 0;
        whole = -kLargest < t && t < kLargest ? f64(cut) : t;
        b0 = u32(cut) & kMask;
        b1 = (b0 + 1) & kMask;
    }

    // Of positive numbers. False for others, which then make cells of their own.
    bool Holds(f64 t) const { return whole > 0 && t >= whole && t < whole + 1; }

    // How many of the points, which rise or fall steadily, lie in this cell with the first one.
    size_t CountOf(const f64* t, size_t count) const
    {
        size_t inside = 1;
        while (inside + kLanes <= count && Holds(t[inside + kLanes - 1])) inside += kLanes;
        while (inside < count && Holds(t[inside])) ++inside;
        return inside;
    }
};

f64 Fade(f64 t) { return t * t * (3.0 - 2.0 * t); }

// A height that all points share.
struct Height {
    u32 b[2];
    f64 r[2], fade;

    explicit Height(f64 t)
    {
        const Cell cell(t);
        b[0] = cell.b0;
        b[1] = cell.b1;
        r[0] = t - cell.whole;
        r[1] = r[0] - 1.0;
        fade = Fade(r[0]);
    }
};

// What the four edges find at one point of the lattice along x: gradients, their third component times the distance.
struct Column {
    f64 x[kEdges], y[kEdges], z[kEdges];

    void Fill(const PerlinNoise& noise, u32 bx, const Cell& cellY, const Height& height)
    {
        const u32 i = u32(noise.p[bx]);
        const u32 corners[2] = {u32(noise.p[i + cellY.b0]), u32(noise.p[i + cellY.b1])};
        for (size_t k = 0; k < kEdges; ++k) {
            const f64* const gradient = noise.g3[corners[k & 1] + height.b[k >> 1]];
            x[k] = gradient[0];
            y[k] = gradient[1];
            z[k] = gradient[2] * height.r[k >> 1];
        }
    }
};

f64 NoiseOfPoint(const Column& left, const Column& right, f64 rx0, f64 ry0, f64 fadeOfZ)
{
    const f64 rx1 = rx0 - 1.0, ry1 = ry0 - 1.0, fade = Fade(rx0);
    const f64 ry[kEdges] = {ry0, ry1, ry0, ry1};
    f64 edge[kEdges];
    for (size_t k = 0; k < kEdges; ++k) {
        const f64 u = left.x[k] * rx0 + left.y[k] * ry[k] + left.z[k];
        const f64 v = right.x[k] * rx1 + right.y[k] * ry[k] + right.z[k];
        edge[k] = u + fade * (v - u);
    }
    const f64 fadeOfY = Fade(ry0);
    const f64 near = edge[0] + fadeOfY * (edge[1] - edge[0]);
    const f64 far = edge[2] + fadeOfY * (edge[3] - edge[2]);
    return near + fadeOfZ * (far - near);
}

// A column for every lane.
struct WideColumn {
    Reals x[kEdges], y[kEdges], z[kEdges];

    void Fill(const Column& column)
    {
        for (size_t k = 0; k < kEdges; ++k) {
            x[k] = Reals{} + column.x[k];
            y[k] = Reals{} + column.y[k];
            z[k] = Reals{} + column.z[k];
        }
    }

    // Where all points have one y, its products are known too.
    void TakeHeight(f64 ry0)
    {
        for (size_t k = 0; k < kEdges; ++k) y[k] *= k & 1 ? ry0 - 1.0 : ry0;
    }
};

template <bool kIsOneY>
void NoiseOfLanes(const WideColumn& left, const WideColumn& right, const Reals& rx0, const Reals& ry0, f64 fadeOfZ,
                  f64* out)
{
    const Reals rx1 = rx0 - 1.0, ry1 = ry0 - 1.0;
    const Reals fade = rx0 * rx0 * (3.0 - 2.0 * rx0);
    Reals edge[kEdges];
    for (size_t k = 0; k < kEdges; ++k) {
        const Reals u = left.x[k] * rx0 + (kIsOneY ? left.y[k] : left.y[k] * (k & 1 ? ry1 : ry0)) + left.z[k];
        const Reals v = right.x[k] * rx1 + (kIsOneY ? right.y[k] : right.y[k] * (k & 1 ? ry1 : ry0)) + right.z[k];
        edge[k] = u + fade * (v - u);
    }
    const Reals fadeOfY = ry0 * ry0 * (3.0 - 2.0 * ry0);
    const Reals near = edge[0] + fadeOfY * (edge[1] - edge[0]);
    const Reals far = edge[2] + fadeOfY * (edge[3] - edge[2]);
    Store(out, near + fadeOfZ * (far - near));
}

// Points of one cell. With one y, ty[0] is that of all.
template <bool kIsOneY>
void NoiseOfCell(const Column& left, const Column& right, const f64* tx, f64 wholeX, const f64* ty, f64 wholeY,
                 f64 fadeOfZ, f64* out, size_t count)
{
    if (count < 2 * kLanes) {
        for (size_t i = 0; i < count; ++i) {
            out[i] = NoiseOfPoint(left, right, tx[i] - wholeX, ty[kIsOneY ? 0 : i] - wholeY, fadeOfZ);
        }
        return;
    }
    WideColumn wideLeft, wideRight;
    wideLeft.Fill(left);
    wideRight.Fill(right);
    Reals ry = Reals{} + (ty[0] - wholeY);
    if (kIsOneY) {
        wideLeft.TakeHeight(ty[0] - wholeY);
        wideRight.TakeHeight(ty[0] - wholeY);
    }
    for (size_t next = 0; next < count; next += kLanes) {
        const size_t i = next + kLanes <= count ? next : count - kLanes;  // the last ones may be done twice
        if (!kIsOneY) ry = Load<Reals>(ty + i) - wholeY;
        NoiseOfLanes<kIsOneY>(wideLeft, wideRight, Load<Reals>(tx + i) - wholeX, ry, fadeOfZ, out + i);
    }
}

// Points that follow each other in one cell, and the columns on both sides of it.
struct Run {
    size_t first, count;
    f64 wholeX, wholeY;
    const Column* left;
};

// Columns are gathered for several runs before the first of them is used: vectors loaded right behind the single
// numbers that they are made of would wait for memory (bench: scale=0.97, 40 ns a point).
template <bool kIsOneY>
void NoiseOfPoints(const PerlinNoise& noise, const f64* tx, const f64* ty, const Height& height, f64* out, size_t count)
{
    constexpr size_t kRuns = 16;
    for (size_t i = 0; i < count;) {
        Run runs[kRuns];
        Column columns[2 * kRuns];
        size_t runCount = 0, columnCount = 0;
        u32 known = kPerlinSize, knownY = kPerlinSize;  // where the latest column stands in the lattice
        for (; runCount < kRuns && i < count; ++runCount) {
            const f64* const y = kIsOneY ? ty : ty + i;
            const Cell cellX(tx[i]), cellY(*y);
            size_t inside = cellX.CountOf(tx + i, count - i);
            if (!kIsOneY) inside = cellY.CountOf(y, inside);

            if (known != cellX.b0 || knownY != cellY.b0) columns[columnCount++].Fill(noise, cellX.b0, cellY, height);
            runs[runCount] = {i, inside, cellX.whole, cellY.whole, columns + columnCount - 1};
            columns[columnCount++].Fill(noise, cellX.b1, cellY, height);
            known = cellX.b1;
            knownY = cellY.b0;
            i += inside;
        }
        for (size_t r = 0; r < runCount; ++r) {
            const Run& run = runs[r];
            NoiseOfCell<kIsOneY>(run.left[0], run.left[1], tx + run.first, run.wholeX, kIsOneY ? ty : ty + run.first,
                                 run.wholeY, height.fade, out + run.first, run.count);
        }
    }
}

void Row(const PerlinNoise& noise, const PerlinPlane& plane, f64 row, f64 column, f64* out, size_t count)
{
    const Height height(plane.z + kPerlinOffset);
    const f64 b = row * plane.scale + plane.offsetY - plane.pivotY;
    f64 tx[kPerlinBlock], ty[kPerlinBlock];
    for (size_t i = 0; i < count; ++i) {
        const f64 a = (column + f64(i32(i))) * plane.scale + plane.offsetX - plane.pivotX;
        tx[i] = a * plane.cosine + b * plane.sine + plane.pivotX + kPerlinOffset;
        ty[i] = b * plane.cosine - a * plane.sine + plane.pivotY + kPerlinOffset;
    }
    // Without a turn a row has one y; where it has not (0 times infinity) x is no number either, and so the noise.
    if (plane.sine == 0) NoiseOfPoints<true>(noise, tx, ty, height, out, count);
    else NoiseOfPoints<false>(noise, tx, ty, height, out, count);
}

// Points of one cell of the plane's own field, at the distance ry0 from its upper edge.
void NoiseOfSquare(const PerlinNoise& noise, const Cell& cellX, const Cell& cellY, const f64* tx, f64 ry0, f64* out,
                   size_t count)
{
    const u32 left = u32(noise.p[cellX.b0]), right = u32(noise.p[cellX.b1]);
    const f64 *const g00 = noise.g2[noise.p[left + cellY.b0]], *const g10 = noise.g2[noise.p[right + cellY.b0]];
    const f64 *const g01 = noise.g2[noise.p[left + cellY.b1]], *const g11 = noise.g2[noise.p[right + cellY.b1]];
    const f64 ry1 = ry0 - 1.0, fadeOfY = Fade(ry0);
    const f64 y00 = g00[1] * ry0, y10 = g10[1] * ry0, y01 = g01[1] * ry1, y11 = g11[1] * ry1;
    const auto noiseAt = [&](const auto& rx0) {
        const auto rx1 = rx0 - 1.0;
        const auto fade = rx0 * rx0 * (3.0 - 2.0 * rx0);
        const auto u0 = rx0 * g00[0] + y00, v0 = rx1 * g10[0] + y10;
        const auto u1 = rx0 * g01[0] + y01, v1 = rx1 * g11[0] + y11;
        const auto a = u0 + fade * (v0 - u0), b = u1 + fade * (v1 - u1);
        return a + fadeOfY * (b - a);
    };
    size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) Store(out + i, noiseAt(Reals(Load<Reals>(tx + i) - cellX.whole)));
    for (; i < count; ++i) out[i] = noiseAt(tx[i] - cellX.whole);
}

void Level(const PerlinNoise& noise, const f64* x, f64 y, f64* out, size_t count)
{
    const f64 ty = y + kPerlinOffset;
    const Cell cellY(ty);
    for (size_t first = 0; first < count; first += kPerlinBlock) {
        const size_t block = count - first < kPerlinBlock ? count - first : kPerlinBlock;
        f64 tx[kPerlinBlock];
        for (size_t i = 0; i < block; ++i) tx[i] = x[first + i] + kPerlinOffset;
        for (size_t i = 0; i < block;) {
            const Cell cellX(tx[i]);
            const size_t inside = cellX.CountOf(tx + i, block - i);
            NoiseOfSquare(noise, cellX, cellY, tx + i, ty - cellY.whole, out + first + i, inside);
            i += inside;
        }
    }
}

void ToBytes(const f64* noise, u8* out, size_t count)
{
    size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        Reals v = Load<Reals>(noise + i) * 128.0 + 127.0;
        v = v > 0.0 ? v : Reals{};  // NaN too
        v = v < 255.0 ? v : Reals{} + 255.0;
        for (size_t k = 0; k < kLanes; ++k) out[i + k] = u8(i32(v[k]));
    }
    for (; i < count; ++i) {
        const f64 v = noise[i] * 128.0 + 127.0;
        out[i] = !(v > 0) ? u8(0) : v < 255 ? u8(v) : u8(255);
    }
}

}  // namespace

constinit const PerlinKernels kPerlinKernels = {Row, Level, ToBytes};

}  // namespace zlv::ZLV_TARGET
