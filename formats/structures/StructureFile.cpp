#include "formats/structures/StructureFile.h"

#include "DataAdder.h"
#include "DataMaker.h"
#include "base/Words.h"
#include "formats/files/FileError.h"
#include "formats/files/NodeName.h"
#include "formats/files/ReadBytes.h"
#include "formats/structures/AssembleChains.h"
#include "formats/structures/FreeClump.h"

#include <algorithm>

using namespace VARNO;

namespace formats {

namespace {

/// Far more than the largest model known (some 2.4 million atoms, 250 MB); the parsed text of an mmCIF file
/// takes about eleven times its size in memory.
constexpr std::size_t maxBytes = std::size_t(512) << 20;

constexpr std::string_view byteOrderMark = "\xef\xbb\xbf", anyBlank = " \t\r\n";

bool StartsWithWord(std::string_view text, std::string_view word) {
    return gemmi::iequal(std::string(text.substr(0, word.size())), std::string(word));
}

/// mmCIF begins, after comments, with a block or, unusually, at once with a table or a tag; no PDB file does.
bool IsMmcif(std::string_view text) {
    for (auto at = text.find_first_not_of(anyBlank); at != std::string_view::npos;
         at = text.find_first_not_of(anyBlank, at)) {
        if (text[at] != '#')
            return text[at] == '_' || StartsWithWord(text.substr(at), "data_") ||
                   StartsWithWord(text.substr(at), "loop_");
        at = std::min(text.find('\n', at), text.size());
    }
    return false;
}

[[noreturn]] void FailAsUnknown(const std::string &file, std::string_view text) {
    const auto begin = text.find_first_not_of(anyBlank);
    if (begin == std::string_view::npos)
        throw FileError(file, "", "is empty");
    const std::string_view line = text.substr(begin, text.find_first_of("\r\n", begin) - begin);
    throw FileError(file, "",
                    "is neither PDB (no line is an ATOM or HETATM record) nor mmCIF; it begins with " +
                        base::Quoted(line));
}

ParsedModel Parse(ByteSource &source, StructureReport &report) {
    const std::string &file = source.Name();
    const std::string bytes = ReadBytes(source, maxBytes);
    std::string_view text = bytes;
    if (text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());
    const bool mmcif = IsMmcif(text);
    ParsedModel parsed = mmcif ? ParseMmcif(file, text) : ParsePdb(file, text);
    if (parsed.parts.empty())
        FailAsUnknown(file, text);
    report.format = mmcif ? "mmCIF" : "PDB";
    report.models = parsed.models;
    report.warnings = parsed.warnings;
    return parsed;
}

std::string NameOf(gemmi::PolymerType kind) {
    switch (kind) {
    case gemmi::PolymerType::PeptideL:
    case gemmi::PolymerType::PeptideD:
        return "protein";
    case gemmi::PolymerType::Dna:
        return "DNA";
    case gemmi::PolymerType::Rna:
        return "RNA";
    case gemmi::PolymerType::DnaRnaHybrid:
        return "DNA/RNA";
    default:
        return "polymer";
    }
}

/// gemmi's number for "none" is -999, which the parsers let through only as the number of a residue.
std::string SequenceId(const gemmi::SeqId &id) {
    return std::to_string(id.num.value) + (id.has_icode() ? std::string(1, id.icode) : "");
}

/// Makes the nodes below a clump; in the model tree to be used under an open batch.
class Builder {
public:
    explicit Builder(const std::string &modelNumber)
        : m_modelNumber(modelNumber) {}

    void Build(Compound *clump, const std::vector<AssembledChain> &chains, StructureReport &report) {
        Compound *molecule = DataMaker::makeMolecule(clump, clump->GetName());
        for (const AssembledChain &chain : chains)
            if (chain.polymer)
                report.chains.push_back(BuildPolymer(molecule, chain));
            else
                BuildOthers(molecule, chain, report);
    }

private:
    ChainReport BuildPolymer(Compound *molecule, const AssembledChain &chain) {
        Compound *node = DataMaker::makeChain(molecule, chain.identifier, true);
        ChainReport report{chain.identifier, NameOf(chain.kind), chain.residues.size(), 0, 0};
        for (const gemmi::Residue &residue : chain.residues) {
            report.placed += BuildResidue(node, residue)->GetPosition().IsValid();
            report.atoms += residue.atoms.size();
        }
        return report;
    }

