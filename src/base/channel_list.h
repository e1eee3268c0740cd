// The channels that a mask selects, and their samples as dense rows.
#pragma once

#include "platform/types.h"

#include <cstring>

namespace zlv {

class ChannelList {
public:
    static constexpr u32 kMaxChannels = 32;  // bits of a mask

    // Channels at most kMaxChannels.
    ChannelList(u32 mask, u32 channels) : channels_(channels)
    {
        for (u32 c = 0; c < channels; ++c) {
            if ((mask >> c) & 1) list_[count_++] = u8(c);
        }
    }

    u32 Count() const { return count_; }
    bool IsAll() const { return count_ == channels_; }
    u32 At(u32 i) const { return list_[i]; }

    // The selected samples of `pixels` pixels, one after the other.
    template <class T>
    void Gather(const T* image, size_t pixels, T* samples) const
    {
        if (IsAll()) std::memcpy(samples, image, pixels * channels_ * sizeof(T));
        else if (count_ == 1) GatherOne(image + list_[0], pixels, samples);
        else GatherSome(image, pixels, samples);
    }

    // Back to their places; the other channels of the image are not written.
    template <class T>
    void Scatter(const T* samples, size_t pixels, T* image) const
    {
        if (IsAll()) std::memcpy(image, samples, pixels * channels_ * sizeof(T));
        else if (count_ == 1) ScatterOne(samples, pixels, image + list_[0]);
        else ScatterSome(samples, pixels, image);
    }

private:
    // Calls copy(x, place) for every pixel. The common strides are constants of their own loops: the compiler unrolls.
    template <class Copy>
    void ForPlaces(size_t pixels, Copy copy) const
    {
        const auto run = [&](size_t stride) {
            for (size_t x = 0; x < pixels; ++x) copy(x, x * stride);
        };
        if (channels_ == 3) run(3);
        else if (channels_ == 4) run(4);
        else run(channels_);
    }

    template <class T>
    void GatherOne(const T* __restrict image, size_t pixels, T* __restrict samples) const
    {
        ForPlaces(pixels, [=](size_t x, size_t place) { samples[x] = image[place]; });
    }

    template <class T>
    void ScatterOne(const T* __restrict samples, size_t pixels, T* __restrict image) const
    {
        ForPlaces(pixels, [=](size_t x, size_t place) { image[place] = samples[x]; });
    }

    template <class T>
    void GatherSome(const T* image, size_t pixels, T* samples) const
    {
        for (size_t x = 0; x < pixels; ++x, image += channels_, samples += count_) {
            for (u32 i = 0; i < count_; ++i) samples[i] = image[list_[i]];
        }
    }

    template <class T>
    void ScatterSome(const T* samples, size_t pixels, T* image) const
    {
        for (size_t x = 0; x < pixels; ++x, image += channels_, samples += count_) {
            for (u32 i = 0; i < count_; ++i) image[list_[i]] = samples[i];
        }
    }

    u32 channels_;
    u32 count_ = 0;
    u8 list_[kMaxChannels] = {};
};

}  // namespace zlv
