
#include "base/Numbers.h"
#include "base/Words.h"
#include "formats/files/FileError.h"
#include "formats/structures/ParsedModel.h"

#include <gemmi/pdb.hpp>

#include <algorithm>
#include <utility>

namespace formats {

namespace {

struct Columns {
    std::size_t first, count; ///< first counted from 0
    const char *name;
};

constexpr Columns atomAndResidueName{12, 8, "names"}, residueNumber{22, 4, "residue number"},
    coordinates[] = {{30, 8, "x coordinate"}, {38, 8, "y coordinate"}, {46, 8, "z coordinate"}},
    bFactor{60, 6, "B factor"}, element{76, 2, "element"}, charge{78, 2, "charge"};
constexpr std::size_t beforeChain = 20, coordinatesEnd = 54, afterBFactor = 66, segment = 72, width = 80;

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
/// capital letter first, four digits to the base 36.
bool IsResidueNumber(std::string_view field) {
    if (IsUpper(field[0]))
        return std::ranges::all_of(field, [](char c) { return IsUpper(c) || IsDigit(c); });
    return base::ReadInteger(field).has_value();
}

bool IsCharge(std::string_view field) {
    const auto isSign = [](char c) { return c == '+' || c == '-'; };
    return (IsDigit(field[0]) && isSign(field[1])) || (isSign(field[0]) && IsDigit(field[1]));
}

/// Makes of each line of a PDB file what gemmi reads without stopping at it: of the records that are of use,
/// all columns present, the columns that are of no use blank, and all numbers checked. gemmi takes a field
/// that is no number for 0, and gives up the whole file at an odd charge or at an ANISOU record out of place.
class Cleaner {
public:
    explicit Cleaner(const std::string &file)
        : m_file(file) {}

    void Take(std::string_view line) {
        ++m_line;
        const std::string record = RecordName(line);
        if (record == "ATOM" || record == "HETATM") {
            m_models += !m_inModel;
            m_inModel = true;
            if (m_models == 1)
                TakeAtom(record, line);
        } else if (record == "TER" && m_inModel && m_models == 1) {
            m_text += "TER\n";
        } else if (record == "MODEL" || record == "ENDMDL" || record == "END") {
            // Trajectories may have ENDMDL, END or MODEL alone between their models.
            m_inModel = false;
            if (record == "MODEL" && m_models == 0)
                TakeModelNumber(line.substr(5));
        }
    }

    const std::string &Text() const { return m_text; }
    const std::string &ModelNumber() const { return m_modelNumber; }
    unsigned Models() const { return m_models; }

    std::vector<std::string> Warnings() const {
        if (m_wide == 0)
            return {};
        return {"column 21 is not blank in " + base::Counted(m_wide, "atom record") + ", the first in line " +
                std::to_string(m_firstWide) + "; it was ignored, column 22 is the chain's identifier"};
    }

private:
    void TakeModelNumber(std::string_view field) {
        if (const auto number = base::ReadInteger(field))
            m_modelNumber = std::to_string(*number);
    }

    void TakeAtom(const std::string &record, std::string_view line) {
        if (line.size() < coordinatesEnd)
            Fail("an atom record ends in column " + std::to_string(line.size()) +
                 ", before its coordinates do");
        const bool lowerCase = IsLower(line[0]);
        m_atom = line.substr(0, width);
        m_atom.resize(width, ' ');
        CheckBytes();
        m_atom.replace(0, 6, record + std::string(6 - record.size(), ' '));
        if (lowerCase)
            std::transform(m_atom.begin() + atomAndResidueName.first,
                           m_atom.begin() + atomAndResidueName.first + atomAndResidueName.count,
                           m_atom.begin() + atomAndResidueName.first, Upper);
        CheckNumbers();
        BlankBeforeChain();
        BlankOddTail();
        m_text += m_atom;
        m_text += '\n';
    }

    void CheckBytes() const {
        const auto odd = std::find_if_not(m_atom.begin(), m_atom.begin() + afterBFactor, IsPrintable);
        if (odd < m_atom.begin() + afterBFactor)
            Fail("column " + std::to_string(odd - m_atom.begin() + 1) + " of an atom record holds " +
                 base::Quoted(std::string(1, *odd)));
    }

    void CheckNumbers() const {
        if (!IsResidueNumber(Field(residueNumber)))
            FailAt(residueNumber);
        for (const Columns &coordinate : coordinates)
            if (!base::ReadNumber(Field(coordinate)))
                FailAt(coordinate);
        if (!IsBlank(Field(bFactor)) && !base::ReadNumber(Field(bFactor)))
            FailAt(bFactor);
    }

    /// gemmi takes columns 21 and 22 together as the chain's identifier.
    void BlankBeforeChain() {
        if (std::exchange(m_atom[beforeChain], ' ') == ' ')
            return;
        m_firstWide = m_wide == 0 ? m_line : m_firstWide;
        ++m_wide;
    }

    /// Files of the old format end in an entry's name and a line number where element and charge are today.
    void BlankOddTail() {
        std::fill(m_atom.begin() + afterBFactor, m_atom.begin() + segment, ' ');
        std::replace_if(
            m_atom.begin() + segment, m_atom.end(), [](char c) { return !IsPrintable(c); }, ' ');
        if (const std::string symbol(base::Trimmed(Field(element)));
            gemmi::find_element(symbol.c_str()) == gemmi::El::X)
            Blank(element);
        if (!IsCharge(Field(charge)))
            Blank(charge);
    }

    std::string_view Field(const Columns &columns) const {
        return std::string_view(m_atom).substr(columns.first, columns.count);
    }
    void Blank(const Columns &columns) {
        m_atom.replace(columns.first, columns.count, std::string(columns.count, ' '));
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
    std::string m_text;
    std::string m_atom; ///< the record at work, 80 columns
    std::string m_modelNumber = "1";
    std::size_t m_line = 0, m_wide = 0, m_firstWide = 0;
    unsigned m_models = 0;
    bool m_inModel = false; ///< an atom has been seen since the last model ended
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
    Cleaner cleaner(file);
    while (!text.empty())
        cleaner.Take(TakeLine(text));
    gemmi::PdbReadOptions options;
    options.split_chain_on_ter = true;
    gemmi::Structure structure = gemmi::read_pdb_string(cleaner.Text(), file, options);
    return {std::move(structure.first_model().chains), cleaner.ModelNumber(), cleaner.Models(),
            cleaner.Warnings()};
}

} // namespace formats
