#include "CommandFixture.h"

#include "TestData.h"
#include "formats/maps/MapFile.h"
#include "hosts/common/PlaceInput.h"
#include "placement/MovedMap.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <numbers>

using namespace placement;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr double degree = std::numbers::pi / 180;

/// The example's map and a copy of it, turned, shifted and perhaps mirrored.
class PlaceMap : public CommandFixture {
protected:
    void SetUp() override { WriteCopy({false, m_away}); }

    void WriteCopy(const MapMotion &motion) {
        const ModelGuard guard;
        const VARNO::Grid &map = *formats::ReadMap(ExampleMap());
        const VolumeView view = hosts::ViewOf(map);
        // As large as the map is long, wherever that turns.
        const Lattice lattice{{70, 70, 70}, {2, 2, 2}, motion.motion * Middle(view) - Point{70, 70, 70}};
        const Volume copy = MovedMap(view, motion, lattice, 1);
        const auto origin = VARNO::Vector<float, 3>(float(lattice.origin.x), float(lattice.origin.y),
                                                    float(lattice.origin.z));
        VARNO::Grid grid("copy", {70, 70, 70}, origin, {2, 2, 2}, {90, 90, 90});
        std::ranges::copy(copy.values, grid.Values().begin());
        formats::WriteMap(m_folder.File("copy.mrc"), grid, "copy");
    }

    static std::string ExampleMap() { return SourceFolder() + "/examples/1tii_8A.mrc"; }

    static Point Middle(const VolumeView &map) {
        return map.origin + 0.5 * Point{double(map.count[0]) * map.spacing[0],
                                        double(map.count[1]) * map.spacing[1],
                                        double(map.count[2]) * map.spacing[2]};
    }

    /// At 8 Å, or coarser where little hangs on it: a search takes a second at 8 Å.
    std::vector<std::string> Words(const std::vector<std::string> &more = {},
                                   const std::string &resolution = "8") const {
        std::vector<std::string> words{
            "place",        "--map",    ExampleMap(), "--model", m_folder.File("copy.mrc"),
            "--resolution", resolution, "--quiet"};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }

    nlohmann::json JsonOf(const std::vector<std::string> &more = {}, const std::string &resolution = "8") {
        std::vector<std::string> words = Words({"--json", m_folder.File("places.json")}, resolution);
        words.insert(words.end(), more.begin(), more.end());
        OutputOf(words);
        return nlohmann::json::parse(ReadFile(m_folder.File("places.json")));
    }

    /// The motion of the first place.
    static Motion MotionOf(const nlohmann::json &json) {
        const nlohmann::json &place = json["places"][0], &q = place["rotation"], &t = place["translation"];
        return {MatrixOf({q[0], q[1], q[2], q[3]}), {t[0], t[1], t[2]}};
    }

    const Motion m_away{RotationBy({0.7, -1.1, 0.4}), {30, -20, 55}};
};

} // namespace

TEST_F(PlaceMap, ATurnedCopyIsLaidBack) {
    const nlohmann::json json = JsonOf();
    EXPECT_EQ(json["placed"], true);
    EXPECT_EQ(json["hand"]["verdict"], "as-given");
    EXPECT_EQ(json["hand"]["placesAreMirrored"], false);
    const Motion there = MotionOf(json) * m_away;
    EXPECT_LT(AngleOf(there.rotation), 0.5 * degree);
    EXPECT_LT(Length(there * Point{50, 50, 50} - Point{50, 50, 50}), 0.4);
    // The copy lost the finest waves only.
    EXPECT_LT(json["correlation"]["resolutionAtHalf"], 6);
    EXPECT_GT(json["shells"].size(), 10u);
}

