#include "artistic/artistic_cases.h"

#include <limits>

namespace zlv {
namespace {

using namespace zlvtest;

constexpr f64 kNan = std::numeric_limits<f64>::quiet_NaN();
constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();

Bytes Tint(const Bytes& source, u32 width, u32 height, f64 amount, u8 flags)
{
    Bytes tinted(source.size(), 77);
    EXPECT_EQ(ZLV40_WatercolorTintRGB(source.data(), width, height, width * 3, tinted.data(), width * 3, amount, flags),
              1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    return tinted;
}

const struct {
    const char* shows;
    bool hasSource, hasDestination;
    u32 width, height;
    f64 amount;
    u32 code;
} kRefused[] = {
    {"a null source", false, true, 2, 2, 0.5, 5},
    {"a null destination", true, false, 2, 2, 0.5, 5},
    {"a null source of no size", false, true, 0, 0, 0.5, 5},
    {"an amount that is no number", true, true, 2, 2, kNan, 5},
    {"no columns", true, true, 0, 2, 0.5, 1},
    {"no rows", true, true, 2, 0, 0.5, 1},
    {"the largest image", true, true, 0xFFFFFFFF, 0xFFFFFFFF, 0.5, 1},
};

TEST(WatercolorTintRGB, RefusesWithNothingWritten)
{
    for (const auto& row : kRefused) {
        SCOPE(row.shows);
        const Bytes source = RandomBytes(12, 4);
        Bytes destination(12, 77);
        EXPECT_EQ(ZLV40_WatercolorTintRGB(row.hasSource ? source.data() : nullptr, row.width, row.height, 6,
                                          row.hasDestination ? destination.data() : nullptr, 6, row.amount, 1),
                  0u);
        EXPECT_EQ(ZLV40_GetLastError(), row.code);
        EXPECT_EQ(destination, Bytes(12, 77));
    }
}

TEST(WatercolorTintRGB, TheAmountIsLimited)
{
    const Bytes source = RandomBytes(20 * 15 * 3, 1);
    EXPECT_EQ(Tint(source, 20, 15, -1, 1), Tint(source, 20, 15, 0, 1));
    EXPECT_EQ(Tint(source, 20, 15, 7, 1), Tint(source, 20, 15, 1, 1));
    EXPECT_EQ(Tint(source, 20, 15, kInfinity, 1), Tint(source, 20, 15, 1, 1));
}

// gray = (601 g + 306 r + 117 b) / 1024 of 100, 50, 200 is 82.
TEST(WatercolorTintRGB, AnAmountOf0TakesTheGrayImageItself)
{
    const Bytes pixel = {100, 50, 200};
    EXPECT_EQ(Tint(pixel, 1, 1, 0, 0), (Bytes{82, 50, 82}));
    EXPECT_EQ(Tint(pixel, 1, 1, 0, ZLV40_WATERCOLOR_LIGHTER), (Bytes{100, 82, 200}));
}

TEST(WatercolorTintRGB, OtherFlagsAreIgnored)
{
    const Bytes source = RandomBytes(20 * 15 * 3, 1);
    EXPECT_EQ(Tint(source, 20, 15, 0.1, 0xFC | 2), Tint(source, 20, 15, 0.1, 2));
}

TEST(WatercolorTintRGB, SixStagesAreReported)
{
    const Bytes source = RandomBytes(20 * 15 * 3, 1);
    ProgressRecorder client;
    ZLV40_SetCallback(client.Function, client.Data());
    Tint(source, 20, 15, 0.1, 1);
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_EQ(client.reports, Rows(6, 6));
}

TEST(WatercolorTintRGB, TheDestinationIsWrittenInTheLastTwoStages)
{
    const Bytes source = RandomBytes(20 * 15 * 3, 1);
    for (std::size_t cancelAt = 1; cancelAt <= 6; ++cancelAt) {
        Bytes destination(source.size(), 77);
        ProgressRecorder client;
        client.cancelAt = cancelAt;
        ZLV40_SetCallback(client.Function, client.Data());
        EXPECT_EQ(ZLV40_WatercolorTintRGB(source.data(), 20, 15, 60, destination.data(), 60, 0.1, 0), 0u);
        ZLV40_SetCallback(nullptr, 0);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_CANCELLED));
        if (cancelAt <= 4) {
            EXPECT_EQ(destination, Bytes(source.size(), 77));
        }
        if (cancelAt == 5) {
            EXPECT_EQ(destination, source);
        }
        if (cancelAt == 6) {
            EXPECT_EQ(destination, Tint(source, 20, 15, 0.1, 0));
        }
    }
}

}  // namespace
}  // namespace zlv
