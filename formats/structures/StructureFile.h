#pragma once

#include "Compound.h"
#include "Transform.h"
#include "formats/files/ByteSource.h"

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace formats {

/// A polymer chain as read.
struct ChainReport {
    std::string identifier; ///< " " where it is blank
    std::string kind;       ///< "protein", "DNA", "RNA", "DNA/RNA", "polymer" where the monomers are others
    std::size_t residues = 0;
    std::size_t placed = 0; ///< residues with a position
    std::size_t atoms = 0;
};

/// What a structure file holds, and what of it was left out.
struct StructureReport {
    std::string format;                ///< "PDB" or "mmCIF"
    std::vector<ChainReport> chains;   ///< the polymers, in the order of the model tree
    unsigned models = 0;               ///< in the file; the first of them was read
    std::size_t ligands = 0;           ///< residues beside the polymers, other than water
    std::size_t waters = 0;            ///< water molecules
    std::size_t alternates = 0;        ///< atoms left out as another alternate location
    std::size_t unplaced = 0;          ///< atoms left out for a coordinate that is absent or not finite
    std::vector<std::string> warnings; ///< what was left out or read differently, one sentence each
};

/// Reads a PDB or mmCIF file (either may be gzipped) and adds it to the model as one clump (named after the
/// file) with one molecule, its chains, residues and atoms. The format is recognised by the content, not the
/// name.
///
/// Only the first model and, atom by atom, the first alternate location are read. Coordinates are in Å. For
/// each chain identifier there is a polymer chain, and after it a chain of the same identifier, not a
/// polymer, with the ligands and waters. A blank identifier of a PDB file gives a chain named " ". Throws
/// FileError; nothing is added to the model then.
VARNO::Clump *ReadStructure(const std::string &file, StructureReport *report = nullptr);
/// The same from a source of which nothing has been read yet.
VARNO::Clump *ReadStructureFrom(ByteSource &source, StructureReport *report = nullptr);
/// The same as a model of its own, which the caller keeps and any thread may read; see FreeClump.h.
std::unique_ptr<VARNO::Clump> ReadFreeStructure(ByteSource &source, StructureReport *report = nullptr);
/// The same outside of the model tree, on any thread, for `DataMaker::addClump` to add.
std::unique_ptr<VARNO::Clump> ReadDetachedStructure(ByteSource &source, StructureReport *report = nullptr);

enum class StructureFormat { Pdb, Mmcif };

/// mmCIF for a name ending in .cif or .mmcif, in capitals or not, else PDB.
StructureFormat StructureFormatOf(const std::string &file);

/// Writes the chains below `node` (or the chain or built molecule that `node` is) with every atom moved by
/// `pose`. Atoms are numbered afresh from 1, occupancies are 1.00, the model is number 1, coordinates are
/// rounded to three decimals in both formats. Residues of polymers are ATOM records, all others HETATM. The
/// file is replaced as a whole at the end. In mmCIF the ligands and the water of a chain are two chains
/// (label_asym_id) and entities.
///
/// Throws FileError where there is no atom below `node`, for a coordinate that is not finite, and when PDB
/// cannot hold the model (more than 99,999 atoms and ends of chains, an identifier of several letters, a
/// coordinate, number or name too wide), with the advice to write mmCIF.
void WriteStructure(const std::string &file, StructureFormat format, const VARNO::Compound *node,
                    const VARNO::Transform &pose = VARNO::Transform({}, {}));
/// Likewise the chains below several nodes, in their order.
void WriteStructure(const std::string &file, StructureFormat format,
                    const std::vector<const VARNO::Compound *> &nodes, const VARNO::Transform &pose);
/// Likewise with every atom moved by a function of its position.
using Displacement = std::function<VARNO::Vertex(const VARNO::Vertex &)>;
void WriteStructure(const std::string &file, StructureFormat format,
                    const std::vector<const VARNO::Compound *> &nodes, const Displacement &displace);

/// Likewise into a stream, as mmCIF; `name` stands for the file.
void PrintMmcif(std::ostream &out, const std::string &name,
                const std::vector<const VARNO::Compound *> &nodes);

/// A polymer chain in one of its places.
struct PlacedChain {
    const VARNO::Chain *chain = nullptr;
    VARNO::Transform pose;
    std::string name; ///< the author's identifier in the file
};

/// Writes chains, each as often as it is given, into one mmCIF file as WriteStructure does; copies of a chain
/// are one entity. Throws FileError as it does.
void WriteAssembly(const std::string &file, std::span<const PlacedChain> chains);

} // namespace formats
