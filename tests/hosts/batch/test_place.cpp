#include "CommandFixture.h"

#include "Collect.h"
#include "TestData.h"
#include "formats/structures/StructureFile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

using namespace VARNO;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

/// One chain of a toxin, displaced, and the map of the whole complex, in which five copies of it stand.
class Place : public CommandFixture {
protected:
    std::vector<std::string> Words(const std::vector<std::string> &more = {}) const {
        std::vector<std::string> words{"place",
                                       "--map",
                                       SourceFolder() + "/examples/1tii_8A.mrc",
                                       "--model",
                                       SourceFolder() + "/examples/1tii_D_displaced.pdb",
                                       "--resolution",
                                       "8",
                                       "--quiet"};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }

    nlohmann::json JsonOf(const std::vector<std::string> &more = {}) {
        std::vector<std::string> words = Words({"--json", m_folder.File("places.json")});
        words.insert(words.end(), more.begin(), more.end());
        OutputOf(words);
        return nlohmann::json::parse(ReadFile(m_folder.File("places.json")));
    }
};

std::vector<Vertex> PositionsOf(Compound *node) {
    std::vector<Compound *> residues;
    GetResidues(node, residues, true);
    std::vector<Vertex> positions;
    for (const Compound *residue : residues)
        positions.push_back(residue->GetPosition());
    return positions;
}

double Rmsd(const std::vector<Vertex> &a, const std::vector<Vertex> &b) {
    double squares = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        squares += double((a[i] - b[i]).SquaredLength());
    return std::sqrt(squares / double(a.size()));
}

/// RMSD of a chain from the nearest of the five copies that the complex has.
double DistanceFromCopies(const std::string &file) {
    const std::vector<Vertex> placed = PositionsOf(formats::ReadStructure(file));
    Compound *complex = formats::ReadStructure(SourceFolder() + "/examples/1tii.pdb");
    std::vector<Compound *> chains;
    GetPeptides(complex, chains, true);
    double least = 1e9;
    for (Compound *chain : chains)
        if (const std::vector<Vertex> copy = PositionsOf(chain); copy.size() == placed.size())
            least = std::min(least, Rmsd(placed, copy));
    return least;
}

std::string Complex() {
    return SourceFolder() + "/examples/1tii.pdb";
}

/// An MRC map of 32-bit values, its voxels in the opposite order along x.
std::string MirroredBytes(std::string bytes) {
    constexpr std::size_t header = 1024, voxel = 4;
    const auto nx = std::size_t(static_cast<unsigned char>(bytes[0]));
    const std::string before = bytes;
    for (std::size_t i = 0; header + voxel * i < bytes.size(); ++i) {
        const std::size_t opposite = i - i % nx + nx - 1 - i % nx;
        std::copy_n(before.begin() + std::ptrdiff_t(header + voxel * opposite), voxel,
                    bytes.begin() + std::ptrdiff_t(header + voxel * i));
    }
    return bytes;
}

} // namespace

TEST_F(Place, FindsTheFiveCopiesInTheWholeMap) {
    const std::string output = OutputOf(Words({"--models", "5", "--model-prefix", m_folder.File("placed-")}));
    EXPECT_THAT(output, HasSubstr("placed, with a probability above 0.999"));
    for (const char *rank : {"1", "2", "3", "4", "5"})
        EXPECT_LT(DistanceFromCopies(m_folder.File(std::string("placed-") + rank + ".pdb")), 0.5) << rank;
}

TEST_F(Place, TheJsonFileTellsTheVerdictAndThePlaces) {
    const nlohmann::json json = JsonOf();
    EXPECT_EQ(json.at("placed"), true);
    EXPECT_EQ(json.at("verdict"), "placed");
    EXPECT_EQ(json.at("forecast").at("prospect"), "good");
    EXPECT_EQ(json.at("input").at("chains"), (nlohmann::json{"D"}));
    const auto &first = json.at("places").at(0);
    EXPECT_GT(first.at("probability"), 0.99);
    EXPECT_GT(first.at("inDensity"), 0.9);
    EXPECT_EQ(first.at("rotation").size(), 4u);
    EXPECT_EQ(json.at("profile").size(), 98u);
    EXPECT_EQ(json.at("profile").at(0).at("chain"), "D");
}