TEST_F(PlaceMap, AMirroredCopyIsTold) {
    WriteCopy({true, m_away});
    const nlohmann::json json = JsonOf();
    EXPECT_EQ(json["placed"], true);
    EXPECT_EQ(json["hand"]["verdict"], "mirrored");
    EXPECT_EQ(json["hand"]["placesAreMirrored"], true);
    EXPECT_LT(json["correlation"]["resolutionAtHalf"], 6);
    EXPECT_THAT(json["hand"]["statement"], HasSubstr("the second map is a mirror image"));
}

TEST_F(PlaceMap, TheMovedMapIsWrittenOnTheFirstOnesLattice) {
    const std::string output = OutputOf(Words({"--moved-map", m_folder.File("moved.mrc")}, "15"));
    EXPECT_THAT(output, HasSubstr("moved.mrc"));
    const ModelGuard guard;
    const VARNO::Grid &map = *formats::ReadMap(ExampleMap());
    const VARNO::Grid &moved = *formats::ReadMap(m_folder.File("moved.mrc"));
    ASSERT_EQ(map.Values().size(), moved.Values().size());
    EXPECT_EQ(moved.Origin()[1], map.Origin()[1]);
    double ab = 0, aa = 0, bb = 0;
    for (std::size_t i = 0; i < map.Values().size(); ++i) {
        const auto a = double(map.Values()[i]), b = double(moved.Values()[i]);
        ab += a * b, aa += a * a, bb += b * b;
    }
    EXPECT_GT(ab / std::sqrt(aa * bb), 0.98);
}

TEST_F(PlaceMap, ACopyThatLiesNearlyRightIsRefined) {
    const Motion off{RotationBy({0, 0.1, 0}), {2, 0, -3}};
    WriteCopy({false, off});
    const nlohmann::json json = JsonOf({"--refine"});
    EXPECT_EQ(json["verdict"], "refined");
    EXPECT_LT(AngleOf((MotionOf(json) * off).rotation), 0.5 * degree);
}

TEST_F(PlaceMap, SaysWhatItReadAndFound) {
    std::vector<std::string> words = Words({}, "15");
    words.pop_back();
    EXPECT_THAT(OutputOf(words),
                AllOf(HasSubstr("Second map"), HasSubstr("70 x 70 x 70 voxels"),
                      HasSubstr("Verdict     placed"), HasSubstr("both maps have the same hand"),
                      HasSubstr("falls below 0.5 at")));
}

TEST_F(PlaceMap, TheAnswerDoesNotDependOnTheThreads) {
    const auto places = [&](const char *threads) {
        return JsonOf({"--threads", threads}, "15")["places"].dump();
    };
    EXPECT_EQ(places("1"), places("2"));
}

TEST_F(PlaceMap, RefusesWhatOnlyAStructureHas) {
    EXPECT_THAT(ErrorOf(Words({"--chain", "A"})), HasSubstr("--chain: is for structures"));
    EXPECT_THAT(ErrorOf(Words({"--models", "3"})), HasSubstr("--models: is for structures"));
    EXPECT_THAT(ErrorOf(Words({"--results", m_folder.File("r.txt")})), HasSubstr("--results: is for"));
    EXPECT_THAT(ErrorOf({"place", "--map", ExampleMap(), "--model", m_folder.File("copy.mrc")}),
                HasSubstr("--resolution: is needed where the model is a map"));
    EXPECT_THAT(ErrorOf({"place", "--map", ExampleMap(), "--model", SourceFolder() + "/examples/1tii.pdb",
                         "--moved-map", m_folder.File("moved.mrc")}),
                HasSubstr("--moved-map: is for a map as the model"));
}

TEST_F(PlaceMap, AConstantMapHasNoPlace) {
    const ModelGuard guard;
    VARNO::Grid grid("constant", {20, 20, 20}, {0, 0, 0}, {2, 2, 2}, {90, 90, 90});
    formats::WriteMap(m_folder.File("copy.mrc"), grid, "constant");
    EXPECT_THAT(ErrorOf(Words()), HasSubstr("copy.mrc: the map holds no density"));
}
