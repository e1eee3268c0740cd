#include "fuzz/topics.h"

namespace zlvtest {

namespace {

std::vector<Topic> AllTopics()
{
    std::vector<Topic> topics = {
        {"filters", FuzzFilters, false},   {"frequency", FuzzFrequency, true}, {"morphology", FuzzMorphology, true},
        {"overlays", FuzzOverlays, false}, {"palettes", FuzzPalettes, false},  {"perlin", FuzzPerlin, true},
        {"polygons", FuzzPolygons, false}, {"records", FuzzRecords, true},     {"reflection", FuzzReflection, true},
        {"resize", FuzzResize, false},     {"seams", FuzzSeams, true},         {"segmented", FuzzSegmented, true},
        {"shadows", FuzzShadows, true},    {"splines", FuzzSplines, true},     {"warps", FuzzWarps, true},
        {"workers", FuzzWorkers, true},
    };
    for (const DescribedEffect& effect : DescribedEffects()) {
        topics.push_back({effect.name, [&effect](Input& input) { FuzzEffect(effect, input); }, true});
    }
    return topics;
}

}  // namespace

const std::vector<Topic>& Topics()
{
    static const std::vector<Topic> topics = AllTopics();
    return topics;
}

}  // namespace zlvtest
