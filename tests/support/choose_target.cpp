// A door of the library for tests: runs the kernels of another instruction set than the one chosen at load.
#include "runtime/linkage.h"
#include "runtime/targets.h"

// Returns whether this processor can run it; nothing changes otherwise.
ZLV_BASE zlv::u32 ZlvTestChooseTarget(zlv::u32 target);

zlv::u32 ZlvTestChooseTarget(zlv::u32 target)
{
    if (target > zlv::u32(zlv::BestTarget())) return 0;
    zlv::activeTarget = zlv::Target(target);
    return 1;
}
