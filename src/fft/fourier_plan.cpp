#include "fft/fourier_plan.h"

#include "runtime/math.h"

#include <bit>

namespace zlv {

namespace {

constexpr u32 kShortestLine = 2;
constexpr u64 kVectorAlignment = 64;
constexpr size_t kMostLines = 32;                 // 512 bytes of a row
constexpr size_t kCacheNumbers = 512 * 1024 / 8;  // of the work, where lines are not too long for it

}  // namespace

Error FourierPlan::Prepare(u32 length)
{
    if (length == length_ && length != 0) return Error::None;
    length_ = 0;
    lines_ = kMostLines;
    while (lines_ > kernels_.lanes && 2 * lines_ * length > kCacheNumbers) lines_ /= 2;
    if (!work_.Resize(2 * u64(lines_) * length, kVectorAlignment)) return Error::OutOfMemory;
    if (length < kShortestLine || !std::has_single_bit(length)) return Error::BadArgument;
    if (!places_.Resize(length) || !twiddles_.Resize(2 * u64(length - 1))) return Error::OutOfMemory;
    stages_.count = u32(std::countr_zero(length));
    stages_.length = length;
    stages_.places = places_.GetData();
    stages_.twiddles = twiddles_.GetData();
    // The forward direction divides by the length: a product with its exact inverse is the same number.
    stages_.scale = direction_ == FourierDirection::Forward ? 1.0 / length : 1.0;
    FillPlaces();
    FillTwiddles();
    length_ = length;
    return Error::None;
}

void FourierPlan::FillPlaces()
{
    const u32 top = stages_.count - 1;
    places_[0] = 0;
    for (u32 i = 1; i < places_.GetCount(); ++i) places_[i] = places_[i >> 1] >> 1 | (i & 1) << top;
}

// By recurrence, a stage after the other. Sines and cosines would be nearer to the truth and differ in the last bits:
// the grids that clients keep are made of these factors.
void FourierPlan::FillTwiddles()
{
    f64 c1 = -1.0, c2 = 0.0;
    f64* next = twiddles_.GetData();
    for (u32 stage = 0; stage < stages_.count; ++stage) {
        f64 u1 = 1.0, u2 = 0.0;
        for (size_t j = 0; j < size_t(1) << stage; ++j) {
            *next++ = u1;
            *next++ = u2;
            const f64 turned = u1 * c1 - u2 * c2;
            u2 = u1 * c2 + u2 * c1;
            u1 = turned;
        }
        c2 = Sqrt((1.0 - c1) * 0.5);
        if (direction_ == FourierDirection::Forward) c2 = -c2;
        c1 = Sqrt((1.0 + c1) * 0.5);
    }
}

}  // namespace zlv
