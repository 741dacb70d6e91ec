#include "base/Numbers.h"
#include "base/Words.h"
#include "formats/files/FileError.h"
#include "formats/structures/MmcifDocument.h"
#include "formats/structures/ParsedModel.h"

#include <cmath>
#include <limits>
#include <set>
#include <unordered_map>

namespace formats {

namespace {

using gemmi::cif::Block;
using gemmi::cif::Document;
using gemmi::cif::Table;

/// The value without its quotes; empty where it is absent, unknown or inapplicable.
std::string Value(const Table::Row &row, int column) {
    return row.has2(column) ? row.str(column) : "";
}

/// What the tables beside _atom_site say about polymers.
class Entities {
public:
    explicit Entities(Block &block) {
        std::unordered_map<std::string, gemmi::EntityType> types;
        for (const auto row : block.find("_entity.", {"id", "type"}))
            m_types[row.str(0)] = TypeOf(row.str(1));
        for (const auto row : block.find("_struct_asym.", {"id", "entity_id"}))
            m_entities[row.str(0)] = row.str(1);
    }

    /// Unknown where the file does not say it. `entity` may be empty.
    gemmi::EntityType Type(const std::string &entity, const std::string &asym) const {
        const auto ofAsym = m_entities.find(asym);
        const auto type =
            m_types.find(entity.empty() && ofAsym != m_entities.end() ? ofAsym->second : entity);
        return type == m_types.end() ? gemmi::EntityType::Unknown : type->second;
    }

private:
    static gemmi::EntityType TypeOf(const std::string &word) {
        if (gemmi::iequal(word, "polymer"))
            return gemmi::EntityType::Polymer;
        for (const char *other : {"non-polymer", "branched", "water", "macrolide"})
            if (gemmi::iequal(word, other))
                return gemmi::EntityType::NonPolymer;
        return gemmi::EntityType::Unknown;
    }

    std::unordered_map<std::string, gemmi::EntityType> m_types;
    std::unordered_map<std::string, std::string> m_entities; ///< by label_asym_id
};

// The columns of _atom_site in the order of `tags`.
enum Column {
    X,
    Y,
    Z,
    GroupPdb,
    Symbol,
    LabelAtom,
    AuthAtom,
    AltId,
    LabelComp,
    AuthComp,
    LabelAsym,
    AuthAsym,
    LabelEntity,
    LabelSeq,
    AuthSeq,
    InsCode,
    B,
    Charge,
    ModelNumber
};

const std::vector<std::string> tags = {"Cartn_x",
                                       "Cartn_y",
                                       "Cartn_z",
                                       "?group_PDB",
                                       "?type_symbol",
                                       "?label_atom_id",
                                       "?auth_atom_id",
                                       "?label_alt_id",
                                       "?label_comp_id",
                                       "?auth_comp_id",
                                       "?label_asym_id",
                                       "?auth_asym_id",
                                       "?label_entity_id",
                                       "?label_seq_id",
                                       "?auth_seq_id",
                                       "?pdbx_PDB_ins_code",
                                       "?B_iso_or_equiv",
                                       "?pdbx_formal_charge",
                                       "?pdbx_PDB_model_num"};

/// Makes parts of the rows of _atom_site. Of all its columns only the coordinates must be there; what the
/// author calls things goes before what the dictionary calls them, and stands in for it.
class AtomSite {
public:
    AtomSite(const std::string &file, Block &block)
        : m_file(file)
        , m_entities(block)
        , m_table(block.find("_atom_site.", tags)) {}

    ParsedModel Parse() {
        std::set<std::string> models;
        for (const auto row : m_table) {
            ++m_row;
            const std::string model = ValueOr(row, ModelNumber, ModelNumber, "1");
            models.insert(model);
            if (models.size() == 1)
                m_parsed.number = model;
            if (model == m_parsed.number)
                Take(row);
        }
        m_parsed.models = unsigned(models.size());
        return std::move(m_parsed);
    }

private:
    static std::string ValueOr(const Table::Row &row, Column first, Column second, const char *neither) {
        for (const Column column : {first, second})
            if (row.has2(column))
                return row.str(column);
        return neither;
    }

    void Take(const Table::Row &row) {
        const std::string chain = ValueOr(row, AuthAsym, LabelAsym, "");
        const std::string part = Value(row, LabelAsym) + '\n' + Value(row, LabelEntity);
        if (m_parsed.parts.empty() || chain != m_parsed.parts.back().name || part != m_part) {
            m_parsed.parts.emplace_back(chain);
            m_part = part;
            m_residues.clear();
        }
        ResidueOf(row).atoms.push_back(AtomOf(row));
    }

