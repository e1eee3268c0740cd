// A warp that scatters the pixels.
#include "runtime/random.h"
#include "warp/add_transform.h"
#include "warp/point_walk.h"

#include "zlv40.h"

using namespace zlv;

class CZLVTransform::CRandomPoints : public CXFormer {
public:
    Error SetUp(MVThreadContext& context, f64 newAmount)
    {
        if (!HasSize()) return Error::BadArgument;
        amount = newAmount;
        context_ = &context;
        for (u32 i = 0; i < kSteps; ++i) steps_[i] = (1 - i / f64(kSteps)) * amount - amount * 0.5;
        return Error::None;
    }

    bool MapPoint(f64 x, f64 y, f64* outX, f64* outY) override { return MapOnePoint(*this, x, y, outX, outY); }

    void MapRun(PointRun& run) override
    {
        u32 state = context_->randomState;
        const auto draw = [&] {
            state = kOneDraw.From(state);
            return steps_[DrawOf(state) % kSteps];
        };
        for (u32 i = 0; i < run.count; ++i) {
            if (run.isLost[i]) continue;
            run.x[i] += draw();
            run.y[i] += draw();
        }
        context_->randomState = state;
    }

    SideEffect GetSideEffect() const override { return SideEffect::DrawsRandomNumbers; }

protected:
    f64 amount = 0;

private:
    static constexpr u32 kSteps = 1000;

    MVThreadContext* context_ = nullptr;  // of the thread whose list this is; it outlives the list
    f64 steps_[kSteps];                   // the displacements that there are
};

ZLV_EXPORT u32 ZLV40_AddRandomTransform(u32 width, u32 height, f64 amount)
{
    return InFrame(FrameKind::ErrorSlotOnly, [&](CallFrame& frame) -> u32 {
        MVThreadContext& context = *baseContexts.Get();
        const u32 added = AddTransform<CZLVTransform::CRandomPoints>(
            frame, width, height, [&](CZLVTransform::CRandomPoints& points) { return points.SetUp(context, amount); });
        if (added) SeedRandom(context, platform::SecondsSince1970());
        return added;
    });
}
