#pragma once

#include "Compound.h"

#include <array>
#include <vector>

namespace desktop {

/// Chains that are drawn as they would lie after a 4 x 4 matrix, rows first.
struct Ghost {
    std::vector<VARNO::Compound *> chains;
    std::array<double, 16> matrix{};
};

} // namespace desktop