TEST_F(Place, TheRotationAndTranslationActOnTheCoordinatesGiven) {
    const nlohmann::json json = JsonOf({"--models", "1", "--model-prefix", m_folder.File("placed-")});
    const auto q = json["places"][0]["rotation"].get<std::vector<double>>();
    const auto t = json["places"][0]["translation"].get<std::vector<double>>();
    Quaternion rotation;
    rotation.Set(q[0], q[1], q[2], q[3]);
    const Transform motion(rotation, Vertex(float(t[0]), float(t[1]), float(t[2]), false));
    std::vector<Vertex> moved =
        PositionsOf(formats::ReadStructure(SourceFolder() + "/examples/1tii_D_displaced.pdb"));
    for (Vertex &position : moved)
        position = motion * position;
    EXPECT_LT(Rmsd(moved, PositionsOf(formats::ReadStructure(m_folder.File("placed-1.pdb")))), 0.002);
}

TEST_F(Place, ThreadsGiveTheSameFiles) {
    const auto filesOf = [&](const std::string &threads) {
        OutputOf(Words({"--threads", threads, "--results", m_folder.File("places.txt"), "--models", "1",
                        "--model-prefix", m_folder.File("placed-")}));
        return ReadFile(m_folder.File("places.txt")) + ReadFile(m_folder.File("placed-1.pdb"));
    };
    EXPECT_EQ(filesOf("1"), filesOf("3"));
}

TEST_F(Place, TheResultsListHasTheBestPlaceLast) {
    OutputOf(Words({"--results", m_folder.File("places.txt")}));
    OutputOf({"build", "--results", m_folder.File("places.txt"), "--target",
              SourceFolder() + "/examples/1tii_D_displaced.pdb", "--rank", "1", "--out",
              m_folder.File("built.pdb")});
    // Two decimals of a quaternion move a model that stands far from the origin.
    EXPECT_LT(DistanceFromCopies(m_folder.File("built.pdb")), 2);
}

TEST_F(Place, WithoutQuietItTellsWhatWasReadAndWhatToExpect) {
    std::vector<std::string> words = Words();
    std::erase(words, "--quiet");
    EXPECT_THAT(OutputOf(words), AllOf(StartsWith("Map "), HasSubstr("chain D, 98 residues"),
                                       HasSubstr("nearly always found (predicted signal 8.2)")));
}

TEST_F(Place, ResiduesOfLowConfidenceAreLeftOutAndMovedAlong) {
    // The structure's B factors stand in for the confidence of a predicted one.
    const std::string output =
        OutputOf(Words({"--min-plddt", "20", "--models", "1", "--model-prefix", m_folder.File("placed-")}));
    EXPECT_THAT(output, HasSubstr("placed"));
    EXPECT_LT(DistanceFromCopies(m_folder.File("placed-1.pdb")), 1);
    EXPECT_THAT(ErrorOf(Words({"--min-plddt", "1000"})), HasSubstr("confidence"));
}

TEST_F(Place, WithoutAResolutionItIsEstimatedAndSaid) {
    std::vector<std::string> words = Words({"--json", m_folder.File("places.json")});
    const auto option = std::ranges::find(words, "--resolution");
    words.erase(option, option + 2);
    std::erase(words, "--quiet");
    EXPECT_THAT(OutputOf(words),
                AllOf(HasSubstr(" Å, estimated from the map"), HasSubstr("placed, with a probability")));
    const auto json = nlohmann::json::parse(ReadFile(m_folder.File("places.json")));
    EXPECT_EQ(json.at("input").at("resolutionEstimated"), true);
    EXPECT_NEAR(json.at("input").at("resolution"), 8, 3);
    EXPECT_EQ(JsonOf().at("input").at("resolutionEstimated"), false);
}

TEST_F(Place, TheCopiesAreCounted) {
    EXPECT_THAT(OutputOf(Words()), HasSubstr("5 places are found, copies of the model"));
    EXPECT_EQ(JsonOf().at("copies"), 5);
}

