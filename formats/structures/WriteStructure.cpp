#include "formats/structures/StructureFile.h"

#include "base/Numbers.h"
#include "base/Words.h"
#include "formats/files/FileError.h"
#include "formats/files/NodeName.h"
#include "formats/files/ReplaceFile.h"

#include "Atom.h"
#include "Residue.h"

#include <gemmi/cifdoc.hpp>
#include <gemmi/resinfo.hpp>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <ostream>

using namespace VARNO;

namespace formats {

namespace {

/// As mmCIF names them, _entity.type.
enum class Entity { Polymer, NonPolymer, Water };

/// What stands in the file as one chain: a polymer or a built molecule, or the ligands or the water of a
/// chain node.
struct WrittenChain {
    const Compound *node;
    Entity entity;
    std::vector<const Residue *> residues;
    std::string name = {}; ///< the author's identifier
    Displacement displace = {};
    std::size_t entityNumber = 0; ///< counted from 1; copies of a chain have the same

    bool IsPolymer() const { return entity == Entity::Polymer; }
};

template <class Node>
std::vector<const Node *> Children(const Compound *node) {
    std::vector<const Node *> children;
    for (auto it = node->ChildBegin(); it != node->ChildEnd(); ++it)
        if (const auto *child = dynamic_cast<const Node *>(*it))
            children.push_back(child);
    return children;
}

bool IsWater(const Residue *residue) {
    return gemmi::find_tabulated_residue(residue->GetName()).is_water();
}

/// Of a node that may be null, as children may.
void CollectChains(const Compound *node, std::vector<WrittenChain> &chains) {
    if (!node)
        return;
    const auto *chain = dynamic_cast<const Chain *>(node);
    const auto *molecule = dynamic_cast<const Molecule *>(node);
    if (chain && !chain->IsPolymer()) {
        std::vector<const Residue *> residues = Children<Residue>(chain);
        const auto water = std::stable_partition(residues.begin(), residues.end(), std::not_fn(IsWater));
        chains.push_back({chain, Entity::NonPolymer, {residues.begin(), water}});
        chains.push_back({chain, Entity::Water, {water, residues.end()}});
    } else if (chain || (molecule && molecule->HoldsResidues())) {
        chains.push_back({node, Entity::Polymer, Children<Residue>(node)});
    } else {
        const auto collect = [&](const Compound *below) { CollectChains(below, chains); };
        std::for_each(node->ChildBegin(), node->ChildEnd(), collect);
        std::for_each(node->PartBegin(), node->PartEnd(), collect);
    }
}

bool HasAtoms(const WrittenChain &chain) {
    return std::ranges::any_of(chain.residues,
                               [](const Residue *residue) { return !Children<Atom>(residue).empty(); });
}

/// A residue's sequence identifier in its two parts: "-12A" is -12 and "A".
struct SequenceId {
    explicit SequenceId(const std::string &text)
        : number(text.substr(0, text.find_first_not_of("0123456789", text.starts_with('-') ? 1 : 0)))
        , insertion(text.substr(number.size())) {}

    std::string number, insertion;
};

/// What both formats share: the walk over the atoms, and the checks.
class Writer {
public:
    Writer(const std::string &file, std::ostream &out)
        : m_out(out)
        , m_file(file) {}
    virtual ~Writer() = default;

    void Write(const std::vector<WrittenChain> &chains) {
        Begin(chains);
        for (const WrittenChain &chain : chains) {
            m_chain = chain;
            ++m_chainNumber;
            m_residueNumber = 0;
            for (const Residue *residue : chain.residues)
                WriteResidue(*residue);
            EndChain();
        }
        End();
    }

protected:
    virtual void Begin(const std::vector<WrittenChain> &chains) = 0;
    virtual void WriteAtom(const Atom &atom, const Vertex &position) = 0;
    virtual void EndChain() = 0;
    virtual void End() = 0;

    const char *RecordName() const { return m_chain.IsPolymer() ? "ATOM" : "HETATM"; }
    const Residue &CurrentResidue() const { return *m_residue; }

    /// Names of all kinds must stand on one line.
    std::string Name(const std::string &name) const {
        if (!std::ranges::all_of(name, [](char c) { return c >= ' ' && c <= '~'; }))
            Refuse("the name " + base::Quoted(name) + " cannot be written");
        return name;
    }

    SequenceId Sequence() const {
        SequenceId id(CurrentResidue().GetSeqId());
        if (!base::ReadInteger(id.number) || id.insertion.size() > 1)
            Refuse("the sequence identifier " + base::Quoted(CurrentResidue().GetSeqId()) +
                   " is not a number with an insertion code");
        return id;
    }

    [[noreturn]] void Refuse(const std::string &problem) const {
        throw FileError(m_file,
                        "residue " + CurrentResidue().GetLabel() + " of chain " + m_chain.node->GetLabel(),
                        problem);
    }

