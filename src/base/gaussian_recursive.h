// The recursive engine of the Gaussian blur.
#pragma once

#include "base/blur_images.h"
#include "runtime/base_call.h"

namespace zlv {

// Blurs the channels that bits 0 to 7 of `flags` select, computing in Real.
template <class Real, class T>
u32 BlurRecursively(BaseWork& work, const BlurImages<T>& images, f32 sigma, u32 flags);

extern template u32 BlurRecursively<f32>(BaseWork&, const BlurImages<u8>&, f32, u32);
extern template u32 BlurRecursively<f32>(BaseWork&, const BlurImages<u16>&, f32, u32);
extern template u32 BlurRecursively<f64>(BaseWork&, const BlurImages<u8>&, f32, u32);
extern template u32 BlurRecursively<f64>(BaseWork&, const BlurImages<u16>&, f32, u32);

}  // namespace zlv
