#include "artistic/segment_elements.h"

#include "plain/plain_segmented.h"
#include "support/bytes.h"

#include <cstring>

namespace zlv {
namespace {

// Rows between slashes.
std::string Drawn(const SegmentElement& element)
{
    std::string rows;
    for (u32 y = 0; y < element.side; ++y) {
        if (y > 0) rows += " / ";
        for (u32 x = 0; x < element.side; ++x) rows += char('0' + element.At(y * element.side + x));
    }
    return rows;
}

TEST(SegmentElements, AreDrawnToTheirLastEntry)
{
    for (u32 number = 0; number < kSegmentElements; ++number) {
        const SegmentElement& element = SegmentElementOf(number);
        EXPECT_EQ(std::strlen(element.drawing), element.Entries()) << number;
        EXPECT_LE(element.side, kLargestSegmentElement);
    }
}

TEST(SegmentElements, EachIsItsDrawing)
{
    static_assert(std::size(kPlainSegmentElements) == kSegmentElements);
    for (u32 number = 0; number < kSegmentElements; ++number) {
        EXPECT_EQ(Drawn(SegmentElementOf(number)), kPlainSegmentElements[number]) << number;
    }
}

TEST(SegmentElements, NumbersBeyondTheLastAreTheFirst)
{
    for (const u32 number : {12u, 13u, 255u, 0xFFFFFFFFu}) {
        EXPECT_EQ(Drawn(SegmentElementOf(number)), "111 / 111 / 111") << number;
    }
}

const struct {
    u32 number, side;
} kBlocks[] = {{0, 3}, {2, 5}, {4, 7}}, kDiamonds[] = {{1, 3}, {3, 5}, {7, 9}, {9, 15}};

TEST(SegmentElements, BlocksAreFull)
{
    for (const auto& block : kBlocks) {
        const SegmentElement& element = SegmentElementOf(block.number);
        EXPECT_EQ(element.side, block.side);
        EXPECT_EQ(std::string(element.drawing), std::string(size_t(block.side) * block.side, '1'));
    }
}

TEST(SegmentElements, DiamondsHoldWhatIsNearTheirCentre)
{
    for (const auto& diamond : kDiamonds) {
        const SegmentElement& element = SegmentElementOf(diamond.number);
        ASSERT_EQ(element.side, diamond.side);
        const i32 half = i32(diamond.side / 2);
        for (i32 y = -half; y <= half; ++y) {
            for (i32 x = -half; x <= half; ++x) {
                const u32 entry = u32(y + half) * diamond.side + u32(x + half);
                EXPECT_EQ(element.At(entry), u32(std::abs(x) + std::abs(y) <= half)) << diamond.number;
            }
        }
    }
}

}  // namespace
}  // namespace zlv
