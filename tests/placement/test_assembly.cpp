#include "placement/Assembly.h"

#include "SyntheticModel.h"

#include <gtest/gtest.h>

#include <atomic>

using namespace placement;

namespace {

constexpr double resolution = 8;

/// Three different models beside one another, the first one twice, each started elsewhere.
struct MadeComplex {
    std::vector<std::vector<ModelAtom>> models{RandomModel(150, 1), RandomModel(200, 2), RandomModel(90, 3)};
    std::vector<std::size_t> parts{0, 0, 1, 2};
    std::vector<Point> centres{{0, 0, 0}, {42, 0, 0}, {20, 44, 0}, {20, 18, 36}};
    std::vector<Matrix> rotations;
    Volume map;

    explicit MadeComplex(double noise = 0.3) {
        std::mt19937 random(7);
        std::vector<ModelAtom> all;
        for (std::size_t i = 0; i < parts.size(); ++i) {
            rotations.push_back(RandomRotation(random));
            const std::vector<ModelAtom> placed = Moved(models[parts[i]], rotations[i], centres[i]);
            all.insert(all.end(), placed.begin(), placed.end());
        }
        map = DensityOf(all, resolution, {2, 2, 2}, 12);
        AddNoise(map, noise, 5);
    }

    /// RMSD of a copy from the nearest place of its model, Å.
    double Error(const PlacedCopy &copy) const {
        double least = 1e9;
        for (std::size_t i = 0; i < parts.size(); ++i) {
            if (parts[i] != copy.part)
                continue;
            double squares = 0;
            for (const ModelAtom &atom : models[copy.part]) {
                const Point d = copy.pose.rotation * atom.position + copy.translation -
                                (rotations[i] * atom.position + centres[i]);
                squares += Dot(d, d);
            }
            least = std::min(least, std::sqrt(squares / double(models[copy.part].size())));
        }
        return least;
    }
};

AssemblyResult Assemble(const Volume &map, const std::vector<AssemblyPart> &parts, unsigned threads = 1) {
    Monitor silent;
    return FindAssembly(map, parts, {.resolution = resolution, .threads = threads}, silent);
}

std::vector<std::size_t> PartsOf(const AssemblyResult &result) {
    std::vector<std::size_t> parts;
    for (const PlacedCopy &copy : result.copies)
        parts.push_back(copy.part);
    return parts;
}

} // namespace

TEST(Assembly, EveryPartComesToItsPlaceAndNoFurtherCopyIsFound) {
    const MadeComplex complex;
    const AssemblyResult result =
        Assemble(complex.map, {{complex.models[0], {}}, {complex.models[1], 1}, {complex.models[2], {}}});
    EXPECT_EQ(PartsOf(result), (std::vector<std::size_t>{0, 0, 1, 2}));
    for (const PlacedCopy &copy : result.copies) {
        EXPECT_LT(complex.Error(copy), 1) << copy.part;
        EXPECT_GE(copy.probability, 0.95);
    }
    EXPECT_EQ(result.copies[1].copy, 1u);
    EXPECT_EQ(result.parts[0].left, Left::NothingFound) << "as many as there are, and then no more";
    EXPECT_EQ(result.parts[1].left, Left::Nothing);
    EXPECT_EQ(result.parts[0].placed, 2u);
    EXPECT_FALSE(result.cancelled);
}

TEST(Assembly, NoMoreCopiesArePlacedThanWanted) {
    const MadeComplex complex;
    const AssemblyResult result = Assemble(complex.map, {{complex.models[0], 1}});
    EXPECT_EQ(PartsOf(result), std::vector<std::size_t>{0});
    EXPECT_EQ(result.parts[0].left, Left::Nothing);
}

TEST(Assembly, APartThatIsNotThereIsNamedNotForced) {
    const MadeComplex complex;
    const AssemblyResult result = Assemble(complex.map, {{RandomModel(150, 11), 1}, {complex.models[1], 1}});
    EXPECT_EQ(PartsOf(result), std::vector<std::size_t>{1});
    EXPECT_EQ(result.parts[0].left, Left::NothingFound);
    EXPECT_LT(result.parts[0].probability, 0.95);
}

TEST(Assembly, WhatStandsAlreadyIsNotPlacedAgain) {
    const MadeComplex complex;
    Monitor silent;
    AssemblyParameters parameters{.resolution = resolution};
    parameters.neighbours = Moved(complex.models[0], complex.rotations[0], complex.centres[0]);
    const std::vector<AssemblyPart> parts{{complex.models[0], {}}};
    const AssemblyResult result = FindAssembly(complex.map, parts, parameters, silent);
    ASSERT_EQ(PartsOf(result), std::vector<std::size_t>{0});
    EXPECT_LT(Length(result.copies[0].translation - complex.centres[1]), 2);
}

