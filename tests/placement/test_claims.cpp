#include "placement/Claims.h"

#include "SyntheticModel.h"

#include <gtest/gtest.h>

using namespace placement;

namespace {

/// Claims of parts that are all one ball of residues, sure by ln E.
struct Claims {
    PointModel model = MakePointModel(RandomModel(60, 1));
    ClaimsProblem problem;

    explicit Claims(std::size_t parts)
        : problem{{},
                  std::vector<std::size_t>(parts, 1),
                  {},
                  {},
                  std::vector<std::vector<bool>>(parts, std::vector<bool>(parts))} {
        for (std::size_t part = 0; part < parts; ++part)
            problem.areEqual[part][part] = true;
    }

    void Add(std::size_t part, double at, double logExpected) {
        JudgedPlace place;
        place.place.pose.centre = {at, 0, 0};
        place.place.translation = place.place.pose.centre - model.centre;
        place.confidence = {logExpected, 1, 0, 1};
        problem.claims.emplace_back(part, model, place);
    }

    /// The parts and where they stand, "0@0 1@50".
    std::string Chosen() const {
        std::string text;
        for (const Claim &claim : MostProbable(problem))
            text += (text.empty() ? "" : " ") + std::to_string(claim.part) + "@" +
                    std::to_string(int(claim.judged.place.pose.centre.x));
        return text;
    }
};

} // namespace

TEST(Claims, TheMostProbableSetNeedNotHoldTheMostProbableClaim) {
    Claims claims(2);
    claims.Add(0, 0, -30);
    claims.Add(0, 100, -25);
    claims.Add(1, 0, -29);
    EXPECT_EQ(claims.Chosen(), "0@100 1@0");
}

TEST(Claims, ClaimsClashWhereTheirModelsDo) {
    Claims claims(2);
    claims.Add(0, 0, -30);
    claims.Add(1, 60, -10);
    claims.Add(1, 5, -20);
    EXPECT_EQ(claims.Chosen(), "0@0 1@60");
    EXPECT_TRUE(Clash(claims.problem.claims[0], claims.problem.claims[2]));
    EXPECT_FALSE(Clash(claims.problem.claims[0], claims.problem.claims[1]));
}

TEST(Claims, NoMoreCopiesAreChosenThanWanted) {
    Claims claims(1);
    for (const double at : {0, 100, 200, 300})
        claims.Add(0, at, -10 - at);
    claims.problem.wanted = {2};
    EXPECT_EQ(claims.Chosen(), "0@200 0@300");
}

TEST(Claims, AModelThatFitsNearlyAsWellIsNamed) {
    Claims claims(2);
    claims.Add(0, 0, -30);
    claims.Add(1, 0, -29);
    const std::vector<Claim> chosen = MostProbable(claims.problem);
    ASSERT_EQ(chosen.size(), 1u);
    EXPECT_EQ(chosen[0].rivals, std::vector<std::size_t>{1});
    EXPECT_NEAR(chosen[0].Probability(), 1 / (1 + std::exp(-1.0)), 1e-9);
}

TEST(Claims, AModelThatFitsFarWorseIsNoRival) {
    Claims claims(2);
    claims.Add(0, 0, -30);
    claims.Add(1, 0, -20);
    EXPECT_TRUE(MostProbable(claims.problem)[0].rivals.empty());
    EXPECT_EQ(MostProbable(claims.problem)[0].share, 1);
}

TEST(Claims, TwoCopiesOfOneMoleculeAreNoRivals) {
    Claims claims(2);
    claims.problem.areEqual = {{true, true}, {true, true}};
    for (const std::size_t part : {0, 1})
        for (const double at : {0, 100})
            claims.Add(part, at, -30 - double(part));
    for (const Claim &claim : MostProbable(claims.problem)) {
        EXPECT_TRUE(claim.rivals.empty());
        EXPECT_EQ(claim.share, 1);
    }
}

TEST(Claims, TwoModelsThatMayChangePlacesAreRivals) {
    Claims claims(2);
    for (const std::size_t part : {0, 1})
        for (const double at : {0, 100})
            claims.Add(part, at, -30);
    for (const Claim &claim : MostProbable(claims.problem)) {
        EXPECT_EQ(claim.rivals, std::vector<std::size_t>{1 - claim.part});
        EXPECT_NEAR(claim.share, 0.5, 1e-9);
    }
}

TEST(Claims, OfSurePlacesTheConnectedOneIsTaken) {
    Claims claims(2);
    for (const double at : {0, 100, 200})
        claims.Add(0, at, -40 + at / 20);
    claims.Add(1, 240, -20);
    EXPECT_EQ(claims.Chosen(), "0@0 1@240");
    const std::vector<Connection> connections{{{0, claims.model.centre}, {1, claims.model.centre}, 50}};
    claims.problem.connections = connections;
    EXPECT_EQ(claims.Chosen(), "0@200 1@240");
}