    std::ostream &m_out;
    const std::string &m_file;
    WrittenChain m_chain = {};
    std::size_t m_chainNumber = 0, m_residueNumber = 0, m_atomNumber = 0; ///< counted from 1

private:
    void WriteResidue(const Residue &residue) {
        m_residue = &residue;
        ++m_residueNumber;
        for (const Atom *atom : Children<Atom>(&residue)) {
            const Vertex position = m_chain.displace(atom->GetPosition());
            for (const unsigned i : {0, 1, 2})
                if (!std::isfinite(position[i]))
                    Refuse("the coordinate " + std::to_string(position[i]) + " of atom " +
                           base::Quoted(atom->GetName()) + " cannot be written");
            ++m_atomNumber;
            WriteAtom(*atom, position);
        }
    }

    const Residue *m_residue = nullptr;
};

/// PDB format version 3.3, the records ATOM, HETATM, TER and END.
class PdbWriter : public Writer {
public:
    using Writer::Writer;

private:
    void Begin(const std::vector<WrittenChain> &) override {}

    void WriteAtom(const Atom &atom, const Vertex &position) override {
        std::string line(80, ' ');
        line.replace(0, 6, std::string(RecordName()).append(m_chain.IsPolymer() ? 2 : 0, ' '));
        PutResidue(line);
        PutAtomName(line, atom);
        for (const unsigned i : {0, 1, 2})
            Put(line, 38 + 8 * i, 8, base::PlainFixed(double(position[i]), 3), "coordinate");
        Put(line, 60, 6, "1.00", "occupancy");
        const float bFactor = std::isfinite(atom.GetBFactor()) ? atom.GetBFactor() : 0;
        Put(line, 66, 6, base::PlainFixed(double(std::clamp(bFactor, -99.99f, 999.99f)), 2), "B factor");
        Put(line, 78, 2, Name(atom.GetLabel()), "element");
        if (const long charge = std::lround(atom.GetCharge()); charge != 0)
            Put(line, 80, 2, std::to_string(std::labs(charge)) + (charge > 0 ? '+' : '-'), "charge");
        m_out << line << '\n';
        m_wroteAtom = true;
    }

