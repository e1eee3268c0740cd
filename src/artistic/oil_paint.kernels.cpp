// Counts of levels in a window that slides along a row.
//
// A level's key is its count above its distance from 255: the largest key is the largest count, and among equal ones
// that of the lowest level. Windows of up to 15 x 15 pixels have counts of 8 bits and keys of 16.
#include "artistic/oil_paint.kernels.h"
#include "runtime/vector_bytes.h"

#if !defined(ZLV_PORTABLE)
#include <immintrin.h>
#endif

namespace zlv::ZLV_TARGET {

namespace {

constexpr u32 kMostLevels = 256;
constexpr u32 kLevelBits = 8;
constexpr u32 kLargestSideOfNarrowKeys = 15;
constexpr u32 kSumMask = (1u << kOilSumBits) - 1;

// 2^32 / count, rounded up. A sum below 2^17 divided by a count below 2^9 is off by less than 2^-15, which is less than
// what a quotient lacks of the next whole number.
struct Reciprocals {
    u64 of[kLargestOilSide * kLargestOilSide + 1] = {};

    constexpr Reciprocals()
    {
        for (u64 count = 1; count < sizeof of / sizeof of[0]; ++count) of[count] = ((1ull << 32) + count - 1) / count;
    }
};
constexpr Reciprocals kReciprocals;

struct Color {
    u32 channels[3];
};

Color Mean(OilSum sum)
{
    const u64 reciprocal = kReciprocals.of[sum >> kOilCountShift];
    Color mean;
    for (u32 c = 0; c < 3; ++c) mean.channels[c] = u32(((sum >> (kOilSumBits * c) & kSumMask) * reciprocal) >> 32);
    return mean;
}

// Wider ones have fewer of the levels to look at and more to put together.
constexpr size_t kKeyBytes = kVectorBytes < 32 ? kVectorBytes : 32;

template <class Key>
using KeyLanes __attribute__((vector_size(kKeyBytes))) = Key;

template <class Key>
Key LargestOf(const KeyLanes<Key>& lanes)
{
    Key largest = lanes[0];
    for (u32 i = 1; i < kKeyBytes / sizeof(Key); ++i) largest = lanes[i] > largest ? lanes[i] : largest;
    return largest;
}

#if defined(ZLV_TARGET_avx512) || defined(ZLV_TARGET_avx2)

// Turned over, the largest number with a sign is the smallest one without.
i16 LargestOfEight(const __m128i& words)
{
    const __m128i turned = _mm_minpos_epu16(_mm_xor_si128(words, _mm_set1_epi16(0x7FFF)));
    return i16(_mm_cvtsi128_si32(turned) ^ 0x7FFF);
}

template <>
i16 LargestOf<i16>(const KeyLanes<i16>& lanes)
{
    const __m256i all = __m256i(lanes);
    return LargestOfEight(_mm_max_epi16(_mm256_castsi256_si128(all), _mm256_extracti128_si256(all, 1)));
}

#elif !defined(ZLV_PORTABLE)

template <>
i16 LargestOf<i16>(const KeyLanes<i16>& lanes)
{
    __m128i words = __m128i(lanes);
    words = _mm_max_epi16(words, _mm_srli_si128(words, 8));
    words = _mm_max_epi16(words, _mm_srli_si128(words, 4));
    words = _mm_max_epi16(words, _mm_srli_si128(words, 2));
    return i16(_mm_cvtsi128_si32(words));
}

#endif

// Key is i16 or i32: the baseline has no maximum of words without a sign.
template <class Key>
class Window {
public:
    explicit Window(u32 levels) : keyCount_((levels + kLanes) / kLanes * kLanes)
    {
        for (u32 level = 0; level <= kMostLevels; ++level) {
            sums_[level] = 0;
            keys_[level] = EmptyKey(level);
        }
    }

    void Add(const OilSum* pixels, const u16* levels, u32 count)
    {
        for (u32 i = 0; i < count; ++i) {
            sums_[levels[i]] += pixels[i];
            keys_[levels[i]] = Key(keys_[levels[i]] + kOne);
        }
    }

