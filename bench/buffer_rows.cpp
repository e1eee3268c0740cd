// Whole buffers of bytes, in nanoseconds a byte. The peer of the union and the exclusive or is not in place either.
#include "bench_row.h"
#include "opencv_peers.h"

#include "zlv40.h"

#ifdef ZLV_BENCH_OPENCV
#include <opencv2/core.hpp>
#endif

namespace zlvbench {

namespace {

constexpr u32 kBytes = kFullWidth * kFullHeight * 4;

#ifdef ZLV_BENCH_OPENCV

using CvCombine = void (*)(cv::InputArray, cv::InputArray, cv::OutputArray, cv::InputArray);

Peer CvPeer(const char* name, CvCombine combine)
{
    return {name, [=](const Buffers& buffers) {
                const auto view = [](u8* bytes) { return cv::Mat(1, int(kBytes), CV_8UC1, bytes); };
                cv::Mat out = view(buffers.output);
                combine(view(buffers.image), view(buffers.image + kBytes), out, cv::noArray());
            }};
}

Peer CvAnd() { return CvPeer("cv::bitwise_and", cv::bitwise_and); }
Peer CvOr() { return CvPeer("cv::bitwise_or", cv::bitwise_or); }
Peer CvXor() { return CvPeer("cv::bitwise_xor", cv::bitwise_xor); }

#else

Peer CvAnd() { return {}; }
Peer CvOr() { return {}; }
Peer CvXor() { return {}; }

#endif

BenchRow InvertRow()
{
    const Shape bytes = {kBytes, 1, 1};
    return {
        "InvertBuffer/8MB",  bytes, 0,     [](const Buffers& buffers) { ZLV40_InvertBuffer(buffers.image, kBytes); },
        CvBitwiseNot(bytes), 0,     "byte"};
}

// The image is two buffers, one behind the other.
BenchRow CombineRow(const std::string& name, decltype(&ZLV40_XORBuffers) combine, const Peer& peer)
{
    return {name + "/8MB",
            {kBytes, 2, 1},
            kBytes,
            [=](const Buffers& buffers) { combine(buffers.image, buffers.image + kBytes, buffers.output, kBytes); },
            peer,
            kBytes,
            "byte"};
}

}  // namespace

std::vector<BenchRow> BufferRows()
{
    return {
        InvertRow(),
        CombineRow("IntersectBuffers", ZLV40_IntersectBuffers, CvAnd()),
        CombineRow("UnionBuffers", ZLV40_UnionBuffers, CvOr()),
        CombineRow("XORBuffers", ZLV40_XORBuffers, CvXor()),
    };
}

}  // namespace zlvbench
