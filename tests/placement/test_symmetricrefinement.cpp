#include "placement/SymmetricRefinement.h"

#include "SyntheticModel.h"

#include "placement/PointModel.h"

#include <gtest/gtest.h>

#include <numbers>

using namespace placement;

namespace {

/// Copies of a random model about an axis that stands askew, and their density.
struct Assembly {
    Symmetry symmetry;
    int reach = 0;
    Pose frame;
    PointModel model;
    Volume map;

    Assembly(const std::string &name, double distance, int helixReach = 0)
        : symmetry(ReadSymmetry(name).value())
        , reach(helixReach)
        , frame{FrameOf({1, 2, 4}, {1, 0, 0}), {12, -5, 3}} {
        const std::vector<ModelAtom> one =
            Moved(RandomModel(60, 7), RotationBy({0.4, 0.2, 0.9}),
                  frame.centre + frame.rotation * Point{distance, 0.3 * distance, 0.6 * distance});
        model = MakePointModel(one);
        std::vector<ModelAtom> all;
        for (const Motion &motion : MotionsOf(symmetry, frame, reach)) {
            const std::vector<ModelAtom> copy = Moved(one, motion.rotation, motion.translation);
            all.insert(all.end(), copy.begin(), copy.end());
        }
        map = DensityOf(all, 8, {2, 2, 2}, 12);
    }

    SymmetricPose Truth() const { return {{RotationBy({}), model.centre}, symmetry, frame, 0}; }
    SymmetricJob Job(const WeightedPoints &points) const {
        return {map, points, model.gyration, OperatorsOf(symmetry, reach)};
    }
};

double AngleBetween(const Point &a, const Point &b) {
    return std::atan2(Length(Cross(a, b)), std::abs(Dot(a, b))) * 180 / std::numbers::pi;
}

} // namespace

TEST(SymmetricRefinement, TheScoreIsThatOfAllCopies) {
    const Assembly assembly("D3", 30);
    const WeightedPoints points(assembly.model.points, assembly.model.weights);
    const SymmetricPose truth = assembly.Truth();
    double sum = 0;
    for (const Motion &motion : MotionsOf(assembly.symmetry, assembly.frame))
        sum += ScorePose(assembly.map, points, Moved(motion, truth.pose)).score;
    EXPECT_NEAR(SymmetricScore(assembly.Job(points), truth), sum, 1e-6 * sum);
}

TEST(SymmetricRefinement, PoseAxisAndCentreComeBackTogether) {
    for (const char *name : {"C5", "D3", "T"}) {
        const Assembly assembly(name, 35);
        const WeightedPoints points(assembly.model.points, assembly.model.weights);
        SymmetricPose start = assembly.Truth();
        start.pose.rotation = RotationBy({0.08, -0.05, 0.06});
        start.pose.centre = start.pose.centre + Point{1, -1.5, 0.7};
        start.frame.rotation = RotationBy({0.03, 0.04, -0.03}) * start.frame.rotation;
        start.frame.centre = start.frame.centre + Point{-1, 0.8, 1};
        const SymmetricPose end = RefineSymmetric(assembly.Job(points), start, {100, 0.5, 2});
        EXPECT_GT(end.score, SymmetricScore(assembly.Job(points), start)) << name;
        EXPECT_NEAR(end.score, SymmetricScore(assembly.Job(points), end), 1e-6 * end.score) << name;
        const Point axis{0, 0, 1};
        EXPECT_LT(AngleBetween(end.frame.rotation * axis, assembly.frame.rotation * axis), 1) << name;
        EXPECT_LT(Length(end.pose.centre - assembly.model.centre), 0.8) << name;
        // Along its only axis a cyclic group has no centre.
        const Point off = end.frame.centre - assembly.frame.centre;
        const Point along = assembly.frame.rotation * axis;
        EXPECT_LT(Length(off - (name[0] == 'C' ? Dot(off, along) : 0) * along), 0.5) << name;
    }
}

TEST(SymmetricRefinement, RiseAndTwistComeBack) {
    const Assembly assembly("H:22,-50", 25, 3);
    const WeightedPoints points(assembly.model.points, assembly.model.weights);
    SymmetricPose start = assembly.Truth();
    start.symmetry.rise = 22.7;
    start.symmetry.twist = -52;
    const SymmetricPose end = RefineSymmetric(assembly.Job(points), start, {100, 0.5, 2});
    EXPECT_NEAR(end.symmetry.rise, 22, 0.2);
    EXPECT_NEAR(end.symmetry.twist, -50, 0.5);
}

TEST(SymmetricRefinement, WhatMayNotMoveStays) {
    const Assembly assembly("H:22,-50", 25, 2);
    const WeightedPoints points(assembly.model.points, assembly.model.weights);
    SymmetricPose start = assembly.Truth();
    start.pose.centre = start.pose.centre + Point{2, 1, 1};
    SymmetricJob job = assembly.Job(points);
    job.freedom = {.pose = true, .axis = false, .turn = false, .centre = false, .helix = false};
    SymmetricPose end = RefineSymmetric(job, start, {50, 0.5, 2});
    EXPECT_EQ(end.symmetry.rise, 22);
    EXPECT_EQ(end.symmetry.twist, -50);
    EXPECT_EQ(Length(end.frame.centre - start.frame.centre), 0);
    const Point axis{0, 0, 1};
    EXPECT_LT(AngleBetween(end.frame.rotation * axis, start.frame.rotation * axis), 1e-6);
    EXPECT_GT(Length(end.pose.centre - start.pose.centre), 1);
    job.freedom = {.pose = false};
    end = RefineSymmetric(job, start, {50, 0.5, 2});
    EXPECT_EQ(Length(end.pose.centre - start.pose.centre), 0);
    EXPECT_NE(end.symmetry.rise, 22);
    EXPECT_GT(Length(end.frame.centre - start.frame.centre), 0);
}

TEST(SymmetricRefinement, TheGradientIsThatOfTheScore) {
    // Along every unknown a climb from a little off the maximum has to grow; a wrong sign would stop at once.
    const Assembly assembly("H:22,-50,C2", 25, 2);
    const WeightedPoints points(assembly.model.points, assembly.model.weights);
    const SymmetricPose truth = assembly.Truth();
    const double best = SymmetricScore(assembly.Job(points), truth);
    for (const Point &turn : {Point{0.03, 0, 0}, Point{0, 0.03, 0}, Point{0, 0, 0.03}}) {
        SymmetricPose start = truth;
        start.frame.rotation = RotationBy(turn) * start.frame.rotation;
        SymmetricJob job = assembly.Job(points);
        job.freedom = {.pose = false, .helix = false};
        EXPECT_GT(RefineSymmetric(job, start, {60, 0.3, 2}).score, 0.995 * best);
    }
}
