#include "EngineTest.h"
#include "Listener.h"
#include "Messages.h"
#include "Parameters.h"

#include "DataAdder.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

using namespace VARNO;

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace {

Vertex V(float x, float y, float z) {
    return Vertex(x, y, z, false);
}

std::vector<Point> Positions(const std::vector<TaggedPoint> &points) {
    std::vector<Point> positions;
    for (const auto &[p, tag] : points)
        positions.push_back({p[0], p[1], p[2]});
    return positions;
}

class PreparationTest : public EngineTest {
protected:
    PreparationTest() {
        parameters.angleStep = 1;
        parameters.translationStep = 2;
        parameters.translationCount = 1;
        parameters.keep = 10;
        parameters.inclusionDistance = 60;
        parameters.target = AddChain(ResiduesAt({{0, 0, 0}, {2, 4, 6}}));
    }

    void SetSolid(const std::vector<PlainResidue> &residues) {
        parameters.solid = ResiduesOf(AddChain(residues));
    }
    void SetRestraints(const std::string &text) { parameters.restraints = fit::ParseRestraints(text); }
    fit::Preparation Prepare() { return fit::PrepareFit(parameters, fit::SurveyFit(parameters)); }

    fit::FitParameters parameters;
    const Messages messages;
};

fit::Target TargetOf(const std::vector<PlainResidue> &residues,
                     const std::vector<fit::RestraintRecord> &records = {}) {
    return fit::CollectTarget(AddChain(residues), records);
}

fit::Solid SolidOf(const std::vector<Point> &positions, const Vertex &centre = V(0, 0, 0),
                   float distance = 1000) {
    return fit::CollectSolid(ResiduesOf(AddChain(ResiduesAt(positions))), centre, distance);
}

} // namespace

TEST_F(PreparationTest, TargetPointsAreTheResiduesWithAPositionInOrder) {
    const fit::Target target =
        TargetOf({{"ALA", "1", Point{1, 2, 3}}, {"GLY", "2", {}}, {"XYZ", "3", Point{3, 4, 8}}});
    ASSERT_THAT(Positions(target.points), ElementsAre(Point{1, 2, 3}, Point{3, 4, 8}));
    EXPECT_EQ(target.points[0].second, 'A');
    EXPECT_EQ(target.points[1].second, 'X');
    EXPECT_EQ(target.invalidResidues, 1u);
    EXPECT_EQ(target.centre, V(2, 3, 5.5));
}

TEST_F(PreparationTest, TheCentreIsSummedInFloatAndDividedInDouble) {
    const fit::Target target = TargetOf(ResiduesAt({{16777216, 0.1f, 1}, {1, 0.2f, 1}, {1, 0.4f, 2}}));
    EXPECT_EQ(target.centre[0], float(16777216.0 / 3)); // in float the ones are lost
    EXPECT_EQ(target.centre[1], float(double(0.1f + 0.2f + 0.4f) / 3));
    EXPECT_EQ(target.centre[2], float(4.0 / 3));
}

TEST_F(PreparationTest, ARestraintMatchesTheKeyOfItsResidueExactly) {
    const std::vector<fit::RestraintRecord> records = {
        {"ALA12", V(1, 1, 1)}, {"ala12", V(2, 2, 2)}, {"ALA1", V(3, 3, 3)}, {"GLY12A", V(4, 4, 4)}};
    const fit::Target target =
        TargetOf({{"ALA", "12", Point{9, 0, 0}}, {"GLY", "12A", Point{8, 0, 0}}}, records);
    EXPECT_THAT(target.restraints,
                ElementsAre(RestraintPair(V(1, 1, 1), V(9, 0, 0)), RestraintPair(V(4, 4, 4), V(8, 0, 0))));
}

