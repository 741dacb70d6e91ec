#pragma once

#include "Compound.h"

#include <optional>
#include <string>
#include <vector>

namespace hosts {

/// The chains below a clump in model order, polymers and others.
std::vector<VARNO::Chain *> AllChains(const VARNO::Clump *clump);

/// Whether the chain has that identifier; blanks around an identifier are ignored, so that ' ' names the
/// chain without one.
bool IsNamed(const VARNO::Chain &chain, const std::string &identifier);

/// The clump's polymer chain of that identifier, or its first one without an identifier. Throws FileError,
/// naming the chains that the file has.
VARNO::Chain *ChooseChain(const std::string &file, const VARNO::Clump *clump,
                          const std::optional<std::string> &identifier);

/// The clump's polymer chains whose identifiers are in the list, in model order; all of them without a list.
/// Throws FileError for an identifier that no chain has, or when there is no chain at all.
std::vector<VARNO::Chain *> ChooseChains(const std::string &file, const VARNO::Clump *clump,
                                         const std::optional<std::vector<std::string>> &identifiers);

/// The chains' identifiers as they are.
std::vector<std::string> NamesOf(const std::vector<VARNO::Chain *> &chains);

/// The identifiers for people, "A, B"; a blank one is shown as ' '.
std::string ChainNames(const std::vector<VARNO::Chain *> &chains);

} // namespace hosts