TEST_F(Place, RefineMovesAModelThatStandsNearlyRight) {
    OutputOf(Words({"--models", "1", "--model-prefix", m_folder.File("placed-")}));
    // The model at its place, shifted by 4 Å along x.
    OutputOf({"build", "--target", m_folder.File("placed-1.pdb"), "--results",
              m_folder.Write("shift.txt", "1.00 0.00 0.00 0.00 4.00 0.00 0.00 1.00\n"), "--rank", "1",
              "--out", m_folder.File("off.pdb")});
    EXPECT_GT(DistanceFromCopies(m_folder.File("off.pdb")), 3.5);
    std::vector<std::string> words = Words({"--refine", "--json", m_folder.File("refined.json"), "--models",
                                            "1", "--model-prefix", m_folder.File("refined-")});
    *(std::ranges::find(words, "--model") + 1) = m_folder.File("off.pdb");
    EXPECT_THAT(OutputOf(words), HasSubstr("refined: moved by 4.0"));
    EXPECT_LT(DistanceFromCopies(m_folder.File("refined-1.pdb")), 0.5);
    const auto json = nlohmann::json::parse(ReadFile(m_folder.File("refined.json")));
    EXPECT_EQ(json.at("verdict"), "refined");
    EXPECT_EQ(json.at("placed"), false);
    EXPECT_TRUE(json.at("confidence").is_null());
    EXPECT_TRUE(json.at("places").at(0).at("probability").is_null());
    EXPECT_EQ(json.at("places").size(), 1u);
}

TEST_F(Place, NearAndRegionLimitWhereTheCentreLies) {
    const auto centreOf = [](const nlohmann::json &place) {
        return place.at("centre").get<std::vector<double>>();
    };
    const nlohmann::json whole = JsonOf();
    const std::vector<double> second = centreOf(whole.at("places").at(1));
    const std::string text =
        std::to_string(second[0]) + "," + std::to_string(second[1]) + "," + std::to_string(second[2]) + ",5";
    const nlohmann::json region = JsonOf({"--region", text});
    EXPECT_EQ(region.at("verdict"), "placed");
    EXPECT_EQ(region.at("copies"), 1);
    EXPECT_NEAR(centreOf(region.at("places").at(0))[0], second[0], 0.5);
    EXPECT_EQ(region.at("input").at("region").at("radius"), 5);

    const nlohmann::json near = JsonOf({"--near"});
    EXPECT_EQ(near.at("input").at("scope"), "near");
    EXPECT_LT(near.at("places").size(), whole.at("places").size());
}

TEST_F(Place, RefusesARegionThatIsNone) {
    for (const char *region : {"1,2,3", "1,2,3,0", "1,2,x,4", "1,2,3,4,5", "1,2,nan,4", "1,2,3,inf"})
        EXPECT_THAT(ErrorOf(Words({"--region", region})), HasSubstr(std::string("--region: ") + region));
    EXPECT_THAT(ErrorOf(Words({"--near", "--refine"})), HasSubstr("--near and --refine exclude one another"));
}

TEST_F(Place, DarkDensityIsSaidAndTurnedOnRequest) {
    std::string bytes = ReadFile(SourceFolder() + "/examples/1tii_8A.mrc");
    for (std::size_t i = 1024; i + 4 <= bytes.size(); i += 4)
        bytes[i + 3] = char(bytes[i + 3] ^ 0x80); // the sign of each voxel
    std::vector<std::string> words = Words();
    *(std::ranges::find(words, "--map") + 1) = m_folder.Write("dark.mrc", bytes);
    const Outcome dark = Run(words);
    EXPECT_THAT(dark.errors, HasSubstr("search again with --invert"));
    EXPECT_THAT(dark.output, Not(HasSubstr("Verdict     placed")));
    words.push_back("--invert");
    const Outcome turned = Run(words);
    EXPECT_THAT(turned.output, HasSubstr("Verdict     placed"));
    EXPECT_THAT(turned.errors, Not(HasSubstr("--invert")));
}

TEST_F(Place, RefusesNumbersThatMakeNoSense) {
    const auto errorOf = [&](const std::string &option, const std::string &value) {
        return ErrorOf({"place", "--map", "x", "--model", "y", "--resolution", "8", option, value});
    };
    EXPECT_THAT(errorOf("--threads", "0"), StartsWith("--threads: 0 is not"));
    EXPECT_THAT(errorOf("--models", "-1"), StartsWith("--models: -1 is not"));
    EXPECT_THAT(ErrorOf({"place", "--map", "x", "--model", "y", "--resolution", "0"}),
                StartsWith("--resolution: 0 is not a number"));
    EXPECT_THAT(ErrorOf({"place", "--map", "x", "--model", "y", "--resolution", "nan"}),
                HasSubstr("--resolution"));
}

