#pragma once

#include "placement/Geometry.h"
#include "placement/RadialCurve.h"

#include <vector>

namespace placement {

/// One atom of the model that is to be placed. Hydrogens are left out by whoever fills these in: a map at
/// these resolutions says nothing about them, and files have them or not.
struct ModelAtom {
    Point position;
    double electrons = 0;   ///< greater than 0
    unsigned residue = 0;   ///< atoms of one residue stand one after another
    unsigned chain = 0;     ///< likewise
    bool inBackbone = true; ///< N, CA, C, O of an amino acid; phosphate and sugar of a nucleotide
};

/// A model as two weighted points for each residue: the centre of its backbone's electrons and that of its
/// side chain's. They score as all atoms do, at a quarter of the cost; CA atoms alone miss side chains, by
/// which short helices are told apart.
struct PointModel {
    std::vector<Point> points;     ///< about the model's centre, Å
    std::vector<double> weights;   ///< electrons
    std::vector<unsigned> residue; ///< of each point
    Point centre;                  ///< of the electrons, in the model's own frame
    Matrix covariance{};           ///< of the electrons about the centre, Å²
    double gyration = 0;           ///< radius of gyration, Å: the root of the covariance's trace
    double radius = 0;             ///< of the farthest point
    std::size_t atoms = 0, residues = 0;
    std::vector<Matrix> equalTurns{RotationBy({})}; ///< rotations about the centre that lay it upon itself
    std::vector<Point> scanPoints; ///< means of consecutive residues of one chain, at most about `scanPoints`
};

/// Throws std::invalid_argument where there is no atom.
PointModel MakePointModel(const std::vector<ModelAtom> &atoms);

/// Pm(k), the power of the points averaged over all directions (Debye 1915): the sum over all pairs of
/// w_i·w_j·sinc(2πk·r_ij), at least 0.05 of the sum of w². Of many points every pair would take long: each
/// is then paired with an even sample of the others.
RadialCurve DebyePower(const PointModel &model, double end, double step);

} // namespace placement
