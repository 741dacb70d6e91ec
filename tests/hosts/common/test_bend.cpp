#include "hosts/common/Bend.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using hosts::Bend;
using VARNO::Vertex;

namespace {

/// A molecule that is longer than wide, away from the origin.
std::vector<Vertex> Molecule() {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> number(-1, 1);
    std::vector<Vertex> atoms;
    for (int i = 0; i < 500; ++i)
        atoms.emplace_back(100 + 40 * number(random), -50 + 15 * number(random), 20 * number(random), true);
    return atoms;
}

std::vector<Vertex> Bent(const std::vector<Vertex> &atoms, const Bend &bend) {
    std::vector<Vertex> bent;
    for (const Vertex &atom : atoms)
        bent.push_back(bend(atom));
    return bent;
}

double Rmsd(const std::vector<Vertex> &a, const std::vector<Vertex> &b) {
    double squares = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        squares += double((a[i] - b[i]).SquaredLength());
    return std::sqrt(squares / double(a.size()));
}

} // namespace

TEST(Bend, DisplacesTheAtomsByTheRmsdAskedFor) {
    const std::vector<Vertex> atoms = Molecule();
    for (const double rmsd : {0.5, 1.5, 4.0})
        EXPECT_NEAR(Rmsd(atoms, Bent(atoms, Bend(atoms, rmsd, 7))), rmsd, 1e-4 * rmsd);
}

TEST(Bend, NeitherShiftsNorTurnsTheModel) {
    const std::vector<Vertex> atoms = Molecule(), bent = Bent(atoms, Bend(atoms, 2, 7));
    double centre[3] = {}, shift[3] = {}, torque[3] = {};
    for (std::size_t i = 0; i < atoms.size(); ++i)
        for (unsigned axis = 0; axis < 3; ++axis) {
            centre[axis] += double(atoms[i][axis]) / double(atoms.size());
            shift[axis] += double(bent[i][axis] - atoms[i][axis]) / double(atoms.size());
        }
    for (std::size_t i = 0; i < atoms.size(); ++i)
        for (unsigned axis = 0; axis < 3; ++axis) {
            const unsigned u = (axis + 1) % 3, v = (axis + 2) % 3;
            torque[axis] += (double(atoms[i][u]) - centre[u]) * double(bent[i][v] - atoms[i][v]) -
                            (double(atoms[i][v]) - centre[v]) * double(bent[i][u] - atoms[i][u]);
        }
    for (unsigned axis = 0; axis < 3; ++axis) {
        EXPECT_NEAR(shift[axis], 0, 1e-4);
        // Of 500 atoms some 20 Å from the centre that move by 2 Å: a part in a thousand.
        EXPECT_NEAR(torque[axis], 0, 1e-3 * 500 * 20 * 2);
    }
}

TEST(Bend, NeighboursMoveAlike) {
    const std::vector<Vertex> atoms = Molecule();
    const Bend bend(atoms, 1.5, 7);
    for (const Vertex &atom : atoms) {
        const Vertex near(atom[0] + 0.6f, atom[1] - 0.6f, atom[2] + 0.6f, true);
        const auto moved = bend(atom) - atom, nearMoved = bend(near) - near;
        EXPECT_LT(double((moved - nearMoved).SquaredLength()), 0.5 * 0.5);
    }
}

TEST(Bend, TheSeedDecidesHow) {
    const std::vector<Vertex> atoms = Molecule();
    EXPECT_EQ(Rmsd(Bent(atoms, Bend(atoms, 2, 7)), Bent(atoms, Bend(atoms, 2, 7))), 0);
    EXPECT_GT(Rmsd(Bent(atoms, Bend(atoms, 2, 7)), Bent(atoms, Bend(atoms, 2, 8))), 1);
}

TEST(Bend, RefusesAtomsOnOneLine) {
    const std::vector<Vertex> one = {Vertex(1, 2, 3, true)};
    const std::vector<Vertex> line = {Vertex(0, 0, 0, true), Vertex(1, 1, 1, true), Vertex(3, 3, 3, true)};
    EXPECT_THROW(Bend({}, 1, 0), std::invalid_argument);
    EXPECT_THROW(Bend(one, 1, 0), std::invalid_argument);
    EXPECT_THROW(Bend(line, 1, 0), std::invalid_argument);
}