TEST_F(Place, AMapWithoutDensityIsAnAnswer) {
    std::vector<std::string> words = Words();
    OutputOf({"simulate", "--model", SourceFolder() + "/examples/1tii_D_displaced.pdb", "--resolution", "8",
              "--voxel", "4", "--out", m_folder.File("map.mrc")});
    // Zeros in the place of every voxel behind the header.
    std::string bytes = ReadFile(m_folder.File("map.mrc"));
    std::fill(bytes.begin() + 1024, bytes.end(), '\0');
    words[2] = m_folder.Write("zero.mrc", bytes);
    EXPECT_THAT(OutputOf(words), HasSubstr("no density"));
}

TEST_F(Place, BesideTheOthersThereIsOnePlaceLeft) {
    const nlohmann::json json = JsonOf({"--fixed", Complex(), "--fixed-chains", "A,C,E,F,G,H", "--models",
                                        "1", "--model-prefix", m_folder.File("placed-")});
    EXPECT_EQ(json.at("placed"), true);
    EXPECT_GT(json["places"][0]["probability"], 0.99);
    EXPECT_EQ(json["copies"], 1);
    // Its neighbours in the ring touch it.
    EXPECT_GT(json["places"][0]["overlap"], 0);
    EXPECT_LT(json["places"][0]["overlap"], 0.05);
    EXPECT_EQ(json["input"]["fixed"],
              (nlohmann::json{{{"file", Complex()}, {"chains", {"E", "F", "G", "H", "A", "C"}}}}));
    EXPECT_LT(DistanceFromCopies(m_folder.File("placed-1.pdb")), 0.5);
}

TEST_F(Place, TheFixedFileMayBeTheModelsOwn) {
    // Chain D stands where it belongs; the others are fixed.
    const std::vector<std::string> words{"place",
                                         "--map",
                                         SourceFolder() + "/examples/1tii_8A.mrc",
                                         "--model",
                                         Complex(),
                                         "--chain",
                                         "D",
                                         "--fixed",
                                         Complex(),
                                         "--resolution",
                                         "8",
                                         "--json",
                                         m_folder.File("places.json")};
    EXPECT_THAT(OutputOf(words), AllOf(HasSubstr("chains E, F, G, H, A, C\n"), HasSubstr("Overlap")));
    const auto json = nlohmann::json::parse(ReadFile(m_folder.File("places.json")));
    EXPECT_GT(std::abs(json["places"][0]["rotation"][0].get<double>()), 0.999);
}

TEST_F(Place, WithoutAFixedFileTheTableTellsNoOverlap) {
    EXPECT_THAT(OutputOf(Words()), Not(HasSubstr("Overlap")));
    EXPECT_EQ(JsonOf()["places"][0]["overlap"], 0);
    EXPECT_EQ(JsonOf()["input"]["fixed"], nlohmann::json::array());
}

TEST_F(Place, WhatIsPlacedMayStandAlready) {
    // A further copy of a chain that stands is looked for; where all stand, none is found.
    const std::string output = OutputOf(Words({"--fixed", Complex()}));
    EXPECT_THAT(output, HasSubstr("no place stands out"));
}

TEST_F(Place, AModelThatFillsTheBoxHasTooFewOtherPlacesToCompareWith) {
    const std::string output = OutputOf({"place", "--map", SourceFolder() + "/examples/1tii_8A.mrc",
                                         "--model", Complex(), "--resolution", "8", "--quiet"});
    EXPECT_THAT(output, HasSubstr("no place stands out"));
    EXPECT_THAT(output, HasSubstr("places lie in the map's box, too few for a probability to trust"));
    EXPECT_THAT(OutputOf(Words({"--fixed", Complex()})), Not(HasSubstr("too few")));
}

TEST_F(Place, RefusesFixedChainsThatAreNotThere) {
    EXPECT_EQ(ErrorOf(Words({"--fixed", Complex(), "--fixed-chains", "A,X"})),
              "--fixed-chains: no fixed file has a polymer chain 'X'\n");
    const std::string model = SourceFolder() + "/examples/1tii_D_displaced.pdb";
    EXPECT_THAT(ErrorOf(Words({"--fixed", model})),
                HasSubstr("no polymer chain is left for the fixed part, the file has D"));
    EXPECT_THAT(ErrorOf(Words({"--fixed", Complex(), "--fixed", Complex()})),
                HasSubstr("is given twice as a fixed part"));
    EXPECT_THAT(
        ErrorOf(Words({"--fixed", m_folder.Write("water.pdb", "HETATM    1  O   HOH A   1       1.000   1.000"
                                                              "   1.000  1.00  0.00           O\nEND\n")})),
        HasSubstr("no polymer chain"));
    EXPECT_THAT(ErrorOf(Words({"--fixed", Complex(), "--json", Complex()})), HasSubstr("1tii.pdb"));
}

