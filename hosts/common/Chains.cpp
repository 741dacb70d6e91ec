#include "hosts/common/Chains.h"

#include "formats/files/FileError.h"

#include <QString>
#include <QStringList>

#include <algorithm>

using namespace VARNO;
using formats::FileError;

namespace hosts {

namespace {

std::string Trimmed(const std::string &identifier) {
    return QString::fromStdString(identifier).trimmed().toStdString();
}

std::string ShownName(const std::string &identifier) {
    return Trimmed(identifier).empty() ? "' '" : Trimmed(identifier);
}

/// The file's polymer chains, at least one.
std::vector<Chain *> PolymerChains(const std::string &file, const Clump *clump) {
    std::vector<Chain *> chains = AllChains(clump);
    std::erase_if(chains, [](const Chain *chain) { return !chain->IsPolymer(); });
    if (chains.empty())
        throw FileError(file, "", "holds no polymer chain");
    return chains;
}

void CheckHasChain(const std::string &file, const std::vector<Chain *> &chains,
                   const std::string &identifier) {
    if (std::ranges::none_of(chains, [&](const Chain *chain) { return IsNamed(*chain, identifier); }))
        throw FileError(file, "chain " + ShownName(identifier),
                        "there is no such polymer chain, only " + ChainNames(chains));
}

} // namespace

bool IsNamed(const Chain &chain, const std::string &identifier) {
    return Trimmed(chain.GetName()) == Trimmed(identifier);
}

std::vector<Chain *> AllChains(const Clump *clump) {
    std::vector<Chain *> chains;
    for (auto molecule = clump->ChildBegin(); molecule != clump->ChildEnd(); ++molecule)
        for (auto child = (*molecule)->ChildBegin(); child != (*molecule)->ChildEnd(); ++child)
            if (auto *chain = dynamic_cast<Chain *>(*child))
                chains.push_back(chain);
    return chains;
}

Chain *ChooseChain(const std::string &file, const Clump *clump,
                   const std::optional<std::string> &identifier) {
    const std::vector<Chain *> chains = PolymerChains(file, clump);
    if (!identifier)
        return chains.front();
    CheckHasChain(file, chains, *identifier);
    return *std::ranges::find_if(chains, [&](const Chain *chain) { return IsNamed(*chain, *identifier); });
}

std::vector<Chain *> ChooseChains(const std::string &file, const Clump *clump,
                                  const std::optional<std::vector<std::string>> &identifiers) {
    std::vector<Chain *> chains = PolymerChains(file, clump);
    if (!identifiers)
        return chains;
    for (const std::string &identifier : *identifiers)
        CheckHasChain(file, chains, identifier);
    std::erase_if(chains, [&](const Chain *chain) {
        return std::ranges::none_of(
            *identifiers, [&](const std::string &identifier) { return IsNamed(*chain, identifier); });
    });
    return chains;
}

std::vector<std::string> NamesOf(const std::vector<Chain *> &chains) {
    std::vector<std::string> names;
    for (const Chain *chain : chains)
        names.push_back(chain->GetName());
    return names;
}

std::string ChainNames(const std::vector<Chain *> &chains) {
    QStringList names;
    for (const Chain *chain : chains)
        names << QString::fromStdString(ShownName(chain->GetName()));
    return names.join(", ").toStdString();
}

} // namespace hosts
