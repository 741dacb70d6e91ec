#include "CommandFixture.h"

#include "Collect.h"
#include "Process.h"
#include "TestData.h"
#include "formats/structures/StructureFile.h"
#include "placement/Symmetry.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <filesystem>
#include <numbers>

using namespace VARNO;
using namespace placement;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

Point PointIn(const json &entry) {
    return {entry[0], entry[1], entry[2]};
}

double DegreesBetween(const Point &a, const Point &b) {
    return std::atan2(Length(Cross(a, b)), std::abs(Dot(a, b))) * 180 / std::numbers::pi;
}

double DistanceFromAxis(const Point &p, const Point &centre, const Point &axis) {
    return Length(Cross(p - centre, Unit(axis)));
}

std::string Comma(const Point &p) {
    return std::to_string(p.x) + "," + std::to_string(p.y) + "," + std::to_string(p.z);
}

/// The map of a toxin with five equal chains, and one of them, displaced.
class SymmetricPlace : public CommandFixture {
protected:
    std::vector<std::string> Words(const std::vector<std::string> &more = {}) const {
        std::vector<std::string> words{"place",
                                       "--map",
                                       Examples("1tii_8A.mrc"),
                                       "--model",
                                       Examples("1tii_D_displaced.pdb"),
                                       "--resolution",
                                       "8",
                                       "--quiet"};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }

    json JsonOf(const std::vector<std::string> &more) {
        std::vector<std::string> words = Words({"--json", m_folder.File("places.json")});
        words.insert(words.end(), more.begin(), more.end());
        OutputOf(words);
        return json::parse(ReadFile(m_folder.File("places.json")));
    }

    static std::string Examples(const std::string &file) { return SourceFolder() + "/examples/" + file; }

    /// The axis of the five chains of the complex: the normal of their centres' plane, through their middle.
    static Pose TrueFrame() {
        std::vector<Compound *> chains;
        GetPeptides(formats::ReadStructure(Examples("1tii.pdb")), chains, true);
        std::vector<Point> centres;
        for (Compound *chain : chains) {
            std::vector<Compound *> residues;
            GetResidues(chain, residues, true);
            if (std::string("DEFGH").find(chain->GetName()) == std::string::npos)
                continue;
            Point sum;
            for (const Compound *residue : residues) {
                const Vertex at = residue->GetPosition();
                sum = sum + Point{double(at[0]), double(at[1]), double(at[2])};
            }
            centres.push_back(1 / double(residues.size()) * sum);
        }
        Point middle, normal;
        for (const Point &centre : centres)
            middle = middle + 1 / double(centres.size()) * centre;
        for (const Point &a : centres)
            for (const Point &b : centres)
                if (const Point cross = Cross(a - middle, b - middle); Length(cross) > 100)
                    normal = normal + (Dot(cross, normal) < 0 ? -1 : 1) * cross;
        return {FrameOf(normal, PerpendicularTo(normal)), middle};
    }
};

} // namespace

TEST_F(SymmetricPlace, TheSymmetryOfTheMapIsNamedWithItsEvidence) {
    const json result = JsonOf({"--symmetry", "auto"});
    const json &symmetry = result["symmetry"];
    EXPECT_EQ(symmetry["asked"], "auto");
    EXPECT_EQ(symmetry["name"], "C5");
    EXPECT_EQ(symmetry["source"], "map");
    EXPECT_EQ(symmetry["fold"], 5);
    EXPECT_TRUE(symmetry["rise"].is_null());
    EXPECT_EQ(symmetry["places"], 1);
    EXPECT_EQ(symmetry["copies"], 5);
    EXPECT_EQ(symmetry["evidence"]["places"]["name"], "C5");
    EXPECT_GT(double(symmetry["evidence"]["map"]["correlation"]),
              2 * double(symmetry["evidence"]["map"]["wrong"]));
    const Pose truth = TrueFrame();
    const Point axis = truth.rotation * Point{0, 0, 1};
    EXPECT_LT(DegreesBetween(PointIn(symmetry["axis"]), axis), 1);
    EXPECT_LT(DistanceFromAxis(PointIn(symmetry["centre"]), truth.centre, axis), 1);
    EXPECT_EQ(result["copies"], 5);
    ASSERT_GE(result["places"].size(), 5u);
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_NEAR(DistanceFromAxis(PointIn(result["places"][i]["centre"]), PointIn(symmetry["centre"]),
                                     PointIn(symmetry["axis"])),
                    DistanceFromAxis(PointIn(result["places"][0]["centre"]), PointIn(symmetry["centre"]),
                                     PointIn(symmetry["axis"])),
                    0.01);
}

TEST_F(SymmetricPlace, TheReportTellsEvidenceAxisAndConvention) {
    EXPECT_THAT(OutputOf(Words({"--symmetry", "auto"})),
                AllOf(HasSubstr("Symmetry    C5, of the map: correlation 0."),
                      HasSubstr(" after other motions"), HasSubstr("the 5 places found without it have C5"),
                      HasSubstr("main axis along "), HasSubstr("in the map's coordinates"),
                      HasSubstr(" Å from the map's middle voxel"),
                      HasSubstr(" Å from the coordinates' origin"),
                      HasSubstr("5 places are found, copies of the model")));
}