TEST_F(PreparationTest, OnlyTheEndsOfAKeyAreStripped) {
    const std::vector<fit::RestraintRecord> records = {
        {"ALA12", V(1, 1, 1)}, {"ALA 13", V(2, 2, 2)}, {"ALA13", V(3, 3, 3)}};
    const fit::Target target =
        TargetOf({{" ALA", "12\t ", Point{9, 0, 0}}, {"ALA", " 13", Point{8, 0, 0}}}, records);
    EXPECT_THAT(target.restraints,
                ElementsAre(RestraintPair(V(1, 1, 1), V(9, 0, 0)), RestraintPair(V(2, 2, 2), V(8, 0, 0))));
}

TEST_F(PreparationTest, EveryMatchIsOnePairInTheOrderOfResiduesThenOfRecords) {
    const std::vector<fit::RestraintRecord> records = {
        {"GLY2", V(1, 0, 0)}, {"ALA1", V(2, 0, 0)}, {"GLY2", V(3, 0, 0)}};
    const fit::Target target = TargetOf(
        {{"ALA", "1", Point{9, 0, 0}}, {"GLY", "2", Point{8, 0, 0}}, {"GLY", "2", Point{7, 0, 0}}}, records);
    EXPECT_THAT(target.restraints,
                ElementsAre(RestraintPair(V(2, 0, 0), V(9, 0, 0)), RestraintPair(V(1, 0, 0), V(8, 0, 0)),
                            RestraintPair(V(3, 0, 0), V(8, 0, 0)), RestraintPair(V(1, 0, 0), V(7, 0, 0)),
                            RestraintPair(V(3, 0, 0), V(7, 0, 0))));
}

TEST_F(PreparationTest, AResidueWithoutAPositionHasNoRestraint) {
    EXPECT_THAT(TargetOf({{"ALA", "1", {}}}, {{"ALA1", V(1, 1, 1)}}).restraints, IsEmpty());
}

TEST_F(PreparationTest, ATargetWithoutAnyPositionHasNoCentre) {
    const fit::Target target = TargetOf({{"ALA", "1", {}}});
    for (const unsigned i : {0u, 1u, 2u})
        EXPECT_TRUE(std::isnan(target.centre[i]));
}

TEST_F(PreparationTest, TheSolidIsWhatLiesCloserThanTheInclusionDistance) {
    const fit::Solid solid = SolidOf({{5, 0, 0}, {0, 3, 4}, {0, 0, 4.5f}, {4.9f, 0, 0}}, V(0, 0, 0), 5);
    ASSERT_THAT(Positions(solid.points), ElementsAre(Point{0, 0, 4.5f}, Point{4.9f, 0, 0}));
    EXPECT_EQ(solid.points[0].second, 'G');
}

TEST_F(PreparationTest, AnInclusionDistanceOfZeroLeavesTheSolidOut) {
    EXPECT_THAT(SolidOf({{0, 0, 0}}, V(0, 0, 0), 0).points, IsEmpty());
    EXPECT_THAT(SolidOf({{0, 0, 0}}, V(0, 0, 0), -1).points, IsEmpty());
    EXPECT_THAT(SolidOf({{0, 0, 0}}, V(0, 0, 0), NAN).points, IsEmpty());
    EXPECT_THAT(SolidOf({{0, 0, 0}}, V(NAN, 0, 0)).points, IsEmpty());
}

TEST_F(PreparationTest, TheSolidsBoxHoldsItsNearResidues) {
    const fit::Solid solid = SolidOf({{3, -2, 5}, {-1, 4, 6}, {900, 900, 900}}, V(0, 0, 0), 100);
    EXPECT_EQ(solid.low, V(-1, -2, 5));
    EXPECT_EQ(solid.high, V(3, 4, 6));
}

TEST_F(PreparationTest, SolidEntriesThatAreNoResiduesArePassedBy) {
    std::vector<Compound *> nodes = ResiduesOf(AddChain({{"ALA", "1", Point{1, 2, 3}}, {"GLY", "2", {}}}));
    nodes.insert(nodes.begin(), nullptr);
    nodes.push_back(parameters.target);
    const fit::Solid solid = fit::CollectSolid(nodes, V(0, 0, 0), 100);
    EXPECT_THAT(Positions(solid.points), ElementsAre(Point{1, 2, 3}));
    EXPECT_EQ(solid.invalidResidues, 1u);
}

