#include "step_options.h"

#include "values.h"

namespace zlv {

StepOptions::StepOptions(CLI::App& parser, const Effect& effect) : parser_(parser), effect_(effect)
{
    for (const Parameter& parameter : effect_.parameters) Add(parameter);
}

void StepOptions::Add(const Parameter& parameter)
{
    const std::string name = "--" + std::string(parameter.name), about(parameter.about);
    const std::string group = "Parameters";
    if (parameter.kind == Parameter::Kind::Switch) {
        const bool isOn = parameter.defaultValue != 0;
        switches_[&parameter] = isOn;
        parser_.add_flag(isOn ? name + ",!--no-" + std::string(parameter.name) : name, switches_[&parameter], about)
            ->take_last()
            ->group(group);
        return;
    }
    const std::string range = DescribeValues(parameter) + "; default " + FormatValue(parameter, parameter.defaultValue);
    parser_.add_option(name, texts_[&parameter], about.empty() ? range : about + "; " + range)
        ->take_last()
        ->type_name("VALUE")
        ->group(group);
}

ChainStep StepOptions::Read() const
{
    ChainStep step(effect_);
    for (const Parameter& parameter : effect_.parameters) {
        if (parser_.get_option("--" + std::string(parameter.name))->count() == 0) continue;
        const bool isSwitch = parameter.kind == Parameter::Kind::Switch;
        const double value =
            isSwitch ? switches_.at(&parameter) : ParseValue(effect_, parameter, texts_.at(&parameter));
        SetValue(parameter, value, step.values);
    }
    AcceptedChannels(step);
    return step;
}

}  // namespace zlv
