// The direct engine of the Gaussian blur.
#pragma once

#include "base/blur_images.h"
#include "runtime/base_call.h"

namespace zlv {

// Blurs the channels that bits 0 to 7 of `flags` select with a kernel that DirectGaussian finds possible. The images
// are two.
template <class T>
u32 BlurDirectly(BaseWork& work, const BlurImages<T>& images, f64 sigma, u32 flags);

extern template u32 BlurDirectly(BaseWork&, const BlurImages<u8>&, f64, u32);
extern template u32 BlurDirectly(BaseWork&, const BlurImages<u16>&, f64, u32);

}  // namespace zlv
