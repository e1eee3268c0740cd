// What tests of resizing share: pictures, and a call beside its twin.
#pragma once

#include "base/resize.h"
#include "plain/plain_resize.h"
#include "runtime/math.h"
#include "support/base_layer.h"

#include <vector>

namespace zlvtest {

using zlv::u32;

constexpr u32 kResizeModes = 19;
constexpr u32 kResizeFilters = 14;
constexpr PlainResizeMath kResizeMath = {zlv::Exp, zlv::Sin, zlv::Cos};

struct ResizeCase {
    u32 sourceWidth, sourceHeight, destWidth, destHeight, channels;
    u32 sourcePadding = 0, destPadding = 0;

    u32 SourceStride() const { return sourceWidth * channels + sourcePadding; }
    u32 DestStride() const { return destWidth * channels + destPadding; }
    size_t SourceCount() const { return size_t(SourceStride()) * sourceHeight; }
    size_t DestCount() const { return size_t(DestStride()) * destHeight; }
};

inline std::ostream& operator<<(std::ostream& out, const ResizeCase& c)
{
    return out << c.sourceWidth << 'x' << c.sourceHeight << " -> " << c.destWidth << 'x' << c.destHeight << " x"
               << c.channels << " +" << c.sourcePadding << " +" << c.destPadding;
}

// Kinds of pictures that modes treat differently.
enum class Picture { Noise, Flat, Ramp, Extremes, Patches, Kinds };

template <class T>
std::vector<T> MakePicture(Picture kind, const ResizeCase& c, std::uint64_t seed)
{
    Random random(seed);
    std::vector<T> samples(c.SourceCount());
    for (size_t i = 0; i < samples.size(); ++i) {
        const size_t x = i % c.SourceStride() / c.channels, y = i / c.SourceStride();
        switch (kind) {
        case Picture::Noise: samples[i] = T(random.Next()); break;
        case Picture::Flat: samples[i] = T(seed * 77); break;
        case Picture::Ramp: samples[i] = T(3 * x + 5 * y); break;
        case Picture::Extremes: samples[i] = random.Below(2) ? T(~T(0)) : T(0); break;
        default: samples[i] = T(37 * (x / 7 + y / 5) + (random.Below(60) == 0)); break;
        }
    }
    return samples;
}

template <class T>
std::vector<T> DestinationBefore(const ResizeCase& c)
{
    return std::vector<T>(c.DestCount(), T(0xA5A5));
}

// What a call leaves behind.
template <class T>
struct ResizeOutcome {
    std::vector<T> destination;
    u32 result = 0;
    u32 error = 0;
    std::vector<Report> reports;
};

// cancelAt: the report that says no, from 1; 0 for none.
template <class T>
ResizeOutcome<T> ResizePlainly(const ResizeCase& c, u32 mode, const std::vector<T>& source, size_t cancelAt = 0)
{
    ResizeOutcome<T> outcome = {DestinationBefore<T>(c), 0, 0, {}};
    const PlainResizeReport report = [&](u32 current, u32 total) {
        outcome.reports.push_back({current, total});
        return outcome.reports.size() != cancelAt;
    };
    PlainResizer<T> resizer({source.data(), c.sourceWidth, c.sourceHeight, c.SourceStride()},
                            {outcome.destination.data(), c.destWidth, c.destHeight, c.DestStride()}, c.channels,
                            kResizeMath, report);
    outcome.error = resizer.Run(mode);
    outcome.result = outcome.error == 0;
    return outcome;
}

template <class T>
u32 CallResize(const ResizeCase& c, u32 mode, const T* source, T* destination)
{
    return zlv::MV40_ResizeImage(source, c.sourceWidth, c.sourceHeight, c.SourceStride(), destination, c.destWidth,
                                 c.destHeight, c.DestStride(), c.channels, mode,
                                 sizeof(T) == 2 ? zlv::kResizeSixteenBit : 0);
}

template <class T>
ResizeOutcome<T> ResizeSilently(const ResizeCase& c, u32 mode, const std::vector<T>& source)
{
    ResizeOutcome<T> outcome = {DestinationBefore<T>(c), 0, 0, {}};
    outcome.result = CallResize(c, mode, source.data(), outcome.destination.data());
    outcome.error = zlv::MV40_GetLastError();
    return outcome;
}

template <class T>
ResizeOutcome<T> ResizeReporting(const ResizeCase& c, u32 mode, const std::vector<T>& source, size_t cancelAt = 0)
{
    Recording recording(cancelAt);
    ResizeOutcome<T> outcome = ResizeSilently(c, mode, source);
    outcome.reports = recording.recorder.reports;
    return outcome;
}

template <class T>
void ExpectSame(const ResizeOutcome<T>& wanted, const ResizeOutcome<T>& got)
{
    EXPECT_EQ(got.result, wanted.result);
    EXPECT_EQ(got.error, wanted.error);
    EXPECT_EQ(Difference(wanted.destination.data(), got.destination.data(), got.destination.size()), "");
}

// One call with nobody to tell, one with a callback; every sample of the destination counts, padding included.
template <class T>
void ExpectPlainResize(const ResizeCase& c, u32 mode, Picture kind, std::uint64_t seed = 1)
{
    const std::vector<T> source = MakePicture<T>(kind, c, seed);
    const ResizeOutcome<T> wanted = ResizePlainly<T>(c, mode, source);
    ExpectSame(wanted, ResizeSilently<T>(c, mode, source));
    const ResizeOutcome<T> reported = ResizeReporting<T>(c, mode, source);
    ExpectSame(wanted, reported);
    EXPECT_EQ(reported.reports, wanted.reports);
}

// Whether the mode takes samples of this width.
template <class T>
bool TakesMode(u32 mode)
{
    return sizeof(T) == 1 || mode >= kResizeFilters;
}

inline bool ShrinksOnly(u32 mode)
{
    return mode == u32(zlv::ResizeMode::BlockAverage) || mode == u32(zlv::ResizeMode::AreaAverage);
}

}  // namespace zlvtest