    void BuildOthers(Compound *molecule, const AssembledChain &chain, StructureReport &report) {
        Compound *node = DataMaker::makeChain(molecule, chain.identifier, false);
        for (const gemmi::Residue &residue : chain.residues) {
            BuildResidue(node, residue);
            ++(residue.is_water() ? report.waters : report.ligands);
        }
    }

    Compound *BuildResidue(Compound *chain, const gemmi::Residue &residue) {
        Compound *node = DataMaker::makeGroup(chain, residue.name, SequenceId(residue.seqid));
        for (const gemmi::Atom &atom : residue.atoms) {
            const Vertex position(float(atom.pos.x), float(atom.pos.y), float(atom.pos.z), true);
            DataMaker::makeAtom(node, atom.element.uname(), atom.name, m_modelNumber, position, 1, "",
                                float(atom.charge), atom.b_iso);
        }
        node->Complete();
        return node;
    }

    const std::string m_modelNumber;
};

void WarnOfLeftOut(const AssembledModel &model, StructureReport &report) {
    const auto warn = [&](std::size_t number, const std::string &noun, const std::string &rest) {
        if (number > 0)
            report.warnings.push_back(base::Counted(number, noun) + ' ' + rest);
    };
    report.alternates = model.alternates;
    report.unplaced = model.unplaced;
    warn(report.models - 1, "further model", "left out");
    warn(report.alternates, "atom", "of other alternate locations left out");
    warn(report.unplaced, "atom", "without finite coordinates left out");
    warn(model.repeated, "atom", "with the name of another in the same residue");
}

} // namespace

Clump *ReadStructure(const std::string &file, StructureReport *report) {
    ByteSource source(file);
    return ReadStructureFrom(source, report);
}

namespace {

/// A file's chains, in memory alone.
struct Contents {
    std::string modelNumber;
    AssembledModel model;
    StructureReport report;
};

Contents ReadContents(ByteSource &source) {
    Contents contents;
    ParsedModel parsed = Parse(source, contents.report);
    contents.modelNumber = parsed.number;
    contents.model = AssembleChains(std::move(parsed.parts));
    WarnOfLeftOut(contents.model, contents.report);
    return contents;
}

void BuildBelow(Compound *clump, Contents &contents, StructureReport *report) {
    Builder(contents.modelNumber).Build(clump, contents.model.chains, contents.report);
    if (report)
        *report = contents.report;
}

} // namespace

Clump *ReadStructureFrom(ByteSource &source, StructureReport *report) {
    return WithMemory(source.Name(), [&] {
        Contents contents = ReadContents(source);
        const DataAdder<Space> batch(Space::instance());
        if (!batch.MayAdd())
            throw FileError(source.Name(), "", "cannot be added: the model accepts no additions at present");
        Compound *clump = DataMaker::makeClump(NodeName(source.Name()));
        BuildBelow(clump, contents, report);
        return static_cast<Clump *>(clump);
    });
}

std::unique_ptr<Clump> ReadFreeStructure(ByteSource &source, StructureReport *report) {
    return WithMemory(source.Name(), [&] {
        Contents contents = ReadContents(source);
        auto clump = std::make_unique<FreeClump>(NodeName(source.Name()));
        BuildBelow(clump.get(), contents, report);
        clump->Complete();
        return std::unique_ptr<Clump>(std::move(clump));
    });
}

std::unique_ptr<Clump> ReadDetachedStructure(ByteSource &source, StructureReport *report) {
    return WithMemory(source.Name(), [&] {
        Contents contents = ReadContents(source);
        auto clump = std::make_unique<Clump>(NodeName(source.Name()));
        BuildBelow(clump.get(), contents, report);
        return clump;
    });
}

} // namespace formats
