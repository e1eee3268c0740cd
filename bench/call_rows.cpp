// Calls that touch no sample, in nanoseconds a call. What a call answers is written into the image.
#include "bench_row.h"

#include "zlv40.h"

#include <cstring>

namespace zlvbench {

namespace {

constexpr u32 kGridSide = 1024;

u32 GoOn(u32, u32, u64) { return 1; }

BenchRow CallRow(const char* name, const Work& call) { return {name, {32, 1, 1}, 0, call, {}, 1, "call"}; }

template <class Answer>
void Write(const Buffers& buffers, Answer answer)
{
    std::memcpy(buffers.image, &answer, sizeof answer);
}

void InstallCallback(const Buffers& buffers)
{
    ZLV40_SetCallback(GoOn, 5);
    Write(buffers, u32(1));
}

void ReadCallback(const Buffers& buffers)
{
    u64 data = 0;
    ZLV40_GetCallback(&data);
    Write(buffers, data);
}

void ReadVersion(const Buffers& buffers) { ZLV40_GetLibVersion(reinterpret_cast<char*>(buffers.image)); }

void UseAndLeaveThread(const Buffers& buffers)
{
    InstallCallback(buffers);
    ZLV40_ThreadExit();
}

void LeaveLibrary(const Buffers& buffers)
{
    ZLV40_Exit();
    Write(buffers, ZLV40_GetLastError());
}

void FillAndEmptyWarpList(const Buffers& buffers)
{
    Write(buffers, ZLV40_AddOffsetTransform(16, 16, 1, 1, ZLV40_WRAP_NONE));
    ZLV40_ClearAllTransforms();
}

void MakeAndFreeGrid(const Buffers& buffers)
{
    f64* const grid = ZLV40_AllocFFTGrid(kGridSide, kGridSide);
    Write(buffers, grid[kGridSide]);
    ZLV40_FreeBlock(grid);
}

void MakeAndDestroyField(const Buffers& buffers)
{
    void* const field = ZLV40_InitializePerlinNoise3D();
    Write(buffers, ZLV40_DestroyPerlinNoise3D(field));
}

}  // namespace

std::vector<BenchRow> CallRows()
{
    return {
        CallRow("GetLastError/call", [](const Buffers& buffers) { Write(buffers, ZLV40_GetLastError()); }),
        CallRow("SetCallback/call", InstallCallback),
        CallRow("GetCallback/call", ReadCallback),
        CallRow("GetLibVersion/call", ReadVersion),
        CallRow("ThreadExit/behind_SetCallback", UseAndLeaveThread),
        CallRow("Exit/call", LeaveLibrary),
        CallRow("ClearAllTransforms/of_one_warp", FillAndEmptyWarpList),
        CallRow("NextPowerOfTwo/call", [](const Buffers& buffers) { Write(buffers, ZLV40_NextPowerOfTwo(1000)); }),
        CallRow("AllocFFTGrid/1024x1024", MakeAndFreeGrid),
        CallRow("InitializePerlinNoise3D/and_destroyed", MakeAndDestroyField),
    };
}

}  // namespace zlvbench
