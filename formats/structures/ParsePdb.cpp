
#include "base/Numbers.h"
#include "base/Words.h"
#include "formats/files/FileError.h"
#include "formats/structures/ParsedModel.h"

#include <gemmi/model.hpp>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <unordered_map>
#include <utility>

namespace formats {

namespace {

struct Columns {
    std::size_t first, count; ///< first counted from 0
    const char *name;
};

constexpr Columns atomName{12, 4, "atom name"}, residueName{17, 3, "residue name"},
    residueNumber{22, 4, "residue number"},
    coordinates[] = {{30, 8, "x coordinate"}, {38, 8, "y coordinate"}, {46, 8, "z coordinate"}},
    bFactor{60, 6, "B factor"}, segment{72, 4, "segment"}, element{76, 2, "element"}, charge{78, 2, "charge"};
constexpr std::size_t alternate = 16, beforeChain = 20, chain = 21, insertionCode = 26, coordinatesEnd = 54,
                      afterBFactor = 66, width = 80;

bool IsBlank(std::string_view field) {
    return field.find_first_not_of(' ') == std::string_view::npos;
}
bool IsUpper(char c) {
    return c >= 'A' && c <= 'Z';
}
bool IsLower(char c) {
    return c >= 'a' && c <= 'z';
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsPrintable(char c) {
    return c >= ' ' && c <= '~';
}
char Upper(char c) {
    return IsLower(c) ? char(c - 'a' + 'A') : c;
}

/// Columns 1 to 6 in capitals, without blanks.
std::string RecordName(std::string_view line) {
    std::string name(base::Trimmed(line.substr(0, std::min<std::size_t>(line.find('\t'), 6))));
    std::ranges::transform(name, name.begin(), Upper);
    return name;
}

/// A number of four columns, or of hybrid-36 (Grosse-Kunstleve et al., http://cci.lbl.gov/hybrid_36): a
/// capital letter first, four digits to the base 36, "A000" being 10000.
std::optional<int> ResidueNumber(std::string_view field) {
    if (!IsUpper(field[0]))
        return base::ReadInteger(field);
    if (!std::ranges::all_of(field, [](char c) { return IsUpper(c) || IsDigit(c); }))
        return {};
    constexpr int first = 10 * 36 * 36 * 36;
    return int(std::strtol(std::string(field).c_str(), nullptr, 36)) - first + 10'000;
}

/// "2+", or "+2" as some programs write; 0 for anything else.
signed char Charge(std::string_view field) {
    const auto isSign = [](char c) { return c == '+' || c == '-'; };
    const bool signFirst = isSign(field[0]);
    const char sign = field[signFirst ? 0 : 1], digit = field[signFirst ? 1 : 0];
    if (!isSign(sign) || !IsDigit(digit))
        return 0;
    return static_cast<signed char>(sign == '-' ? '0' - digit : digit - '0');
}

/// What the columns of the element say, where they name one. Files of the old format end in an entry's name
/// and a line number there.
gemmi::Element NamedElement(std::string_view field) {
    return gemmi::Element(std::string(base::Trimmed(field)));
}

/// By the four columns of the atom's name: the element stands in the first two. "HG11" is a hydrogen, "1HB "
/// too, and "C210" a carbon.
gemmi::Element ElementOfName(std::string_view field) {
    if (Upper(field[0]) == 'H' && field[3] != ' ')
        return gemmi::El::H;
    if (IsDigit(field[0]))
        return gemmi::Element(std::string(1, field[1]));
    return gemmi::Element(std::string(field.substr(0, IsDigit(field[1]) ? 1 : 2)));
}

/// Takes the lines of a PDB file one by one and makes the parts of its first model.
class Reader {
public:
    explicit Reader(const std::string &file)
        : m_file(file) {}

    void Take(std::string_view line) {
        ++m_line;
        const std::string record = RecordName(line);
        if (record == "ATOM" || record == "HETATM") {
            m_model.models += !m_inModel;
            m_inModel = true;
            if (m_model.models == 1)
                TakeAtom(record, line);
        } else if (record == "TER") {
            m_inPart = false;
        } else if (record == "MODEL" || record == "ENDMDL" || record == "END") {
            // Trajectories may have ENDMDL, END or MODEL alone between their models.
            m_inModel = false;
            if (record == "MODEL" && m_model.models == 0)
                TakeModelNumber(line.substr(5));
        }
    }

    ParsedModel Release() {
        if (m_wide > 0)
            m_model.warnings.push_back("column 21 is not blank in " + base::Counted(m_wide, "atom record") +
                                       ", the first in line " + std::to_string(m_firstWide) +
                                       "; it was ignored, column 22 is the chain's identifier");
        return std::move(m_model);
    }

private:
    void TakeModelNumber(std::string_view field) {
        if (const auto number = base::ReadInteger(field))
            m_model.number = std::to_string(*number);
    }

    void TakeAtom(const std::string &record, std::string_view line) {
        if (line.size() < coordinatesEnd)
            Fail("an atom record ends in column " + std::to_string(line.size()) +
                 ", before its coordinates do");
        m_atom = line.substr(0, width);
        m_atom.resize(width, ' ');
        CheckBytes();
        // A record in lower case has its names in lower case too.
        if (IsLower(line[0]))
            std::transform(m_atom.begin() + atomName.first, m_atom.begin() + beforeChain,
                           m_atom.begin() + atomName.first, Upper);
        CountWide();
        ResidueAt(record).atoms.push_back(ReadAtom());
    }

    void CheckBytes() {
        const auto end = m_atom.begin() + afterBFactor;
        const auto odd = std::find_if_not(m_atom.begin(), end, IsPrintable);
        if (odd < end)
            Fail("column " + std::to_string(odd - m_atom.begin() + 1) + " of an atom record holds " +
                 base::Quoted(std::string(1, *odd)));
        std::replace_if(
            end, m_atom.end(), [](char c) { return !IsPrintable(c); }, ' ');
    }

    /// Some programs take columns 21 and 22 together as the chain's identifier.
    void CountWide() {
        if (m_atom[beforeChain] == ' ')
            return;
        m_firstWide = m_wide == 0 ? m_line : m_firstWide;
        ++m_wide;
    }

    gemmi::Residue &ResidueAt(const std::string &record) {
        const std::string identifier(m_atom[chain] == ' ' ? 0 : 1, m_atom[chain]);
        if (!std::exchange(m_inPart, true) || identifier != m_model.parts.back().name) {
            m_model.parts.emplace_back(identifier);
            m_residues.clear();
        }
        auto &residues = m_model.parts.back().residues;
        const auto [place, isNew] = m_residues.emplace(ReadResidueId(), residues.size());
        if (isNew) {
            residues.emplace_back(place->first);
            residues.back().het_flag = record[0];
        }
        return residues[place->second];
    }

    gemmi::ResidueId ReadResidueId() const {
        const auto number = ResidueNumber(Field(residueNumber));
        if (!number)
            FailAt(residueNumber);
        gemmi::ResidueId id;
        id.seqid = gemmi::SeqId(*number, m_atom[insertionCode]);
        id.segment = base::Trimmed(Field(segment));
        id.name = base::Trimmed(Field(residueName));
        return id;
    }

    gemmi::Atom ReadAtom() const {
        gemmi::Atom atom;
        atom.name = base::Trimmed(Field(atomName));
        atom.altloc = m_atom[alternate] == ' ' ? '\0' : m_atom[alternate];
        for (const unsigned i : {0, 1, 2})
            atom.pos.at(int(i)) = Number(coordinates[i]);
        atom.b_iso = IsBlank(Field(bFactor)) ? 0 : float(Number(bFactor));
        atom.element = NamedElement(Field(element));
        if (atom.element == gemmi::El::X)
            atom.element = ElementOfName(Field(atomName));
        atom.charge = Charge(Field(charge));
        return atom;
    }

    double Number(const Columns &columns) const {
        const auto number = base::ReadNumber(Field(columns));
        if (!number)
            FailAt(columns);
        return *number;
    }

    std::string_view Field(const Columns &columns) const {
        return std::string_view(m_atom).substr(columns.first, columns.count);
    }

    [[noreturn]] void FailAt(const Columns &columns) const {
        Fail(std::string(columns.name) + " " + base::Quoted(Field(columns)) + " (columns " +
             std::to_string(columns.first + 1) + " to " + std::to_string(columns.first + columns.count) +
             ") is not a number");
    }
    [[noreturn]] void Fail(const std::string &problem) const {
        throw FileError(m_file, "line " + std::to_string(m_line), problem);
    }

    const std::string &m_file;
    ParsedModel m_model = {{}, "1", 0, {}};
    std::unordered_map<gemmi::ResidueId, std::size_t> m_residues; ///< of the part at work
    std::string m_atom;                                           ///< the record at work, 80 columns
    std::size_t m_line = 0, m_wide = 0, m_firstWide = 0;
    bool m_inModel = false; ///< an atom has been seen since the last model ended
    bool m_inPart = false;  ///< an atom has been seen since the last TER
};

/// Takes the first line off the text; lines end at LF, CR LF or CR.
std::string_view TakeLine(std::string_view &text) {
    const std::string_view line = text.substr(0, text.find_first_of("\r\n"));
    text.remove_prefix(line.size());
    text.remove_prefix(text.starts_with("\r\n") ? 2 : text.empty() ? 0 : 1);
    return line;
}

} // namespace

ParsedModel ParsePdb(const std::string &file, std::string_view text) {
    Reader reader(file);
    while (!text.empty())
        reader.Take(TakeLine(text));
    return reader.Release();
}

} // namespace formats
