// Gauzy, scribble and fingerprint: what they refuse, and what their steps do.
#include "artistic/artistic_cases.h"

#include <limits>

namespace zlv {
namespace {

using namespace zlvtest;

constexpr f64 kNan = std::numeric_limits<f64>::quiet_NaN();
constexpr f64 kInfinity = std::numeric_limits<f64>::infinity();

const struct {
    const char* shows;
    bool hasSource, hasDestination;
    u32 width, height, code;
} kRefused[] = {
    {"a null source", false, true, 2, 2, 5},
    {"a null destination", true, false, 2, 2, 5},
    {"a null source of no size", false, true, 0, 0, 5},
    {"no columns", true, true, 0, 2, 1},
    {"no rows", true, true, 2, 0, 1},
};

// call(source, destination, width, height)
template <class Call>
void ExpectRefusals(Call call)
{
    for (const auto& row : kRefused) {
        SCOPE(row.shows);
        const Bytes source = RandomBytes(12, 4);
        Bytes destination(12, 77);
        EXPECT_EQ(call(row.hasSource ? source.data() : nullptr, row.hasDestination ? destination.data() : nullptr,
                       row.width, row.height),
                  0u);
        EXPECT_EQ(ZLV40_GetLastError(), row.code);
        EXPECT_EQ(destination, Bytes(12, 77));
    }
}

TEST(GauzyRGB, RefusesWithNothingWritten)
{
    for (u32 mode = 0; mode <= 5; ++mode) {
        SCOPE(mode);
        ExpectRefusals([=](const u8* source, u8* destination, u32 width, u32 height) {
            return ZLV40_GauzyRGB(source, width, height, 6, destination, 6, 0.5, 0.5, 0.5, mode);
        });
    }
}

TEST(GauzyRGB, RefusesWhatIsNoNumber)
{
    for (int i = 0; i < 3; ++i) {
        const Bytes source = RandomBytes(12, 4);
        Bytes destination(12, 77);
        EXPECT_EQ(ZLV40_GauzyRGB(source.data(), 2, 2, 6, destination.data(), 6, i == 0 ? kNan : 0, i == 1 ? kNan : 0,
                                 i == 2 ? kNan : 0, 0),
                  0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(destination, Bytes(12, 77));
    }
}

Bytes MakeGauzy(const Bytes& source, u32 width, f64 blur, f64 sharpness, f64 opacity, u32 mode)
{
    Bytes made(source.size(), 77);
    const u32 stride = width * 3, height = u32(source.size() / stride);
    EXPECT_EQ(ZLV40_GauzyRGB(source.data(), width, height, stride, made.data(), stride, blur, sharpness, opacity, mode),
              1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    return made;
}

TEST(GauzyRGB, ItsNumbersAreLimited)
{
    const Bytes source = RandomBytes(40 * 30 * 3, 1);
    EXPECT_EQ(MakeGauzy(source, 40, 2, kInfinity, 1.5, 0), MakeGauzy(source, 40, 1, 1, 1, 0));
    EXPECT_EQ(MakeGauzy(source, 40, -1, -kInfinity, -0.5, 1), MakeGauzy(source, 40, 0, 0, 0, 1));
}

TEST(GauzyRGB, OtherModesBlurAndLayNothingOver)
{
    const Bytes source = RandomBytes(40 * 30 * 3, 1);
    Bytes blurred(source.size());
    PlainBlurRgb({source.data(), 40, 30, 120, blurred.data(), 120}, 6, PlainSilence);
    for (const u32 mode : {5u, 0xFFFFFFFFu}) EXPECT_EQ(MakeGauzy(source, 40, 0.2, 1, 1, mode), blurred);
}

// A gray of up to 128 is black under the curve; 255, the entry that continues it, is 255 - 255 * 0.976^127 = 243.3 at a
// sharpness of 1. Flat areas are not sharpened; half of each is laid over the other half.
TEST(GauzyRGB, TheCurveHasItsFootAt128AndGoesOnTo255)
{
    EXPECT_EQ(MakeGauzy(Bytes(3, 128), 1, 0, 1, 1, 1), Bytes(3, 64));
    EXPECT_EQ(MakeGauzy(Bytes(3, 0), 1, 0, 1, 1, 1), Bytes(3, 0));
    EXPECT_EQ(int(MakeGauzy(Bytes(3, 255), 1, 0, 1, 1, 1)[0]), (255 + 243) / 2);
}

TEST(Scribble, RefusesWithNothingWritten)
{
    for (const u32 baseKind : {0u, 1u, 2u, 3u}) {
        for (const i32 edgesFromResult : {0, 1}) {
            SCOPE(baseKind, edgesFromResult);
            ExpectRefusals([=](const u8* source, u8* destination, u32 width, u32 height) {
                return ZLV40_Scribble(source, width, height, destination, baseKind, edgesFromResult, 100);
            });
        }
    }
    const Bytes source = RandomBytes(12, 4);
    for (const u32 baseKind : {4u, 0xFFFFFFFFu}) {
        Bytes destination(12, 77);
        EXPECT_EQ(ZLV40_Scribble(source.data(), 2, 2, destination.data(), baseKind, 0, 100), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(destination, Bytes(12, 77));
    }
}

Bytes MakeScribble(const Bytes& source, u32 width, u32 baseKind, i32 edgesFromResult, u32 opacity)
{
    Bytes made(source.size(), 77);
    EXPECT_EQ(ZLV40_Scribble(source.data(), width, u32(source.size() / width / 3), made.data(), baseKind,
                             edgesFromResult, opacity),
              1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    return made;
}

TEST(Scribble, AnOpacityOf0LeavesTheBaseAlone)
{
    const Bytes source = ArtisticPicture(40 * 30 * 3, 120, 3, 1);
    for (const u32 baseKind : {0u, 1u, 2u, 3u}) {
        SCOPE(baseKind);
        Bytes base(source.size());
        PlainScribbleBase({source.data(), 40, 30, 120, base.data(), 120}, baseKind, PlainSilence);
        EXPECT_EQ(MakeScribble(source, 40, baseKind, 0, 0), base);
        EXPECT_NE(MakeScribble(source, 40, baseKind, 0, 100), base) << "the picture has no edges";
    }
}

TEST(Scribble, TheDespeckledBaseIsTheImageAsItIs)
{
    const Bytes source = RandomBytes(40 * 30 * 3, 1);
    for (const i32 edgesFromResult : {0, 1}) EXPECT_EQ(MakeScribble(source, 40, 3, edgesFromResult, 0), source);
}

TEST(Scribble, AllOpacitiesFrom100OnDrawInBlack)
{
    const Bytes source = ArtisticPicture(40 * 30 * 3, 120, 3, 1), drawn = MakeScribble(source, 40, 3, 0, 100);
    EXPECT_EQ(MakeScribble(source, 40, 3, 0, 0xFFFFFFFF), drawn);
    std::size_t black = 0;
    for (std::size_t i = 0; i < drawn.size(); i += 3) {
        const bool isBlack = drawn[i] == 0 && drawn[i + 1] == 0 && drawn[i + 2] == 0;
        black += isBlack;
        EXPECT_TRUE(isBlack || std::equal(&drawn[i], &drawn[i] + 3, &source[i])) << i;
    }
    EXPECT_GT(black, 0u);
}

// Each base has its own progress, whichever image the edges are those of: nothing else of the chain is heard.
TEST(Scribble, OnlyTheBaseReports)
{
    const Bytes source = RandomBytes(6 * 5 * 3, 1);
    std::vector<Report> blur;
    for (int channel = 0; channel < 3; ++channel) {
        for (const Report row : Rows(5, 5)) blur.push_back(row);
        for (const Report column : Rows(6, 6)) blur.push_back(column);
    }
    const std::vector<Report> wanted[] = {blur, Rows(3, 3), Rows(5, 5), Rows(3, 3)};
    for (const u32 baseKind : {0u, 1u, 2u, 3u}) {
        for (const i32 edgesFromResult : {0, 1}) {
            SCOPE(baseKind, edgesFromResult);
            ProgressRecorder client;
            ZLV40_SetCallback(client.Function, client.Data());
            MakeScribble(source, 6, baseKind, edgesFromResult, 50);
            ZLV40_SetCallback(nullptr, 0);
            EXPECT_EQ(client.reports, wanted[baseKind]);
        }
    }
}

TEST(Scribble, ACancelledPosterisationLeavesNoCode)
{
    const Bytes source = RandomBytes(6 * 5 * 3, 1);
    for (const u32 baseKind : {0u, 1u, 2u, 3u}) {
        SCOPE(baseKind);
        Bytes made(source.size(), 77);
        ProgressRecorder client;
        client.cancelAt = 2;
        ZLV40_SetCallback(client.Function, client.Data());
        EXPECT_EQ(ZLV40_Scribble(source.data(), 6, 5, made.data(), baseKind, 0, 50), 0u);
        ZLV40_SetCallback(nullptr, 0);
        EXPECT_EQ(ZLV40_GetLastError(), u32(baseKind == 2 ? ZLV40_ERROR_NONE : ZLV40_ERROR_CANCELLED));
    }
}

u32 CallFingerprint(const Bytes& source, u32 width, Bytes& made, f64 blur, u32 ridge, u32 flags)
{
    return ZLV40_Fingerprint(source.data(), width, u32(source.size() / width), width, made.data(), width, blur, ridge,
                             flags);
}

Bytes MakeFingerprint(const Bytes& source, u32 width, f64 blur, u32 ridge, u32 flags)
{
    Bytes made(source.size(), 77);
    EXPECT_EQ(CallFingerprint(source, width, made, blur, ridge, flags), 1u);
    EXPECT_EQ(ZLV40_GetLastError(), 0u);
    return made;
}

TEST(Fingerprint, RefusesWithNothingWritten)
{
    ExpectRefusals([](const u8* source, u8* destination, u32 width, u32 height) {
        return ZLV40_Fingerprint(source, width, height, 6, destination, 6, 10, 3, 0);
    });
    const Bytes source = RandomBytes(16, 1);
    const struct {
        f64 blur;
        u32 ridge;
    } kBad[] = {{kNan, 3}, {kInfinity, 3}, {1e300, 3}, {0, 2902}, {0, 2903}, {0, 0xFFFFFFFF}};
    for (const auto& bad : kBad) {
        SCOPE(bad.blur, bad.ridge);
        Bytes made(16, 77);
        EXPECT_EQ(CallFingerprint(source, 4, made, bad.blur, bad.ridge, 0), 0u);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_BAD_ARGUMENT));
        EXPECT_EQ(made, Bytes(16, 77));
    }
}

TEST(Fingerprint, EvenAndSmallRidgesGrow)
{
    const Bytes source = ArtisticPicture(40 * 30, 40, 1, 1);
    EXPECT_EQ(MakeFingerprint(source, 40, 10, 6, 0), MakeFingerprint(source, 40, 10, 7, 0));
    EXPECT_NE(MakeFingerprint(source, 40, 10, 6, 0), MakeFingerprint(source, 40, 10, 5, 0));
    for (const u32 ridge : {0u, 1u, 2u}) {
        EXPECT_EQ(MakeFingerprint(source, 40, 10, ridge, 0), MakeFingerprint(source, 40, 10, 3, 0));
    }
}

TEST(Fingerprint, ABlurBelow0IsNone)
{
    const Bytes source = ArtisticPicture(40 * 30, 40, 1, 1);
    for (const f64 blur : {-0.5, -1e300, -kInfinity}) {
        EXPECT_EQ(MakeFingerprint(source, 40, blur, 5, 0), MakeFingerprint(source, 40, 0, 5, 0));
    }
}

TEST(Fingerprint, OtherFlagsAreIgnored)
{
    const Bytes source = ArtisticPicture(40 * 30, 40, 1, 1);
    EXPECT_EQ(MakeFingerprint(source, 40, 10, 5, 0xFFFFFFFE), MakeFingerprint(source, 40, 10, 5, 0));
    EXPECT_NE(MakeFingerprint(source, 40, 10, 5, 1), MakeFingerprint(source, 40, 10, 5, 0));
}

TEST(Fingerprint, TheDestinationMayBeTheSource)
{
    const Bytes source = ArtisticPicture(40 * 30, 40, 1, 1);
    for (const f64 blur : {0.0, 10.0, 50.0}) {
        Bytes image = source;
        EXPECT_EQ(ZLV40_Fingerprint(image.data(), 40, 30, 40, image.data(), 40, blur, 5, 0), 1u);
        EXPECT_EQ(image, MakeFingerprint(source, 40, blur, 5, 0));
    }
}

TEST(Fingerprint, ACancelEndsTheRidgesAndIsNotReported)
{
    const Bytes source = ArtisticPicture(40 * 6, 40, 1, 1);
    for (std::size_t cancelAt = 1; cancelAt <= 6; ++cancelAt) {
        SCOPE(cancelAt);
        ProgressRecorder client;
        client.cancelAt = cancelAt;
        Bytes made(source.size(), 77);
        ZLV40_SetCallback(client.Function, client.Data());
        EXPECT_EQ(CallFingerprint(source, 40, made, 10, 5, 0), 1u);
        ZLV40_SetCallback(nullptr, 0);
        EXPECT_EQ(ZLV40_GetLastError(), u32(ZLV40_ERROR_NONE));
        EXPECT_EQ(client.reports, Rows(u32(cancelAt), 6));
    }
}

// A window of this size over any picture is of the outermost pixels nearly everywhere.
TEST(Fingerprint, TheLargestRidge) { EXPECT_EQ(MakeFingerprint({9}, 1, 0, 2901, 0), MakeFingerprint({9}, 1, 0, 3, 0)); }

}  // namespace
}  // namespace zlv