TEST_F(PreparationTest, RemovedResiduesOfTheSolidAreSkipped) {
    Compound *chain = AddChain(ResiduesAt({{1, 2, 3}, {4, 5, 6}}));
    const std::vector<Compound *> residues = ResiduesOf(chain);
    Space::instance()->Remove(residues[0]);
    EXPECT_THAT(Positions(fit::CollectSolid(residues, V(0, 0, 0), 100).points), ElementsAre(Point{4, 5, 6}));
    Space::instance()->Remove(chain);
    EXPECT_THAT(fit::CollectSolid(residues, V(0, 0, 0), 100).points, IsEmpty());
}

TEST_F(PreparationTest, TheKeepOutGridIsCentredOnTheWidenedBox) {
    const fit::KeepOutLayout layout = fit::LayOutKeepOut(SolidOf({{0, 10, -7.25f}, {0, 13, 20}}));
    EXPECT_EQ(layout.nodes[0], 10); // 17 Å: 8 whole steps, 9 spanned
    EXPECT_EQ(layout.nodes[1], 12); // 20 Å: 10 whole steps, 11 spanned
    EXPECT_EQ(layout.nodes[2], 24); // 44.25 Å
    EXPECT_EQ(layout.origin, V(-9, 0.5, -16.625f));
}

TEST_F(PreparationTest, TheExtentOfTheKeepOutGridIsRoundedToFloat) {
    // From -163.4 to -19.4, 144 Å: 143.999994 in double, which would be 71 whole steps.
    const fit::Solid solid = SolidOf({{-154.9f, 0, 0}, {-27.9f, 0, 0}});
    EXPECT_LT(double(solid.high[0] + 8.5f) - double(solid.low[0] - 8.5f), 144);
    EXPECT_EQ(fit::LayOutKeepOut(solid).nodes[0], 72 + 2);
}

TEST_F(PreparationTest, KeepOutNodesTellHowDeepTheyLieInTheSolid) {
    const Grid *grid = fit::BuildKeepOut(SolidOf({{0, 0, 0}, {3, 0, 0}}));
    ASSERT_TRUE(grid);
    std::size_t inside = 0;
    for (unsigned k = 0; k < grid->Dimensions()[2]; ++k)
        for (unsigned j = 0; j < grid->Dimensions()[1]; ++j)
            for (unsigned i = 0; i < grid->Dimensions()[0]; ++i) {
                const Vertex p = grid->GetPoint(i, j, k);
                const double first = std::hypot(p[0], p[1], p[2]), second = std::hypot(p[0] - 3, p[1], p[2]);
                const double depth = std::max(0.0, 6.0 - std::min(first, second));
                ASSERT_NEAR(grid->GetValue(i, j, k), depth, 1e-5) << i << ' ' << j << ' ' << k;
                inside += depth > 0;
            }
    EXPECT_GT(inside, 100u);
}

TEST_F(PreparationTest, ANodeAtASolidPointHoldsSixAndOneSixAwayZero) {
    const Grid *grid = fit::BuildKeepOut(SolidOf({{-19, -19, -19}, {0, 0, 0}, {19, 19, 19}}));
    ASSERT_EQ(grid->GetPoint(14, 14, 14), V(0, 0, 0));
    EXPECT_EQ(grid->GetValue(14, 14, 14), 6.0f);
    EXPECT_EQ(grid->GetValue(13, 14, 14), 4.0f);
    EXPECT_EQ(grid->GetValue(14, 12, 14), 2.0f);
    EXPECT_EQ(grid->GetValue(14, 15, 15), float(6 - std::sqrt(8.0)));
    EXPECT_EQ(grid->GetValue(14, 14, 11), 0.0f);
    EXPECT_EQ(grid->GetValue(14, 14, 10), 0.0f);
}

