// What the transforms of all lines of a pass share, and their memory.
#pragma once

#include "fft/fourier_lines.kernels.h"
#include "runtime/array.h"
#include "runtime/error.h"

namespace zlv {

enum class FourierDirection : u8 { Forward, Inverse };

class FourierPlan {
public:
    explicit FourierPlan(FourierDirection direction) : direction_(direction) {}

    // Memory before the check of the length, as clients tell the two by their codes: out of memory, which a length of 0
    // is too, or bad argument for one that is no power of two from 2 up. The length of the call before costs nothing.
    [[nodiscard]] Error Prepare(u32 length);

    // How many lines Transform takes at most; they are done fastest then.
    size_t Lines() const { return lines_; }
    void Transform(const FourierLines& lines) { kernels_.transform(lines, stages_, work_.GetData()); }

private:
    void FillPlaces();
    void FillTwiddles();

    const FourierKernels& kernels_ = Kernels<FourierKernels>();
    const FourierDirection direction_;
    u32 length_ = 0;  // that everything below is for
    size_t lines_ = 0;
    FourierStages stages_ = {};
    MVAlignedArray<f64> work_;
    MVBuffer<u32> places_;
    MVBuffer<f64> twiddles_;
};

}  // namespace zlv
