// Weighted sums of lines, neighbouring samples side by side.
//
// Rounded weights decide most samples. A sample whose taps all have one value v is never among them: its sum is v, or 0
// where weights that add up to 0 were left as they are.
#include "base/resize_lines.kernels.h"

#include "base/kernel_near_sums.h"

namespace zlv::ZLV_TARGET {

namespace {

using HalfFloats __attribute__((vector_size(kVectorBytes / 2))) = f32;
using HalfInts __attribute__((vector_size(kVectorBytes / 2))) = i32;

constexpr size_t kUnitsTogether = 3;
static_assert(kUnit * kUnitsTogether <= kResizeLineRoom);

const f32* LineOf(const ResizeLines& lines, const ResizeContributor& tap)
{
    return lines.data + size_t(tap.sourceIndex - lines.first) * lines.pitch;
}

// Sets the lanes whose taps all have one value. Stops as soon as there is none.
void FindEqual(const ResizeContribList& list, const ResizeLines& lines, size_t at, Ints* equal)
{
    const f32* const first = LineOf(lines, list.taps[0]) + at;
    for (size_t v = 0; v < kUnitVectors; ++v) equal[v] = ~Ints{};
    for (u64 k = 1; k < list.count; ++k) {
        const f32* const line = LineOf(lines, list.taps[k]) + at;
        Ints any = {};
        for (size_t v = 0; v < kUnitVectors; ++v) {
            equal[v] &= Load<Floats>(line + v * kLanes) == Load<Floats>(first + v * kLanes);
            any |= equal[v];
        }
        if (!IsAnySet(any)) return;
    }
}

// The sums in double precision, truncated.
void SumExactly(const ResizeContribList& list, const ResizeLines& lines, size_t at, i32* samples)
{
    constexpr size_t kVectors = 2 * kUnitVectors;
    constexpr size_t kDoubleLanes = kLanes / 2;
    Doubles sums[kVectors];
    const auto weigh = [&](const ResizeContributor& tap, auto take) {
        const f32* const line = LineOf(lines, tap) + at;
        const Doubles weight = Broadcast(tap.weight);
        for (size_t v = 0; v < kVectors; ++v) {
            const HalfFloats numbers = Load<HalfFloats>(line + v * kDoubleLanes);
            take(sums[v], __builtin_convertvector(numbers, Doubles) * weight);
        }
    };
    weigh(list.taps[0], [](Doubles& sum, Doubles product) { sum = product; });
    for (u64 k = 1; k < list.count; ++k) weigh(list.taps[k], [](Doubles& sum, Doubles product) { sum += product; });
    for (size_t v = 0; v < kVectors; ++v) {
        Store(samples + v * kDoubleLanes, __builtin_convertvector(LimitToSamples(sums[v]), HalfInts));
    }
}

// One unit as it should be.
void WeighUnitExactly(const ResizeContribList& list, const ResizeLines& lines, size_t at, u8* out)
{
    const f32* const first = LineOf(lines, list.taps[0]) + at;
    Ints equal[kUnitVectors];
    FindEqual(list, lines, at, equal);
    Ints other = {};
    for (size_t v = 0; v < kUnitVectors; ++v) other |= ~equal[v];
    i32 samples[kUnit] = {};
    if (IsAnySet(other)) SumExactly(list, lines, at, samples);
    for (size_t v = 0; v < kUnitVectors; ++v) {
        const Ints value = __builtin_convertvector(Load<Floats>(first + v * kLanes), Ints);
        const Ints sum = Load<Ints>(samples + v * kLanes);
        Store(samples + v * kLanes, equal[v] ? value : sum);
    }
    for (size_t i = 0; i < kUnit; ++i) out[i] = u8(samples[i]);
}

// Neighbouring units by rounded weights, and again as they should be where these do not decide. Returns how many.
template <size_t kUnits>
size_t WeighUnits(const ResizeContribList& list, const ResizeLines& lines, size_t at, u8* out)
{
    constexpr size_t kVectors = kUnits * kUnitVectors;
    Floats sums[kVectors];
    const auto weigh = [&](const ResizeContributor& tap, auto take) {
        const f32* const line = LineOf(lines, tap) + at;
        const Floats weight = Broadcast(tap.nearWeight);
        for (size_t v = 0; v < kVectors; ++v) take(sums[v], Load<Floats>(line + v * kLanes) * weight);
    };
    weigh(list.taps[0], [](Floats& sum, Floats product) { sum = product; });
    for (u64 k = 1; k < list.count; ++k) weigh(list.taps[k], [](Floats& sum, Floats product) { sum += product; });
    StoreSamples(sums, out);

    const Floats limit = Broadcast(list.tolerance * list.tolerance);
    Floats leastOf[kUnits];
    Floats least = limit;
    for (size_t unit = 0; unit < kUnits; ++unit) {
        leastOf[unit] = LeastFraction(sums + unit * kUnitVectors);
        least = Min(leastOf[unit], least);
    }
    if (!IsAnySet(least < limit)) return 0;
    size_t again = 0;
    for (size_t unit = 0; unit < kUnits; ++unit) {
        if (!IsAnySet(leastOf[unit] < limit)) continue;
        WeighUnitExactly(list, lines, at + unit * kUnit, out + unit * kUnit);
        ++again;
    }
    return again;
}

void CopyLine(const f32* line, size_t count, u8* out)
{
    for (size_t i = 0; i < count; ++i) out[i] = u8(i32(line[i]));
}

bool Weigh(const ResizeContribList& list, const ResizeLines& lines, size_t count, u8* out)
{
    if (list.count == 1) {
        CopyLine(LineOf(lines, list.taps[0]), count, out);
        return false;
    }
    size_t again = 0;
    // Calls weigh(at, out) for units of the line; the last of them may be wider than what is left.
    const auto forUnits = [&](size_t at, size_t width, auto weigh) {
        for (; at + width <= count; at += width) again += weigh(at, out + at);
        return at;
    };
    const auto once = [&](size_t at, u8* to) { return WeighUnits<1>(list, lines, at, to); };
    const auto exactly = [&](size_t at, u8* to) {
        WeighUnitExactly(list, lines, at, to);
        return size_t(0);
    };
    size_t at = 0;
    if (list.isExact) {
        at = forUnits(at, kUnit, exactly);
    } else {
        at = forUnits(at, kUnit * kUnitsTogether,
                      [&](size_t from, u8* to) { return WeighUnits<kUnitsTogether>(list, lines, from, to); });
        at = forUnits(at, kUnit, once);
    }
    if (at < count) {
        u8 rest[kUnit];
        again += list.isExact ? exactly(at, rest) : once(at, rest);
        __builtin_memcpy(out + at, rest, count - at);
    }
    return 2 * again * kUnit > count;
}

// Sixteen bytes.
using Bytes __attribute__((vector_size(kResizeBlock))) = u8;

Bytes InterleaveLow(Bytes a, Bytes b)
{
    return __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
}
Bytes InterleaveHigh(Bytes a, Bytes b)
{
    return __builtin_shufflevector(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31);
}

// Four perfect shuffles of sixteen rows exchange rows and columns.
void TurnBlock(const Bytes* rows, f32* to, size_t toPitch)
{
    Bytes a[kResizeBlock], b[kResizeBlock];
    for (size_t i = 0; i < kResizeBlock; ++i) a[i] = rows[i];
    for (int round = 0; round < 4; ++round) {
        for (size_t i = 0; i < kResizeBlock / 2; ++i) {
            b[2 * i] = InterleaveLow(a[i], a[i + kResizeBlock / 2]);
            b[2 * i + 1] = InterleaveHigh(a[i], a[i + kResizeBlock / 2]);
        }
        for (size_t i = 0; i < kResizeBlock; ++i) a[i] = b[i];
    }
    u8 turned[kResizeBlock][kResizeBlock];
    __builtin_memcpy(turned, a, sizeof(turned));
    for (size_t s = 0; s < kResizeBlock; ++s) {
        for (size_t r = 0; r < kResizeBlock; ++r) to[s * toPitch + r] = f32(i32(turned[s][r]));
    }
}

void Turn(const u8* from, size_t fromPitch, size_t rows, size_t samples, f32* to, size_t toPitch)
{
    for (size_t r = 0; r < rows; r += kResizeBlock, from += kResizeBlock * fromPitch, to += kResizeBlock) {
        const size_t height = rows - r < kResizeBlock ? rows - r : kResizeBlock;
        for (size_t s = 0; s < samples; s += kResizeBlock) {
            const size_t width = samples - s < kResizeBlock ? samples - s : kResizeBlock;
            Bytes block[kResizeBlock] = {};
            if (width == kResizeBlock && height == kResizeBlock) {
                for (size_t i = 0; i < kResizeBlock; ++i) block[i] = Load<Bytes>(from + i * fromPitch + s);
            } else {
                for (size_t i = 0; i < height; ++i) __builtin_memcpy(&block[i], from + i * fromPitch + s, width);
            }
            TurnBlock(block, to + s * toPitch, toPitch);
        }
    }
}

}  // namespace

extern const ResizeLineKernels kResizeLineKernels;
const ResizeLineKernels kResizeLineKernels = {Turn, Weigh};

}  // namespace zlv::ZLV_TARGET
