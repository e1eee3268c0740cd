#include "base/running_extremes.h"

#include <algorithm>
#include <cstring>

namespace zlv {

RunningExtremes::RunningExtremes(const ImageView<const u8>& src, u32 radius, Extreme extreme)
    : src_(src),
      radiusX_(std::min(radius, src.width - 1)),
      radiusY_(std::min(radius, src.height - 1)),
      operation_(extreme == Extreme::Largest ? Kernels<RunningExtremesKernels>().largest
                                             : Kernels<RunningExtremesKernels>().smallest),
      neutral_(extreme == Extreme::Largest ? 0 : 255)
{
}

bool RunningExtremes::Prepare(u32 channelsAtOnce)
{
    const u64 rowBytes = u64(src_.width) * channelsAtOnce;
    const u64 wideBytes = (src_.width + 2 * u64(radiusX_)) * channelsAtOnce;
    return wide_[0].Resize(wideBytes) && wide_[1].Resize(wideBytes) && copy_.Resize(rowBytes) &&
           rests_.Resize(std::min(Window(), src_.height), rowBytes) && soFar_.Resize(rowBytes);
}

void RunningExtremes::Start(const ChannelList& channels)
{
    channels_ = channels;
    y_ = 0;
}

const u8* RunningExtremes::Samples(u32 row)
{
    if (channels_.IsAll()) return src_.Row(row);
    channels_.Gather(src_.Row(row), src_.width, copy_.GetData());
    return copy_.GetData();
}

void RunningExtremes::ColumnsOfFewRows(u8* out)
{
    const u8* rows[kMostRowsAtOnce];
    for (u32 j = 0; j < Window(); ++j) {
        const i64 row = i64(y_) + j - radiusY_;
        rows[j] = src_.Row(u32(std::clamp<i64>(row, 0, i64(src_.height) - 1)));
    }
    operation_.ofRows(rows, Window(), Count(), out);
}

void RunningExtremes::ColumnsOfBlocks(u8* out)
{
    const u32 place = y_ % Window();  // among the windows that begin in the present block
    const u32 first = y_ - std::min(y_, radiusY_);
    if (place == 0) {
        u32 row = u32(std::min(u64(y_) + radiusY_, u64(src_.height) - 1));
        std::memcpy(rests_.Row(row), Samples(row), Count());
        for (; row > first; --row) operation_.ofTwo(Samples(row - 1), rests_.Row(row), Count(), rests_.Row(row - 1));
        std::memset(soFar_.GetData(), neutral_, Count());
    }
    const u64 next = u64(y_) + radiusY_;
    if (place > 0 && next < src_.height) {
        operation_.join(rests_.Row(first), soFar_.GetData(), Samples(u32(next)), Count(), out);
    } else {
        operation_.ofTwo(rests_.Row(first), soFar_.GetData(), Count(), out);
    }
}

void RunningExtremes::Next(u8* out)
{
    const size_t step = channels_.Count();
    u8* const wide = wide_[0].GetData();
    u8* const columns = wide + radiusX_ * step;
    if (Window() <= kMostRowsAtOnce && channels_.IsAll()) ColumnsOfFewRows(columns);
    else ColumnsOfBlocks(columns);
    ReplicateBorders(wide, src_.width, step, radiusX_);
    operation_.span(wide, wide_[1].GetData(), Count(), 2 * size_t(radiusX_) + 1, step, out);
    ++y_;
}

}  // namespace zlv