TEST(Assembly, TwoModelsOfOnePlaceAreBothNamed) {
    const MadeComplex complex;
    // Half of the first one's side chains are other ones.
    std::vector<ModelAtom> similar = complex.models[1];
    std::erase_if(similar, [](const ModelAtom &atom) { return !atom.inBackbone && atom.residue % 2 == 0; });
    const AssemblyResult result = Assemble(complex.map, {{complex.models[1], 1}, {similar, 1}});
    ASSERT_EQ(result.copies.size(), 1u);
    const std::size_t placed = result.copies[0].part;
    EXPECT_EQ(result.parts[1 - placed].left, Left::Taken);
    EXPECT_EQ(result.parts[1 - placed].rivals, std::vector<std::size_t>{placed});
}

TEST(Assembly, ACopyThatTheBoxCutsIsNotPlaced) {
    const MadeComplex complex(0.05);
    // What of the box lies 5 Å and more behind the third model's centre along y is cut away.
    Volume map = complex.map;
    map.count[1] = std::size_t((complex.centres[2].y + 5 - complex.map.origin.y) / 2);
    map.values.clear();
    const VolumeView whole(complex.map);
    for (std::size_t k = 0; k < map.count[2]; ++k)
        for (std::size_t j = 0; j < map.count[1]; ++j) {
            const std::span<const float> row = whole.Row(j, k);
            map.values.insert(map.values.end(), row.begin(), row.end());
        }
    const AssemblyResult result = Assemble(map, {{complex.models[0], 2}, {complex.models[1], 1}});
    EXPECT_EQ(PartsOf(result), (std::vector<std::size_t>{0, 0}));
    EXPECT_EQ(result.parts[1].left, Left::CutOff);
}

TEST(Assembly, AConnectionTellsWhichOfTwoEqualPlaces) {
    const MadeComplex complex;
    const Point first = complex.models[0].front().position, last = complex.models[2].front().position;
    for (const std::size_t copy : {0, 1}) {
        const double distance = Length(complex.rotations[copy] * first + complex.centres[copy] -
                                       (complex.rotations[3] * last + complex.centres[3]));
        const double other = Length(complex.rotations[1 - copy] * first + complex.centres[1 - copy] -
                                    (complex.rotations[3] * last + complex.centres[3]));
        if (distance > other)
            continue;
        AssemblyParameters parameters{.resolution = resolution};
        parameters.connections = {{{0, first}, {1, last}, (distance + other) / 2}};
        Monitor silent;
        const std::vector<AssemblyPart> parts{{complex.models[0], 1}, {complex.models[2], 1}};
        const AssemblyResult result = FindAssembly(complex.map, parts, parameters, silent);
        ASSERT_EQ(result.copies.size(), 2u);
        EXPECT_LT(Length(result.copies[0].translation - complex.centres[copy]), 2);
    }
}

TEST(Assembly, TheCopiesExplainTheMap) {
    const MadeComplex complex(0);
    const AssemblyResult result =
        Assemble(complex.map, {{complex.models[0], {}}, {complex.models[1], 1}, {complex.models[2], 1}});
    ASSERT_EQ(result.copies.size(), 4u);
    EXPECT_GT(result.explained, 0.97);
    double sum = 0;
    for (const PlacedCopy &copy : result.copies) {
        sum += copy.explained;
        EXPECT_GT(copy.explained, 0.05);
        EXPECT_LT(copy.moved, 0.5);
        EXPECT_EQ(copy.residues, MakePointModel(complex.models[copy.part]).residues);
    }
    EXPECT_NEAR(sum, result.explained, 1e-9);
}

TEST(Assembly, ThreadsGiveTheSameNumbers) {
    const MadeComplex complex;
    const std::vector<AssemblyPart> parts{{complex.models[0], {}}, {complex.models[2], 1}};
    const AssemblyResult one = Assemble(complex.map, parts, 1), three = Assemble(complex.map, parts, 3);
    ASSERT_EQ(one.copies.size(), three.copies.size());
    for (std::size_t i = 0; i < one.copies.size(); ++i) {
        EXPECT_EQ(one.copies[i].pose.rotation, three.copies[i].pose.rotation);
        EXPECT_EQ(one.copies[i].translation.x, three.copies[i].translation.x);
        EXPECT_EQ(one.copies[i].probability, three.copies[i].probability);
    }
}

TEST(Assembly, ACancelledSearchKeepsWhatWasFound) {
    /// Stops in the middle of the second round.
    class Stopping : public Monitor {
    public:
        void Advance(double share) override { m_share = share; }
        bool IsCancelled() override { return m_share > 0.6; }

    private:
        std::atomic<double> m_share = 0;
    };
    const MadeComplex complex;
    Stopping monitor;
    const std::vector<AssemblyPart> parts{{complex.models[0], {}}, {complex.models[1], 1}};
    const AssemblyResult result = FindAssembly(complex.map, parts, {.resolution = resolution}, monitor);
    EXPECT_TRUE(result.cancelled);
    EXPECT_FALSE(result.copies.empty());
}
