// Images that lose and gain columns: views of pixels whose width changes while their rows stay where they are.
#pragma once

#include "runtime/array.h"

namespace Zelvane {  // NOLINT(readability-identifier-naming): the library's own name

using zlv::i32;
using zlv::u32;
using zlv::u64;

// Owns its pixels. `width` and `rowStride` part as soon as a column is gone or one is still to come.
template <class T>
class CLImage {  // NOLINT(cppcoreguidelines-virtual-class-destructor): lives on stacks, nobody deletes it
public:
    u32 width = 0;
    u32 height = 0;
    u32 channels = 0;
    u32 rowStride = 0;  // in elements
    zlv::ZLVArray<T> pixels;

    CLImage() = default;
    ~CLImage() = default;
    CLImage(const CLImage&) = delete;
    CLImage& operator=(const CLImage&) = delete;

    virtual T* Data() { return pixels.GetData(); }
    virtual const T* ConstData() const { return pixels.GetData(); }
    virtual void Clear()
    {
        pixels.Clear();
        ForgetShape();
    }

    // Rows with room for `pixelsARow`, the first `theWidth` of them in use; the contents are undefined. False leaves
    // the image empty: memory is out, or there would be more elements than an array counts.
    [[nodiscard]] bool Create(u32 theWidth, u32 theHeight, u32 theChannels, u64 pixelsARow)
    {
        constexpr u64 kMostElements = 0x7FFFFFFF;
        Clear();
        if (theHeight == 0 || pixelsARow > kMostElements / theChannels) return false;
        const u64 stride = pixelsARow * theChannels;
        if (stride > kMostElements / theHeight || !pixels.Resize(i32(stride * theHeight))) return false;
        width = theWidth, height = theHeight, channels = theChannels, rowStride = u32(stride);
        return true;
    }

    T* Row(u32 y) { return Data() + size_t(y) * rowStride; }
    const T* Row(u32 y) const { return ConstData() + size_t(y) * rowStride; }
    bool IsEmpty() const { return ConstData() == nullptr; }

protected:
    void ForgetShape() { width = height = channels = rowStride = 0; }
};

// Somebody else's pixels as an image of this kind.
template <class T>
class CLFixedImage final : public CLImage<T> {  // NOLINT(cppcoreguidelines-virtual-class-destructor): likewise
public:
    T* external = nullptr;

    T* Data() override { return external; }
    const T* ConstData() const override { return external; }
    void Clear() override { this->ForgetShape(); }
};

}  // namespace Zelvane
