#include "boundary/broken_arguments.h"

#include "support/bytes.h"

#include <cmath>
#include <limits>

namespace zlvtest {

namespace {

using Settings = std::vector<Setting>;

// What makes the largest values of a number lawful, where its role does not tell.
const struct Companion {
    std::string_view exports;  // how their names begin, or how they end behind an asterisk
    std::string_view argument;
    Settings settings;
    const char* because;
} kCompanions[] = {
    {"ZLV40_AddWaveTransform", "width", {Number("mode", ZLV40_WAVE_SINE_X)}, "the table has an entry a row then"},
    {"ZLV40_AddWaveTransform", "height", {Number("mode", ZLV40_WAVE_SINE_Y)}, "the table has an entry a column then"},
    {"ZLV40_AddZigZagTransform", "width", {Number("mode", ZLV40_SHIFT_X)}, "likewise"},
    {"ZLV40_AddZigZagTransform", "height", {Number("mode", ZLV40_SHIFT_Y)}, "likewise"},
    {"ZLV40_AddLineSliceTransform", "width", {Number("mode", ZLV40_SHIFT_X)}, "likewise"},
    {"ZLV40_AddLineSliceTransform", "height", {Number("mode", ZLV40_SHIFT_Y)}, "likewise"},
    {"ZLV40_AddGlassBlockTransform", "width", {Number("tileWidth", 1)}, "more blocks than an array counts"},
    {"ZLV40_AddGlassBlockTransform", "height", {Number("tileHeight", 1)}, "more blocks than an array counts"},
    {"*Transform", "width", {}, "no memory has this size"},
    {"*Transform", "height", {}, "no memory has this size"},
    {"ZLV40_AddPolygonTransform", "pointCount", {Null("polygon")}, "no points to read"},
    {"ZLV40_AllocFFTGrid", "width", {}, "memory is what it asks for"},
    {"ZLV40_AllocFFTGrid", "height", {}, "memory is what it asks for"},
    {"ZLV40_DropShadow",
     "width",
     {Number("height", 0), Number("distance", INT32_MAX)},
     "an image that no memory holds"},
    {"ZLV40_DropShadow",
     "height",
     {Number("width", 0), Number("distance", INT32_MAX)},
     "an image that no memory holds"},
    {"ZLV40_InvertBuffer", "size", {Null("buffer")}, "no buffer"},
    {"ZLV40_IntersectBuffers", "size", {Null("a"), Null("b"), Null("out")}, "no buffers"},
    {"ZLV40_UnionBuffers", "size", {Null("a"), Null("b"), Null("out")}, "no buffers"},
    {"ZLV40_XORBuffers", "size", {Null("a"), Null("b"), Null("out")}, "no buffers"},
    {"ZLV40_Get3DSplinePoints", "outCount", {Null("outX")}, "no points to write"},
    {"ZLV40_Get3DSplinePoints", "controlCount", {Null("x")}, "no points to read"},
    {"ZLV40_Get3DSplinePoints", "order", {}, "more than there are points"},
    {"ZLV40_GradientFillImage", "stopCount", {Null("colors")}, "no stops to read"},
    {"ZLV40_Morpho", "elementWidth", {Number("elementHeight", 0)}, "an element of no rows"},
    {"ZLV40_Morpho", "elementHeight", {Number("elementWidth", 0)}, "an element of no columns"},
    {"ZLV40_Morpho", "hitWidth", {Number("hitHeight", 0)}, "an element of no rows"},
    {"ZLV40_Morpho", "hitHeight", {Number("hitWidth", 0)}, "an element of no columns"},
    {"ZLV40_Morpho", "missWidth", {Number("missHeight", 0)}, "an element of no rows"},
    {"ZLV40_Morpho", "missHeight", {Number("missWidth", 0)}, "an element of no columns"},
    {"ZLV40_Morpho", "hitSize", {Number("elementCount", 0)}, "no elements"},
    {"ZLV40_Morpho", "missSize", {Number("elementCount", 0)}, "no elements"},
    {"ZLV40_Morpho", "elementCount", {Number("iterations", 0)}, "no pass uses them"},
    {"ZLV40_Morpho", "iterations", {}, "it ends when nothing changes any more"},
    {"ZLV40_ReflectImage", "reflectionHeight", {Number("width", 0)}, "rows of no pixels"},
    {"ZLV40_Segmented", "colors", {}, "it acts as 256"},
    {"ZLV40_Segmented", "filterSize", {}, "a larger median leaves its colour out, and there are eleven elements"},
};

const DescribedArgument* Find(const DescribedEffect& effect, Role role)
{
    for (const DescribedArgument& argument : effect.arguments) {
        if (argument.role == role) return &argument;
    }
    return nullptr;
}

// A picture without rows, or without columns.
Settings Without(const DescribedEffect& effect, Role role)
{
    const DescribedArgument* const size = Find(effect, role);
    return size ? Settings{Number(size->name, 0)} : Settings{};
}

// A stride counts between rows: one row has none, unless rows are used up to the next one.
Settings OneRow(const DescribedEffect& effect)
{
    bool hasWholeRows = false;
    for (const DescribedArgument& argument : effect.arguments) {
        hasWholeRows = hasWholeRows || argument.image.hasWholeRows;
    }
    const DescribedArgument* const height = Find(effect, Role::Height);
    return height ? Settings{Number(height->name, hasWholeRows ? 0 : 1)} : Settings{};
}

bool IsFor(const Companion& companion, const DescribedEffect& effect, const DescribedArgument& argument)
{
    const std::string_view name = effect.name, exports = companion.exports;
    const bool isNamed = exports.starts_with('*') ? name.ends_with(exports.substr(1)) : name.starts_with(exports);
    return isNamed && companion.argument == argument.name;
}

Settings CompanionsOf(const DescribedEffect& effect, const DescribedArgument& argument)
{
    for (const Companion& companion : kCompanions) {
        if (IsFor(companion, effect, argument)) return companion.settings;
    }
    switch (argument.role) {
    case Role::Width: return Without(effect, Role::Height);
    case Role::Height: return Without(effect, Role::Width);
    case Role::Channels: return Without(effect, Role::Height);
    case Role::Stride: return OneRow(effect);
    case Role::Count: ADD_FAILURE() << effect.name << ": " << argument.name << " of many is lawful how?"; return {};
    default: return argument.costs ? Without(effect, Role::Height) : Settings{};
    }
}

bool MustBeRefused(const DescribedArgument& argument, double number)
{
    return !argument.isOutsideAccepted &&
           ((argument.hasMinimum && number < argument.minimum) || (argument.hasMaximum && number > argument.maximum));
}

// From small to large. Bits with which calls keep to rules of their own stay clear: they promise memory.
std::vector<std::int64_t> Integers(const DescribedArgument& argument)
{
    const std::uint64_t most = ~std::uint64_t(0) >> (64 - argument.bits), half = most / 2;
    std::vector<std::int64_t> numbers = {0, 1, std::int64_t(half), std::int64_t(half + 1), std::int64_t(most)};
    if (argument.isSigned) {
        const std::int64_t sign = -std::int64_t(half) - 1;
        numbers[3] = sign;
        numbers[4] = -1;
    }
    for (std::int64_t& number : numbers) number &= ~std::int64_t(argument.unsweptFlags);
    return numbers;
}

std::vector<BrokenCase> BrokenIntegers(const DescribedEffect& effect, const DescribedArgument& argument)
{
    std::vector<BrokenCase> cases;
    for (const std::int64_t number : Integers(argument)) {
        // A negative number is refused, or nothing; as are more arrays than there are.
        const bool isSmall = (number == 0 || number == 1 || number == -1) && !(number == -1 && !argument.isSigned);
        const bool isRefused = MustBeRefused(argument, double(number));
        BrokenCase broken = {Join(argument.name, "is", number), {Number(argument.name, number)}, isRefused};
        if (!isSmall && !isRefused) {
            for (const Setting& setting : CompanionsOf(effect, argument)) {
                broken.settings.push_back(setting);
                broken.shows += Join("with", setting.argument, "of", setting.value.integer);
            }
        }
        cases.push_back(broken);
    }
    return cases;
}

// What some effects compute in single precision is what they judge: next to 0 is 0.
std::vector<BrokenCase> BrokenReals(const DescribedArgument& argument)
{
    using Limits = std::numeric_limits<double>;
    std::vector<BrokenCase> cases;
    for (const double number : {0.0, -0.0, 1.0, -1.0, Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(),
                                1e308, -1e308, Limits::max(), Limits::lowest(), Limits::denorm_min(),
                                -Limits::denorm_min(), 2147483648.0, -2147483649.0, 18446744073709551616.0}) {
        cases.push_back(
            {Join(argument.name, "is", number), {Real(argument.name, number)}, MustBeRefused(argument, float(number))});
    }
    return cases;
}

}  // namespace

std::vector<BrokenCase> BrokenCases(const DescribedEffect& effect, const DescribedArgument& argument)
{
    switch (argument.kind) {
    case ArgumentKind::Integer: return BrokenIntegers(effect, argument);
    case ArgumentKind::Real: return BrokenReals(argument);
    default: return {{Join(argument.name, "is null"), {Null(argument.name)}, false}};
    }
}

}  // namespace zlvtest
