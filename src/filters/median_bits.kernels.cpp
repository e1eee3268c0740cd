// Majorities of bits: in small windows by adders over whole words, where word k of a number holds bit k of 64 numbers;
// in others by sliding sums of column counts.
#include "filters/median_bits.kernels.h"

#include "base/kernel_vectors.h"
#include "filters/kernel_negative_lanes.h"

#include <algorithm>
#include <utility>

namespace zlv::ZLV_TARGET {

namespace {

// ---- Small windows ----

u64 Majority(u64 a, u64 b, u64 c) { return (a & b) | (c & (a | b)); }

struct Sum {
    u64 bit, carry;
};

Sum Add(u64 a, u64 b) { return {a ^ b, a & b}; }
Sum Add(u64 a, u64 b, u64 c) { return {a ^ b ^ c, Majority(a, b, c)}; }

// The pixels that lie kOffset to the right of those of a word.
template <int kOffset>
u64 Shifted(const u64* words)
{
    if constexpr (kOffset == 0) return words[0];
    else if constexpr (kOffset > 0) return words[0] << kOffset | words[1] >> (64 - kOffset);
    else return words[0] >> -kOffset | words[-1] << (64 + kOffset);
}

constexpr size_t kBlock = 64;  // words

// How many pixels of each column are set, in binary: word k of digits is bit k.
using Digits = u64[kBlock + 2];

// Three bits of weight 2 or less from either side, the carry of weight 2, and one bit of weight 1: 5 of 9 or more.
u64 IsMajorityOf9(const u64* ones, const u64* twos)
{
    const Sum one = Add(Shifted<-1>(ones), ones[0], Shifted<1>(ones));
    const u64 a = Shifted<-1>(twos), b = twos[0], c = Shifted<1>(twos), d = one.carry;
    const u64 isThree = (a & b & (c | d)) | (c & d & (a | b));
    const u64 isTwo = (a & b) | (c & d) | ((a | b) & (c | d));
    return isThree | (isTwo & one.bit);
}

u64 IsMajorityOf25(const u64* ones, const u64* twos, const u64* fours)
{
    const Sum o = Add(Shifted<-2>(ones), Shifted<-1>(ones), ones[0]);
    const Sum one = Add(o.bit, Shifted<1>(ones), Shifted<2>(ones));
    const Sum t = Add(Shifted<-2>(twos), Shifted<-1>(twos), twos[0]);
    const Sum u = Add(Shifted<1>(twos), Shifted<2>(twos), o.carry);
    const Sum two = Add(t.bit, u.bit, one.carry);
    const Sum f = Add(Shifted<-2>(fours), Shifted<-1>(fours), fours[0]);
    const Sum g = Add(Shifted<1>(fours), Shifted<2>(fours), t.carry);
    const Sum h = Add(f.bit, g.bit, u.carry);
    const Sum four = Add(h.bit, two.carry);
    const u64 isSixteen =
        Majority(f.carry | g.carry, h.carry, four.carry) | (f.carry & g.carry) | (h.carry & four.carry);
    const u64 isEight = f.carry | g.carry | h.carry | four.carry;
    return isSixteen | (isEight & four.bit & (two.bit | one.bit));
}

void Majorities3(const u64* const* rows, size_t words, u64* majorities)
{
    for (size_t begin = 0; begin < words; begin += kBlock) {
        const size_t count = std::min(kBlock, words - begin);
        const u64* const a = rows[0] + begin - 1;
        const u64* const b = rows[1] + begin - 1;
        const u64* const c = rows[2] + begin - 1;
        Digits ones, twos;
        for (size_t i = 0; i < count + 2; ++i) {
            const Sum sum = Add(a[i], b[i], c[i]);
            ones[i] = sum.bit;
            twos[i] = sum.carry;
        }
        for (size_t i = 0; i < count; ++i) majorities[begin + i] = IsMajorityOf9(ones + i + 1, twos + i + 1);
    }
}

void Majorities5(const u64* const* rows, size_t words, u64* majorities)
{
    for (size_t begin = 0; begin < words; begin += kBlock) {
        const size_t count = std::min(kBlock, words - begin);
        const u64* row[5];
        for (size_t k = 0; k < 5; ++k) row[k] = rows[k] + begin - 1;
        Digits ones, twos, fours;
        for (size_t i = 0; i < count + 2; ++i) {
            const Sum first = Add(row[0][i], row[1][i], row[2][i]);
            const Sum second = Add(first.bit, row[3][i], row[4][i]);
            const Sum carries = Add(first.carry, second.carry);
            ones[i] = second.bit;
            twos[i] = carries.bit;
            fours[i] = carries.carry;
        }
        for (size_t i = 0; i < count; ++i) {
            majorities[begin + i] = IsMajorityOf25(ones + i + 1, twos + i + 1, fours + i + 1);
        }
    }
}

// ---- Large windows ----

// As many 16-bit numbers as go into one vector, or as the bits of one select.
constexpr size_t kSelected = std::min<size_t>(16, kVectorBytes / sizeof(u16));
using Selected __attribute__((vector_size(kSelected * sizeof(u16)))) = u16;

void AddRow(const u64* row, size_t words, u16 times, u16* counts)
{
    Selected select;
    for (size_t lane = 0; lane < kSelected; ++lane) select[lane] = u16(1u << (kSelected - 1 - lane));
    for (size_t i = 0; i < words; ++i) {
        for (size_t k = 0; k < kPixelsPerWord; k += kSelected, counts += kSelected) {
            const Selected bits = Selected{} + u16(row[i] >> (kPixelsPerWord - kSelected - k));
            const Selected isSet = Selected((bits & select) != 0);
            Store(counts, Load<Selected>(counts) + (isSet & times));
        }
    }
}

template <class Number>
struct Running {
    static constexpr size_t kLanes = std::min<size_t>(16, kVectorBytes / sizeof(Number));
    using Vector __attribute__((vector_size(kLanes * sizeof(Number)))) = Number;
    using Stored __attribute__((vector_size(kLanes * sizeof(u16)))) = u16;

