#pragma once

#include "base/InstructionSets.h"

#include <hwy/targets.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

/// Lets the kernels run with one instruction set only, while it lives.
class OnlyTarget {
public:
    explicit OnlyTarget(std::int64_t target) { Choose(target); }
    OnlyTarget(const OnlyTarget &) = delete;
    OnlyTarget &operator=(const OnlyTarget &) = delete;
    ~OnlyTarget() { Choose(0); }

private:
    static void Choose(std::int64_t target) {
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
    }
};

/// The instruction sets that the kernels are compiled for and this machine can run, the emulated one among
/// them: not only the best, which the program chooses.
inline std::vector<std::int64_t> Targets() {
    std::vector<std::int64_t> targets;
    for (std::int64_t rest = (hwy::SupportedTargets() | HWY_EMU128) & HWY_TARGETS; rest != 0;
         rest &= rest - 1)
        targets.push_back(rest & -rest);
    return targets;
}

inline std::string NameOf(const testing::TestParamInfo<std::int64_t> &info) {
    return hwy::TargetName(info.param);
}
