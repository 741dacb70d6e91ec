#include "CommandFixture.h"

#include "Collect.h"
#include "TestData.h"
#include "formats/structures/StructureFile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <sstream>

using namespace VARNO;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

std::string Example(const std::string &file) {
    return SourceFolder() + "/examples/" + file;
}

/// The map of a toxin, and its chains as files of their own: A, C, and five copies of B, from D to H.
class Assemble : public CommandFixture {
protected:
    std::vector<std::string> Words(const std::vector<std::string> &more) const {
        std::vector<std::string> words{"place",        "--map", Example("1tii_8A.mrc"),
                                       "--resolution", "8",     "--quiet"};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }

    nlohmann::json JsonOf(const std::vector<std::string> &more) {
        std::vector<std::string> words = Words(more);
        words.insert(words.end(), {"--json", m_folder.File("assembly.json")});
        OutputOf(words);
        return nlohmann::json::parse(ReadFile(m_folder.File("assembly.json")));
    }

    /// A chain of a complex, turned by half a turn about z and moved.
    std::string ChainFile(char chain, const std::string &file = Example("1tii.pdb")) {
        std::istringstream complex(ReadFile(file));
        std::string lines;
        for (std::string line; std::getline(complex, line);)
            if (line.starts_with("ATOM") && line[21] == chain)
                lines += line + '\n';
        const std::string name = std::string("chain-") + chain + ".pdb";
        m_folder.Write("own.pdb", lines);
        OutputOf({"build", "--target", m_folder.File("own.pdb"), "--results",
                  m_folder.Write("turn.txt", "0.00 0.00 0.00 1.00 9.00 8.00 7.00 1.00\n"), "--rank", "1",
                  "--out", m_folder.File(name)});
        return m_folder.File(name);
    }

    const std::string m_model = Example("1tii_D_displaced.pdb");
};

std::vector<Vertex> PositionsOf(Compound *node) {
    std::vector<Compound *> residues;
    GetResidues(node, residues, true);
    std::vector<Vertex> positions;
    for (const Compound *residue : residues)
        positions.push_back(residue->GetPosition());
    return positions;
}

std::vector<Chain *> ChainsOf(const std::string &file) {
    std::vector<Compound *> nodes;
    GetPeptides(formats::ReadStructure(file), nodes, true);
    std::vector<Chain *> chains;
    for (Compound *node : nodes)
        chains.push_back(dynamic_cast<Chain *>(node));
    return chains;
}

std::string NamesOf(const std::vector<Chain *> &chains) {
    std::string names;
    for (const Chain *chain : chains)
        names += (names.empty() ? "" : " ") + chain->GetName();
    return names;
}

double Rmsd(const std::vector<Vertex> &a, const std::vector<Vertex> &b) {
    double squares = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        squares += double((a[i] - b[i]).SquaredLength());
    return std::sqrt(squares / double(a.size()));
}

/// For each chain of a file the chain of the complex that it stands upon (within 1 Å), "-" where there is
/// none.
std::string StandsUpon(const std::vector<Chain *> &placed) {
    const std::vector<Chain *> complex = ChainsOf(Example("1tii.pdb"));
    std::string names;
    for (Chain *chain : placed) {
        const std::vector<Vertex> positions = PositionsOf(chain);
        const auto found = std::ranges::find_if(complex, [&](Chain *true_) {
            const std::vector<Vertex> there = PositionsOf(true_);
            return there.size() == positions.size() && Rmsd(there, positions) < 1;
        });
        names += found == complex.end() ? "-" : (*found)->GetName();
    }
    return names;
}

std::string Sorted(std::string text) {
    std::ranges::sort(text);
    return text;
}

} // namespace

TEST_F(Assemble, AsManyCopiesAsThereAreAreFound) {
    const std::string file = m_folder.File("placed.cif");
    const nlohmann::json json = JsonOf({"--model", m_model, "--copies", "auto", "--assembly", file});
    const std::vector<Chain *> placed = ChainsOf(file);
    EXPECT_EQ(NamesOf(placed), "D D2 D3 D4 D5");
    EXPECT_EQ(Sorted(StandsUpon(placed)), "DEFGH");
    EXPECT_EQ(json.at("format"), "morvanex assembly");
    EXPECT_EQ(json.at("complete"), true);
    EXPECT_EQ(json.at("copies").size(), 5u);
    EXPECT_EQ(json["copies"][1]["copy"], 2);
    EXPECT_EQ(json["copies"][1]["chains"], (nlohmann::json{{{"chain", "D"}, {"name", "D2"}}}));
    EXPECT_GT(json["copies"][4]["probability"], 0.99);
    EXPECT_EQ(json["parts"][0]["wanted"], nullptr);
    EXPECT_EQ(json["parts"][0]["placed"], 5);
    EXPECT_EQ(json["parts"][0]["left"], "nothing-found");
    EXPECT_THAT(ReadFile(file), HasSubstr("_entity.type\n1 polymer\n#"));
}