TEST_F(SymmetricPlace, ASymmetryThatTheMapDoesNotHaveIsSaidAndNotUsed) {
    EXPECT_THAT(OutputOf(Words({"--symmetry", "C7"})),
                AllOf(HasSubstr("Symmetry    the map does not have C7"),
                      HasSubstr("the model is placed without a symmetry"), HasSubstr("Verdict     placed")));
    const json result = JsonOf({"--symmetry", "D5"});
    EXPECT_TRUE(result["symmetry"]["name"].is_null());
    EXPECT_TRUE(result["symmetry"]["axis"].is_null());
    EXPECT_EQ(result["copies"], 5);
    EXPECT_EQ(result["places"], JsonOf({})["places"]);
}

TEST_F(SymmetricPlace, WithoutTheOptionNothingIsSaidOfIt) {
    EXPECT_THAT(OutputOf(Words()), Not(HasSubstr("Symmetry")));
    EXPECT_TRUE(JsonOf({})["symmetry"].is_null());
}

TEST_F(SymmetricPlace, AxisAndCentreThatAreGivenStay) {
    const Pose truth = TrueFrame();
    const Point axis = truth.rotation * Point{0, 0, 1};
    const json symmetry = JsonOf({"--symmetry", "C5", "--symmetry-axis", Comma(axis), "--symmetry-centre",
                                  Comma(truth.centre)})["symmetry"];
    EXPECT_EQ(symmetry["name"], "C5");
    EXPECT_LT(DegreesBetween(PointIn(symmetry["axis"]), axis), 1e-3);
    EXPECT_LT(Length(PointIn(symmetry["centre"]) - truth.centre), 1e-3);
    const std::string output =
        OutputOf(Words({"--symmetry", "C5", "--symmetry-axis", Comma(PerpendicularTo(axis)),
                        "--symmetry-centre", Comma(truth.centre)}));
    EXPECT_THAT(output, HasSubstr("the map does not have C5"));
}

TEST_F(SymmetricPlace, AnAssemblysOperatorsTellSymmetryAndFrame) {
    const Pose truth = TrueFrame();
    std::string text = "data_X\nloop_\n_pdbx_struct_assembly_gen.assembly_id\n"
                       "_pdbx_struct_assembly_gen.oper_expression\n1 1-5\nloop_\n_pdbx_struct_oper_list.id\n";
    for (const char *row : {"1", "2", "3"}) {
        for (const char *column : {"1", "2", "3"})
            text += std::string("_pdbx_struct_oper_list.matrix[") + row + "][" + column + "]\n";
        text += std::string("_pdbx_struct_oper_list.vector[") + row + "]\n";
    }
    int id = 0;
    for (const Motion &motion : MotionsOf(ReadSymmetry("C5").value(), truth)) {
        text += std::to_string(++id);
        const std::array<double, 3> shift{motion.translation.x, motion.translation.y, motion.translation.z};
        for (std::size_t row = 0; row < 3; ++row) {
            for (std::size_t column = 0; column < 3; ++column)
                text += " " + std::to_string(motion.rotation[3 * row + column]);
            text += " " + std::to_string(shift[row]);
        }
        text += "\n";
    }
    const json symmetry = JsonOf({"--symmetry-from", m_folder.Write("assembly.cif", text)})["symmetry"];
    EXPECT_EQ(symmetry["asked"], "C5");
    EXPECT_EQ(symmetry["name"], "C5");
    EXPECT_LT(DegreesBetween(PointIn(symmetry["axis"]), truth.rotation * Point{0, 0, 1}), 0.01);
    EXPECT_LT(DistanceFromAxis(PointIn(symmetry["centre"]), truth.centre, truth.rotation * Point{0, 0, 1}),
              0.01);
    const std::size_t last = text.find("1 1-5");
    EXPECT_THAT(ErrorOf(Words({"--symmetry-from",
                               m_folder.Write("three.cif", std::string(text).replace(last, 5, "1 1-3"))})),
                HasSubstr("the 3 operators of the first assembly are no Cn, Dn, T, O or I and no helix"));
    EXPECT_THAT(ErrorOf(Words({"--symmetry-from",
                               m_folder.Write("one.cif", std::string(text).replace(last, 5, "1 1"))})),
                HasSubstr("one operator, and so no symmetry"));
}

TEST_F(SymmetricPlace, ModelsAreWrittenForEveryCopy) {
    OutputOf(Words({"--symmetry", "C5", "--models", "5", "--model-prefix", m_folder.File("copy-")}));
    EXPECT_EQ(FilesOfFolder().size(), 5u);
}

