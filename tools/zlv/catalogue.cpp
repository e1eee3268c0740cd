// Looking effects up in the catalogue.
#include "catalogue.h"

#include "errors.h"
#include "near_names.h"

namespace zlv {

const Effect* FindEffect(std::string_view name)
{
    for (const Effect& effect : AllEffects())
        if (effect.name == name) return &effect;
    return nullptr;
}

const Effect& RequireEffect(std::string_view name)
{
    if (const Effect* effect = FindEffect(name)) return *effect;
    std::vector<std::string> names;
    for (const Effect& effect : AllEffects()) names.emplace_back(effect.name);
    throw UsageError("There is no effect \"" + std::string(name) + "\"." + SuggestNear(name, names) +
                     " `zlv list` shows all.");
}

}  // namespace zlv
