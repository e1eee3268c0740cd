// Binary and gray morphology.
#include "bench_row.h"

#include "zlv40.h"

#ifdef ZLV_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif
#ifdef ZLV_BENCH_LEPTONICA
#include <leptonica/allheaders.h>
#endif

#include <cstdlib>
#include <memory>

namespace zlvbench {

namespace {

using Element = std::vector<u32>;

std::string NameOf(const char* function, const Shape& shape, const std::string& element)
{
    const char* const layout = shape.samplesPerByte == 8 ? "bits" : "gray8";
    return std::string(function) + "/" + layout + "/" + std::to_string(shape.width) + "x" +
           std::to_string(shape.height) + "/" + element;
}

Element Box(u32 side, u32 entry) { return Element(size_t(side) * side, entry); }

Element Diamond(u32 side)
{
    const i32 half = i32(side / 2);
    Element element;
    for (i32 y = -half; y <= half; ++y) {
        for (i32 x = -half; x <= half; ++x) element.push_back(std::abs(x) + std::abs(y) <= half);
    }
    return element;
}

// ---- Bits ----

#ifdef ZLV_BENCH_LEPTONICA

using PixPointer = std::shared_ptr<Pix>;

// Its image is a copy: it wants rows of whole words, in the processor's byte order.
PixPointer RandomPix(const Shape& shape)
{
    setMsgSeverity(L_SEVERITY_NONE);  // it would tell at each call that an element has no code of its own
    const PixPointer image(pixCreate(int(shape.width), int(shape.height), 1), [](Pix* pix) { pixDestroy(&pix); });
    RandomBytes random(20);
    const u32 words = u32(pixGetWpl(image.get())) * shape.height;
    for (u32 i = 0; i < words; ++i) pixGetData(image.get())[i] = random.Next() << 16 ^ random.Next();
    return image;
}

// Writes into an image that it keeps.
template <class Apply>
Peer LeptonicaPeer(const char* name, const Shape& shape, Apply apply)
{
    const PixPointer from = RandomPix(shape), to = RandomPix(shape);
    return {name, [=](const Buffers&) { apply(to.get(), from.get()); }, false};
}

std::shared_ptr<Sel> SelOf(const Element& element, u32 side)
{
    Sel* const sel = selCreate(int(side), int(side), "element");
    selSetOrigin(sel, int(side / 2), int(side / 2));
    for (u32 i = 0; i < element.size(); ++i) {
        if (element[i]) selSetElement(sel, int(i / side), int(i % side), SEL_HIT);
    }
    return {sel, [](Sel* one) { selDestroy(&one); }};
}

Peer DilatePeer(const Shape& shape, u32 side)
{
    return LeptonicaPeer(side == 3 ? "pixDilateBrick" : "pixDilateBrickDwa", shape, [=](Pix* to, Pix* from) {
        (side == 3 ? pixDilateBrick : pixDilateBrickDwa)(to, from, int(side), int(side));
    });
}

Peer ErodePeer(const Shape& shape, u32 side)
{
    return LeptonicaPeer(side == 3 ? "pixErodeBrick" : "pixErodeBrickDwa", shape, [=](Pix* to, Pix* from) {
        (side == 3 ? pixErodeBrick : pixErodeBrickDwa)(to, from, int(side), int(side));
    });
}

Peer OpenPeer(const Shape& shape, u32 side)
{
    return LeptonicaPeer("pixOpenBrickDwa", shape,
                         [=](Pix* to, Pix* from) { pixOpenBrickDwa(to, from, int(side), int(side)); });
}

Peer ClosePeer(const Shape& shape, u32 side)
{
    return LeptonicaPeer("pixCloseBrickDwa", shape,
                         [=](Pix* to, Pix* from) { pixCloseBrickDwa(to, from, int(side), int(side)); });
}

Peer BoundaryPeer(const Shape& shape, u32 side)
{
    return LeptonicaPeer("pixErodeBrick, pixSubtract", shape, [=](Pix* to, Pix* from) {
        pixErodeBrick(to, from, int(side), int(side));
        pixSubtract(to, from, to);
    });
}

Peer SelPeer(const Shape& shape, const Element& element, u32 side)
{
    const std::shared_ptr<Sel> sel = SelOf(element, side);
    return LeptonicaPeer("pixDilate", shape, [=](Pix* to, Pix* from) { pixDilate(to, from, sel.get()); });
}

// The corners are what must be set, the centre of each side what must be clear.
Peer HitOrMissPeer(const Shape& shape, const Element& hit, const Element& miss, u32 side)
{
    const std::shared_ptr<Sel> sel = SelOf(hit, side);
    for (u32 i = 0; i < miss.size(); ++i) {
        if (miss[i]) selSetElement(sel.get(), int(i / side), int(i % side), SEL_MISS);
    }
    return LeptonicaPeer("pixHMT", shape, [=](Pix* to, Pix* from) { pixHMT(to, from, sel.get()); });
}

Peer ThinPeer(const Shape& shape)
{
    const PixPointer from = RandomPix(shape);
    return {"pixThinConnected",
            [=](const Buffers&) {
                Pix* thinned = pixThinConnected(from.get(), L_THIN_FG, 4, 1);
                pixDestroy(&thinned);
            },
            false};
}

#else

Peer DilatePeer(const Shape&, u32) { return {}; }
Peer ErodePeer(const Shape&, u32) { return {}; }
Peer OpenPeer(const Shape&, u32) { return {}; }
Peer ClosePeer(const Shape&, u32) { return {}; }
Peer BoundaryPeer(const Shape&, u32) { return {}; }
Peer SelPeer(const Shape&, const Element&, u32) { return {}; }
Peer HitOrMissPeer(const Shape&, const Element&, const Element&, u32) { return {}; }
Peer ThinPeer(const Shape&) { return {}; }

#endif

BenchRow BitRow(const char* function, decltype(&ZLV40_MorphoDilation1Bit) apply, const Shape& shape,
                const Element& element, u32 side, const std::string& elementName, const Peer& peer)
{
    return {NameOf(function, shape, elementName), shape, shape.Bytes(),
            [=](const Buffers& buffers) {
                const u32 stride = shape.width / 8;
                apply(buffers.image, shape.width, shape.height, stride, buffers.output, stride, element.data(),
                      i32(side), i32(side), 0);
            },
            peer};
}

BenchRow BoxRow(const char* function, decltype(&ZLV40_MorphoDilation1Bit) apply, const Shape& shape, u32 side,
                const Peer& peer)
{
    const std::string name = std::to_string(side) + "x" + std::to_string(side);
    return BitRow(function, apply, shape, Box(side, 1), side, name, peer);
}

BenchRow HitOrMissRow(const Shape& shape, u32 side)
{
    Element hit = Box(side, 0), miss = Box(side, 0);
    for (u32 y = 0; y < side; ++y) {
        for (u32 x = 0; x < side; ++x) (x + y < side ? hit : miss)[y * side + x] = 1;
    }
    return {NameOf("MorphoHitOrMiss1Bit", shape, std::to_string(side) + "x" + std::to_string(side)), shape,
            shape.Bytes(),
            [=](const Buffers& buffers) {
                const u32 stride = shape.width / 8;
                ZLV40_MorphoHitOrMiss1Bit(buffers.image, shape.width, shape.height, stride, buffers.output, stride,
                                          hit.data(), i32(side), i32(side), miss.data(), i32(side), i32(side), 0);
            },
            HitOrMissPeer(shape, hit, miss, side)};
}

// One pass of the classical thinning: edges and corners from four sides.
BenchRow ThinningRow(const Shape& shape)
{
    constexpr u32 kDirections = 4;
    constexpr u32 kTurned[] = {6, 3, 0, 7, 4, 1, 8, 5, 2};  // by a quarter
    std::vector<Element> hits = {{0, 0, 0, 0, 1, 0, 1, 1, 1}, {0, 0, 0, 1, 1, 0, 0, 1, 0}};
    std::vector<Element> misses = {{1, 1, 1, 0, 0, 0, 0, 0, 0}, {0, 1, 1, 0, 0, 1, 0, 0, 0}};
    for (std::vector<Element>* elements : {&hits, &misses}) {
        for (u32 i = 2; i < 2 * kDirections; ++i) {
            Element turned(9);
            for (u32 k = 0; k < 9; ++k) turned[k] = (*elements)[i - 2][kTurned[k]];
            elements->push_back(turned);
        }
    }
    return {NameOf("MorphoThinning1Bit", shape, "8elements_1iter"), shape, shape.Bytes(),
            [=](const Buffers& buffers) {
                std::vector<const u32*> hit, miss;
                for (const Element& element : hits) hit.push_back(element.data());
                for (const Element& element : misses) miss.push_back(element.data());
                ZLV40_MorphoThinning1Bit(buffers.image, shape.width, shape.height, shape.width / 8, buffers.output,
                                         hit.data(), 3, miss.data(), 3, u32(hit.size()), 1, 0);
            },
            ThinPeer(shape)};
}

// ---- Gray ----

#ifdef ZLV_BENCH_OPENCV

Peer CvMorphology(const Shape& shape, int operation, u32 side)
{
    return {
        "cv::morphologyEx", [=](const Buffers& buffers) {
            const auto view = [&](u8* pixels) { return cv::Mat(int(shape.height), int(shape.width), CV_8UC1, pixels); };
            cv::Mat to = view(buffers.output);
            const cv::Mat element = cv::getStructuringElement(cv::MORPH_RECT, cv::Size(int(side), int(side)));
            cv::morphologyEx(view(buffers.image), to, operation, element, cv::Point(-1, -1), 1, cv::BORDER_REPLICATE);
        }};
}

constexpr int kOpen = cv::MORPH_OPEN, kClose = cv::MORPH_CLOSE, kTopHat = cv::MORPH_TOPHAT,
              kGradient = cv::MORPH_GRADIENT;

#else

Peer CvMorphology(const Shape&, int, u32) { return {}; }

constexpr int kOpen = 0, kClose = 0, kTopHat = 0, kGradient = 0;

#endif

BenchRow GrayRow(const char* function, decltype(&ZLV40_OpenGray) apply, const Shape& shape, const Element& element,
                 u32 side, const std::string& elementName, const Peer& peer)
{
    return {NameOf(function, shape, elementName), shape, shape.Bytes(),
            [=](const Buffers& buffers) {
                apply(buffers.image, shape.width, shape.height, shape.width, element.data(), side, buffers.output,
                      shape.width);
            },
            peer};
}

// Entries that fall with the distance from the centre.
Element Cone(u32 side)
{
    const i32 half = i32(side / 2);
    Element element;
    for (i32 y = -half; y <= half; ++y) {
        for (i32 x = -half; x <= half; ++x) element.push_back(u32(-10 * (x * x + y * y)));
    }
    return element;
}

}  // namespace

std::vector<BenchRow> MorphologyRows()
{
    const Shape bits = {kFullWidth, kFullHeight, 1, 1, 8}, tiny = {16, 16, 1, 1, 8};
    const Shape gray = {kFullWidth, kFullHeight, 1};
    std::vector<BenchRow> rows;
    rows.push_back(BoxRow("MorphoDilation1Bit", ZLV40_MorphoDilation1Bit, tiny, 3, {}));
    for (const u32 side : {3u, 7u, 21u, 101u}) {
        rows.push_back(BoxRow("MorphoDilation1Bit", ZLV40_MorphoDilation1Bit, bits, side, DilatePeer(bits, side)));
        rows.push_back(BoxRow("MorphoErosion1Bit", ZLV40_MorphoErosion1Bit, bits, side, ErodePeer(bits, side)));
    }
    for (const u32 side : {3u, 7u}) {
        rows.push_back(BoxRow("MorphoOpen1Bit", ZLV40_MorphoOpen1Bit, bits, side, OpenPeer(bits, side)));
        rows.push_back(BoxRow("MorphoClose1Bit", ZLV40_MorphoClose1Bit, bits, side, ClosePeer(bits, side)));
        rows.push_back(HitOrMissRow(bits, side));
    }
    for (const u32 side : {7u, 51u}) {
        rows.push_back(BitRow("MorphoDilation1Bit", ZLV40_MorphoDilation1Bit, bits, Diamond(side), side,
                              "diamond" + std::to_string(side), SelPeer(bits, Diamond(side), side)));
    }
    rows.push_back(
        BoxRow("MorphoBoundaryExtraction1Bit", ZLV40_MorphoBoundaryExtraction1Bit, bits, 3, BoundaryPeer(bits, 3)));
    rows.push_back(ThinningRow(bits));
    for (const u32 side : {3u, 7u}) {
        const std::string flat = "flat" + std::to_string(side);
        const auto add = [&](const char* function, decltype(&ZLV40_OpenGray) apply, int operation) {
            rows.push_back(
                GrayRow(function, apply, gray, Box(side, 0), side, flat, CvMorphology(gray, operation, side)));
        };
        add("OpenGray", ZLV40_OpenGray, kOpen);
        add("CloseGray", ZLV40_CloseGray, kClose);
        add("TophatGray", ZLV40_TophatGray, kTopHat);
        add("MorphoGradientGray", ZLV40_MorphoGradientGray, kGradient);
    }
    rows.push_back(GrayRow("OpenGray", ZLV40_OpenGray, gray, Cone(5), 5, "cone5", {}));
    return rows;
}

}  // namespace zlvbench