TEST_F(SymmetricPlace, AllCopiesAreWrittenAsOneAssembly) {
    const std::string file = m_folder.File("toxin.cif"), rest = m_folder.File("rest.mrc");
    std::vector<std::string> words = Words(
        {"--symmetry", "auto", "--assembly", file, "--rest", rest, "--json", m_folder.File("assembly.json")});
    EXPECT_THAT(OutputOf(words), AllOf(HasSubstr("Symmetry    C5"), HasSubstr("5 copies placed"),
                                       HasSubstr("all copies together, by their symmetry")));
    std::vector<Compound *> chains;
    GetPeptides(formats::ReadStructure(file), chains, true);
    EXPECT_EQ(chains.size(), 5u);
    const json result = json::parse(ReadFile(m_folder.File("assembly.json")));
    EXPECT_EQ(result["symmetry"]["name"], "C5");
    ASSERT_EQ(result["copies"].size(), 5u);
    for (const json &copy : result["copies"]) {
        EXPECT_GT(int(copy["contacts"]), 10);
        EXPECT_LT(int(copy["clashes"]), 3);
        EXPECT_GT(double(copy["explained"]), 0.05);
    }
    EXPECT_GT(double(result["explained"]), 0.4);
    EXPECT_TRUE(std::filesystem::exists(rest));
    EXPECT_THAT(ErrorOf(Words({"--symmetry", "C5", "--assembly", file, "--copies", "5"})),
                HasSubstr("--symmetry"));
}

TEST_F(SymmetricPlace, IsTheSameOnAnyNumberOfThreads) {
    json one = JsonOf({"--symmetry", "auto", "--threads", "1"}),
         three = JsonOf({"--symmetry", "auto", "--threads", "3"});
    EXPECT_EQ(one["symmetry"], three["symmetry"]);
    EXPECT_EQ(one["places"], three["places"]);
}

TEST_F(SymmetricPlace, WhatHasNoMeaningIsRefused) {
    for (const char *name : {"C1", "C0", "C61", "X", "H:0,3", "H:1", "5", ""})
        EXPECT_THAT(ErrorOf(Words({"--symmetry", name})), HasSubstr("--symmetry")) << name;
    EXPECT_THAT(ErrorOf(Words({"--symmetry", "C5", "--symmetry-axis", "0,0,0"})), HasSubstr("a direction"));
    EXPECT_THAT(ErrorOf(Words({"--symmetry", "C5", "--symmetry-axis", "1,2"})), HasSubstr("X,Y,Z"));
    EXPECT_THAT(ErrorOf(Words({"--symmetry", "C5", "--symmetry-centre", "1,2,nan"})), HasSubstr("X,Y,Z"));
    EXPECT_THAT(ErrorOf(Words({"--symmetry", "C5", "--hands"})), HasSubstr("exclude one another"));
    EXPECT_THAT(ErrorOf(Words({"--symmetry", "C5", "--refine"})), HasSubstr("exclude one another"));
    EXPECT_THAT(ErrorOf(Words({"--symmetry", "C5", "--symmetry-from", "x.cif"})),
                HasSubstr("exclude one another"));
    EXPECT_THAT(ErrorOf(Words({"--symmetry", "C5", "--copies", "5"})), HasSubstr("--symmetry"));
    EXPECT_THAT(ErrorOf(Words({"--symmetry-from", m_folder.Write("empty.cif", "data_X\n")})),
                HasSubstr("tells of no operators"));
}

// Real maps.

TEST_F(SymmetricPlace, TheActinFilamentHasItsRiseAndTwist) {
    REQUIRE_TEST_DATA();
    const std::string data = TestDataFolder();
    OutputOf({"place", "--map", data + "/maps/emd_5168.map", "--model", data + "/cases/actin_5168/start.pdb",
              "--resolution", "6.6", "--symmetry", "auto", "--json", m_folder.File("actin.json")});
    const json result = json::parse(ReadFile(m_folder.File("actin.json")));
    EXPECT_NEAR(double(result["symmetry"]["rise"]), 27.59, 0.2);
    EXPECT_NEAR(double(result["symmetry"]["twist"]), -166.62, 0.5);
    EXPECT_LT(DegreesBetween(PointIn(result["symmetry"]["axis"]), {0, 0, 1}), 1);
    EXPECT_LT(DistanceFromAxis(PointIn(result["symmetry"]["centre"]), {}, {0, 0, 1}), 1);
    EXPECT_LT(double(result["symmetry"]["fromOrigin"]), 1);
    EXPECT_EQ(result["copies"], 5);
}

TEST_F(SymmetricPlace, MapsWithoutASymmetryHaveNone) {
    REQUIRE_TEST_DATA();
    const std::string data = TestDataFolder();
    const std::vector<std::vector<std::string>> maps{{"1akeA_10A.mrc", "ake_10A", "10"},
                                                     {"1z5s_10.mrc", "1z5s_C_solid", "10"},
                                                     {"Ubi-12.5.mrc", "ubi_restraints", "12.5"}};
    for (const auto &map : maps) {
        const std::string output = OutputOf({"place", "--map", data + "/maps/" + map[0], "--model",
                                             data + "/cases/" + map[1] + "/start.pdb", "--resolution", map[2],
                                             "--symmetry", "auto"});
        EXPECT_THAT(output, HasSubstr("Symmetry    none: the nearest is ")) << map[0];
    }
}
