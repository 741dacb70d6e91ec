#include "Process.h"

#include "../../formats/maps/MapBytes.h"

#include "Collect.h"
#include "ModelGuard.h"
#include "TemporaryFolder.h"
#include "TestData.h"
#include "formats/maps/MapFile.h"
#include "formats/structures/StructureFile.h"
#include "hosts/common/Chains.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace VARNO;

namespace {

Vertex Point(const Vector<float, 3> &xyz) {
    return Vertex(xyz[0], xyz[1], xyz[2], false);
}

std::vector<Vertex> Positions(Compound *chain) {
    std::vector<Compound *> residues;
    GetResidues(chain, residues, true);
    std::vector<Vertex> positions;
    for (const Compound *residue : residues)
        positions.push_back(residue->GetPosition());
    return positions;
}

Vertex Centre(const std::vector<Vertex> &positions) {
    Vertex sum;
    for (const Vertex &position : positions)
        sum = sum + position;
    const auto count = float(positions.size());
    return Point({sum[0] / count, sum[1] / count, sum[2] / count});
}

double Rmsd(const std::vector<Vertex> &a, const std::vector<Vertex> &b) {
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        sum += double((a[i] - b[i]).SquaredLength());
    return std::sqrt(sum / double(a.size()));
}

/// The map with z fastest and y slowest, moved, its origin in the ORIGIN words beside misleading start
/// indices.
std::string Permuted(const Grid &map, const Vertex &shift) {
    const auto &n = map.Dimensions();
    MapBytes bytes{int(n[2]), int(n[0]), int(n[1])};
    bytes.Int(17, 3).Int(18, 1).Int(19, 2).Int(5, 7).Int(6, -3).Int(7, 2);
    for (unsigned axis = 0; axis < 3; ++axis) {
        bytes.Int(8 + axis, int(n[axis])).Float(11 + axis, float(n[axis]) * map.Spacing()[axis]);
        bytes.Float(50 + axis, map.Origin()[axis] + shift[axis]);
    }
    for (unsigned j = 0; j < n[1]; ++j)
        for (unsigned i = 0; i < n[0]; ++i)
            for (unsigned k = 0; k < n[2]; ++k)
                bytes.Voxel(map.GetValue(i, j, k));
    return bytes;
}

} // namespace

TEST(SimulatedFit, AMapWithAnOddOriginAndPermutedAxesGivesTheKnownPoseBack) {
    const ModelGuard guard;
    const TemporaryFolder folder;
    const std::string model = SourceFolder() + "/examples/1tii.pdb";
    Chain *chain = hosts::ChooseChain(model, formats::ReadStructure(model), "D");
    const std::vector<Vertex> before = Positions(chain);

    // The density of chain D, the whole of it moved by a shift that no voxel size divides.
    const Vertex shift(0.37f, -1.21f, 100.83f, false);
    ASSERT_EQ(RunProgramProcess({"simulate", "--model", model, "--chains", "D", "--resolution", "6",
                                 "--voxel", "1.7", "--out", folder.File("simulated.mrc")})
                  .status,
              0);
    folder.Write("map.mrc", Permuted(*formats::ReadMap(folder.File("simulated.mrc")), shift));
    std::vector<Vertex> truth;
    for (const Vertex &position : before)
        truth.push_back(Point(position + shift));

    // The start: turned about its centre by -60° about one of the search's axes, and (4, -4, 8) Å off.
    Quaternion turn;
    turn.Set(-60 * std::acos(-1.0) / 180, Vertex(0, 0.8506508f, 0.5257311f, false));
    const Vertex centre = Centre(before), off(4, -4, 8, false);
    formats::WriteStructure(folder.File("start.pdb"), formats::StructureFormat::Pdb, chain,
                            Transform(turn, Point(centre - turn * centre + shift + off)));

    const Outcome fit = RunProgramProcess({"fit", "--map", folder.File("map.mrc"), "--target",
                                           folder.File("start.pdb"), "--axis", "0", "--rotation-step", "20",
                                           "--translation-steps", "5", "--translation-step", "4", "--keep",
                                           "10", "--json", folder.File("fit.json"), "--quiet"});
    ASSERT_EQ(fit.status, 0) << fit.errors;
    const Outcome build =
        RunProgramProcess({"build", "--results", folder.File("fit.json"), "--target",
                           folder.File("start.pdb"), "--rank", "1", "--out", folder.File("best.cif")});
    ASSERT_EQ(build.status, 0) << build.errors;
    const std::vector<Vertex> found = Positions(formats::ReadStructure(folder.File("best.cif")));
    ASSERT_EQ(found.size(), truth.size());
    EXPECT_LT(Rmsd(found, truth), 0.01);
}
