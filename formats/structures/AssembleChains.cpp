#include "formats/structures/AssembleChains.h"

#include <gemmi/polyheur.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <unordered_map>
#include <unordered_set>

namespace formats {

namespace {

using gemmi::El;
using gemmi::EntityType;
using gemmi::PolymerType;
using Residues = std::vector<gemmi::Residue>;

bool IsMonomer(const gemmi::Residue &residue, PolymerType kind) {
    return gemmi::is_polymer_residue(residue, kind);
}

/// Whether the name is known to be that of something else than a link of a polymer.
bool IsForeign(const gemmi::Residue &residue) {
    const gemmi::ResidueInfo info = gemmi::find_tabulated_residue(residue.name);
    return residue.is_water() || (info.found() && !info.is_amino_acid() && !info.is_nucleic_acid());
}

/// The kind of polymer that the residues of ATOM records make. gemmi counts over all residues, and finds none
/// in a chain that has more waters than amino acids.
PolymerType KindOf(const Residues &residues) {
    Residues monomers;
    std::ranges::copy_if(residues, std::back_inserter(monomers), [](const gemmi::Residue &residue) {
        return residue.het_flag != 'H' &&
               (IsMonomer(residue, PolymerType::PeptideL) || IsMonomer(residue, PolymerType::DnaRnaHybrid));
    });
    return gemmi::check_polymer_type(gemmi::ConstResidueSpan(monomers.data(), monomers.size()));
}

/// A part, divided.
struct Division {
    PolymerType kind = PolymerType::Unknown;
    Residues polymer, others;
};

/// Where the file does not say what a part is, its polymer reaches from the first to the last monomer of an
/// ATOM record, and over modified ones (HETATM, like MSE) next to these. Unknown residues in between belong
/// to it, like a chromophore; known ligands, ions and waters do not.
Division DivideByNames(Residues residues) {
    Division division;
    division.kind = KindOf(residues);
    const auto isMonomer = [&](const gemmi::Residue &residue) { return IsMonomer(residue, division.kind); };
    const auto isCertain = [&](const gemmi::Residue &residue) {
        return residue.het_flag != 'H' && isMonomer(residue);
    };
    auto first = std::ranges::find_if(residues, isCertain);
    auto last = std::find_if(residues.rbegin(), std::make_reverse_iterator(first), isCertain).base();
    while (first != last && first != residues.begin() && isMonomer(first[-1]))
        --first;
    last = std::find_if_not(last, residues.end(), isMonomer);
    for (auto it = residues.begin(); it != residues.end(); ++it)
        (it >= first && it < last && !IsForeign(*it) ? division.polymer : division.others)
            .push_back(std::move(*it));
    return division;
}

/// Divides a part by what the file says of it, else by the names of its residues. The parser cuts a file into
/// parts of one entity each.
Division Divide(Residues residues) {
    const EntityType type = residues.front().entity_type;
    if (type == EntityType::Unknown)
        return DivideByNames(std::move(residues));
    Division division;
    division.kind = gemmi::check_polymer_type(gemmi::ConstResidueSpan(residues.data(), residues.size()));
    (type == EntityType::Polymer ? division.polymer : division.others) = std::move(residues);
    return division;
}

/// A polymer that grows part by part.
class Polymer {
public:
    explicit Polymer(PolymerType kind)
        : m_kind(kind) {}

    /// Whether the part has an atom that is here already, and is not an alternate location.
    bool Repeats(const Residues &part) const {
        return std::ranges::any_of(part, [this](const gemmi::Residue &residue) {
            return std::ranges::any_of(residue.atoms, [&](const gemmi::Atom &atom) {
                return !atom.altloc && m_atoms.contains(Key(residue, atom));
            });
        });
    }

    void Join(Residues part) {
        for (gemmi::Residue &residue : part) {
            for (const gemmi::Atom &atom : residue.atoms)
                if (!atom.altloc)
                    m_atoms.insert(Key(residue, atom));
            const auto [place, isNew] = m_places.emplace(residue, m_residues.size());
            if (isNew)
                m_residues.push_back(std::move(residue));
            else
                std::ranges::move(residue.atoms, std::back_inserter(m_residues[place->second].atoms));
        }
    }

    AssembledChain Release(const std::string &identifier) {
        return {identifier, true, m_kind, std::move(m_residues)};
    }

private:
    static std::string Key(const gemmi::Residue &residue, const gemmi::Atom &atom) {
        return residue.seqid.str() + '\n' + residue.segment + '\n' + atom.name;
    }

