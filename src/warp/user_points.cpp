// A warp by a function of the client's.
#include "runtime/frame.h"
#include "warp/add_transform.h"

#include "zlv40.h"

using namespace zlv;

class CZLVTransform::CUserPoints : public CXFormer {
public:
    Error SetUp(ZLVThreadContext& context, ZLVWarpFunction callback, void* userData)
    {
        client_ = {&context, callback, userData};
        return Error::None;
    }

    bool MapPoint(f64 x, f64 y, f64* outX, f64* outY) override
    {
        const Client client = client_;
        return client.Map(x, y, outX, outY);
    }

    void MapRun(PointRun& run) override
    {
        const Client client = client_;
        for (u32 i = 0; i < run.count; ++i) {
            if (!run.isLost[i]) run.isLost[i] = !client.Map(run.x[i], run.y[i], &run.x[i], &run.y[i]);
        }
    }

    SideEffect GetSideEffect() const override { return SideEffect::CallsClient; }

private:
    // Copied before each use: the function may clear the list, and this step goes with it.
    struct Client {
        ZLVThreadContext* context = nullptr;  // of the thread whose list this is
        ZLVWarpFunction callback = nullptr;
        void* userData = nullptr;

        // Both coordinates are stored whatever the answer is.
        bool Map(f64 x, f64 y, f64* outX, f64* outY) const
        {
            const ClientFloatEnvironment environment(*context);
            f64 newX = x, newY = y;
            const bool isInside = callback(x, y, &newX, &newY, userData) != 0;
            *outX = newX;
            *outY = newY;
            return isInside;
        }
    };

    Client client_;
};

ZLV_EXPORT u32 ZLV40_AddUserTransform(u32, u32, ZLVWarpFunction callback, void* userData)
{
    return InFrame(FrameKind::ErrorSlotOnly, [&](CallFrame& frame) -> u32 {
        if (!callback) return frame.Fail(Error::BadArgument);
        return AddTransform<CZLVTransform::CUserPoints>(frame, 0, 0, [&](CZLVTransform::CUserPoints& points) {
            return points.SetUp(frame.Context(), callback, userData);
        });
    });
}