    /// Serial number and residue, which ATOM and TER have in the same columns.
    void PutResidue(std::string &line) {
        const SequenceId id = Sequence();
        if (++m_serial > 99'999)
            Advise("more than 99999 atoms and ends of chains");
        Put(line, 11, 5, std::to_string(m_serial), "serial number");
        Put(line, 20, 3, Name(CurrentResidue().GetName()), "residue name");
        Put(line, 22, 1, Name(m_chain.name), "chain identifier");
        Put(line, 26, 4, id.number, "residue number");
        Put(line, 27, 1, id.insertion, "insertion code");
    }

    /// The element symbol ends in column 14, so that a name of four letters begins in column 13.
    void PutAtomName(std::string &line, const Atom &atom) {
        const std::string name = Name(atom.GetName()), symbol = atom.GetLabel();
        const bool wideSymbol = symbol.size() == 2 && name.starts_with(symbol);
        const std::size_t end = wideSymbol || name.size() > 3 ? 12 + name.size() : 13 + name.size();
        Put(line, std::max<std::size_t>(end, 13), 4, name, "atom name");
    }

    /// Puts the text into the columns that end in column `last` (counted from 1) and are `width` wide.
    void Put(std::string &line, std::size_t last, std::size_t width, const std::string &text,
             const char *what) {
        if (text.size() > width)
            Advise(std::string("the ") + what + ' ' + base::Quoted(text));
        line.replace(last - text.size(), text.size(), text);
    }

    [[noreturn]] void Advise(const std::string &what) const {
        Refuse("PDB cannot hold " + what + "; write mmCIF instead (a name ending in .cif)");
    }

    void EndChain() override {
        if (std::exchange(m_wroteAtom, false) && m_chain.IsPolymer()) {
            std::string line(80, ' ');
            line.replace(0, 3, "TER");
            PutResidue(line);
            m_out << line << '\n';
        }
    }

    void End() override { m_out << std::string("END").append(77, ' ') << '\n'; }

    std::size_t m_serial = 0; ///< of atoms and TER records together
    bool m_wroteAtom = false; ///< in this chain
};

/// What the tables of mmCIF say of a residue name (_chem_comp.type) and of a chain of such residues
/// (_entity_poly.type). Names that are in no table of ours may be links of a polymer or not.
struct MonomerKind {
    const char *component;
    const char *polymer; ///< null for what makes no polymer
};

MonomerKind KindOf(const std::string &residue, bool inPolymer) {
    using Kind = gemmi::ResidueInfo;
    switch (gemmi::find_tabulated_residue(residue).kind) {
    case Kind::AA:
    case Kind::PAA:
    case Kind::MAA:
        return {residue == "GLY" ? "peptide linking" : "L-peptide linking", "polypeptide(L)"};
    case Kind::AAD:
        return {"D-peptide linking", "polypeptide(D)"};
    case Kind::DNA:
        return {"DNA linking", "polydeoxyribonucleotide"};
    case Kind::RNA:
        return {"RNA linking", "polyribonucleotide"};
    default:
        return {inPolymer ? "other" : "non-polymer", nullptr};
    }
}

const char *EntityType(Entity entity) {
    return entity == Entity::Polymer ? "polymer" : entity == Entity::Water ? "water" : "non-polymer";
}

/// That of most of the chain's residues, "other" where none is known.
std::string PolymerType(const WrittenChain &chain) {
    std::map<std::string, std::size_t> counts;
    for (const Residue *residue : chain.residues)
        if (const char *type = KindOf(residue->GetName(), true).polymer)
            ++counts[type];
    if (counts.contains("polydeoxyribonucleotide") && counts.contains("polyribonucleotide"))
        return "polydeoxyribonucleotide/polyribonucleotide hybrid";
    const auto most = std::ranges::max_element(counts, {}, [](const auto &entry) { return entry.second; });
    return most == counts.end() ? "other" : most->first;
}

/// mmCIF: the entities (one for each chain, however many copies of it there are), the kinds of residues, the
/// chains and the atoms. Chains and residues have the names of the model tree as the author's; label_asym_id
/// and label_seq_id count chains and residues.
class MmcifWriter : public Writer {
public:
    using Writer::Writer;

private:
    void Begin(const std::vector<WrittenChain> &chains) override {
        m_out << "data_" << BlockName() << "\n#\n_entry.id " << Value(BlockName())
              << "\n#\nloop_\n_entity.id\n_entity.type\n";
        for (const WrittenChain *chain : FirstCopies(chains))
            m_out << chain->entityNumber << ' ' << EntityType(chain->entity) << '\n';
        WritePolymers(chains);
        WriteComponents(chains);
        m_out << "#\nloop_\n_struct_asym.id\n_struct_asym.entity_id\n";
        for (std::size_t i = 0; i < chains.size(); ++i)
            m_out << Letters(i + 1) << ' ' << chains[i].entityNumber << '\n';
        m_out << "#\nloop_\n";
        for (const char *tag : {"group_PDB",         "id",
                                "type_symbol",       "label_atom_id",
                                "label_alt_id",      "label_comp_id",
                                "label_asym_id",     "label_entity_id",
                                "label_seq_id",      "pdbx_PDB_ins_code",
                                "Cartn_x",           "Cartn_y",
                                "Cartn_z",           "occupancy",
                                "B_iso_or_equiv",    "pdbx_formal_charge",
                                "auth_seq_id",       "auth_comp_id",
                                "auth_asym_id",      "auth_atom_id",
                                "pdbx_PDB_model_num"})
            m_out << "_atom_site." << tag << '\n';
    }

    /// One chain of each entity.
    static std::vector<const WrittenChain *> FirstCopies(const std::vector<WrittenChain> &chains) {
        std::vector<const WrittenChain *> first;
        for (const WrittenChain &chain : chains)
            if (chain.entityNumber > first.size())
                first.push_back(&chain);
        return first;
    }

    void WritePolymers(const std::vector<WrittenChain> &chains) {
        if (std::ranges::none_of(chains, &WrittenChain::IsPolymer))
            return;
        m_out << "#\nloop_\n_entity_poly.entity_id\n_entity_poly.type\n";
        for (const WrittenChain *chain : FirstCopies(chains))
            if (chain->IsPolymer())
                m_out << chain->entityNumber << ' ' << gemmi::cif::quote(PolymerType(*chain)) << '\n';
    }

    /// Readers that look up every residue's name stop where this table is missing.
    void WriteComponents(const std::vector<WrittenChain> &chains) {
        std::map<std::string, const char *> types;
        for (const WrittenChain &chain : chains)
            for (const Residue *residue : chain.residues)
                types.emplace(residue->GetName(), KindOf(residue->GetName(), chain.IsPolymer()).component);
        m_out << "#\nloop_\n_chem_comp.id\n_chem_comp.type\n";
        for (const auto &[name, type] : types)
            m_out << gemmi::cif::quote(name) << ' ' << gemmi::cif::quote(type) << '\n';
    }

