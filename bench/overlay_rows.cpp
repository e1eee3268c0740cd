// Overlays and merges. The second buffer of a run is the overlay.
#include "base/merge.h"
#include "base/overlay.h"
#include "bench_row.h"

#ifdef ZLV_BENCH_OPENCV
#include <opencv2/core.hpp>
#endif

namespace zlvbench {

namespace {

const Shape kRgb = {kFullWidth, kFullHeight, 3};
const Shape kRgba = {kFullWidth, kFullHeight, 4};

std::string SizeOf(const Shape& shape) { return std::to_string(shape.width) + "x" + std::to_string(shape.height); }

BenchRow OverlayRow(const std::string& name, const Shape& shape, OverlayMode mode, f64 opacity, Peer peer = {})
{
    const auto ours = [=](const Buffers& buffers) {
        MV40_OverlayImage(buffers.image, shape.width, shape.height, shape.channels, shape.width * shape.channels,
                          buffers.output, shape.width, shape.height, shape.width * shape.channels, 0, 0, opacity, 1.5,
                          u32(mode), shape.bytesPerSample == 2 ? kOverlaySixteenBit : 0);
    };
    const char* const layout = shape.bytesPerSample == 2 ? "/rgb16/" : "/rgb8/";
    return {"OverlayImage/" + name + layout + SizeOf(shape), shape, shape.Bytes(), ours, std::move(peer)};
}

BenchRow MergeRow(const std::string& name, const Shape& base, MergeMode mode, f64 opacity)
{
    const auto ours = [=](const Buffers& buffers) {
        MV40_MergeRGBA(buffers.image, base.width, base.height, base.channels, base.width * base.channels,
                       buffers.output, base.width, base.height, base.width * 4, 0, 0, opacity, u32(mode));
    };
    return {"MergeRGBA/" + name + "/" + SizeOf(base), base, kRgba.Bytes(), ours};
}

BenchRow PaintRow(const std::string& name, const Shape& base, u32 flags)
{
    const auto ours = [=](const Buffers& buffers) {
        MV40_AlphaBlendColor(buffers.image, base.width, base.height, base.channels, base.width * base.channels,
                             buffers.output, base.width, base.height, base.width, 0xFA3264C8, 0, 0, flags);
    };
    return {"AlphaBlendColor/" + name + "/" + SizeOf(base), base, base.Pixels(), ours};
}

BenchRow KeyedRow(const std::string& name, u32 flags)
{
    const auto ours = [=](const Buffers& buffers) {
        MV40_OverlayRGBTrans(buffers.image, kRgb.width, kRgb.height, kRgb.width * 3, buffers.output, kRgb.width,
                             kRgb.height, kRgb.width * 3, 0, 0, 0.6, 0x808080, 3000, flags);
    };
    return {"OverlayRGBTrans/" + name + "/" + SizeOf(kRgb), kRgb, kRgb.Bytes(), ours};
}

BenchRow IndexedRow(const std::string& name, u32 flags)
{
    const std::vector<u8> palette = RandomTable<u8>(5);
    const auto ours = [=](const Buffers& buffers) {
        u8 entries[1024];
        for (size_t i = 0; i < sizeof entries; ++i) entries[i] = palette[i % 256];
        MV40_Overlay8BitToRGB(buffers.image, kRgb.width, kRgb.height, kRgb.width * 3, buffers.output, kRgb.width,
                              kRgb.height, kRgb.width, entries, 0, 0, 0.6, 7, flags | kIndexedTransparent);
    };
    return {"Overlay8BitToRGB/" + name + "/" + SizeOf(kRgb), kRgb, kRgb.Pixels(), ours};
}

#ifdef ZLV_BENCH_OPENCV

// work(base, overlay), in place.
template <class Work>
Peer CvPeer(const char* name, bool isBitEqual, Work work)
{
    const auto run = [work](const Buffers& buffers) {
        const int type = CV_8UC3;
        cv::Mat base(int(kRgb.height), int(kRgb.width), type, buffers.image);
        const cv::Mat overlay(int(kRgb.height), int(kRgb.width), type, buffers.output);
        work(base, overlay);
    };
    return {name, run, isBitEqual};
}

Peer CvMix(f64 opacity)
{
    return CvPeer("cv::addWeighted", false, [opacity](cv::Mat& base, const cv::Mat& overlay) {
        cv::addWeighted(base, 1 - opacity, overlay, opacity, 0, base);
    });
}

Peer CvLighter()
{
    return CvPeer("cv::max", true, [](cv::Mat& base, const cv::Mat& overlay) { cv::max(base, overlay, base); });
}

Peer CvAdd()
{
    return CvPeer("cv::add", true, [](cv::Mat& base, const cv::Mat& overlay) { cv::add(base, overlay, base); });
}

Peer CvSubtract()
{
    return CvPeer("cv::subtract", true,
                  [](cv::Mat& base, const cv::Mat& overlay) { cv::subtract(base, overlay, base); });
}

Peer CvDifference()
{
    return CvPeer("cv::absdiff", true, [](cv::Mat& base, const cv::Mat& overlay) { cv::absdiff(base, overlay, base); });
}

// Rounded where we truncate.
Peer CvMultiply(f64 factor)
{
    return CvPeer("cv::multiply", false,
                  [factor](cv::Mat& base, const cv::Mat& overlay) { cv::multiply(base, overlay, base, factor / 255); });
}

Peer CvScreen()
{
    return CvPeer("cv not+multiply+not", false, [](cv::Mat& base, const cv::Mat& overlay) {
        cv::Mat inverse;
        cv::bitwise_not(overlay, inverse);
        cv::bitwise_not(base, base);
        cv::multiply(base, inverse, base, 1 / 255.0);
        cv::bitwise_not(base, base);
    });
}

Peer CvDodge()
{
    return CvPeer("cv not+divide", false, [](cv::Mat& base, const cv::Mat& overlay) {
        cv::Mat inverse;
        cv::bitwise_not(overlay, inverse);
        cv::divide(base, inverse, base, 255);
    });
}

#else

Peer CvMix(f64) { return {}; }
Peer CvLighter() { return {}; }
Peer CvAdd() { return {}; }
Peer CvSubtract() { return {}; }
Peer CvDifference() { return {}; }
Peer CvMultiply(f64) { return {}; }
Peer CvScreen() { return {}; }
Peer CvDodge() { return {}; }

#endif

}  // namespace

std::vector<BenchRow> OverlayRows()
{
    const Shape words = {kFullWidth, kFullHeight, 3, 2};
    return {
        OverlayRow("replace_half", {16, 16, 3}, OverlayMode::Replace, 0.5),
        OverlayRow("lighter", {16, 16, 3}, OverlayMode::Lighter, 1),
        OverlayRow("replace_half", kRgb, OverlayMode::Replace, 0.5, CvMix(0.5)),
        OverlayRow("replace_0.3", kRgb, OverlayMode::Replace, 0.3, CvMix(0.3)),  // doubles round 0.7 * i inconsistently
        OverlayRow("replace_exactly_half", kRgb, OverlayMode::ReplaceExactly, 0.5, CvMix(0.5)),
        OverlayRow("replace_exactly_0.3", kRgb, OverlayMode::ReplaceExactly, 0.3, CvMix(0.3)),
        OverlayRow("lighter", kRgb, OverlayMode::Lighter, 1, CvLighter()),
        OverlayRow("add", kRgb, OverlayMode::Add, 1, CvAdd()),
        OverlayRow("subtract", kRgb, OverlayMode::Subtract, 1, CvSubtract()),
        OverlayRow("difference", kRgb, OverlayMode::Difference, 1, CvDifference()),
        OverlayRow("multiply", kRgb, OverlayMode::Multiply, 1, CvMultiply(1)),
        OverlayRow("scaled_multiply", kRgb, OverlayMode::ScaledMultiply, 1, CvMultiply(1.5)),
        OverlayRow("screen", kRgb, OverlayMode::Screen, 1, CvScreen()),
        OverlayRow("add_with_bias", kRgb, OverlayMode::AddWithBias, 1),
        OverlayRow("dodge", kRgb, OverlayMode::ColorDodge, 1, CvDodge()),
        OverlayRow("overlay", kRgb, OverlayMode::Overlay, 1),
        OverlayRow("soft_light", kRgb, OverlayMode::SoftLight, 1),
        OverlayRow("soft_light_half", kRgb, OverlayMode::SoftLight, 0.5),
        OverlayRow("replace_above_half", kRgb, OverlayMode::ReplaceAbove, 0.5),
        OverlayRow("multiply", words, OverlayMode::Multiply, 1),
        OverlayRow("replace_half", words, OverlayMode::Replace, 0.5),
        OverlayRow("dodge", words, OverlayMode::ColorDodge, 1),
        MergeRow("mode0", kRgba, MergeMode::KeepAlpha, 1),
        MergeRow("mode0_half", kRgba, MergeMode::KeepAlpha, 0.5),
        MergeRow("mode0_rgb", kRgb, MergeMode::KeepAlpha, 1),
        MergeRow("mode4", kRgba, MergeMode::Over, 1),
        PaintRow("rgb", kRgb, 0),
        PaintRow("rgba_over", kRgba, kColorOver),
        KeyedRow("byte_shares", kKeyedByteShares),
        KeyedRow("double_shares", 0),
        IndexedRow("byte_shares", kIndexedByteShares),
        IndexedRow("double_shares", 0),
    };
}

}  // namespace zlvbench
