#include "artistic/artistic_cases.h"
#include "support/failing_memory.h"

#include <numeric>

namespace zlv {
namespace {

using namespace zlvtest;

constexpr char kDefault[] = "WM$@#%^x*o=+:~. ";

std::string TextOf(const Bytes& bytes) { return std::string(bytes.begin(), bytes.end()); }

// The text of a plane without padding, with the byte behind its end.
std::string Draw(const Bytes& plane, u32 width, u32 height, u32 columns, u32 rows, const char* ramp)
{
    Bytes text(std::size_t(columns + 1) * rows + 2, '?');
    EXPECT_EQ(ZLV40_ASCIIizeGrayscaleImage(plane.data(), width, height, width, text.data(), columns, rows, ramp), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    EXPECT_EQ(text.back(), '?') << "it writes one byte more than it needs";
    text.pop_back();
    return TextOf(text);
}

TEST(ASCIIizeGrayscaleImage, EveryTargetEqualsPlain)
{
    std::string longRamp;  // of more characters than there are levels
    for (int i = 0; i < 300; ++i) longRamp += char('!' + i % 90);
    const char* const ramps[] = {kDefault, "#", "# ", "0123456789", longRamp.c_str()};
    zlvtest::OnEveryTarget([&] {
        for (const u32 width : {1u, 2u, 7u, 8u, 33u}) {
            for (const u32 height : {1u, 5u, 8u}) {
                for (const u32 padding : {0u, 1u, 4u}) {
                    for (const u32 columns : {1u, 2u, 7u, 8u, 40u}) {
                        for (const u32 rows : {1u, 5u, 8u, 11u}) {
                            const char* const ramp = ramps[(width + columns + rows) % 5];
                            SCOPE(width, height, padding, columns, rows, ramp);
                            const u32 stride = width + padding;
                            const Bytes plane = RandomBytes(std::size_t(height - 1) * stride + width, width);
                            GuardedBuffer source(plane.size(), Flush::ToEnd);
                            std::memcpy(source.Data(), plane.data(), plane.size());
                            GuardedBuffer text(std::size_t(columns + 1) * rows + 1, Flush::ToEnd);
                            Bytes wanted(text.Size());
                            Bytes padded = plane;
                            padded.resize(std::size_t(height) * stride);
                            PlainAsciiArt({padded.data(), width, height, stride}, wanted.data(), columns, rows, ramp);
                            EXPECT_EQ(ZLV40_ASCIIizeGrayscaleImage(source.Data(), width, height, stride, text.Data(),
                                                                   columns, rows, ramp),
                                      1u);
                            EXPECT_EQ(Difference(wanted.data(), text.Data(), wanted.size()), "");
                        }
                    }
                }
            }
        }
    });
}

TEST(ASCIIizeGrayscaleImage, TheDefaultRampHasSixteenLevelsOfEachCharacter)
{
    Bytes plane(256);
    std::iota(plane.begin(), plane.end(), u8(0));
    std::string wanted;
    for (std::size_t i = 0; i < 256; ++i) wanted += kDefault[i / 16];
    EXPECT_EQ(Draw(plane, 256, 1, 256, 1, nullptr), wanted + "\n" + '\0');
    EXPECT_EQ(wanted.front(), 'W');
    EXPECT_EQ(wanted.substr(240), std::string(16, ' '));
}

TEST(ASCIIizeGrayscaleImage, ARampOfOneCharacterFillsTheText)
{
    EXPECT_EQ(Draw({0, 127, 255, 254}, 2, 2, 2, 2, "#"), std::string("##\n##\n") + '\0');
}

TEST(ASCIIizeGrayscaleImage, ALineFeedEndsEachRowAndAZeroTheText)
{
    EXPECT_EQ(Draw({0, 255, 255, 0, 0, 255}, 2, 3, 2, 3, "#."), std::string("#.\n.#\n#.\n") + '\0');
}

TEST(ASCIIizeGrayscaleImage, CharactersAboveTheRangeOfSignedBytesStay)
{
    EXPECT_EQ(Draw({0, 255}, 2, 1, 2, 1, "\xE9\xFF"), std::string("\xE9\xFF\n") + '\0');
}

const struct {
    const char* shows;
    bool hasSource, hasText;
    u32 width, height, stride, columns, rows;
    const char* ramp;
} kRefused[] = {
    {"a null source", false, true, 4, 4, 4, 2, 2, nullptr},
    {"a null text", true, false, 4, 4, 4, 2, 2, nullptr},
    {"a null source before an empty text", false, true, 4, 4, 4, 2, 0, nullptr},
    {"an empty ramp", true, true, 4, 4, 4, 2, 2, ""},
    {"an empty ramp before an empty text", true, true, 4, 4, 4, 2, 0, ""},
    {"no columns", true, true, 4, 4, 4, 0, 2, nullptr},
    {"no columns in the source either", true, true, 0, 4, 1, 0, 4, nullptr},
    {"a source without columns", true, true, 0, 4, 4, 2, 2, nullptr},
    {"a source without rows", true, true, 4, 0, 4, 2, 2, nullptr},
    {"rows that overlap", true, true, 4, 4, 3, 2, 2, nullptr},
    {"lines longer than a number", true, true, 4, 4, 4, 0xFFFFFFFF, 2, nullptr},
    {"lines of the source's own size that are longer than a number", true, true, 0xFFFFFFFF, 2, 0, 0xFFFFFFFF, 2,
     nullptr},
};

TEST(ASCIIizeGrayscaleImage, RefusesWithTheTextLeftAlone)
{
    for (const auto& row : kRefused) {
        SCOPE(row.shows);
        const Bytes source = RandomBytes(16, 1);
        Bytes text(16, 77);
        EXPECT_EQ(
            ZLV40_ASCIIizeGrayscaleImage(row.hasSource ? source.data() : nullptr, row.width, row.height, row.stride,
                                         row.hasText ? text.data() : nullptr, row.columns, row.rows, row.ramp),
            0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(text, Bytes(16, 77));
    }
}

TEST(ASCIIizeGrayscaleImage, NoRowsAreRefusedWithAnEmptyText)
{
    for (const u32 columns : {0u, 2u, 0xFFFFFFFFu}) {
        const Bytes source(16, 3);
        Bytes text(4, 77);
        EXPECT_EQ(ZLV40_ASCIIizeGrayscaleImage(source.data(), 4, 4, 4, text.data(), columns, 0, nullptr), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(text, (Bytes{0, 77, 77, 77}));
    }
}

TEST(ASCIIizeGrayscaleImage, WithoutMemoryTheTextIsLeftAlone)
{
    const Bytes source = RandomBytes(60, 1);
    const u32 allocations = zlvtest::ExpectCodeOneWithoutMemory(Bytes(10, 77), [&](Bytes& text) {
        return ZLV40_ASCIIizeGrayscaleImage(source.data(), 10, 6, 10, text.data(), 2, 3, nullptr);
    });
    EXPECT_GT(allocations, 0u);
}

TEST(ASCIIizeGrayscaleImage, NeitherReportsNorCancels)
{
    ProgressRecorder client;
    client.cancelAt = 1;
    ZLV40_SetCallback(client.Function, client.Data());
    EXPECT_EQ(Draw({0, 255, 255, 0}, 2, 2, 1, 1, "#."), std::string("#\n") + '\0');
    ZLV40_SetCallback(nullptr, 0);
    EXPECT_TRUE(client.reports.empty());
}

}  // namespace
}  // namespace zlv
