// Steps of a warp list: what a thread's record owns, and how points go through them. The warps themselves are in warp/.
#pragma once

#include "platform/platform.h"

namespace zlv {

// Points of one row on their way through a warp list, from left to right.
struct PointRun {
    static constexpr u32 kMost = 256;

    u32 count;
    f64 x[kMost], y[kMost];
    bool isLost[kMost];  // a step has called it outside: later steps leave it alone
};

// The scope in which all warps stand.
class CZLVTransform {
public:
    CZLVTransform() = delete;

    class CXFormer;
    class CBumpMapDispPoints;
    class CCenterShiftPoints;
    class CEllipsePoints;
    class CGlassBlock;
    class CLensPoints;
    class CLineSlicePoints;
    class CMarblePoints;
    class COffsetPoints;
    class CPerlinDispPoints;
    class CPinchPoints;
    class CPointAttractor;
    class CPolygonPoints;
    class CRandomPoints;
    class CRipplePoints;
    class CSpinPoints;
    class CSpinWavePoints;
    class CUserPoints;
    class CWavePoints;
    class CWowPoints;
    class CZigZagPoints;
};

// Where the points of a warped image come from: one step of the way back.
class CZLVTransform::CXFormer {
public:
    // What a step does besides computing. It decides how points may go through a list together.
    enum class SideEffect : u8 { None, DrawsRandomNumbers, CallsClient };

    CXFormer() = default;
    virtual ~CXFormer() = default;
    CXFormer(const CXFormer&) = delete;
    CXFormer& operator=(const CXFormer&) = delete;

    // The caller has stored x and y in *outX and *outY already: a step may leave them, or add to them. False when the
    // point is outside; what stands in *outX and *outY then is where it ended.
    virtual bool MapPoint(f64 x, f64 y, f64* outX, f64* outY) = 0;

    // The same for every point of a run that is not lost, in their order.
    virtual void MapRun(PointRun& run)
    {
        for (u32 i = 0; i < run.count; ++i) {
            if (!run.isLost[i]) run.isLost[i] = !MapPoint(run.x[i], run.y[i], &run.x[i], &run.y[i]);
        }
    }

    virtual SideEffect GetSideEffect() const { return SideEffect::None; }

    // The frame in which the warp works. Nothing is stored for an empty one: all of it is 0 then.
    void SetSize(u32 newWidth, u32 newHeight);
    bool HasSize() const { return width != 0; }

    static void* operator new(size_t bytes) noexcept { return platform::Allocate(bytes); }
    static void operator delete(void* block) { platform::Free(block); }

protected:
    f64 pi = 3.14159265358979323846;
    u32 width = 0;
    u32 height = 0;
    f64 centerX = 0;
    f64 centerY = 0;
    f64 halfDiagonal = 0;  // the unit in which many warps measure a radius
};

using CXFormer = CZLVTransform::CXFormer;

}  // namespace zlv