TEST_F(PreparationTest, TheKeepOutGridIsAddedToTheModelInOneNotice) {
    const fit::Solid solid = SolidOf({{0, 10, -7}, {0, 13, 20}});
    const Listener listener;
    const Grid *grid = fit::BuildKeepOut(solid);
    ASSERT_THAT(listener.notices, SizeIs(1));
    EXPECT_EQ(listener.notices[0].action, Publisher::Addition);
    EXPECT_THAT(listener.notices[0].nodes, ElementsAre(grid));
    EXPECT_EQ(grid->GetParent(), Space::instance());
    EXPECT_EQ(grid->GetName(), "GridFix");
    EXPECT_EQ(grid->Spacing(), (Vector<float, 3>(2, 2, 2)));
    EXPECT_EQ(grid->Angles(), (Vector<float, 3>(90, 90, 90)));
    EXPECT_EQ(grid->Dimensions(), (Vector<unsigned, 3>(10, 12, 24)));
    EXPECT_EQ(grid->Origin(), (Vector<float, 3>(-9, 0.5, -16.5)));
}

TEST_F(PreparationTest, WithoutSolidPointsThereIsNoKeepOutGrid) {
    EXPECT_FALSE(fit::BuildKeepOut(fit::Solid()));
    EXPECT_FALSE(FindGrid("GridFix"));
}

TEST_F(PreparationTest, WhereTheModelRefusesAdditionsThereIsNoKeepOutGrid) {
    const fit::Solid solid = SolidOf({{0, 0, 0}});
    Space::instance()->SetReadOnly(true);
    EXPECT_FALSE(fit::BuildKeepOut(solid));
    Space::instance()->SetReadOnly(false);
    {
        const DataAdder<Compound> other(Space::instance());
        EXPECT_FALSE(fit::BuildKeepOut(solid));
    }
    EXPECT_FALSE(FindGrid("GridFix"));
    EXPECT_TRUE(fit::BuildKeepOut(solid));
}

TEST_F(PreparationTest, AnyOrdinarySolidStaysWithinItsKeepOutGrid) {
    for (int i = 0; i < 200; ++i) {
        const float shift = float(i) * 0.173f - 17;
        fit::BuildKeepOut(
            SolidOf({{shift, 50 * shift, -0.01f}, {shift * 1.7f, 3, 12 + shift}}, V(0, 0, 0), 10000));
    }
    EXPECT_THAT(messages.Warnings(), IsEmpty());
}

TEST_F(PreparationTest, ASolidFarBeyondTheReachOfFloatsIsReportedAndHeldInsideTheGrid) {
    const float far = std::numeric_limits<float>::max();
    fit::BuildKeepOut(SolidOf({{1e10f, 0, 3e9f}}, V(0, 0, 0), far));
    EXPECT_THAT(messages.Warnings(), Contains("ASSERT: \"0 < low[ 0 ]\" in Morvanex (703)"));
    EXPECT_THAT(messages.Warnings(), Contains("ASSERT: \"0 < low[ 2 ]\" in Morvanex (703)"));
    EXPECT_THAT(messages.Warnings(), Not(Contains("ASSERT: \"0 < low[ 1 ]\" in Morvanex (703)")));
    fit::BuildKeepOut(SolidOf({{0, -1e8f, 0}}, V(0, 0, 0), far));
    EXPECT_THAT(messages.Warnings(), Contains("ASSERT: \"0 < low[ 1 ]\" in Morvanex (703)"));
}

TEST_F(PreparationTest, OffsetsFormACubeWithXSlowestAndZFastest) {
    const std::vector<Vertex> offsets = fit::TranslationOffsets(3, 2.5);
    ASSERT_EQ(offsets.size(), 27u);
    EXPECT_EQ(offsets[0], V(-2.5, -2.5, -2.5));
    EXPECT_EQ(offsets[1], V(-2.5, -2.5, 0));
    EXPECT_EQ(offsets[3], V(-2.5, 0, -2.5));
    EXPECT_EQ(offsets[9], V(0, -2.5, -2.5));
    EXPECT_EQ(offsets[13], V(0, 0, 0));
    EXPECT_EQ(offsets[26], V(2.5, 2.5, 2.5));
}

