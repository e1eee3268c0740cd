// 64 samples at once: one 64-bit word of a mask. What is left of a row goes through a copy of that size.
#include "base/bit_masks.kernels.h"

#include "base/kernel_vectors.h"

#if !defined(ZLV_PORTABLE)
#include <immintrin.h>
#endif

namespace zlv::ZLV_TARGET {

namespace {

constexpr size_t kWordBytes = 8;
constexpr size_t kWordSamples = 8 * kWordBytes;

// Each byte's bits the other way round: processors number lanes from the lowest bit, masks from the top bit.
[[maybe_unused]] u64 TurnBytes(u64 bits)
{
    bits = (bits >> 1 & 0x5555555555555555u) | (bits & 0x5555555555555555u) << 1;
    bits = (bits >> 2 & 0x3333333333333333u) | (bits & 0x3333333333333333u) << 2;
    return (bits >> 4 & 0x0F0F0F0F0F0F0F0Fu) | (bits & 0x0F0F0F0F0F0F0F0Fu) << 4;
}

#if defined(ZLV_TARGET_avx512)

u64 FindInWord(const u8* samples, u8 value)
{
    return TurnBytes(_mm512_cmpeq_epi8_mask(_mm512_loadu_si512(samples), _mm512_set1_epi8(char(value))));
}

void SetInWord(u64 bits, u8 value, u8* samples)
{
    _mm512_mask_storeu_epi8(samples, TurnBytes(bits), _mm512_set1_epi8(char(value)));
}

#elif defined(ZLV_TARGET_avx2)

__m256i LoadHalf(const u8* samples) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(samples)); }

u64 FindInWord(const u8* samples, u8 value)
{
    const __m256i wanted = _mm256_set1_epi8(char(value));
    const auto find = [=](const u8* half) {
        return u64(u32(_mm256_movemask_epi8(_mm256_cmpeq_epi8(LoadHalf(half), wanted))));
    };
    return TurnBytes(find(samples) | find(samples + 32) << 32);
}

void SetInWord(u64 bits, u8 value, u8* samples)
{
    // Each of four bytes eight times, and of each copy another bit, the top bit first.
    const __m256i copies = _mm256_setr_epi64x(0, 0x0101010101010101, 0x0202020202020202, 0x0303030303030303);
    const __m256i bit = _mm256_set1_epi64x(0x0102040810204080);
    const __m256i wanted = _mm256_set1_epi8(char(value));
    for (size_t half = 0; half < 2; ++half) {
        u8* const at = samples + 32 * half;
        const __m256i bytes = _mm256_shuffle_epi8(_mm256_set1_epi32(i32(bits >> 32 * half)), copies);
        const __m256i isSet = _mm256_cmpeq_epi8(_mm256_and_si256(bytes, bit), bit);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(at), _mm256_blendv_epi8(LoadHalf(at), wanted, isSet));
    }
}

#else

using Bytes [[gnu::vector_size(16)]] = u8;
using Eights [[gnu::vector_size(16)]] = u64;

#if defined(ZLV_PORTABLE)

u64 FindInWord(const u8* samples, u8 value)
{
    u64 found = 0;
    for (size_t i = 0; i < kWordBytes; ++i) {
        u64 byte = 0;
        for (size_t k = 0; k < 8; ++k) byte = byte << 1 | (samples[8 * i + k] == value);
        found |= byte << 8 * i;
    }
    return found;
}

#else

u64 FindInWord(const u8* samples, u8 value)
{
    u64 found = 0;
    for (size_t i = 0; i < kWordSamples; i += sizeof(Bytes)) {
        const Bytes isValue = Bytes(Load<Bytes>(samples + i) == value);
        found |= u64(u32(_mm_movemask_epi8(__m128i(isValue)))) << i;
    }
    return TurnBytes(found);
}

#endif

void SetInWord(u64 bits, u8 value, u8* samples)
{
    constexpr u64 kCopies = 0x0101010101010101u, kBit = 0x0102040810204080u;
    const Bytes bit = Bytes(Eights{kBit, kBit});
    for (size_t i = 0; i < kWordSamples; i += sizeof(Bytes), bits >>= 16) {
        const Bytes bytes = Bytes(Eights{(bits & 255) * kCopies, (bits >> 8 & 255) * kCopies});
        const Bytes isSet = Bytes((bytes & bit) == bit);
        Store(samples + i, (isSet & value) | (~isSet & Load<Bytes>(samples + i)));
    }
}

#endif

void FindValue(const u8* samples, size_t count, u8 value, u8* mask)
{
    for (; count >= kWordBytes; count -= kWordBytes, samples += kWordSamples, mask += kWordBytes) {
        Store(mask, FindInWord(samples, value));
    }
    u8 last[kWordSamples] = {};
    __builtin_memcpy(last, samples, 8 * count);
    const u64 found = FindInWord(last, value);
    __builtin_memcpy(mask, &found, count);
}

void SetValue(const u8* mask, size_t count, u8 value, u8* samples)
{
    for (; count >= kWordBytes; count -= kWordBytes, samples += kWordSamples, mask += kWordBytes) {
        // Many words of a mask are empty.
        if (const u64 bits = Load<u64>(mask)) SetInWord(bits, value, samples);
    }
    u64 bits = 0;
    __builtin_memcpy(&bits, mask, count);
    if (bits == 0) return;
    u8 last[kWordSamples];
    __builtin_memcpy(last, samples, 8 * count);
    SetInWord(bits, value, last);
    __builtin_memcpy(samples, last, 8 * count);
}

}  // namespace

extern const BitMaskKernels kBitMaskKernels;
const BitMaskKernels kBitMaskKernels = {FindValue, SetValue};

}  // namespace zlv::ZLV_TARGET