    gemmi::Residue &ResidueOf(const Table::Row &row) {
        auto &residues = m_parsed.parts.back().residues;
        const auto [place, isNew] = m_residues.emplace(IdOf(row), residues.size());
        if (isNew) {
            residues.emplace_back(place->first);
            residues.back().entity_type = m_entities.Type(Value(row, LabelEntity), Value(row, LabelAsym));
            residues.back().het_flag = gemmi::iequal(Value(row, GroupPdb), "HETATM") ? 'H' : 'A';
        }
        return residues[place->second];
    }

    gemmi::ResidueId IdOf(const Table::Row &row) const {
        gemmi::ResidueId id;
        const std::string number = ValueOr(row, AuthSeq, LabelSeq, "0");
        if (const auto read = base::ReadInteger(number))
            id.seqid.num = *read;
        else
            Fail(row.has2(AuthSeq) ? AuthSeq : LabelSeq, number, "is not an integer");
        const std::string insertion = Value(row, InsCode);
        if (insertion.size() > 1)
            Fail(InsCode, insertion, "has more than one letter");
        id.seqid.icode = insertion.empty() ? ' ' : insertion[0];
        id.name = ValueOr(row, AuthComp, LabelComp, "");
        return id;
    }

    gemmi::Atom AtomOf(const Table::Row &row) const {
        gemmi::Atom atom;
        atom.name = ValueOr(row, AuthAtom, LabelAtom, "");
        atom.altloc = Value(row, AltId)[0];
        atom.element = gemmi::Element(Value(row, Symbol));
        atom.pos = gemmi::Position(Number(row, X, NAN), Number(row, Y, NAN), Number(row, Z, NAN));
        atom.b_iso = float(Number(row, B, 0));
        const double charge = Number(row, Charge, 0);
        if (!(std::fabs(charge) < std::numeric_limits<signed char>::max()))
            Fail(Charge, row.str(Charge), "is not an atom's charge");
        atom.charge = static_cast<signed char>(std::lround(charge));
        return atom;
    }

    /// `absent` where the file gives none.
    double Number(const Table::Row &row, Column column, double absent) const {
        const std::string text = Value(row, column);
        if (text.empty())
            return absent;
        const auto number = base::ReadNumber(std::string_view(text).substr(0, text.find('('))); // "1.23(4)"
        if (!number)
            Fail(column, text, "is not a number");
        return *number;
    }

    [[noreturn]] void Fail(Column column, const std::string &value, const std::string &problem) const {
        const std::string &tag = tags[column];
        throw FileError(m_file, "row " + std::to_string(m_row) + " of _atom_site",
                        tag.substr(tag.starts_with('?')) + ' ' + base::Quoted(value) + ' ' + problem);
    }

    const std::string &m_file;
    const Entities m_entities;
    Table m_table;
    ParsedModel m_parsed;
    std::string m_part; ///< label_asym_id and entity of the part at work
    std::unordered_map<gemmi::ResidueId, std::size_t> m_residues; ///< of the part at work
    std::size_t m_row = 0;
};

bool HasAtoms(Block &block) {
    return block.find("_atom_site.", tags).length() > 0;
}

/// The error for a file without readable atoms.
[[noreturn]] void FailWithoutAtoms(const std::string &file, const Document &document) {
    for (const char *tag : {"_atom_site.Cartn_x", "_atom_site.Cartn_y", "_atom_site.Cartn_z"})
        for (const Block &block : document.blocks)
            if (!block.has_tag(tag) && block.has_tag("_atom_site.id"))
                throw FileError(file, "data_" + block.name,
                                std::string("_atom_site has no column ") + (tag + 11));
    throw FileError(file, "", "holds no atom in an _atom_site table: it is mmCIF, but no model");
}

} // namespace

ParsedModel ParseMmcif(const std::string &file, std::string_view text) {
    Document document = ParseDocument(file, text);
    const auto first = std::ranges::find_if(document.blocks, HasAtoms);
    if (first == document.blocks.end())
        FailWithoutAtoms(file, document);
    ParsedModel parsed = AtomSite(file, *first).Parse();
    for (auto block = first + 1; block != document.blocks.end(); ++block)
        if (HasAtoms(*block))
            parsed.warnings.push_back("the atoms of block data_" + block->name +
                                      " were left out, those of data_" + first->name + " are read");
    return parsed;
}

} // namespace formats
