#pragma once

#include "Compound.h"
#include "document/Looks.h"

#include <vtkMolecule.h>
#include <vtkPolyData.h>
#include <vtkSmartPointer.h>

#include <functional>

namespace desktop {

/// Takes the residues that are to be drawn.
using ResidueFilter = std::function<bool(const VARNO::Compound &)>;

/// How finely a tube is drawn.
struct TubeDetail {
    double length = 0.9; ///< between its rings, Å
    int sides = 8;
};
constexpr TubeDetail coarseTube{2.5, 4};

/// A smooth tube of that radius (Å) through the positions of a chain's residues, broken where the chain is.
/// Each point knows how far along the chain it lies, from 0 at the first residue to 1 at the last.
vtkSmartPointer<vtkPolyData> TubeOf(const VARNO::Compound &chain, double radius,
                                    const ResidueFilter &takes = {}, const TubeDetail &detail = {});

/// The atoms below a chain and their bonds; of water nothing.
vtkSmartPointer<vtkMolecule> AtomsOf(const VARNO::Compound &chain);

/// Whether a chain has a tube: at least two residues with positions, one after the other.
bool HasTube(const VARNO::Compound &chain);

} // namespace desktop