    static Vector Widened(const u16* counts)
    {
        Stored stored;
        __builtin_memcpy(&stored, counts, sizeof stored);
        return __builtin_convertvector(stored, Vector);
    }

    // Each lane becomes the one kShift before it, and 0 without one.
    template <size_t kShift, size_t... kLane>
    static Vector Moved(const Vector& vector, std::index_sequence<kLane...>)
    {
        return __builtin_shufflevector(Vector{}, vector, int(kLanes - kShift + kLane)...);
    }

    // Each lane becomes the sum of those up to itself.
    template <size_t kShift = 1>
    static Vector SumsOf(const Vector& vector)
    {
        if constexpr (kShift < kLanes) {
            return SumsOf<2 * kShift>(vector + Moved<kShift>(vector, std::make_index_sequence<kLanes>()));
        } else {
            return vector;
        }
    }
};

// Pixel 0 from the lowest to the highest bit.
u64 Mirrored(u64 bits)
{
    bits = (bits >> 1 & 0x5555555555555555u) | (bits & 0x5555555555555555u) << 1;
    bits = (bits >> 2 & 0x3333333333333333u) | (bits & 0x3333333333333333u) << 2;
    bits = (bits >> 4 & 0x0F0F0F0F0F0F0F0Fu) | (bits & 0x0F0F0F0F0F0F0F0Fu) << 4;
    return __builtin_bswap64(bits);
}

template <class Number>
void Majorities(const u16* leaving, const u16* entering, i32 start, size_t words, u64* majorities)
{
    using R = Running<Number>;
    Number sum = Number(start);
    for (size_t i = 0; i < words; ++i) {
        u64 negative = 0;
        for (size_t k = 0; k < kPixelsPerWord; k += R::kLanes) {
            const typename R::Vector sums = sum + R::SumsOf(R::Widened(entering + k) - R::Widened(leaving + k));
            negative |= u64(NegativeLanes(sums)) << k;
            sum = sums[R::kLanes - 1];
        }
        majorities[i] = Mirrored(~negative);
        leaving += kPixelsPerWord;
        entering += kPixelsPerWord;
    }
}

}  // namespace

extern const MedianBitKernels kMedianBitKernels;
const MedianBitKernels kMedianBitKernels = {Majorities3, Majorities5, AddRow, Majorities<u16>, Majorities<u32>};

}  // namespace zlv::ZLV_TARGET
