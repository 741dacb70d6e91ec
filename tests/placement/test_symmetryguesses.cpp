#include "placement/SymmetryGuesses.h"

#include "SyntheticAssembly.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace placement;

namespace {

/// Some of an assembly's operators as motions of it, and others that are none.
std::vector<ScoredPose> MotionsIn(const SyntheticAssembly &assembly, const PointModel &body,
                                  std::size_t missing = 0) {
    std::vector<ScoredPose> motions;
    std::mt19937 random(1);
    std::normal_distribution<double> error(0, 0.01);
    const auto shaken = [&](Pose pose) {
        pose.rotation = RotationBy({error(random), error(random), error(random)}) * pose.rotation;
        return pose;
    };
    for (const Motion &motion : MotionsOf(assembly.symmetry, assembly.frame, 1))
        motions.push_back({shaken(Moved(motion, {RotationBy({}), body.centre})), 0.9});
    motions.erase(motions.begin(), motions.begin() + 1 + std::ptrdiff_t(missing));
    for (int i = 0; i < 50; ++i)
        motions.push_back({{RandomRotation(random), body.centre}, 0.3});
    return motions;
}

} // namespace

TEST(SymmetryGuesses, TheGroupIsAmongThem) {
    for (const char *name : {"C2", "C5", "C7", "D2", "D5", "T", "O", "I", "H:20.00,-50.00"}) {
        const SyntheticAssembly assembly(name, 40, 1);
        const PointModel body = MakePointModel(assembly.atoms);
        const std::vector<SymmetryGuess> guesses = GuessSymmetries(body, MotionsIn(assembly, body), 4);
        const auto found = std::ranges::find_if(guesses, [&](const SymmetryGuess &guess) {
            return guess.symmetry.kind == assembly.symmetry.kind &&
                   guess.symmetry.fold == assembly.symmetry.fold;
        });
        ASSERT_NE(found, guesses.end()) << name;
        EXPECT_GT(found->support, 0.8) << name;
        EXPECT_LT(assembly.AngleFromMainAxis(found->frame), 3) << name;
        EXPECT_LT(assembly.DistanceFromCentre(found->frame), 2) << name;
    }
}

TEST(SymmetryGuesses, AnOperatorMayBeMissing) {
    const SyntheticAssembly assembly("D5", 40, 1);
    const PointModel body = MakePointModel(assembly.atoms);
    const std::vector<SymmetryGuess> guesses = GuessSymmetries(body, MotionsIn(assembly, body, 1), 4);
    EXPECT_TRUE(std::ranges::any_of(
        guesses, [](const SymmetryGuess &guess) { return NameOf(guess.symmetry) == "D5"; }));
}

TEST(SymmetryGuesses, OneGroupIsGuessedOnce) {
    const SyntheticAssembly assembly("T", 40, 1);
    const PointModel body = MakePointModel(assembly.atoms);
    const std::vector<SymmetryGuess> guesses = GuessSymmetries(body, MotionsIn(assembly, body), 4);
    EXPECT_EQ(1, std::ranges::count_if(
                     guesses, [](const SymmetryGuess &guess) { return NameOf(guess.symmetry) == "T"; }));
}

TEST(SymmetryGuesses, NoMotionsSuggestNothing) {
    EXPECT_TRUE(GuessSymmetries(MakePointModel(RandomModel(20, 1)), {}, 4).empty());
}
