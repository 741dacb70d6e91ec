#include "hosts/common/PlaceChecks.h"

#include "hosts/common/ParameterError.h"

#include <algorithm>
#include <stdexcept>

namespace hosts {

namespace {

using Options = std::vector<std::string>;

void RefuseForCopies(const GivenOptions &given, const Options &options) {
    for (const std::string &option : options)
        if (given.has(option))
            throw std::runtime_error(given.nameOf(option) +
                                     " is of the places of one model, and not for copies or several models");
}

void RefuseTogether(const GivenOptions &given, const std::string &one, const Options &others) {
    for (const std::string &other : others)
        if (given.has(one) && given.has(other))
            throw std::runtime_error(given.nameOf(one) + " and " + given.nameOf(other) +
                                     " exclude one another");
}

} // namespace

void CheckCombination(const GivenOptions &given, Placed what) {
    RefuseTogether(given, "symmetry", {"symmetry-from"});
    if (what != Placed::OneModel)
        RefuseForCopies(
            given, {"near", "refine", "region", "hands", "results", "models", "model-prefix", "moved-map"});
    if (what == Placed::Assembly)
        RefuseForCopies(given, {"symmetry", "symmetry-from"});
    RefuseTogether(given, "near", {"refine", "region"});
    RefuseTogether(given, "refine", {"region", "hands"});
    if (given.has("symmetry") || given.has("symmetry-from"))
        for (const char *option : {"refine", "hands", "fixed"})
            if (given.has(option))
                throw std::runtime_error(given.nameOf(option) + " and " + given.nameOf("symmetry") +
                                         " exclude one another");
}

void CheckParts(const std::vector<PartOptions> &parts) {
    for (auto part = parts.begin(); part != parts.end(); ++part)
        if (std::any_of(parts.begin(), part,
                        [&](const PartOptions &other) { return other.file == part->file; }))
            throw ParameterError("model", part->file + " is given twice; ask for two copies of it instead");
}

} // namespace hosts
