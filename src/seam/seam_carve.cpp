// Seam carving: changes the width of an image by taking out or putting in paths of little energy, one at a time.
//
// Each seam costs one pass over the matrix of costs, one walk back through it, and repairs of the energy along the
// seam; the energy map as a whole is made once.
#include "seam/seam_cost.h"
#include "seam/seam_edit.h"
#include "seam/seam_search.h"

#include "base/buffer_rows.h"
#include "base/image_view.h"
#include "runtime/frame.h"

#include "zlv40.h"

#include <algorithm>
#include <cstring>

using namespace zlv;

namespace {

constexpr u32 kSmallestSide = 3;
constexpr i64 kSmallestResult = 4;
constexpr i32 kNeutralMask = 128;
constexpr i32 kMaskWeight = 255;

struct Call {
    ImageView<const u8> src;
    ImageView<const u8> mask;  // without data when there is none
    u8* dst;
    u32 dstStride;
    i32 seamCount;
    u16 insertPenalty;
    bool isOnOneThread;

    bool IsInsertion() const { return seamCount > 0; }
    u32 Seams() const { return u32(IsInsertion() ? i64(seamCount) : -i64(seamCount)); }
    i64 ResultWidth() const { return i64(src.width) + seamCount; }
    // Rows have room for the widest state of the image from the start.
    u64 LayoutWidth() const { return u64(std::max<i64>(src.width, ResultWidth())); }
    u32 PackedStride() const { return src.width * src.channels; }
};

class Carver {
public:
    Carver(const Call& call, CallFrame& frame) : call_(call), frame_(frame)
    {
        context_.singleThread = call.isOnOneThread;
    }

    u32 Run()
    {
        context_.error = Prepare();
        for (u32 i = 0; i < call_.Seams() && context_.error == Error::None; ++i) context_.error = Carve(i);
        if (context_.error != Error::None) return frame_.Fail(context_.error);
        // The columns beyond a narrower result go along as far as the rows of dst have room for them.
        MV40_CopyBuffer(working_.Data(), working_.rowStride, working_.height, call_.dstStride, call_.dst);
        frame_.SetLastError(Error::None);  // the callback may have called the library, and failed
        return 1;
    }

private:
    [[nodiscard]] Error Prepare()
    {
        if (const Error error = MeasureEnergy(); error != Error::None) return error;
        const ImageView<const u8>& src = call_.src;
        const u64 layout = call_.LayoutWidth();
        const bool hasMemory = (!call_.mask.data || WeighMask()) && cost_.Create(src.width, src.height, 1, layout) &&
                               seam_.Resize(i32(src.height)) &&
                               working_.Create(src.width, src.height, src.channels, layout);
        if (!hasMemory) return Error::OutOfMemory;
        // Pixels alone: behind those of the last row the source ends, whatever its stride.
        for (u32 y = 0; y < src.height; ++y) std::memcpy(working_.Row(y), src.Row(y), call_.PackedStride());
        const bool hasMutexes = context_.rightRowDone.Create(src.height) && context_.leftRowDone.Create(src.height);
        return hasMutexes ? Error::None : Error::OutOfMemory;
    }

    // Takes the rows of the source to be packed, and the pixels of a run on four threads to have three bytes: padded
    // sources and those with a fourth channel begin with the energy of what is read so.
    [[nodiscard]] Error MeasureEnergy()
    {
        const ImageView<const u8>& src = call_.src;
        Zelvane::CLFixedImage<u8> source;
        source.width = src.width, source.height = src.height, source.channels = src.channels;
        source.rowStride = call_.PackedStride();
        source.external = const_cast<u8*>(src.data);  // only read
        if (!energy_.Create(src.width, src.height, 1, call_.LayoutWidth())) return Error::OutOfMemory;
        // When its threads can't be started the filter writes nothing and says nothing.
        std::memset(energy_.Data(), 0, size_t(energy_.pixels.GetCount()) * sizeof(u16));
        return Error(ZLV40_SobelFilter(source.ConstData(), source.width, source.height, source.channels,
                                       source.rowStride, energy_.Data(), energy_.rowStride,
                                       ZLV40_COMBINED | ZLV40_WORKER_THREADS));
    }

    [[nodiscard]] bool WeighMask()
    {
        if (!bias_.Create(call_.src.width, call_.src.height, 1, call_.LayoutWidth())) return false;
        for (u32 y = 0; y < bias_.height; ++y) {
            const u8* const mask = call_.mask.Row(y);
            i32* const bias = bias_.Row(y);
            for (u32 x = 0; x < bias_.width; ++x) bias[x] = (mask[x] - kNeutralMask) * kMaskWeight;
        }
        return true;
    }

    [[nodiscard]] Error Carve(u32 index)
    {
        const Error error = context_.singleThread ? ComputeCost(energy_, bias_, cost_)
                                                  : ComputeCostThreaded(context_, energy_, cost_, bias_);
        if (error != Error::None) return error;
        FindSeam(cost_, seam_, *baseContexts.Get());
        const SeamImages images = {working_, energy_, bias_};
        if (call_.IsInsertion()) InsertSeam(images, seam_, call_.insertPenalty);
        else RemoveSeam(images, seam_);
        cost_.width = working_.width;
        return frame_.Report(index, call_.Seams()) ? Error::None : Error::Cancelled;
    }

    const Call& call_;
    CallFrame& frame_;
    CLImage<u16> energy_;
    CLImage<i32> bias_;
    CLImage<i32> cost_;
    ZLVArray<u32> seam_;
    CLImage<u8> working_;
    SeamContext context_;
};

// A source with rows that overlap has no packed form inside its buffer.
bool IsCarvable(const Call& call)
{
    return call.ResultWidth() >= kSmallestResult && call.src.stride >= u64(call.src.width) * call.src.channels;
}

u32 ChangeWidth(const Call& call)
{
    return InFrame(FrameKind::Full, [&](CallFrame& frame) -> u32 {
        const ImageView<const u8>& src = call.src;
        if (!src.data || !call.dst || !IsColour(src.channels)) return frame.Fail(Error::BadArgument);
        if (src.width < kSmallestSide || src.height < kSmallestSide) return frame.Fail(Error::BadArgument);
        if (call.seamCount == 0) {
            MV40_CopyBuffer(src.data, src.stride, src.height, call.dstStride, call.dst);
            frame.SetLastError(Error(MV40_GetLastError()));
            return 1;
        }
        return IsCarvable(call) ? Carver(call, frame).Run() : frame.Fail(Error::BadArgument);
    });
}

}  // namespace

ZLV_EXPORT u32 ZLV40_SeamCarve(const u8* src, u32 width, u32 height, u32 bytesPerPixel, u32 srcRowStride,
                               const u8* mask, u32 maskRowStride, u8* dst, u32 dstRowStride, i32 seamCount,
                               u16 insertPenalty, u32 flags)
{
    return ChangeWidth({{src, width, height, bytesPerPixel, srcRowStride},
                        {mask, width, height, 1, maskRowStride},
                        dst,
                        dstRowStride,
                        seamCount,
                        insertPenalty,
                        (flags & ZLV40_ONE_THREAD) != 0});
}
