#include "base/histograms.h"

#include "base/brightness.kernels.h"
#include "base/image_view.h"
#include "base/sample.h"
#include "base/table_pass.h"
#include "base/table_set.h"
#include "runtime/array.h"
#include "runtime/clamp.h"

#include <algorithm>

namespace zlv {

namespace {

// Equal neighbours would wait for each other's count in one table: four tables take turns.
void CountChannel(const ImageView<const u8>& image, u32 channel, u32* histogram)
{
    constexpr u32 kBanks = 4;
    u32 banks[kBanks][kLevels<u8>] = {};
    const size_t step = image.channels;
    for (u32 y = 0; y < image.height; ++y) {
        const u8* sample = image.Row(y) + channel;
        u32 x = 0;
        for (; x + kBanks <= image.width; x += kBanks, sample += kBanks * step) {
            for (u32 bank = 0; bank < kBanks; ++bank) ++banks[bank][sample[bank * step]];
        }
        for (; x < image.width; ++x, sample += step) ++banks[0][*sample];
    }
    for (u32 i = 0; i < kLevels<u8>; ++i) histogram[i] += banks[0][i] + banks[1][i] + banks[2][i] + banks[3][i];
}

void CountChannel(const ImageView<const u16>& image, u32 channel, u32* histogram)
{
    for (u32 y = 0; y < image.height; ++y) {
        const u16* sample = image.Row(y) + channel;
        for (u32 x = 0; x < image.width; ++x, sample += image.channels) ++histogram[*sample];
    }
}

template <class T>
ImageView<const T> ReadOnly(const ImageView<T>& image)
{
    return {image.data, image.width, image.height, image.channels, image.stride};
}

template <class T>
u32 GetHistograms(MVThreadContext& context, Error& error, const ImageView<const T>& image, u32* const* histograms)
{
    BaseWork work(context, error);
    if (!image.data || !histograms) return work.Fail(Error::BadArgument);
    for (u32 c = 0; c < image.channels; ++c) {
        if (histograms[c]) std::fill_n(histograms[c], kLevels<T>, 0u);
    }
    for (u32 c = 0; c < image.channels; ++c) {
        if (histograms[c]) CountChannel(image, c, histograms[c]);
        if (!work.Report(c, image.channels)) return 0;
    }
    return 1;
}

// Maps one channel by its table. A step at nesting 2: it never reports.
template <class T>
void MapChannel(BaseWork& work, const ImageView<T>& image, u32 channel, const T* table)
{
    TableSet tables;
    (void)tables.Resize(image.channels, nullptr);  // at most kMaxMaskedChannels: needs no memory
    tables.Set(channel, table);
    Error error = Error::None;
    (void)ApplyTables(work.Context(), error, image, tables.Data());
}

// Samples outside the range keep their value. The product is truncated and kept to the sample's width.
template <class T>
void MakeEqualizingTable(const u32* histogram, u32 low, u32 high, T* table)
{
    const auto isInRange = [=](u32 level) { return low <= level && level <= high; };
    u32 total = 0;
    for (u32 i = 0; i < kLevels<T>; ++i) total += isInRange(i) ? histogram[i] : 0;
    const f64 scale = total ? f64(kTop<T>) / total : 0.0;
    u32 sum = 0;
    for (u32 i = 0; i < kLevels<T>; ++i) {
        sum += isInRange(i) ? histogram[i] : 0;
        table[i] = isInRange(i) ? T(u32(sum * scale)) : T(i);
    }
}

template <class T>
u32 Equalize(MVThreadContext& context, Error& error, const ImageView<T>& image, u32 low, u32 high, u32 channelMask)
{
    BaseWork work(context, error);
    if (!image.data || image.channels > kMaxMaskedChannels) return work.Fail(Error::BadArgument);
    if (low > high) std::swap(low, high);

    MVBuffer<u32> histogram;
    MVBuffer<T> table;
    if (!histogram.Resize(kLevels<T>) || !table.Resize(kLevels<T>)) return work.Fail(Error::OutOfMemory);
    for (u32 c = 0; c < image.channels; ++c) {
        if (!IsSelected(channelMask, c)) continue;
        std::fill_n(histogram.GetData(), kLevels<T>, 0u);
        CountChannel(ReadOnly(image), c, histogram.GetData());
        MakeEqualizingTable(histogram.GetData(), low, high, table.GetData());
        MapChannel(work, image, c, table.GetData());
        if (!work.Report(c, image.channels)) return 0;
    }
    return 1;
}

// Counts the pixels of an image by the sum of their first three samples, in tables that take turns.
void CountSums(const ImageView<u8>& image, u32 (&counts)[kBrightnessSums])
{
    constexpr u32 kBanks = 4;
    u32 banks[kBanks][kBrightnessSums] = {};
    const size_t step = image.channels;
    const auto sumOf = [](const u8* pixel) { return u32(pixel[0]) + pixel[1] + pixel[2]; };
    for (u32 y = 0; y < image.height; ++y) {
        const u8* pixel = image.Row(y);
        u32 x = 0;
        for (; x + kBanks <= image.width; x += kBanks, pixel += kBanks * step) {
            for (u32 bank = 0; bank < kBanks; ++bank) ++banks[bank][sumOf(pixel + bank * step)];
        }
        for (; x < image.width; ++x, pixel += step) ++banks[0][sumOf(pixel)];
    }
    for (u32 i = 0; i < kBrightnessSums; ++i) counts[i] = banks[0][i] + banks[1][i] + banks[2][i] + banks[3][i];
}

// What a pixel of each brightness loses, by the sum of its three samples.
void MakeShifts(const u32 (&histogram)[256], u32 total, BrightnessShift (&shifts)[kBrightnessSums])
{
    u32 sum = 0;
    for (u32 i = 0; i < 256; ++i) {
        sum += histogram[i];
        // In 32 bits: above 8.4 million pixels the product wraps, and clients have their results from that.
        const i64 mapped = total ? i64(i32(sum * 255)) / i32(total) : 0;
        const i16 shift = i16(std::clamp(i64(i) - mapped, i64{-255}, i64{255}));  // no sample can move further
        for (u32 k = 3 * i; k < 3 * i + 3 && k < kBrightnessSums; ++k) shifts[k] = {{shift, shift, shift, 0}};
    }
}

u32 EqualizeBrightness(MVThreadContext& context, Error& error, const ImageView<u8>& image, u32 low, u32 high)
{
    BaseWork work(context, error);
    if (!image.data || (image.channels != 3 && image.channels != 4)) return work.Fail(Error::BadArgument);
    if (low > high) std::swap(low, high);

    u32 counts[kBrightnessSums];
    CountSums(image, counts);
    u32 histogram[256] = {};
    u32 total = 0;
    for (u32 i = 0; i < kBrightnessSums; ++i) {
        const u32 brightness = i / 3;
        if (brightness < low || brightness > high) continue;
        histogram[brightness] += counts[i];
        total += counts[i];
    }
    BrightnessShift shifts[kBrightnessSums];
    MakeShifts(histogram, total, shifts);
    const BrightnessKernels& kernels = Kernels<BrightnessKernels>();
    for (u32 y = 0; y < image.height; ++y) {
        (image.channels == 3 ? kernels.shiftRow3 : kernels.shiftRow4)(image.Row(y), image.width, shifts);
    }
    return 1;
}

// Fractions of an image that go to the ends of the range.
struct StretchEnds {
    f64 low, high;
};

struct LevelRange {
    u32 low, high;
};

// A lowest level of 0 is found for a low end of 0, however dark the darkest sample is, while the high end moves to
// where the running sum reaches its share. Presets are tuned to this asymmetry.
template <class T>
LevelRange FindLevels(const u32* histogram, u64 pixels, const StretchEnds& ends)
{
    const u64 lowCount = u64(f64(pixels) * ends.low);
    const u64 highCount = u64((1 - ends.high) * f64(pixels));
    i32 lowIndex = -1, highIndex = -1;
    u64 sum = 0;
    for (u32 i = 0; i < kLevels<T> && highIndex < 0; ++i) {
        sum += histogram[i];
        if (sum >= lowCount && lowIndex == -1) lowIndex = i32(i);
        else if (sum >= highCount) highIndex = i32(i);
    }
    const u32 first = u32(std::max(lowIndex, 0)), second = u32(std::max(highIndex, 0));
    return {std::min(first, second), std::max(first, second)};
}

template <class T>
void MakeStretchTable(const LevelRange& levels, const StretchEnds& ends, T* table)
{
    constexpr f64 kLowest = 0, kHighest = kTop<T>;
    const f64 scale = levels.high != levels.low ? kHighest / (levels.high - levels.low) : 0.0;
    for (u32 i = 0; i < kLevels<T>; ++i) {
        if (ends.high == 1.0) table[i] = T(kTop<T>);
        else if (ends.low == 1.0) table[i] = 0;
        else {
            const f64 stretched = (f64(i) - levels.low) * scale;
            table[i] = T(ClampDouble(stretched, &kLowest, &kHighest));
        }
    }
}

// `remap` is room for a table.
template <class T>
void RemapMidpoint(T midpoint, T* table, T* remap)
{
    constexpr u32 kSize = kLevels<T>;
    const f64 half = (kSize - 1) * 0.5;
    const u32 below = midpoint ? u32(midpoint) + 1 : 0;  // entries on the lower side
    for (u32 i = 0; i < below; ++i) remap[i] = T(i * half / midpoint);
    for (u32 i = below; i < kSize; ++i) remap[i] = T((i - midpoint) * half / (kSize - midpoint - 1) + half);
    for (u32 i = 0; i < kSize; ++i) table[i] = remap[table[i]];
}

template <class T>
u32 Stretch(MVThreadContext& context, Error& error, const ImageView<T>& image, f64 lowPercent, f64 highPercent,
            T midpoint, u32 flags)
{
    BaseWork work(context, error);
    if (!image.data || image.channels > kMaxMaskedChannels) return work.Fail(Error::BadArgument);
    if (image.width == 0 || image.height == 0) return 1;
    constexpr f64 kNone = 0, kAll = 100;
    lowPercent = ClampDouble(lowPercent, &kNone, &kAll);
    highPercent = ClampDouble(highPercent, &kNone, &kAll);
    const bool isSumInRange = lowPercent + highPercent <= kAll;  // false for what is no number
    if (!isSumInRange) return work.Fail(Error::BadArgument);

    const StretchEnds ends = {lowPercent / 100, highPercent / 100};
    MVBuffer<u32> histogram;
    MVBuffer<T> table, remap;
    if (!histogram.Resize(kLevels<T>) || !table.Resize(kLevels<T>) || !remap.Resize(kLevels<T>)) {
        return work.Fail(Error::OutOfMemory);
    }
    for (u32 c = 0; c < image.channels; ++c) {
        if (!IsSelected(flags, c)) continue;
        std::fill_n(histogram.GetData(), kLevels<T>, 0u);
        CountChannel(ReadOnly(image), c, histogram.GetData());
        const u64 pixels = u64(image.width) * image.height;
        MakeStretchTable(FindLevels<T>(histogram.GetData(), pixels, ends), ends, table.GetData());
        if (flags & kStretchMidpoint) RemapMidpoint(midpoint, table.GetData(), remap.GetData());
        MapChannel(work, image, c, table.GetData());
        if (!work.Report(c, image.channels)) return 0;
    }
    return 1;
}

}  // namespace

u32 MV40_GetImageChannelHistograms(const void* buffer, u32 width, u32 height, u32 channels, u32 rowStride,
                                   u32* const* histograms, u32 flags)
{
    return InBaseCall("MV40_GetImageChannelHistograms", [&](MVThreadContext& context, Error& error) {
        return WithSamples(buffer, flags, [&]<class T>(const T* data) {
            const ImageView<const T> image = {data, width, height, channels, rowStride};
            return GetHistograms(context, error, image, histograms);
        });
    });
}

u32 MV40_HistogramEqualizeImage(void* buffer, u32 width, u32 height, u32 channels, u32 rowStride, u32 low, u32 high,
                                u32 flags)
{
    return InBaseCall("MV40_HistogramEqualizeImage", [&](MVThreadContext& context, Error& error) {
        return WithSamples(buffer, flags, [&]<class T>(T* data) {
            const ImageView<T> image = {data, width, height, channels, rowStride};
            return Equalize(context, error, image, low, high, flags);
        });
    });
}

u32 MV40_BrightnessHistogramEqualizeImage(u8* buffer, u32 width, u32 height, u32 channels, u32 rowStride, u32 low,
                                          u32 high)
{
    return InBaseCall("MV40_BrightnessHistogramEqualizeImage", [&](MVThreadContext& context, Error& error) {
        return EqualizeBrightness(context, error, {buffer, width, height, channels, rowStride}, low, high);
    });
}

u32 MV40_HistogramStretchImage(void* buffer, u32 width, u32 height, u32 channels, u32 rowStride, f64 lowPercent,
                               f64 highPercent, u32 midpoint, u32 flags)
{
    return InBaseCall("MV40_HistogramStretchImage", [&](MVThreadContext& context, Error& error) {
        return WithSamples(buffer, flags, [&]<class T>(T* data) {
            const ImageView<T> image = {data, width, height, channels, rowStride};
            return Stretch(context, error, image, lowPercent, highPercent, T(midpoint), flags);
        });
    });
}

}  // namespace zlv
