// Values of parameters: from text, to text, and what they may be.
#ifndef ZLV_TOOLS_VALUES_H
#define ZLV_TOOLS_VALUES_H

#include "catalogue.h"

#include <string>
#include <vector>

namespace zlv {

// The value that `text` stands for. Fails with a sentence that names the option and what it takes.
double ParseValue(const Effect& effect, const Parameter& parameter, const std::string& text);

// The same in the other direction, as the user would write it.
std::string FormatValue(const Parameter& parameter, double value);

// "a whole number from 0 to 255 (levels)".
std::string DescribeValues(const Parameter& parameter);

// One value a slot, as the effect is called when nothing is set.
std::vector<double> DefaultValues(const Effect& effect);

// Puts a parameter's value into its slot; of a switch, 1 sets and 0 clears its bit.
void SetValue(const Parameter& parameter, double value, std::vector<double>& values);

// The parameter's value out of its slot; of a switch, 1 or 0.
double ValueOf(const Parameter& parameter, const std::vector<double>& values);

}  // namespace zlv

#endif