TEST_F(Place, OptionsThatNeedAnotherOneSaySo) {
    EXPECT_EQ(Run(Words({"--fixed-chains", "A"})).status, 2);
    EXPECT_THAT(Run(Words({"--fixed-chains", "A"})).errors,
                HasSubstr("--fixed-chains is given without --fixed"));
    EXPECT_THAT(Run(Words({"--mirrored-map", "x.mrc"})).errors,
                HasSubstr("--mirrored-map is given without --hands"));
    EXPECT_EQ(ErrorOf(Words({"--refine", "--hands"})), "--refine and --hands exclude one another\n");
}

TEST_F(Place, WarnsOfFixedPartsOutsideOfTheMap) {
    const std::string small = m_folder.Write("small.pdb", smallModel);
    const Outcome outcome = Run(Words({"--fixed", small}));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.errors, HasSubstr("small.pdb: "));
    EXPECT_THAT(outcome.errors, HasSubstr("outside of the map"));
    EXPECT_THAT(outcome.output, HasSubstr("placed, with"));
}

TEST_F(Place, TellsTheMapsHand) {
    const std::string mirrored = m_folder.File("mirrored.mrc");
    const nlohmann::json json = JsonOf({"--hands", "--mirrored-map", mirrored});
    EXPECT_EQ(json["hand"]["verdict"], "as-given");
    EXPECT_EQ(json["hand"]["placesAreMirrored"], false);
    EXPECT_GT(json["hand"]["asGiven"]["probability"], 0.99);
    EXPECT_EQ(json["placed"], true);
    EXPECT_THAT(FilesOfFolder(), Not(testing::Contains("mirrored.mrc")));
    EXPECT_EQ(JsonOf()["hand"], nullptr);
}

TEST_F(Place, ModelsForAMirroredMapFitTheMapThatItWrites) {
    const std::string original = ReadFile(SourceFolder() + "/examples/1tii_8A.mrc");
    const std::string map = m_folder.Write("wrong.mrc", MirroredBytes(original));
    const std::string output =
        OutputOf({"place", "--map", map, "--model", SourceFolder() + "/examples/1tii_D_displaced.pdb",
                  "--resolution", "8", "--quiet", "--hands", "--mirrored-map", m_folder.File("right.mrc"),
                  "--models", "1", "--model-prefix", m_folder.File("placed-")});
    EXPECT_THAT(output, AllOf(HasSubstr("the map is mirrored (with a probability above 0.999)"),
                              HasSubstr("placed, with a probability above 0.999")));
    EXPECT_LT(DistanceFromCopies(m_folder.File("placed-1.pdb")), 0.5);
    const std::string written = ReadFile(m_folder.File("right.mrc"));
    ASSERT_EQ(written.size(), original.size());
    EXPECT_EQ(written.substr(1024), original.substr(1024));
    // The origin, words 50 to 52 of the header.
    EXPECT_EQ(written.substr(196, 12), original.substr(196, 12));
}

TEST_F(Place, WritesAReportOfWhatItFound) {
    EXPECT_THAT(OutputOf(Words({"--report", m_folder.File("r.html")})), HasSubstr("Wrote the report: "));
    const std::string page = ReadFile(m_folder.File("r.html"));
    EXPECT_THAT(page, StartsWith("<!DOCTYPE html>"));
    EXPECT_THAT(page, HasSubstr("5 places are found"));
    EXPECT_THAT(page,
                HasSubstr("<pre>morvanex place --map " + SourceFolder() + "/examples/1tii_8A.mrc --model"));
    EXPECT_THAT(page, HasSubstr("yz plane, x = 5"));
}

TEST_F(Place, RefusesAReportThatCannotBeWrittenBeforeTheSearch) {
    EXPECT_THAT(ErrorOf(Words({"--report", "/nonexistent/r.html"})), HasSubstr("/nonexistent/r.html: "));
    EXPECT_THAT(ErrorOf(Words({"--report", m_folder.File("a"), "--json", m_folder.File("a")})),
                HasSubstr("is named for two outputs"));
}