TEST_F(Assemble, TheTableTellsThePartsAndTheCopies) {
    std::vector<std::string> words = Words({"--model", m_model, "--copies", "6"});
    std::erase(words, "--quiet");
    EXPECT_THAT(OutputOf(words),
                AllOf(HasSubstr("chain D, 98 residues\n"), HasSubstr("Assembly    5 copies placed\n"),
                      HasSubstr("1tii_D_displaced: 5 of 6 copies placed: no further place stands out"),
                      HasSubstr("Part              Copy  Chains  Probability  Contacts  Clashes"),
                      HasSubstr("1tii_D_displaced     5      D5        1.000")));
}

TEST_F(Assemble, ModelsThatStartAnywhereMakeTheComplex) {
    const std::string file = m_folder.File("placed.cif"), a = ChainFile('A'), c = ChainFile('C');
    const nlohmann::json json =
        JsonOf({"--model", c, "--model", m_model + "=5", "--model", a, "--assembly", file});
    EXPECT_EQ(json.at("complete"), true);
    const std::vector<Chain *> placed = ChainsOf(file);
    EXPECT_EQ(NamesOf(placed), "C D D2 D3 D4 D5 A");
    const std::string upon = StandsUpon(placed);
    EXPECT_EQ(upon.front(), 'C');
    EXPECT_EQ(upon.back(), 'A');
    EXPECT_EQ(Sorted(upon), "ACDEFGH");
}

TEST_F(Assemble, APartThatIsNotInTheMapIsNamedAndNotForced) {
    REQUIRE_TEST_DATA();
    const std::string foreign = TestDataFolder() + "/models/A0A1D1V2B2.pdb.gz";
    const nlohmann::json json = JsonOf({"--model", foreign, "--model", m_model});
    EXPECT_EQ(json.at("complete"), false);
    EXPECT_EQ(json.at("statement"), "1 copy placed, of 1 of 2 models");
    EXPECT_EQ(json["parts"][0]["placed"], 0);
    EXPECT_THAT(json["parts"][0]["statement"].get<std::string>(),
                HasSubstr("not placed: no place stands out"));
    EXPECT_EQ(json["parts"][1]["left"], "nothing");
}

TEST_F(Assemble, FourPartsMakeAComplexAt10Angstroms) {
    REQUIRE_TEST_DATA();
    const std::string folder = TestDataFolder() + "/cases/1z5s_C_solid/", file = m_folder.File("placed.cif");
    std::vector<std::string> words{"place",
                                   "--map",
                                   TestDataFolder() + "/maps/1z5s_10.mrc",
                                   "--resolution",
                                   "10",
                                   "--quiet",
                                   "--assembly",
                                   file,
                                   "--json",
                                   m_folder.File("assembly.json")};
    for (const char chain : {'A', 'B', 'C', 'D'})
        words.insert(words.end(), {"--model", ChainFile(chain, folder + "start.pdb")});
    OutputOf(words);
    std::vector<Chain *> truths = ChainsOf(folder + "start.pdb");
    std::erase_if(truths, [](const Chain *chain) { return chain->GetName() == "C"; });
    truths.push_back(ChainsOf(folder + "truth.pdb").front());
    const std::vector<Chain *> placed = ChainsOf(file);
    ASSERT_EQ(NamesOf(placed), "A B C D");
    for (Chain *chain : placed) {
        const auto truth =
            std::ranges::find_if(truths, [&](Chain *t) { return t->GetName() == chain->GetName(); });
        ASSERT_NE(truth, truths.end());
        EXPECT_LT(Rmsd(PositionsOf(chain), PositionsOf(*truth)), 1.5) << chain->GetName();
    }
    const auto json = nlohmann::json::parse(ReadFile(m_folder.File("assembly.json")));
    ASSERT_EQ(json["copies"].size(), 4u);
    for (const nlohmann::json &copy : json["copies"])
        EXPECT_EQ(copy["clashes"], 0);
}

