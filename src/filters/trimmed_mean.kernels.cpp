// Means of the samples of small windows that lie in a band, for as many windows at once as a vector has bytes.
#include "filters/trimmed_mean.kernels.h"

#include "base/kernel_vectors.h"

namespace zlv::ZLV_TARGET {

namespace {

using Samples __attribute__((vector_size(kVectorBytes))) = u8;
using Words __attribute__((vector_size(kVectorBytes))) = u16;
constexpr size_t kWords = kVectorBytes / sizeof(u16);
static_assert(kVectorBytes <= kTrimmedSlack);

Samples Min(Samples a, Samples b) { return a < b ? a : b; }

void FindBands(const u8* __restrict medians, u8 below, u8 above, size_t count, u8* __restrict starts,
               u8* __restrict extents)
{
    for (size_t i = 0; i < count; ++i) {
        const u8 start = medians[i] > below ? u8(medians[i] - below) : u8(0);
        const u8 room = u8(255 - medians[i]);
        starts[i] = start;
        extents[i] = u8(medians[i] + (above < room ? above : room) - start);
    }
}

// The even and the odd bytes of a vector, as words.
struct Sums {
    Words even = {}, odd = {};

    void Add(Samples samples)
    {
        const Words words = Words(samples);
        even += words & 0xFF;
        odd += words >> 8;
    }
};

// sum / count, truncated: with half a unit added it is at least 0.5 / 20 away from any integer, far more than single
// precision is off.
u32 Quotient(u16 sum, u16 count) { return u32(i32((f32(sum) + 0.5f) / f32(count))); }

// The means of a vector's windows. Samples are summed by how far above the start of the band they lie.
Samples MeansOf(const Sums& sums, Samples counts, Samples starts)
{
    u16 even[kWords], odd[kWords], counted[kWords], quotients[kWords];
    Store(even, sums.even);
    Store(odd, sums.odd);
    Store(counted, counts);
    for (size_t i = 0; i < kWords; ++i) {
        quotients[i] = u16(Quotient(even[i], counted[i] & 0xFF) | Quotient(odd[i], counted[i] >> 8) << 8);
    }
    return starts + Load<Samples>(quotients);
}

void Means(const u8* const* rows, size_t step, const u8* starts, const u8* extents, size_t count, u8* out)
{
    for (size_t i = 0; i < count; i += kVectorBytes) {
        const Samples start = Load<Samples>(starts + i), extent = Load<Samples>(extents + i);
        Sums sums;
        Samples counts = {};
        for (size_t j = 0; j < kTrimmedRows; ++j) {
            const u8* const row = rows[j] + i;
#pragma GCC unroll 4
            for (size_t k = 0; k < kTrimmedColumns; ++k) {
                const Samples height = Load<Samples>(row + k * step) - start;
                const Samples isInBand = Samples(Min(height, extent) == height);
                sums.Add(height & isInBand);
                counts -= isInBand;
            }
        }
        counts += Samples(counts == 0) & 1;  // in lanes behind the last, where anything may stand
        const Samples means = MeansOf(sums, counts, start);
        if (i + kVectorBytes <= count) Store(out + i, means);
        else __builtin_memcpy(out + i, &means, count - i);
    }
}

}  // namespace

extern const TrimmedMeanKernels kTrimmedMeanKernels;
const TrimmedMeanKernels kTrimmedMeanKernels = {FindBands, Means};

}  // namespace zlv::ZLV_TARGET