    void Remove(const OilSum* pixels, const u16* levels, u32 count)
    {
        for (u32 i = 0; i < count; ++i) {
            sums_[levels[i]] -= pixels[i];
            keys_[levels[i]] = Key(keys_[levels[i]] - kOne);
        }
    }

    // The most frequent level.
    u32 Best() const
    {
        Lanes largest = Load(0);
        for (u32 i = kLanes; i < keyCount_; i += kLanes) largest = Larger(largest, Load(i));
        return LevelOf(LargestOf<Key>(largest));
    }

    // The most frequent level below another one: the last that the other one has displaced. kMostLevels for none.
    u32 BestBelow(u32 level) const
    {
        Lanes largest = SetAll(kLowest);
        u32 i = 0;
        for (; i + kLanes <= level; i += kLanes) largest = Larger(largest, Load(i));
        Key key = LargestOf<Key>(largest);
        for (; i < level; ++i) key = keys_[i] > key ? keys_[i] : key;
        return key < Key(kLowest + kOne) ? kMostLevels : LevelOf(key);
    }

    OilSum Sum(u32 level) const { return sums_[level]; }

private:
    static constexpr Key kLowest = Key(1ull << (8 * sizeof(Key) - 1));
    static constexpr i32 kOne = 1 << kLevelBits;
    static constexpr u32 kLanes = kKeyBytes / sizeof(Key);
    using Lanes = KeyLanes<Key>;

    // The dummy behind the last level may hold anything.
    static Key EmptyKey(u32 level) { return Key(kLowest + i32(kMostLevels - 1 - (level & (kMostLevels - 1)))); }
    static u32 LevelOf(Key key) { return kMostLevels - 1 - (u32(key) & (kMostLevels - 1)); }

    static Lanes SetAll(Key key) { return Lanes{} + key; }
    static Lanes Larger(const Lanes& a, const Lanes& b) { return a > b ? a : b; }

    Lanes Load(u32 i) const
    {
        Lanes loaded;
        __builtin_memcpy(&loaded, keys_ + i, sizeof loaded);
        return loaded;
    }

    const u32 keyCount_;  // those that are looked at: whole vectors
    OilSum sums_[kMostLevels + 1];
    Key keys_[kMostLevels + 1];
};

template <class Key>
Color Paint(const Window<Key>& window, bool blends)
{
    const u32 best = window.Best();
    const OilSum bestSum = window.Sum(best);
    const Color color = Mean(bestSum);
    if (!blends) return color;
    const u32 second = window.BestBelow(best);
    if (second == kMostLevels) return color;
    const OilSum secondSum = window.Sum(second);
    const Color other = Mean(secondSum);
    const f64 ratio = f64(secondSum >> kOilCountShift) / f64(bestSum >> kOilCountShift);
    Color mixed;
    for (u32 c = 0; c < 3; ++c) mixed.channels[c] = u32(other.channels[c] * ratio + color.channels[c] * (1 - ratio));
    return mixed;
}

template <class Key>
void PaintRowBy(const OilColumns& columns, u32 levels, bool blends, u8* out)
{
    const u32 side = columns.side, radius = side / 2, width = columns.width;
    Window<Key> window(levels);
    const auto add = [&](u32 x) {
        window.Add(columns.pixels + size_t(x) * side, columns.levels + size_t(x) * side, side);
    };
    for (u32 x = 0; x < radius && x < width; ++x) add(x);
    for (u32 x = 0; x < width; ++x, out += 3) {
        if (width - x > radius) add(x + radius);
        if (x > radius) {
            const size_t left = size_t(x - radius - 1) * side;
            window.Remove(columns.pixels + left, columns.levels + left, side);
        }
        const Color color = Paint(window, blends);
        for (u32 c = 0; c < 3; ++c) out[c] = u8(color.channels[c]);
    }
}

void PaintRow(const OilColumns& columns, u32 levels, bool blends, u8* out)
{
    if (columns.side <= kLargestSideOfNarrowKeys) PaintRowBy<i16>(columns, levels, blends, out);
    else PaintRowBy<i32>(columns, levels, blends, out);
}

}  // namespace

extern const OilPaintKernels kOilPaintKernels;
const OilPaintKernels kOilPaintKernels = {PaintRow};

}  // namespace zlv::ZLV_TARGET