TEST_F(Assemble, EveryWholeSubunitOfARealFilamentIsPlaced) {
    REQUIRE_TEST_DATA();
    const std::string json = m_folder.File("assembly.json");
    const std::string output = OutputOf({"place", "--map", TestDataFolder() + "/maps/emd_5168.map", "--model",
                                         TestDataFolder() + "/cases/actin_5168/start.pdb=auto",
                                         "--resolution", "6.6", "--quiet", "--json", json});
    EXPECT_THAT(output, HasSubstr("5 copies placed; no further place is whole: one reaches out of the map"));
    // Along the axis of the helix they stand 27.6 Å apart.
    std::vector<double> heights;
    const auto record = nlohmann::json::parse(ReadFile(json));
    for (const nlohmann::json &copy : record["copies"])
        heights.push_back(copy["centre"][2]);
    std::ranges::sort(heights);
    ASSERT_EQ(heights.size(), 5u);
    for (std::size_t i = 1; i < heights.size(); ++i)
        EXPECT_NEAR(heights[i] - heights[i - 1], 27.6, 0.3);
}

TEST_F(Assemble, TwoModelsOfOneMoleculeAreBothNamed) {
    REQUIRE_TEST_DATA();
    const std::string output =
        OutputOf({"place", "--map", TestDataFolder() + "/maps/emd_5168.map", "--model",
                  TestDataFolder() + "/cases/actin_5168/start.pdb=auto", "--model",
                  TestDataFolder() + "/models/A0A1D1UVK9.pdb.gz=auto", "--resolution", "6.6", "--quiet"});
    EXPECT_THAT(output, HasSubstr("fits the same place equally well"));
    EXPECT_THAT(output, testing::ContainsRegex("not placed: its place is taken by (start|A0A1D1UVK9)"));
}

TEST_F(Assemble, WhereNothingIsPlacedNoFileIsWritten) {
    const Outcome outcome = Run(Words({"--model", m_model, "--copies", "auto", "--fixed", Example("1tii.pdb"),
                                       "--assembly", m_folder.File("placed.cif")}));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("1tii_D_displaced: not placed: no place stands out"));
    EXPECT_THAT(outcome.errors, HasSubstr("placed.cif is not written, since nothing is placed"));
    EXPECT_THAT(FilesOfFolder(), testing::IsEmpty());
}

TEST_F(Assemble, ChainsOfFixedPartsKeepTheirNames) {
    const nlohmann::json json = JsonOf(
        {"--model", m_model, "--copies", "auto", "--fixed", Example("1tii.pdb"), "--fixed-chains", "D,E,A"});
    ASSERT_EQ(json["copies"].size(), 3u);
    EXPECT_EQ(json["copies"][0]["chains"], (nlohmann::json{{{"chain", "D"}, {"name", "D2"}}}));
    EXPECT_EQ(json["copies"][2]["chains"], (nlohmann::json{{{"chain", "D"}, {"name", "D4"}}}));
}

TEST_F(Assemble, KnownDistancesAreMeasuredAndThoseThatDoNotHoldAreListed) {
    const std::vector<std::string> words{"--model",        ChainFile('A'), "--model", ChainFile('C'),
                                         "--max-distance", "A:20",         "C:210",   "17",
                                         "--max-distance", "A:20",         "C:210",   "2.5"};
    const nlohmann::json json = JsonOf(words);
    ASSERT_EQ(json["distances"].size(), 2u);
    EXPECT_NEAR(json["distances"][0]["distance"], 16.1, 0.7);
    EXPECT_EQ(json["distances"][0]["holds"], true);
    EXPECT_EQ(json["distances"][1]["holds"], false);
    EXPECT_THAT(OutputOf(Words(words)),
                AllOf(HasSubstr("Distances   1 of 2 hold\n            A:20 to C:210: 16."),
                      HasSubstr(", at most 2.5 Å\n")));
}

TEST_F(Assemble, AFixedPartMayBeTheEndOfADistance) {
    const nlohmann::json json =
        JsonOf({"--model", m_model, "--fixed", Example("1tii.pdb"), "--fixed-chains", "A,C", "--max-distance",
                "D:30", "A:120", "60", "--max-distance", "1tii/A:20", "A:120", "100"});
    EXPECT_GT(json["distances"][0]["distance"], 5);
    EXPECT_EQ(json["distances"][1]["holds"], true);
}

