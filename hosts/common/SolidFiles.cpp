#include "hosts/common/SolidFiles.h"

#include "hosts/common/Chains.h"
#include "hosts/common/ParameterError.h"

#include "formats/files/FileError.h"

#include <algorithm>
#include <filesystem>

using namespace VARNO;
using formats::FileError;

namespace hosts {

namespace {

using Identifiers = std::optional<std::vector<std::string>>;

bool IsSameFile(const std::string &a, const std::string &b) {
    std::error_code error;
    return std::filesystem::equivalent(a, b, error);
}

bool IsUsed(const Chain *chain, const Identifiers &identifiers, const MovingPart &moving) {
    if (!identifiers)
        return std::ranges::find(moving.chains, chain) == moving.chains.end();
    return std::ranges::any_of(*identifiers, [&](const std::string &name) { return IsNamed(*chain, name); });
}

SolidFile ChooseSolid(const std::string &file, const Clump *clump, const Identifiers &identifiers,
                      const MovingPart &moving, const SolidWords &words) {
    SolidFile solid{file, {}, {}, false};
    for (Chain *chain : AllChains(clump)) {
        if (chain->IsPolymer())
            (IsUsed(chain, identifiers, moving) ? solid.chains : solid.leftOut).push_back(chain);
        else
            solid.hasOthers = true;
    }
    if (solid.chains.empty())
        throw FileError(file, "",
                        "no polymer chain is left for the " + words.part +
                            (solid.leftOut.empty() ? "" : ", the file has " + ChainNames(solid.leftOut)));
    return solid;
}

/// A chain that is asked for has to be in one of the files.
void CheckNamedChains(const Identifiers &identifiers, const std::vector<SolidFile> &solids,
                      const SolidWords &words) {
    for (const std::string &name : identifiers.value_or(std::vector<std::string>()))
        if (std::ranges::none_of(solids, [&](const SolidFile &solid) {
                return std::ranges::any_of(solid.chains,
                                           [&](const Chain *chain) { return IsNamed(*chain, name); });
            }))
            throw ParameterError(words.chains, "no " + words.file + " has a polymer chain '" + name + "'");
}

void CheckNoneTwice(const std::vector<std::string> &files, const SolidWords &words) {
    for (auto file = files.begin(); file != files.end(); ++file)
        if (std::any_of(files.begin(), file, [&](const auto &other) { return IsSameFile(other, *file); }))
            throw FileError(*file, "", "is given twice as a " + words.part);
}

} // namespace

std::vector<SolidFile> ReadSolidFiles(const std::vector<std::string> &files, const Identifiers &identifiers,
                                      const MovingPart &moving, const SolidWords &words,
                                      const WarningSink &warn, InputSource &source) {
    CheckNoneTwice(files, words);
    std::vector<SolidFile> solids;
    for (const std::string &file : files) {
        const Clump *clump =
            IsSameFile(file, moving.file) ? moving.clump : LoadStructure(file, warn, nullptr, source);
        solids.push_back(ChooseSolid(file, clump, identifiers, moving, words));
    }
    CheckNamedChains(identifiers, solids, words);
    return solids;
}

} // namespace hosts