TEST_F(PreparationTest, EachOffsetIsAProductInDouble) {
    EXPECT_NE(float(-3 * 0.3), -3 * 0.3f);
    EXPECT_EQ(fit::TranslationOffsets(7, 0.3)[0], V(float(-3 * 0.3), float(-3 * 0.3), float(-3 * 0.3)));
}

TEST_F(PreparationTest, OneTranslationIsNone) {
    EXPECT_THAT(fit::TranslationOffsets(1, 7), ElementsAre(V(0, 0, 0)));
}

TEST_F(PreparationTest, ANegativeCountGivesNoOffsets) {
    EXPECT_THAT(fit::TranslationOffsets(-3, 7), IsEmpty());
}

TEST_F(PreparationTest, EvenCountsBecomeTheNextOdd) {
    EXPECT_EQ(fit::OddCount(4), 5);
    EXPECT_EQ(fit::OddCount(5), 5);
    EXPECT_EQ(fit::OddCount(0), 1);
    EXPECT_EQ(fit::OddCount(-4), -3);
    EXPECT_EQ(fit::OddCount(-3), -3);
    EXPECT_EQ(fit::OddCount(std::numeric_limits<int>::max()), std::numeric_limits<int>::max());
}

TEST_F(PreparationTest, AnEvenTranslationCountBecomesOdd) {
    parameters.translationCount = 4;
    const fit::Preparation fit = Prepare();
    ASSERT_EQ(fit.offsets.size(), 125u);
    EXPECT_EQ(fit.offsets.front(), V(-4, -4, -4));
    EXPECT_EQ(fit.offsets.back(), V(4, 4, 4));
}

TEST_F(PreparationTest, TheSurveyChangesNothing) {
    SetSolid(ResiduesAt({{1, 1, 1}}));
    SetRestraints("GLY1 1 2 3\n");
    const fit::Survey survey = fit::SurveyFit(parameters);
    EXPECT_EQ(survey.solid.points.size(), 1u);
    EXPECT_EQ(survey.target.restraints.size(), 1u);
    EXPECT_FALSE(FindGrid("GridFix"));
    EXPECT_THAT(messages.Debug(), IsEmpty());
    EXPECT_THAT(messages.Warnings(), IsEmpty());
}

TEST_F(PreparationTest, TheInclusionDistanceIsThatOfTheParameters) {
    SetSolid(ResiduesAt({{30, 0, 0}, {40, 0, 0}}));
    parameters.inclusionDistance = 35.5f;
    EXPECT_EQ(fit::SurveyFit(parameters).solid.points.size(), 1u);
    parameters.inclusionDistance = 0;
    EXPECT_THAT(fit::SurveyFit(parameters).solid.points, IsEmpty());
}

TEST_F(PreparationTest, MessagesOfAPlainFit) {
    parameters.axisDepth = 1;
    Prepare();
    EXPECT_THAT(messages.Debug(),
                ElementsAre("Points 21", "Extra scores 1", "Solid inclusion distance:  60.000"));
    EXPECT_THAT(messages.Warnings(), IsEmpty());
}

TEST_F(PreparationTest, MessagesOfEverythingInTheirOrder) {
    parameters.target = AddChain(
        {{"ALA", "1", Point{0, 0, 0}}, {"GLY", "2", {}}, {"GLY", "3", {}}, {"GLY", "4", Point{1, 1, 1}}});
    SetSolid({{"ALA", "1", Point{10.2f, -3.5f, 44.1f}},
              {"ALA", "2", {}},
              {"ALA", "3", Point{30.7f, 12.9f, 45.0f}}});
    SetRestraints("ALA1 10.5 -3.25 7.0\nGLY4 1 2 3000.0007\nGLY4 0 0 0\nTRP9 0 0 0");
    Prepare();
    EXPECT_THAT(messages.Debug(),
                ElementsAre("Residue: ALA1 should prefer position (  10.500  -3.250   7.000 )",
                            "Residue: GLY4 should prefer position (   1.000   2.000 3000.001 )",
                            "Residue: GLY4 should prefer position (   0.000   0.000   0.000 )",
                            "Residue: TRP9 should prefer position (   0.000   0.000   0.000 )", "Points 6",
                            "Invalid Residues in structure", "Invalid Residues in structure",
                            "Extra scores 4", "Solid inclusion distance:  60.000",
                            "Invalid Residues in solid",
                            "Solid residues: 2, box (  10.2,  -3.5,  44.1) - (  30.7,  12.9,    45)"));
    EXPECT_THAT(messages.Warnings(), IsEmpty());
}

