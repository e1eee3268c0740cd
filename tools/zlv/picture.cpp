// Channels of pictures: conversion, and the fit to what an effect takes.
#include "picture.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zlv {
namespace {

constexpr uint8_t kOpaque = 255, kWhite = 255;

uint8_t Luma(const uint8_t* rgb)
{
    return static_cast<uint8_t>((299u * rgb[0] + 587u * rgb[1] + 114u * rgb[2] + 500u) / 1000u);
}

bool IsOpaque(const Picture& picture)
{
    for (size_t at = picture.channels - 1; at < picture.samples.size(); at += picture.channels)
        if (picture.samples[at] != kOpaque) return false;
    return true;
}

bool IsWithoutColour(const Picture& picture)
{
    for (size_t at = 0; at < picture.samples.size(); at += picture.channels) {
        const uint8_t* pixel = &picture.samples[at];
        if (pixel[0] != pixel[1] || pixel[0] != pixel[2]) return false;
    }
    return true;
}

std::vector<uint8_t> AlphaOf(const Picture& picture)
{
    std::vector<uint8_t> alpha(picture.Pixels());
    for (size_t i = 0; i < alpha.size(); ++i) alpha[i] = picture.samples[(i + 1) * picture.channels - 1];
    return alpha;
}

// The counts to try for a picture, best first: those that lose nothing, then those that put the alpha aside, then gray.
std::array<uint32_t, 4> Preferences(uint32_t channels)
{
    switch (channels) {
    case kGray: return {kGray, kRgb, kRgba, kGrayAlpha};
    case kGrayAlpha: return {kGrayAlpha, kRgba, kGray, kRgb};
    case kRgb: return {kRgb, kRgba, kGray, kGrayAlpha};
    default: return {kRgba, kRgb, kGrayAlpha, kGray};
    }
}

}  // namespace

const char* NameOfChannels(uint32_t channels)
{
    constexpr const char* kNames[] = {"", "gray", "gray with alpha", "RGB", "RGBA"};
    return kNames[channels];
}

Picture WithChannels(const Picture& picture, uint32_t channels)
{
    if (picture.channels == channels) return picture;
    Picture converted(picture.width, picture.height, channels);
    const uint8_t* from = picture.samples.data();
    uint8_t* to = converted.samples.data();
    for (size_t i = 0; i < picture.Pixels(); ++i, from += picture.channels, to += channels) {
        if (!converted.HasColour()) to[0] = picture.HasColour() ? Luma(from) : from[0];
        else if (picture.HasColour()) std::copy_n(from, 3, to);
        else std::fill_n(to, 3, from[0]);
        if (converted.HasAlpha()) to[channels - 1] = picture.HasAlpha() ? from[picture.channels - 1] : kOpaque;
    }
    return converted;
}

Picture OverWhite(const Picture& picture)
{
    if (!picture.HasAlpha()) return picture;
    Picture flat = WithChannels(picture, picture.channels - 1);
    for (size_t i = 0; i < flat.samples.size(); ++i) {
        const uint32_t alpha = picture.samples[(i / flat.channels + 1) * picture.channels - 1];
        flat.samples[i] = static_cast<uint8_t>((flat.samples[i] * alpha + kWhite * (255u - alpha) + 127u) / 255u);
    }
    return flat;
}

FittedPicture::FittedPicture(Picture picture, uint32_t accepted)
{
    const auto preferences = Preferences(picture.channels);
    const auto wanted = std::find_if(preferences.begin(), preferences.end(),
                                     [accepted](uint32_t count) { return (accepted >> count & 1u) != 0; });
    if (*wanted == picture.channels) {
        picture_ = std::move(picture);
        return;
    }
    picture_ = WithChannels(picture, *wanted);
    addedAlpha_ = picture_.HasAlpha() && !picture.HasAlpha();
    addedColour_ = picture_.HasColour() && !picture.HasColour();
    if (picture.HasAlpha() && !picture_.HasAlpha()) alpha_ = AlphaOf(picture);
}

Picture FittedPicture::Restore(Picture result) const
{
    if (addedAlpha_ && result.HasAlpha() && IsOpaque(result)) result = WithChannels(result, result.channels - 1);
    if (addedColour_ && result.HasColour() && IsWithoutColour(result))
        result = WithChannels(result, result.HasAlpha() ? kGrayAlpha : kGray);
    if (!alpha_.empty() && !result.HasAlpha()) {
        result = WithChannels(result, result.channels + 1);
        for (size_t i = 0; i < alpha_.size(); ++i) result.samples[(i + 1) * result.channels - 1] = alpha_[i];
    }
    return result;
}

}  // namespace zlv
