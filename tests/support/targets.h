// Instruction sets for tests: every one that this machine can run, in turn.
#pragma once

#include "runtime/targets.h"
#include "support/bytes.h"

#include <vector>

namespace zlvtest {

inline std::vector<zlv::Target> RunnableTargets()
{
    std::vector<zlv::Target> targets;
    for (int i = 0; i <= int(zlv::BestTarget()); ++i) targets.push_back(zlv::Target(i));
    return targets;
}

inline const char* NameOf(zlv::Target target) { return zlv::kTargetNames[int(target)]; }

class ScopedTarget {
public:
    explicit ScopedTarget(zlv::Target target) : before_(zlv::activeTarget) { zlv::activeTarget = target; }
    ~ScopedTarget() { zlv::activeTarget = before_; }
    ScopedTarget(const ScopedTarget&) = delete;
    ScopedTarget& operator=(const ScopedTarget&) = delete;

private:
    zlv::Target before_;
};

template <class Test>
void OnEveryTarget(Test test)
{
    for (const zlv::Target target : RunnableTargets()) {
        const ScopedTarget scoped(target);
        SCOPE(NameOf(target));
        test();
    }
}

}  // namespace zlvtest
