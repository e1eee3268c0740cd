#include "boundary/call_table.h"

namespace zlvtest {

const std::vector<DescribedEffect>& DescribedExports()
{
    static const std::vector<DescribedEffect> exports = {
#include "call_table.inc"
    };
    return exports;
}

const std::vector<DescribedEffect>& DescribedEffects()
{
    static const std::vector<DescribedEffect> effects = [] {
        std::vector<DescribedEffect> swept;
        for (const DescribedEffect& effect : DescribedExports()) {
            if (effect.isSwept) swept.push_back(effect);
        }
        return swept;
    }();
    return effects;
}

}  // namespace zlvtest
