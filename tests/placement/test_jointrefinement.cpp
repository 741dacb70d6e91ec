#include "placement/JointRefinement.h"

#include "placement/Contacts.h"
#include "placement/DistinctPlaces.h"

#include "SyntheticModel.h"

#include <gtest/gtest.h>

using namespace placement;

namespace {

constexpr double resolution = 8;

/// Two balls of residues that touch, and their map.
struct Pair {
    std::vector<std::vector<ModelAtom>> atoms{RandomModel(150, 1),
                                              Moved(RandomModel(80, 2), RotationBy({}), {32, 5, -3})};
    std::vector<PointModel> models;
    Spectrum map;

    Pair() {
        std::vector<ModelAtom> both = atoms[0];
        both.insert(both.end(), atoms[1].begin(), atoms[1].end());
        map = TransformMap(DensityOf(both, resolution, {2, 2, 2}, 15), resolution, 1);
        for (const std::vector<ModelAtom> &own : atoms)
            models.push_back(MakePointModel(own));
    }

    /// Both where they belong, moved by a little.
    std::vector<Body> Off(const Point &first, const Point &second) const {
        return {{atoms[0], &models[0], {RotationBy({0.05, -0.03, 0.04}), models[0].centre + first}},
                {atoms[1], &models[1], {RotationBy({-0.06, 0, 0.05}), models[1].centre + second}}};
    }

    double Error(std::size_t body, const Pose &pose) const {
        return std::sqrt(SquaredRmsd(models[body], pose, {RotationBy({}), models[body].centre}));
    }
};

} // namespace

TEST(JointRefinement, BothComeBackToTheirPlaces) {
    const Pair pair;
    Monitor silent;
    const std::vector<Pose> poses =
        RefineTogether(pair.map, pair.Off({1.5, 0.5, 0}, {-1, 0, 1.5}), {}, 1, silent);
    ASSERT_EQ(poses.size(), 2u);
    EXPECT_LT(pair.Error(0, poses[0]), 0.15);
    EXPECT_LT(pair.Error(1, poses[1]), 0.25);
}

TEST(JointRefinement, ResiduesThatClashArePushedApart) {
    const Pair pair;
    Monitor silent;
    // Residues that stand 1.5 Å from every tenth one of the second body, where it belongs.
    const std::vector<Point> own = ResiduesAt(pair.models[1], {RotationBy({}), pair.models[1].centre});
    std::vector<Point> standing;
    for (std::size_t i = 0; i < own.size(); i += 10)
        standing.push_back(own[i] + Point{1.5, 0, 0});
    const std::vector<Body> bodies = pair.Off({}, {});
    const auto nearest = [&](const Pose &pose) {
        double sum = 0;
        const std::vector<Point> residues = ResiduesAt(pair.models[1], pose);
        for (std::size_t i = 0; i < standing.size(); ++i)
            sum += Length(residues[10 * i] - standing[i]) / double(standing.size());
        return sum;
    };
    const std::vector<Pose> free = RefineTogether(pair.map, bodies, {}, 1, silent);
    const std::vector<Pose> pushed = RefineTogether(pair.map, bodies, standing, 1, silent);
    EXPECT_GT(nearest(pushed[1]), nearest(free[1]) + 0.1);
    EXPECT_LT(pair.Error(1, pushed[1]), 1.5) << "the density holds it";
    EXPECT_LT(pair.Error(0, pushed[0]), 0.15);
}

TEST(JointRefinement, ThreadsGiveTheSameNumbers) {
    const Pair pair;
    Monitor silent;
    const std::vector<Body> bodies = pair.Off({1, 0, 0}, {0, 1, 0});
    const std::vector<Pose> one = RefineTogether(pair.map, bodies, {}, 1, silent);
    const std::vector<Pose> three = RefineTogether(pair.map, bodies, {}, 3, silent);
    for (std::size_t i = 0; i < one.size(); ++i) {
        EXPECT_EQ(one[i].rotation, three[i].rotation);
        EXPECT_EQ(one[i].centre.x, three[i].centre.x);
    }
}

TEST(JointRefinement, NothingMovesWhereItIsCancelled) {
    class Cancelled : public Monitor {
        bool IsCancelled() override { return true; }
    };
    const Pair pair;
    Cancelled cancelled;
    const std::vector<Body> bodies = pair.Off({1, 0, 0}, {0, 1, 0});
    EXPECT_EQ(RefineTogether(pair.map, bodies, {}, 1, cancelled)[0].centre.x, bodies[0].pose.centre.x);
    EXPECT_TRUE(RefineTogether(pair.map, {}, {}, 1, cancelled).empty());
}
