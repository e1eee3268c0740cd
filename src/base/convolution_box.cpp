#include "base/convolution_box.h"

#include <algorithm>

namespace zlv {

namespace {

constexpr u64 kSmallestBox = 289;           // entries: below, sums beside each other are faster
constexpr u32 kLargestSide = 65535;         // a column of the largest samples fits 32 bits
constexpr f64 kExact = 9007199254740992.0;  // doubles hold every whole number up to 2^53

// The largest sum that the kernel can make of samples.
f64 LargestSum(const BoxKernel& kernel, u32 top)
{
    const f64 around = f64(kernel.around < 0 ? -kernel.around : kernel.around);
    const f64 middle = f64(kernel.middle < 0 ? -kernel.middle : kernel.middle);
    return (around * (f64(kernel.width) * kernel.height - 1) + middle) * top;
}

}  // namespace

BoxKernel FindBoxKernel(const f64* entries, u32 width, u32 height, f64 unit, u32 top)
{
    const u64 count = u64(width) * height;
    if (unit == 0 || count < kSmallestBox || width > kLargestSide || height > kLargestSide) return {};
    for (u64 i = 0; i < count; ++i) {
        if (i != count / 2 && entries[i] != entries[0]) return {};
    }
    const BoxKernel kernel = {width, height, i64(entries[0] / unit), i64(entries[count / 2] / unit), unit};
    return LargestSum(kernel, top) < kExact ? kernel : BoxKernel{};
}

template <class T>
BoxRows<T>::BoxRows(const ImageView<const T>& src, const ChannelList& channels, const BoxKernel& kernel,
                    const ConvolutionResult& result)
    : src_(src), channels_(channels), kernel_(kernel), result_(result), count_(size_t(src.width) * channels.Count())
{
}

template <class T>
bool BoxRows<T>::Prepare()
{
    return columns_.Resize(count_) && entering_.Resize(count_) && leaving_.Resize(count_);
}

template <class T>
const T* BoxRows<T>::Samples(u64 y, MVBuffer<T>& copy)
{
    const T* const row = src_.Row(u32(std::min<u64>(y, src_.height - 1)));
    if (channels_.IsAll()) return row;
    channels_.Gather(row, src_.width, copy.GetData());
    return copy.GetData();
}

// The columns of the window around row 0. Rows beyond the last one are like it.
template <class T>
void BoxRows<T>::AddUp()
{
    const u32 margin = kernel_.height / 2, lastY = src_.height - 1;
    u32* const columns = columns_.GetData();
    std::fill_n(columns, count_, 0u);
    const auto add = [&](u64 y, u32 times) {
        const T* const row = Samples(y, entering_);
        for (size_t i = 0; i < count_; ++i) columns[i] += row[i] * times;
    };
    add(0, margin + 1);
    for (u32 y = 1; y <= std::min(margin, lastY); ++y) add(y, 1);
    if (margin > lastY) add(lastY, margin - lastY);
}

template <class T>
T BoxRows<T>::Finish(i64 windowSum, T own) const
{
    const i64 sum = kernel_.around * windowSum + (kernel_.middle - kernel_.around) * own;
    const f64 scaled = f64(sum) * kernel_.unit * result_.scale;
    const f64 value = result_.isDifference ? own - scaled : scaled;
    return value > 0 ? T(std::min(value, result_.top)) : T(0);  // what is no number is 0 too
}

template <class T>
void BoxRows<T>::MakeRow(u32 y, T* out)
{
    const u64 marginY = kernel_.height / 2;
    u32* const columns = columns_.GetData();
    if (y == 0) {
        AddUp();
    } else {
        const T* const entering = Samples(y + marginY, entering_);
        const T* const leaving = Samples(y - 1 < marginY ? 0 : y - 1 - marginY, leaving_);
        for (size_t i = 0; i < count_; ++i) columns[i] += u32(entering[i]) - leaving[i];
    }
    const T* const own = Samples(y, entering_);
    const size_t step = channels_.Count(), last = count_ - step;
    const size_t margin = kernel_.width / 2;
    for (size_t c = 0; c < step; ++c) {
        const u32* const column = columns + c;
        const auto at = [&](size_t x) { return i64(column[std::min(x * step, last)]); };
        const size_t inside = std::min<size_t>(margin, src_.width - 1);
        i64 sum = at(0) * i64(margin + 1) + at(last / step) * i64(margin - inside);
        for (size_t x = 1; x <= inside; ++x) sum += at(x);
        for (size_t x = 0; x < src_.width; ++x) {
            out[x * step + c] = Finish(sum, own[x * step + c]);
            sum += at(x + margin + 1) - at(x < margin ? 0 : x - margin);
        }
    }
}

template class BoxRows<u8>;
template class BoxRows<u16>;

}  // namespace zlv
