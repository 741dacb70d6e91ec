#pragma once

#include "Compound.h"
#include "Transform.h"

#include <string>
#include <vector>

namespace VARNO {

/// What a structure file was found to hold, and what of it was left out.
struct StructureReport {
    std::string format;                ///< "PDB" or "mmCIF"
    std::vector<std::string> warnings; ///< what was read differently from how it stands, one sentence each
};

/// Reads a PDB or mmCIF file (either may be gzipped) and adds it to the model as one clump (named after the
/// file) with one molecule, its chains, residues and atoms. The format is told from the content, not the name.
///
/// Only the first model and, atom by atom, the first alternate location are read. Coordinates are in Å.
/// Throws FileError; nothing is added to the model then.
Clump *ReadStructure(const std::string &file, StructureReport *report = nullptr);

enum class StructureFormat { Pdb, Mmcif };

/// mmCIF for a name ending in .cif or .mmcif, else PDB.
StructureFormat StructureFormatOf(const std::string &file);

/// Writes the chains below `node` (or the chain or built molecule that `node` is) with every atom moved by
/// `pose`. Atoms are numbered afresh from 1, occupancies are 1.00. The file is replaced as a whole at the end:
/// it is never seen half written. Throws FileError, also when PDB cannot hold the model (more than 99,999
/// atoms, an identifier of several letters, a coordinate or number too wide), with the advice to write mmCIF.
void WriteStructure(const std::string &file, StructureFormat format, const Compound *node,
                    const Transform &pose = Transform({}, {}));

} // namespace VARNO