    void WriteAtom(const Atom &atom, const Vertex &position) override {
        const SequenceId id = Sequence();
        const std::string name = Value(atom.GetName()), residue = Value(CurrentResidue().GetName());
        m_out << RecordName() << ' ' << m_atomNumber << ' ' << Value(atom.GetLabel()) << ' ' << name << " . "
              << residue << ' ' << Letters(m_chainNumber) << ' ' << m_chain.entityNumber << ' '
              << (m_chain.IsPolymer() ? std::to_string(m_residueNumber) : ".") << ' '
              << (id.insertion.empty() ? "?" : Value(id.insertion));
        for (const unsigned i : {0, 1, 2})
            m_out << ' ' << base::PlainFixed(double(position[i]), 3);
        const float bFactor = std::isfinite(atom.GetBFactor()) ? atom.GetBFactor() : 0;
        m_out << " 1.00 " << base::PlainFixed(double(bFactor), 2) << ' ' << std::lround(atom.GetCharge())
              << ' ' << id.number << ' ' << residue << ' ' << Value(m_chain.name) << ' ' << name << " 1\n";
    }

    void EndChain() override {}
    void End() override { m_out << "#\n"; }

    /// The file's name, as far as the name of a block may hold it.
    std::string BlockName() const {
        std::string name = NodeName(m_file);
        std::ranges::replace_if(
            name, [](char c) { return c <= ' ' || c > '~'; }, '_');
        return name.empty() ? "model" : name;
    }

    /// A, B … Z, AA, AB …, counted from 1.
    static std::string Letters(std::size_t number) {
        std::string letters;
        for (; number > 0; number = (number - 1) / 26)
            letters.insert(letters.begin(), char('A' + (number - 1) % 26));
        return letters;
    }

    /// As a value of a table, in quotes where it needs them; a text field begins on a line of its own.
    std::string Value(const std::string &name) const {
        const std::string value = gemmi::cif::quote(Name(name));
        return value.starts_with(';') ? '\n' + value : value;
    }
};

/// The chains with atoms below the nodes. Throws FileError where there is none.
std::vector<WrittenChain> ChainsBelow(const std::vector<const Compound *> &nodes,
                                      const Displacement &displace, const std::string &file) {
    std::vector<WrittenChain> chains;
    std::string labels;
    for (const Compound *node : nodes) {
        CollectChains(node, chains);
        labels += (labels.empty() ? "" : ", ") + base::Quoted(node->GetLabel());
    }
    std::erase_if(chains, [](const WrittenChain &chain) { return !HasAtoms(chain); });
    if (chains.empty())
        throw FileError(file, "", "nothing to write: no chain with atoms in " + labels);
    for (WrittenChain &chain : chains) {
        chain.name = chain.node->GetName();
        chain.displace = displace;
        chain.entityNumber = std::size_t(&chain - chains.data()) + 1;
    }
    return chains;
}

} // namespace

StructureFormat StructureFormatOf(const std::string &file) {
    const std::string lower = gemmi::to_lower(file);
    return lower.ends_with(".cif") || lower.ends_with(".mmcif") ? StructureFormat::Mmcif
                                                                : StructureFormat::Pdb;
}

void WriteStructure(const std::string &file, StructureFormat format, const Compound *node,
                    const Transform &pose) {
    WriteStructure(file, format, std::vector<const Compound *>{node}, pose);
}

void WriteStructure(const std::string &file, StructureFormat format,
                    const std::vector<const Compound *> &nodes, const Transform &pose) {
    WriteStructure(file, format, nodes,
                   Displacement([&pose](const Vertex &position) { return pose * position; }));
}

void WriteStructure(const std::string &file, StructureFormat format,
                    const std::vector<const Compound *> &nodes, const Displacement &displace) {
    const std::vector<WrittenChain> chains = ChainsBelow(nodes, displace, file);
    ReplaceFile(file, [&](std::ostream &out) {
        if (format == StructureFormat::Pdb)
            PdbWriter(file, out).Write(chains);
        else
            MmcifWriter(file, out).Write(chains);
    });
}

void PrintMmcif(std::ostream &out, const std::string &name, const std::vector<const Compound *> &nodes) {
    MmcifWriter(name, out).Write(ChainsBelow(nodes, std::identity(), name));
}

void WriteAssembly(const std::string &file, std::span<const PlacedChain> placed) {
    std::vector<WrittenChain> chains;
    std::map<const Compound *, std::size_t> entities;
    for (const PlacedChain &copy : placed) {
        std::vector<WrittenChain> written;
        CollectChains(copy.chain, written);
        std::erase_if(written, [](const WrittenChain &chain) { return !HasAtoms(chain); });
        for (WrittenChain &chain : written) {
            chain.name = copy.name;
            chain.displace = [pose = copy.pose](const Vertex &position) { return pose * position; };
            chain.entityNumber = entities.emplace(chain.node, entities.size() + 1).first->second;
            chains.push_back(std::move(chain));
        }
    }
    if (chains.empty())
        throw FileError(file, "", "nothing to write: no chain with atoms");
    ReplaceFile(file, [&](std::ostream &out) { MmcifWriter(file, out).Write(chains); });
}

} // namespace formats
