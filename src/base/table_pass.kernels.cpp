// Table look-ups, a row at a time.
//
// AVX-512 holds a whole table of bytes in four registers (two byte permutes cover 256 entries). AVX2 has 16 entries a
// shuffle: it walks the sixteen parts of a table, which still beats a load for each sample. The baseline looks up.
#include "base/table_pass.kernels.h"

#include "base/kernel_wide_table.h"

#if !defined(ZLV_PORTABLE)
#include <immintrin.h>
#endif

namespace zlv::ZLV_TARGET {

namespace {

constexpr size_t kTableBytes = 256;

bool IsXorTable(const u8* table)
{
    const u8 mask = table[0];
    u8 difference = 0;
    for (size_t i = 0; i < kTableBytes; ++i) difference |= u8(table[i] ^ u8(i) ^ mask);
    return difference == 0;
}

// Calls mapBlock(samples, masks, count) with the masks of the samples; all counts but the last are kMaskBlock.
template <class MapBlock>
void ForBlocks(u8* samples, size_t count, const u8* masks, size_t period, MapBlock mapBlock)
{
    size_t i = 0;
    size_t phase = 0;
    for (; i + kMaskBlock <= count; i += kMaskBlock) {
        mapBlock(samples + i, masks + phase * kMaskBlock, kMaskBlock);
        if (++phase == period) phase = 0;
    }
    if (i < count) mapBlock(samples + i, masks + phase * kMaskBlock, count - i);
}

void XorSamples(u8* samples, size_t count, const u8* masks, size_t period)
{
    ForBlocks(samples, count, masks, period, [](u8* __restrict block, const u8* __restrict blockMasks, size_t size) {
        for (size_t i = 0; i < size; ++i) block[i] ^= blockMasks[i];
    });
}

u8 MapStep(u8 sample, const SteppedTable& table)
{
    u8 mapped = (sample & table.keep[0]) ^ table.flip[0];
    for (u32 k = 1; k < kMaxSteps; ++k) {
        if (sample >= table.first[k]) mapped = (sample & table.keep[k]) ^ table.flip[k];
    }
    return mapped;
}

void MapSteps(u8* samples, size_t count, const SteppedTable& table, const u8* masks, size_t period)
{
    const SteppedTable steps = table;
    ForBlocks(samples, count, masks, period, [=](u8* __restrict block, const u8* __restrict blockMasks, size_t size) {
        for (size_t i = 0; i < size; ++i) block[i] ^= u8((MapStep(block[i], steps) ^ block[i]) & blockMasks[i]);
    });
}

#if defined(ZLV_TARGET_avx512)

void MapSamples(u8* samples, size_t count, const u8* table)
{
    const WideTable wide = LoadTable(table);
    size_t i = 0;
    for (; i + 64 <= count; i += 64) {
        _mm512_storeu_si512(samples + i, LookUp(wide, _mm512_loadu_si512(samples + i)));
    }
    if (i == count) return;
    const __mmask64 rest = FirstLanes(count - i);
    _mm512_mask_storeu_epi8(samples + i, rest, LookUp(wide, _mm512_maskz_loadu_epi8(rest, samples + i)));
}

// Up to four channels: every table stays in registers and each lane takes the answer of its own channel.
template <size_t kChannels>
struct PixelTables {
    WideTable tables[kChannels];
    __mmask64 lanes[kChannels][kChannels];  // by channel, by vector of a group of kChannels vectors
};

template <size_t kChannels>
PixelTables<kChannels> LoadPixelTables(const void* const* tables)
{
    PixelTables<kChannels> all = {};
    for (size_t c = 0; c < kChannels; ++c) {
        if (!tables[c]) continue;
        all.tables[c] = LoadTable(static_cast<const u8*>(tables[c]));
        for (size_t i = c; i < kChannels * 64; i += kChannels) all.lanes[c][i / 64] |= __mmask64{1} << (i % 64);
    }
    return all;
}

template <size_t kChannels>
__m512i LookUpPixels(const PixelTables<kChannels>& all, __m512i samples, size_t vector)
{
    __m512i found = samples;
    for (size_t c = 0; c < kChannels; ++c) {
        found = _mm512_mask_blend_epi8(all.lanes[c][vector], found, LookUp(all.tables[c], samples));
    }
    return found;
}

template <size_t kChannels>
void MapPixelsWide(u8* samples, size_t pixels, const void* const* tables)
{
    const PixelTables<kChannels> all = LoadPixelTables<kChannels>(tables);
    const size_t count = pixels * kChannels;
    size_t i = 0;
    for (; i + kChannels * 64 <= count; i += kChannels * 64) {
        for (size_t v = 0; v < kChannels; ++v) {
            u8* const place = samples + i + v * 64;
            _mm512_storeu_si512(place, LookUpPixels<kChannels>(all, _mm512_loadu_si512(place), v));
        }
    }
    for (size_t v = 0; i < count; i += 64, ++v) {
        const __mmask64 rest = FirstLanes(count - i);
        const __m512i before = _mm512_maskz_loadu_epi8(rest, samples + i);
        _mm512_mask_storeu_epi8(samples + i, rest, LookUpPixels<kChannels>(all, before, v));
    }
}

#elif defined(ZLV_TARGET_avx2)

// Entry i of a table, for i = 16 * part + low: a shuffle finds `low` in a part. Walking up the parts, 16 is taken off
// the samples each time; those below zero then give 0. With each part stored as the difference from the one before
// it, the exclusive or of all answers so far is the entry of the part that a sample was last in.
struct WalkTable {
    __m256i differences[16];
};

WalkTable LoadTable(const u8* table)
{
    WalkTable walk;
    __m256i before = _mm256_setzero_si256();
    for (size_t part = 0; part < 16; ++part) {
        if (part == 8) before = _mm256_setzero_si256();  // the upper half of the samples walks by itself
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(table + part * 16));
        const __m256i both = _mm256_broadcastsi128_si256(bytes);
        walk.differences[part] = _mm256_xor_si256(both, before);
        before = both;
    }
    return walk;
}

// For samples 0 to 127; samples with the top bit set give any value.
__m256i WalkHalf(const __m256i* differences, __m256i samples)
{
    const __m256i sixteen = _mm256_set1_epi8(16);
    __m256i found = _mm256_shuffle_epi8(differences[0], samples);
    for (size_t part = 1; part < 8; ++part) {
        samples = _mm256_sub_epi8(samples, sixteen);
        found = _mm256_xor_si256(found, _mm256_shuffle_epi8(differences[part], samples));
    }
    return found;
}

__m256i LookUp(const WalkTable& table, __m256i samples)
{
    const __m256i lower = WalkHalf(table.differences, samples);
    const __m256i upper = WalkHalf(table.differences + 8, _mm256_xor_si256(samples, _mm256_set1_epi8(-128)));
    return _mm256_blendv_epi8(lower, upper, samples);
}

void MapSamples(u8* samples, size_t count, const u8* table)
{
    size_t i = 0;
    if (count >= 128) {  // fewer do not pay for the loading
        const WalkTable walk = LoadTable(table);
        for (; i + 32 <= count; i += 32) {
            __m256i* const place = reinterpret_cast<__m256i*>(samples + i);
            _mm256_storeu_si256(place, LookUp(walk, _mm256_loadu_si256(place)));
        }
    }
    for (; i < count; ++i) samples[i] = table[samples[i]];
}

#else

void MapSamples(u8* samples, size_t count, const u8* table)
{
    size_t i = 0;
    // Eight at a time: the stores do not wait for a chain of loads.
    for (; i + 8 <= count; i += 8) {
        u8 found[8];
        for (size_t k = 0; k < 8; ++k) found[k] = table[samples[i + k]];
        for (size_t k = 0; k < 8; ++k) samples[i + k] = found[k];
    }
    for (; i < count; ++i) samples[i] = table[samples[i]];
}

#endif

// Any number of channels, a load a sample.
void LookUpEach(u8* samples, size_t pixels, size_t channels, const void* const* tables)
{
    for (size_t c = 0; c < channels; ++c) {
        const u8* const table = static_cast<const u8*>(tables[c]);
        if (!table) continue;
        u8* sample = samples + c;
        for (size_t x = 0; x < pixels; ++x, sample += channels) *sample = table[*sample];
    }
}

void MapPixels(u8* samples, size_t pixels, size_t channels, const void* const* tables)
{
#if defined(ZLV_TARGET_avx512)
    if (channels == 2) return MapPixelsWide<2>(samples, pixels, tables);
    if (channels == 3) return MapPixelsWide<3>(samples, pixels, tables);
    if (channels == 4) return MapPixelsWide<4>(samples, pixels, tables);
#endif
    // A stretch that stays in the first-level cache goes through once a channel.
    constexpr size_t kStretchBytes = 8192;
    const size_t stretch = channels < kStretchBytes ? kStretchBytes / channels : 1;
    for (size_t x = 0; x < pixels; x += stretch) {
        const size_t count = pixels - x < stretch ? pixels - x : stretch;
        LookUpEach(samples + x * channels, count, channels, tables);
    }
}

}  // namespace

extern const TablePassKernels kTablePassKernels;
const TablePassKernels kTablePassKernels = {IsXorTable, XorSamples, MapSteps, MapSamples, MapPixels};

}  // namespace zlv::ZLV_TARGET
