// The values that break an argument: null, zero, one, the largest and smallest numbers, NaN, infinity.
//
// The cases stay lawful: a call that would rightly use memory that its client has not got proves nothing. A number that
// says how large memory is takes its largest values together with others that leave nothing to read or write.
#pragma once

#include "boundary/export_rows.h"

#include <string>
#include <vector>

namespace zlvtest {

struct BrokenCase {
    std::string shows;
    std::vector<Setting> settings;
    bool mustBeRefused;  // by what is described
};

std::vector<BrokenCase> BrokenCases(const DescribedEffect& effect, const DescribedArgument& argument);

}  // namespace zlvtest
