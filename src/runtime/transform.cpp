#include "runtime/transform.h"

#include "runtime/math.h"

namespace zlv {

void CXFormer::SetSize(u32 newWidth, u32 newHeight)
{
    if (newWidth == 0 || newHeight == 0) return;
    width = newWidth;
    height = newHeight;
    centerX = f64(width - 1) * 0.5;
    centerY = f64(height - 1) * 0.5;
    halfDiagonal = Sqrt(centerX * centerX + centerY * centerY);
}

}  // namespace zlv

// What stands in a virtual table for an operation without a body. The C++ run-time has one; the library lives without
// that. Nothing calls it.
// NOLINTNEXTLINE(bugprone-reserved-identifier): compilers look for this name.
extern "C" [[noreturn]] void __cxa_pure_virtual() { __builtin_trap(); }