TEST_F(Assemble, RefusesDistancesThatMakeNoSense) {
    const auto errorOf = [&](const std::vector<std::string> &distance) {
        std::vector<std::string> words{"--model", m_model, "--max-distance"};
        words.insert(words.end(), distance.begin(), distance.end());
        return ErrorOf(Words(words));
    };
    EXPECT_EQ(errorOf({"D:30", "X:1", "20"}), "--max-distance: no model has a residue X:1 with a position\n");
    EXPECT_EQ(errorOf({"D:30", "D:999", "20"}),
              "--max-distance: no model has a residue D:999 with a position\n");
    EXPECT_THAT(errorOf({"D:30", "D:40", "0"}), HasSubstr("--max-distance: D:30 D:40 0 is not"));
    EXPECT_THAT(errorOf({"D30", "D:40", "20"}), HasSubstr("--max-distance: D30 D:40 20 is not"));
    EXPECT_THAT(errorOf({"D:", "D:40", "20"}), HasSubstr("is not A:N B:M D"));
    const std::string other = m_folder.Write("other.pdb", ReadFile(m_model));
    EXPECT_THAT(errorOf({"D:30", "D:40", "20", "--model", other}),
                AllOf(HasSubstr("the residue D:30 is in "),
                      HasSubstr("1tii_D_displaced/D:30 names the one of the first")));
}

TEST_F(Assemble, TheRestIsTheMapWithoutWhatIsPlaced) {
    const auto deviationOf = [&](const std::string &map) {
        const std::string text = OutputOf({"info", map});
        return std::stod(text.substr(text.find("standard deviation ") + 19));
    };
    const std::string rest = m_folder.File("rest.mrc");
    OutputOf(Words({"--model", m_model + "=auto", "--fixed", Example("1tii.pdb"), "--fixed-chains", "A,C",
                    "--rest", rest}));
    EXPECT_LT(deviationOf(rest), 0.55 * deviationOf(Example("1tii_8A.mrc")));
    const std::string all = ReadFile(rest), map = ReadFile(Example("1tii_8A.mrc"));
    EXPECT_EQ(all.size(), map.size());
    OutputOf(Words({"--model", m_model + "=1", "--rest", rest}));
    EXPECT_GT(deviationOf(rest), 0.7 * deviationOf(Example("1tii_8A.mrc"))) << "four copies are left";
}

TEST_F(Assemble, FixedPartsThatClashArePointedOut) {
    // Chain D and a copy of it 3 Å away.
    m_folder.Write("shift.txt", "1.00 0.00 0.00 0.00 2.00 1.00 0.00 1.00\n");
    OutputOf({"build", "--target", m_model, "--results", m_folder.File("shift.txt"), "--rank", "1", "--out",
              m_folder.File("shifted.pdb")});
    const std::string standing = m_folder.Write("standing.pdb", ReadFile(m_model));
    const Outcome outcome = Run(Words({"--model", ChainFile('A'), "--copies", "1", "--fixed", standing,
                                       "--fixed", m_folder.File("shifted.pdb")}));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.errors,
                AllOf(HasSubstr("fixed chain D of "), HasSubstr(" clash: more than a tenth")));
}

TEST_F(Assemble, ThreadsGiveTheSameFiles) {
    const auto filesOf = [&](const std::string &threads) {
        OutputOf(Words({"--model", m_model, "--copies", "3", "--threads", threads, "--assembly",
                        m_folder.File("placed.cif")}));
        return ReadFile(m_folder.File("placed.cif"));
    };
    EXPECT_EQ(filesOf("1"), filesOf("3"));
}

TEST_F(Assemble, RefusesWhatMakesNoAssembly) {
    const auto errorOf = [&](const std::vector<std::string> &more) { return ErrorOf(Words(more)); };
    EXPECT_EQ(errorOf({"--model", "a.pdb", "--copies", "0"}),
              "--copies: 0 is not a whole number of copies from 1 to 1000, or auto\n");
    EXPECT_EQ(errorOf({"--model", "a.pdb=many"}),
              "--model: a.pdb=many is not a whole number of copies from 1 to 1000, or auto\n");
    EXPECT_EQ(errorOf({"--model", "a.pdb", "--model", "a.pdb=3"}),
              "--model: a.pdb is given twice; ask for two copies of it instead\n");
    EXPECT_THAT(errorOf({"--model", "a.pdb=2", "--hands"}), HasSubstr("--hands is"));
    EXPECT_THAT(errorOf({"--model", "none.pdb=2"}), HasSubstr("none.pdb"));
    EXPECT_THAT(errorOf({"--model", Example("1tii_8A.mrc"), "--copies", "2"}),
                HasSubstr("1tii_8A.mrc: is a map; copies and several models are of structures"));
    EXPECT_THAT(errorOf({"--model", m_model + "=2", "--assembly", m_model}),
                HasSubstr("1tii_D_displaced.pdb"));
}

TEST_F(Assemble, AFileMayHaveAnEqualsSignInItsName) {
    const std::string file = m_folder.Write("chain=2.pdb", ReadFile(m_model));
    EXPECT_EQ(JsonOf({"--model", file + "=1"})["copies"].size(), 1u);
    EXPECT_EQ(JsonOf({"--model", file, "--copies", "2"})["copies"].size(), 2u);
}