    PolymerType m_kind;
    Residues m_residues;
    std::unordered_map<gemmi::ResidueId, std::size_t> m_places;
    std::unordered_set<std::string> m_atoms; ///< those that are not alternate locations
};

/// All that goes under one identifier.
struct Group {
    std::string identifier;
    std::vector<Polymer> polymers;
    Residues others;

    void Take(Division part) {
        std::ranges::move(part.others, std::back_inserter(others));
        if (part.polymer.empty())
            return;
        if (polymers.empty() || polymers.back().Repeats(part.polymer))
            polymers.emplace_back(part.kind);
        polymers.back().Join(std::move(part.polymer));
    }
};

std::vector<Group> GroupByIdentifier(std::vector<gemmi::Chain> parts) {
    std::vector<Group> groups;
    std::unordered_map<std::string, std::size_t> places;
    for (gemmi::Chain &part : parts) {
        const std::string identifier = part.name.empty() ? " " : part.name;
        const auto [place, isNew] = places.emplace(identifier, groups.size());
        if (isNew)
            groups.push_back({identifier, {}, {}});
        groups[place->second].Take(Divide(std::move(part.residues)));
    }
    return groups;
}

/// Leaves out of a chain what the model tree does not hold, and counts it.
class Sieve {
public:
    explicit Sieve(AssembledModel &counts)
        : m_counts(counts) {}

    void Pass(Residues &residues) {
        std::unordered_set<std::string> taken; // places of the sequence
        std::erase_if(residues, [&](gemmi::Residue &residue) {
            const bool isFirst = taken.insert(residue.seqid.str() + '\n' + residue.segment).second;
            if (!isFirst && std::ranges::all_of(residue.atoms, &gemmi::Atom::has_altloc)) {
                m_counts.alternates += residue.atoms.size();
                return true;
            }
            Pass(residue);
            return false;
        });
    }

private:
    void Pass(gemmi::Residue &residue) {
        std::unordered_map<std::string, char> taken; // alternate location by name
        std::erase_if(residue.atoms, [&](gemmi::Atom &atom) {
            const auto [earlier, isFirst] = taken.emplace(atom.name, atom.altloc);
            const bool isAlternate = !isFirst && (earlier->second || atom.altloc);
            const bool isUnplaced = !isAlternate && !IsPlaced(atom);
            m_counts.alternates += isAlternate;
            m_counts.unplaced += isUnplaced;
            m_counts.repeated += !isFirst && !isAlternate && !isUnplaced;
            return isAlternate || isUnplaced;
        });
        for (gemmi::Atom &atom : residue.atoms)
            atom.element = ElementOf(atom, residue);
    }

    static bool IsPlaced(const gemmi::Atom &atom) {
        return std::isfinite(float(atom.pos.x)) && std::isfinite(float(atom.pos.y)) &&
               std::isfinite(float(atom.pos.z));
    }

    static bool IsOrganic(El element) {
        constexpr El organic[] = {El::H, El::D, El::C, El::N, El::O, El::P, El::S, El::Se};
        return std::ranges::find(organic, element) != std::end(organic);
    }

    /// Where the file gives no element, or a name that stands in the wrong column has been taken for one:
    /// "CA" of an alanine for calcium.
    static gemmi::Element ElementOf(const gemmi::Atom &atom, const gemmi::Residue &residue) {
        const gemmi::ResidueInfo info = gemmi::find_tabulated_residue(residue.name);
        const bool isStandard = info.is_standard() && (info.is_amino_acid() || info.is_nucleic_acid());
        if (atom.element != El::X && (!isStandard || IsOrganic(atom.element)))
            return atom.element;
        if (residue.name == atom.name)
            return gemmi::Element(atom.name);
        const auto letter = atom.name.find_first_not_of("0123456789 '\"");
        return gemmi::Element(letter == std::string::npos ? "" : atom.name.substr(letter, 1));
    }

    AssembledModel &m_counts;
};

} // namespace

AssembledModel AssembleChains(std::vector<gemmi::Chain> parts) {
    AssembledModel model;
    for (Group &group : GroupByIdentifier(std::move(parts))) {
        for (Polymer &polymer : group.polymers)
            model.chains.push_back(polymer.Release(group.identifier));
        if (!group.others.empty())
            model.chains.push_back({group.identifier, false, PolymerType::Unknown, std::move(group.others)});
    }
    for (AssembledChain &chain : model.chains)
        Sieve(model).Pass(chain.residues);
    return model;
}

} // namespace formats