TEST_F(PreparationTest, ARestraintThatMatchesNothingIsStillToldOf) {
    SetRestraints("TRP9 1 2 3\n");
    EXPECT_THAT(Prepare().target.restraints, IsEmpty());
    EXPECT_THAT(messages.Debug(),
                ElementsAre("Residue: TRP9 should prefer position (   1.000   2.000   3.000 )",
                            "Residue:  should prefer position (   0.000   0.000   0.000 )", "Points 6",
                            "Extra scores 1", "Solid inclusion distance:  60.000"));
}

TEST_F(PreparationTest, ResidueNamesOfAnyLanguageAreToldOf) {
    SetRestraints("Å12 1 2 3");
    Prepare();
    ASSERT_FALSE(messages.Debug().empty());
    EXPECT_EQ(messages.Debug().front(), "Residue: Å12 should prefer position (   1.000   2.000   3.000 )");
}

TEST_F(PreparationTest, BoxCoordinatesHaveThreeDigits) {
    SetSolid(ResiduesAt({{12.345f, 1234.5f, -0.00012345f}}));
    parameters.inclusionDistance = 5000;
    Prepare();
    ASSERT_FALSE(messages.Debug().empty());
    EXPECT_EQ(messages.Debug().back(),
              "Solid residues: 1, box (  12.3,1.23e+03,-0.000123) - (  12.3,1.23e+03,-0.000123)");
}

TEST_F(PreparationTest, TheBoxIsToldOfEvenWhereNothingIsNear) {
    SetSolid(ResiduesAt({{1, 1, 1}}));
    parameters.inclusionDistance = 0;
    EXPECT_FALSE(Prepare().keepOut);
    ASSERT_FALSE(messages.Debug().empty());
    EXPECT_EQ(messages.Debug().back(),
              "Solid residues: 0, box (     0,     0,     0) - (     0,     0,     0)");
    EXPECT_FALSE(FindGrid("GridFix"));
}

TEST_F(PreparationTest, WithoutASolidNoBoxIsToldOf) {
    Prepare();
    ASSERT_FALSE(messages.Debug().empty());
    EXPECT_EQ(messages.Debug().back(), "Solid inclusion distance:  60.000");
}

TEST_F(PreparationTest, ATargetWithoutAnyPositionIsReportedAndTheFitGoesOn) {
    parameters.target = AddChain({{"ALA", "1", {}}});
    SetSolid(ResiduesAt({{1, 1, 1}}));
    const fit::Preparation fit = Prepare();
    EXPECT_THAT(messages.Warnings(), ElementsAre("ASSERT: \"0 < count\" in Morvanex (580)"));
    EXPECT_THAT(fit.target.points, IsEmpty());
    EXPECT_FALSE(fit.keepOut);
}

TEST_F(PreparationTest, EveryFitWithANearSolidAddsAGrid) {
    SetSolid(ResiduesAt({{1, 1, 1}}));
    EXPECT_NE(Prepare().keepOut, Prepare().keepOut);
}

TEST_F(PreparationTest, TheSearchRunsOnWhatWasFound) {
    SetSolid(ResiduesAt({{1, 1, 1}}));
    parameters.angleStep = 0.25;
    parameters.map = AddMap(ConstantMap({2, 2, 2}, 1));
    const fit::Preparation fit = Prepare();
    EXPECT_EQ(fit.map, parameters.map);
    EXPECT_EQ(fit.keepOut, FindGrid("GridFix"));
    EXPECT_EQ(fit.target.centre, V(1, 2, 3));
    EXPECT_THAT(fit.axes, SizeIs(6));
    EXPECT_EQ(fit.angleStep, 0.25);
}
