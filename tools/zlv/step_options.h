// The options of one effect on a command line.
#ifndef ZLV_TOOLS_STEP_OPTIONS_H
#define ZLV_TOOLS_STEP_OPTIONS_H

#include "arguments.h"
#include "chain.h"

#include <map>
#include <string>

namespace zlv {

// One option a parameter, which outlive the parsing.
class StepOptions {
public:
    StepOptions(CLI::App& parser, const Effect& effect);
    StepOptions(const StepOptions&) = delete;
    StepOptions& operator=(const StepOptions&) = delete;

    // After the parsing: the effect with the values that were given. Throws UsageError.
    ChainStep Read() const;

private:
    void Add(const Parameter& parameter);

    CLI::App& parser_;
    const Effect& effect_;
    std::map<const Parameter*, std::string> texts_;
    std::map<const Parameter*, bool> switches_;
};

}  // namespace zlv

#endif
