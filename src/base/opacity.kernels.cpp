// Mixing by opacity. Plain loops, which the compiler turns into vectors of the target.
#include "base/opacity.kernels.h"

namespace zlv::ZLV_TARGET {

namespace {

// At opacities of so many 65536ths that doubles hold every product and sum exactly, the mix is the base and a share of
// the difference, rounded down. A multiplier above one half does not fit a signed word and counts from the overlay.
template <bool isMostlyOverlay>
void MixBySteps(u8* base, const u8* overlay, size_t count, i16 multiplier)
{
    for (size_t i = 0; i < count; ++i) {
        const i16 difference = i16(overlay[i] - base[i]);
        const i16 step = i16((i32(difference) * multiplier) >> 16);
        base[i] = u8((isMostlyOverlay ? overlay[i] : base[i]) + step);
    }
}

template <class T>
void MixExactly(T* base, const T* overlay, size_t count, f64 opacity)
{
    const f64 rest = 1 - opacity;
    for (size_t i = 0; i < count; ++i) base[i] = T(i32(base[i] * rest + overlay[i] * opacity));
}

void MixBytesExactly(u8* base, const u8* overlay, size_t count, f64 opacity)
{
    const f64 steps = opacity * 65536;
    const i32 multiplier = i32(steps);
    if (multiplier != steps) MixExactly(base, overlay, count, opacity);
    else if (multiplier < 32768) MixBySteps<false>(base, overlay, count, i16(multiplier));
    else MixBySteps<true>(base, overlay, count, i16(multiplier - 65536));
}

void MixWords(u16* base, const u16* overlay, size_t count, f64 opacity)
{
    const f64 rest = 1 - opacity;
    for (size_t i = 0; i < count; ++i) base[i] = u16(i32(base[i] * rest) + i32(overlay[i] * opacity));
}

u16 TakeShare(u16 value, u16 multiplier) { return u16((u32(value) * multiplier) >> 16); }

u16 CorrectShare(u16 value, const ByteShare& share)
{
    u16 correction = 0;
    for (u32 k = 0; k < ByteShare::kMaxExceptions; ++k) {
        correction = u16(correction + (value == share.exceptions[k] ? share.step : i16(0)));
    }
    return u16(TakeShare(value, share.multiplier) + correction);
}

void MixByMultipliers(u8* base, const u8* overlay, size_t count, u16 under, u16 over)
{
    for (size_t i = 0; i < count; ++i) base[i] = u8(TakeShare(base[i], under) + TakeShare(overlay[i], over));
}

void MixByExceptions(u8* base, const u8* overlay, size_t count, const ByteShares& shares)
{
    const ByteShare under = shares.under, over = shares.over;  // stores to `base` cannot change them
    for (size_t i = 0; i < count; ++i) base[i] = u8(CorrectShare(base[i], under) + CorrectShare(overlay[i], over));
}

void MixByTables(u8* base, const u8* overlay, size_t count, const ByteShares& shares)
{
    for (size_t i = 0; i < count; ++i) base[i] = u8(shares.under.table[base[i]] + shares.over.table[overlay[i]]);
}

void MixBytes(u8* base, const u8* overlay, size_t count, const ByteShares& shares)
{
    const auto worst = shares.under.form > shares.over.form ? shares.under.form : shares.over.form;
    if (worst == ByteShare::Form::Multiplier) {
        MixByMultipliers(base, overlay, count, shares.under.multiplier, shares.over.multiplier);
    } else if (worst == ByteShare::Form::MultiplierAndExceptions) {
        MixByExceptions(base, overlay, count, shares);
    } else {
        MixByTables(base, overlay, count, shares);
    }
}

}  // namespace

extern const OpacityKernels kOpacityKernels;
const OpacityKernels kOpacityKernels = {MixBytes, MixWords, MixBytesExactly, MixExactly<u16>};

}  // namespace zlv::ZLV_TARGET
