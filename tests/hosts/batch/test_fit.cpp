#include "FitFixture.h"

#include "hosts/common/Chains.h"
#include "hosts/common/FitJson.h"
#include "hosts/common/FitOptions.h"

#include "Collect.h"
#include "Messages.h"
#include "ModelGuard.h"
#include "Parameters.h"
#include "RunFit.h"
#include "formats/maps/MapFile.h"
#include "formats/structures/StructureFile.h"
#include "solutions/ResultsFile.h"

#include <nlohmann/json.hpp>

#include <QBuffer>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>

using namespace VARNO;

using namespace hosts;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

std::vector<std::string> Lines(const std::string &text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

/// The JSON file without what differs from run to run.
nlohmann::json WithoutTime(const std::string &file) {
    auto json = nlohmann::json::parse(ReadFile(file));
    json["counts"].erase("seconds");
    return json;
}

/// The solutions of a JSON file.
std::vector<SolutionScore> Saved(const std::string &file) {
    return ReadFitJson(file, ReadFile(file)).solutions;
}

/// A monitor that lets the search run.
class Nobody : public search::FitMonitor {
    void Started(const fit::Preparation &) override {}
    bool IsCancelled() override { return false; }
    void IdentityDone(std::size_t) override {}
    void AxisDone(std::size_t, std::size_t, double) override {}
    void Cancelled() override {}
    void Finished() override {}
};

/// The results file of the fixture's fit, made without the program.
std::string EngineResults(const std::string &map, const std::string &model, const std::string &log) {
    const ModelGuard guard;
    const Messages silence;
    const auto *clump = formats::ReadStructure(model);
    fit::FitParameters parameters;
    parameters.angleStep = Radians(30);
    parameters.translationStep = 3;
    parameters.translationCount = 3;
    parameters.keep = 20;
    parameters.logging = true;
    parameters.log = QString::fromStdString(log);
    parameters.inclusionDistance = 60;
    parameters.target = ChooseChain(model, clump, "A");
    parameters.map = formats::ReadMap(map);
    GetResidues(ChooseChain(model, clump, "B"), parameters.solid, true);
    std::list<SolutionScore> solutions;
    Nobody nobody;
    ::RunFit(parameters, solutions, nobody);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    solutions::WriteResults(buffer, solutions);
    return buffer.data().toStdString();
}

} // namespace

class Fit : public FitFixture {};

TEST_F(Fit, WritesTheBytesThatTheEngineGives) {
    const Outcome outcome =
        RunFit({"--solid", File("model.pdb"), "--results", File("r"), "--log", File("l")});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(ReadFile(File("r")), EngineResults(File("map.mrc"), File("model.pdb"), File("engine-log")));
    EXPECT_EQ(ReadFile(File("l")), ReadFile(File("engine-log")));
    EXPECT_EQ(Lines(ReadFile(File("r"))).size(), 21u);
}

TEST_F(Fit, GivesTheSameBytesTwice) {
    for (const std::string run : {"1", "2"})
        EXPECT_EQ(RunFit({"--results", File("r" + run), "--log", File("l" + run), "--json", File("j" + run),
                          "--models", "2", "--model-prefix", File("m" + run + "-")})
                      .status,
                  0);
    EXPECT_EQ(ReadFile(File("r1")), ReadFile(File("r2")));
    EXPECT_EQ(ReadFile(File("l1")), ReadFile(File("l2")));
    EXPECT_EQ(WithoutTime(File("j1")), WithoutTime(File("j2")));
    EXPECT_EQ(ReadFile(File("m1-2.pdb")), ReadFile(File("m2-2.pdb")));
}

TEST_F(Fit, GivesTheSameBytesOnAnyNumberOfThreads) {
    for (const std::string threads : {"1", "2", "8"})
        EXPECT_EQ(
            RunFit({"--axis", "2", "--translation-steps", "9", "--solid", File("model.pdb"), "--threads",
                    threads, "--results", File("r" + threads), "--json", File("j" + threads)})
                .status,
            0);
    for (const std::string threads : {"2", "8"}) {
        EXPECT_EQ(ReadFile(File("r" + threads)), ReadFile(File("r1")));
        EXPECT_EQ(WithoutTime(File("j" + threads)), WithoutTime(File("j1")));
    }
}

TEST_F(Fit, SavesThePosesOfTheResultsFileInFullPrecision) {
    EXPECT_EQ(RunFit({"--results", File("r"), "--json", File("j")}).status, 0);
    std::vector<SolutionScore> solutions = Saved(File("j"));
    std::string lines = SolutionScore::getFormatComment().toStdString() + '\n';
    for (auto solution = solutions.rbegin(); solution != solutions.rend(); ++solution)
        lines += solution->getLine().toStdString() + '\n';
    EXPECT_EQ(ReadFile(File("r")), lines);
}

TEST_F(Fit, SavesSettingsAndCounts) {
    EXPECT_EQ(
        RunFit({"--json", File("j"), "--solid", File("model.pdb"), "--inclusion-distance", "35.5"}).status,
        0);
    const auto json = nlohmann::json::parse(ReadFile(File("j")));
    EXPECT_EQ(json["input"]["map"], File("map.mrc"));
    EXPECT_EQ(json["input"]["chain"], "A");
    EXPECT_EQ(json["input"]["solids"], nlohmann::json::array({File("model.pdb")}));
    EXPECT_EQ(json["settings"]["axis"], 0);
    EXPECT_EQ(json["settings"]["rotationStep"], 30.0);
    EXPECT_EQ(json["settings"]["translationSteps"], 3);
    EXPECT_EQ(json["settings"]["inclusionDistance"], 35.5);
    EXPECT_EQ(json["counts"]["axes"], 6);
    EXPECT_EQ(json["counts"]["axesDone"], 6);
    EXPECT_EQ(json["counts"]["translations"], 27);
    EXPECT_EQ(json["counts"]["poses"], 27 * (1 + 6 * int(json["counts"]["angles"])));
    EXPECT_LT(json["counts"]["accepted"], json["counts"]["poses"]);
    EXPECT_GT(json["counts"]["accepted"], 0);
    EXPECT_EQ(json["solutions"].size(), 20u);
}

TEST_F(Fit, MovesTheWholeTargetByThePose) {
    EXPECT_EQ(RunFit({"--json", File("j"), "--models", "2", "--model-prefix", File("m-")}).status, 0);
    const ModelGuard guard;
    std::vector<Compound *> start, model;
    GetAtoms(ChooseChain("", formats::ReadStructure(File("model.pdb")), "A"), start, true);
    GetAtoms(formats::ReadStructure(File("m-2.pdb")), model, true);
    const SolutionScore second = Saved(File("j"))[1];
    const Transform pose(second.rotation, second.translation);
    ASSERT_EQ(model.size(), start.size());
    for (std::size_t i = 0; i < model.size(); ++i)
        for (const unsigned k : {0u, 1u, 2u})
            EXPECT_NEAR(model[i]->GetPosition()[k], (pose * start[i]->GetPosition())[k], 0.001);
    EXPECT_FALSE(std::filesystem::exists(File("m-3.pdb")));
}

TEST_F(Fit, WritesNoMoreModelsThanAreKept) {
    const Outcome outcome = RunFit({"--keep", "10", "--models", "200", "--model-prefix", File("m-")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.errors, HasSubstr("warning: 200 models were asked for, only 10 solutions kept\n"));
    EXPECT_TRUE(std::filesystem::exists(File("m-01.pdb")));
    EXPECT_TRUE(std::filesystem::exists(File("m-10.pdb")));
    EXPECT_EQ(Contents().size(), 12u);
}

TEST_F(Fit, TellsWhatWasRead) {
    Put("r.txt", "ALA3 20 20 20\nALA99 1 2 3\n");
    const Outcome outcome = RunFit({"--solid", File("model.pdb"), "--restraints", File("r.txt")});
    EXPECT_THAT(outcome.output, StartsWith("Map         " + File("map.mrc") +
                                           "\n"
                                           "            24 x 24 x 24 voxels of 2.000 x 2.000 x 2.000 Å\n"
                                           "            origin (0.00, 0.00, 0.00) Å, from the header's "));
    EXPECT_THAT(outcome.output, HasSubstr("Target      " + File("model.pdb") +
                                          "\n"
                                          "            chain A, 12 residues, centre ("));
    EXPECT_THAT(outcome.output,
                HasSubstr("Solid       " + File("model.pdb") +
                          "\n"
                          "            chain B\n"
                          "            left out: A (the target)\n"
                          "            12 of 12 residues lie within 60 Å of the target's centre\n"
                          "Restraints  " +
                          File("r.txt") +
                          "\n"
                          "            1 restraint on residues of the target\n"));
    EXPECT_THAT(outcome.output, HasSubstr("Search      6 axes, turned about in steps of 30°\n"
                                          "            3 x 3 x 3 translations in steps of 3 Å\n"));
}

TEST_F(Fit, ShowsTheTenBest) {
    const std::vector<std::string> lines = Lines(RunFit({"--quiet", "--json", File("j")}).output);
    ASSERT_GT(lines.size(), 14u);
    EXPECT_THAT(lines[0], ContainsRegex("^1,[0-9]{3} poses in [0-9.]+ s, [0-9,]+ accepted, 20 kept$"));
    EXPECT_EQ(lines[2], "Rank        Score  SD above mean  Turn, °  Centre moved, Å");
    const auto json = nlohmann::json::parse(ReadFile(File("j")));
    const SolutionScore best = Saved(File("j"))[0];
    const double above = (best.score - double(json["sample"]["mean"])) / double(json["sample"]["deviation"]);
    char start[64];
    std::snprintf(start, sizeof start, "%4d%13.3f%15.2f", 1, best.score, above);
    EXPECT_THAT(lines[3], StartsWith(start));
    EXPECT_THAT(lines[12], StartsWith("  10"));
    EXPECT_THAT(lines[14],
                ContainsRegex("^Scores are compared with 1[0-9]+ poses spread evenly over the search"));
}

TEST_F(Fit, TellsTurnAndDisplacementFromTheStart) {
    // One pose: the start itself.
    const Outcome still = RunFit({"--translation-steps", "1", "--rotation-step", "360", "--keep", "1"});
    EXPECT_THAT(still.output, ContainsRegex("\n   1 +[0-9.]+ +- +0\\.0 +0\\.00\n"));
    // Turns about the centre, which stays where it is; one by 240 degrees is one by 120.
    const Outcome turned =
        RunFit({"--quiet", "--translation-steps", "1", "--rotation-step", "240", "--keep", "7"});
    std::size_t rows = 0;
    for (const std::string &line : Lines(turned.output))
        if (line.starts_with("   ") && ++rows) {
            EXPECT_THAT(line, ContainsRegex(" (0|120)\\.0 +0\\.00$"));
        }
    EXPECT_EQ(rows, 7u);
}

TEST_F(Fit, SaysWhatScoresAreComparedWith) {
    EXPECT_THAT(RunFit().output,
                HasSubstr("\nScores are compared with 1809 poses spread evenly over the search:\n"));
    EXPECT_THAT(
        RunFit({"--solid", File("model.pdb"), "--translation-step", "8"}).output,
        ContainsRegex(
            "\nScores are compared with those [0-9]+ of 1809 poses, spread evenly over the search, that do "
            "not clash:\nmean [0-9.]+, standard deviation \\(SD\\) [0-9.]+\\.\n"));
}

TEST_F(Fit, GivesRanksInTheFileWhereTheListIsUnsorted) {
    const Outcome outcome = RunFit({"--keep", "100000", "--results", File("r"), "--quiet"});
    EXPECT_THAT(outcome.output, HasSubstr("Centre moved, Å  Rank in file\n"));
    std::vector<std::string> file = Lines(ReadFile(File("r")));
    const std::vector<std::string> shown = Lines(outcome.output);
    const std::string best =
        *std::ranges::find_if(shown, [](const std::string &line) { return line.starts_with("   1 "); });
    const std::size_t rank = std::stoul(best.substr(best.find_last_of(' ')));
    EXPECT_EQ(std::stod(file[file.size() - rank].substr(49)), std::stod(best.substr(5)));
    EXPECT_THAT(RunFit().output, Not(HasSubstr("Rank in file")));
}

TEST_F(Fit, KeepsProgressApartFromResults) {
    const Outcome loud = RunFit(longSearch), quiet = RunFit({"--quiet"});
    EXPECT_THAT(loud.errors, HasSubstr("morvanex fit: 100 % done"));
    EXPECT_THAT(loud.output, Not(HasSubstr("% done")));
    EXPECT_EQ(quiet.errors, "");
    EXPECT_EQ(RunFit().errors, "") << "a short search needs no progress";
    EXPECT_THAT(quiet.output, Not(HasSubstr("Map  ")));
    EXPECT_THAT(quiet.output, HasSubstr("Rank "));
}

TEST_F(Fit, TakesTheFirstPolymerChainByDefault) {
    Put("water-first.pdb",
        "HETATM    1  O   HOH W   1       1.000   2.000   3.000  1.00  0.00           O\n" + m_chainB +
            m_chainA + "END\n");
    EXPECT_THAT(RunFit({"--target", File("water-first.pdb"), "--chain", "-"}).output,
                HasSubstr("chain B, 12 residues"));
}

TEST_F(Fit, FindsAChainWithoutIdentifier) {
    std::string blank = m_chainA;
    for (std::size_t line = 0; line < blank.size(); line = blank.find('\n', line) + 1)
        if (blank.compare(line, 4, "ATOM") == 0)
            blank[line + 21] = ' ';
    Put("blank.pdb", blank + "END\n");
    for (const std::string chain : {" ", "-"})
        EXPECT_THAT(RunFit({"--target", File("blank.pdb"), "--chain", chain}).output,
                    HasSubstr("chain ' ', 12 residues"));
}

TEST_F(Fit, TakesTheSolidChainsThatAreNamed) {
    Put("other.pdb", m_chainB + "END\n");
    const Outcome both =
        RunFit({"--solid", File("model.pdb"), "--solid", File("other.pdb"), "--solid-chains", "B"});
    EXPECT_THAT(both.output, HasSubstr("24 of 24 residues"));
    const Outcome own = RunFit({"--solid", File("model.pdb"), "--solid-chains", "A,B"});
    EXPECT_THAT(own.output, HasSubstr("chains A, B\n"));
    const Outcome far = RunFit({"--solid", File("other.pdb"), "--inclusion-distance", "1"});
    EXPECT_EQ(far.status, 0);
    EXPECT_THAT(far.errors,
                StartsWith("morvanex fit: warning: the solid has no effect: none of its residues lies within "
                           "1 Å of the target's centre\n"));
}

TEST_F(Fit, SaysWhatWasReadOtherwiseThanItStands) {
    std::string map = ReadFile(File("map.mrc"));
    map.replace(212, 4, std::string(4, '\0'));
    map.replace(1024, 4, "\xff\xff\xff\x7f");
    Put("odd.mrc", map);
    Put("odd.pdb",
        m_chainA + "ATOM     99  N   ALA A  13      50.000  50.000  50.000  1.00  0.00           N\nEND\n");
    Put("restraints.txt", "ALA3 20 20 20\nALA99 1 2 3\n");
    const Outcome outcome = RunFit(
        {"--map", File("odd.mrc"), "--target", File("odd.pdb"), "--restraints", File("restraints.txt")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.errors, HasSubstr("warning: " + File("odd.mrc") + ": "));
    EXPECT_THAT(outcome.errors, HasSubstr("stamp"));
    EXPECT_THAT(outcome.errors, HasSubstr("finite"));
    EXPECT_THAT(outcome.errors,
                HasSubstr("warning: " + File("odd.pdb") +
                          ": chain A: skips 1 residue without a position (an atom CA, C4' or P)\n"));
    EXPECT_THAT(outcome.errors,
                HasSubstr("warning: " + File("restraints.txt") +
                          ": the target has no residue of that name with a position: ALA99\n"));
}

TEST_F(Fit, SavesTheDistancesFromRestraints) {
    Put("restraints.txt", "ALA3 20 20 20\nALA5 1 2 3\nALA3 0 0 0\n");
    EXPECT_EQ(RunFit({"--restraints", File("restraints.txt"), "--json", File("j")}).status, 0);
    EXPECT_EQ(Saved(File("j"))[0].extraScores.size(), 3u);
}

TEST_F(Fit, TellsWhenNoPoseIsAccepted) {
    const Outcome outcome = RunFit({"--solid", File("model.pdb"), "--solid-chains", "A", "--results",
                                    File("r"), "--translation-steps", "1", "--rotation-step", "360"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("0 accepted, 0 kept\n"));
    EXPECT_THAT(
        outcome.errors,
        HasSubstr("warning: no pose was accepted: the target clashes with the fixed chains everywhere"));
    EXPECT_EQ(ReadFile(File("r")), SolutionScore::getFormatComment().toStdString() + '\n');
}

// Bad input: an error that names file, place and value, exit status 1, and nothing left behind.

TEST_F(Fit, RefusesUnreadableInputs) {
    Put("empty", "");
    Put("text", "some words\nof no format at all\n");
    Put("short.mrc", ReadFile(File("map.mrc")).substr(0, 5000));
    const std::string cut = File("short.mrc"), empty = File("empty"), text = File("text"),
                      absent = File("absent");
    for (const std::string option : {"--map", "--target", "--solid"}) {
        ExpectRefused({option, absent}, absent + ": cannot be read: No such file or directory");
        ExpectRefused({option, empty}, empty + ": ");
        ExpectRefused({option, text}, text + ": ");
        ExpectRefused({option, std::filesystem::path(absent).parent_path()},
                      ": cannot be read: Is a directory");
        ExpectRefused({option, cut}, cut + ": ");
    }
    ExpectRefused({"--map", File("model.pdb")}, File("model.pdb") + ": ");
    ExpectRefused({"--target", File("map.mrc")}, File("map.mrc") + ": ");
}

TEST_F(Fit, RefusesInputsWithoutPermission) {
    if (geteuid() == 0)
        GTEST_SKIP() << "root may read everything";
    for (const std::string name : {"map.mrc", "model.pdb"}) {
        std::filesystem::permissions(File(name), std::filesystem::perms::none);
        EXPECT_THAT(RunFit().errors, HasSubstr(File(name) + ": cannot be read: Permission denied"));
        std::filesystem::permissions(File(name), std::filesystem::perms::owner_all);
    }
}

TEST_F(Fit, RefusesMapsWithAnImpossibleHeader) {
    const auto refuse = [&](std::size_t word, const std::string &bytes, const std::string &value) {
        std::string map = ReadFile(File("map.mrc"));
        map.replace(4 * (word - 1), 4, bytes);
        ExpectRefused({"--map", Put("bad.mrc", map)}, File("bad.mrc") + ": ");
        EXPECT_THAT(RunFit({"--map", File("bad.mrc")}).errors, HasSubstr(value));
    };
    refuse(1, std::string("\xff\xff\xff\x7f", 4), "2147483647");
    refuse(1, std::string("\xfb\xff\xff\xff", 4), "-5");
    refuse(4, std::string("\x03\0\0\0", 4), "3");
    refuse(11, std::string("\0\0\0\0", 4), "0");
    refuse(12, std::string("\0\0\x80\xbf", 4), "-1");
    refuse(13, std::string("\0\0\x80\x7f", 4), "inf");
    refuse(15, std::string("\0\0\xc8\x42", 4), "100");
}

TEST_F(Fit, RefusesStructuresWithoutAUsableChain) {
    ExpectRefused({"--chain", "C"},
                  File("model.pdb") + ": chain C: there is no such polymer chain, only A, B");
    Put("hetero.pdb",
        "HETATM    1  O   HOH A   1       1.000   2.000   3.000  1.00  0.00           O\nEND\n");
    ExpectRefused({"--target", File("hetero.pdb")}, File("hetero.pdb") + ": ");
    std::string noPosition;
    for (const std::string &line : Lines(m_chainA))
        if (line.find(" CA ") == std::string::npos)
            noPosition += line + '\n';
    Put("noca.pdb", noPosition + "END\n");
    ExpectRefused({"--target", File("noca.pdb")},
                  File("noca.pdb") + ": chain A: no residue has a position (an atom CA, C4' or P)");
    ExpectRefused({"--solid", File("model.pdb"), "--solid-chains", "B,X"},
                  "--solid-chains: no solid file has a polymer chain 'X'");
    Put("only-a.pdb", m_chainA + "END\n");
    ExpectRefused({"--target", File("only-a.pdb"), "--solid", File("only-a.pdb")},
                  File("only-a.pdb") + ": no polymer chain is left for the solid, the file has A");
    ExpectRefused({"--solid", File("model.pdb"), "--solid", File("model.pdb")},
                  File("model.pdb") + ": is given twice as a solid");
}

TEST_F(Fit, RefusesRestraintsThatMakeNoSense) {
    const auto refuse = [&](const std::string &content, const std::string &error) {
        ExpectRefused({"--restraints", Put("restraints.txt", content)}, File("restraints.txt") + error);
    };
    refuse(ReadFile(File("map.mrc")), ": is not a text file");
    refuse("ALA3 1 2 3\nALA4 1 x 3\n", ": line 2: 'x', a coordinate of 'ALA4', is not a number");
    refuse("GLY3 1 2 3\nALA99 1 2 3\n",
           ": no record names a residue of the target: the target has no residue of that name with a "
           "position: GLY3, ALA99");
    refuse("", ": holds no restraint");
    ExpectRefused({"--restraints", File("absent")},
                  File("absent") + ": cannot be read: No such file or directory");
}

TEST_F(Fit, RefusesRotationStepsThatLeadNowhere) {
    for (const std::string step : {"0", "-5", "nan", "inf"})
        ExpectRefused({"--rotation-step", step}, "The rotation step is " + step + " degrees");
    ExpectRefused({"--rotation-step", "1e-14"}, "too small");
}

TEST_F(Fit, RefusesAFitOfYearsUnlessForced) {
    const std::vector<std::string> years{"--rotation-step", "0.0000001", "--translation-steps", "101",
                                         "--axis",          "3"};
    const Outcome outcome = RunFit(years);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("The fit would try "));
    EXPECT_THAT(outcome.errors, ContainsRegex(" At [0-9,]+ poses a second, measured on this machine, that "
                                              "takes about [0-9.e+]+ years; --force runs it\\.\n$"));
    std::vector<std::string> forced = Words(years);
    forced.push_back("--force");
    Process process(forced);
    EXPECT_TRUE(process.WaitFor("Search "));
    process.Send(SIGKILL);
    EXPECT_EQ(process.Finish().errors, "");
}

TEST_F(Fit, RefusesWhatMemoryCannotHold) {
    for (const std::vector<std::string> &options : std::vector<std::vector<std::string>>{
             {"--translation-steps", "100001"}, {"--axis", "30"}, {"--keep", "2147483647"}}) {
        std::vector<std::string> forced = options;
        forced.push_back("--force");
        ExpectRefused(options, "GiB");
        ExpectRefused(forced, "GiB");
    }
}

TEST_F(Fit, RefusesSettingsOutOfRange) {
    ExpectRefused({"--axis", "-1"}, "--axis: -1 is not a whole number from 0 to 99");
    ExpectRefused({"--translation-step", "inf"}, "--translation-step: inf is not a finite number of Å");
    ExpectRefused({"--log", "caf\xE9.log"}, "--log: caf\xE9.log is not a name in UTF-8");
}

TEST_F(Fit, RefusesWrongUsageWithStatusTwo) {
    const Outcome outcome = RunProgramProcess({"fit", "--map", "m", "--axis", "two", "--target", "t"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors,
              "morvanex fit: error: --axis: 'two' is not a whole number (--help explains the options)\n");
    EXPECT_EQ(RunProgramProcess({}).status, 2);
    EXPECT_EQ(RunProgramProcess({"fit", "--map", "m"}).status, 2);
}

TEST_F(Fit, RefusesOutputsThatCannotBeWritten) {
    Put("restraints.txt", "ALA3 1 2 3\n");
    std::filesystem::create_symlink("map.mrc", File("link"));
    std::filesystem::create_hard_link(File("model.pdb"), File("hard"));
    for (const std::string option : {"--results", "--log", "--json", "--report"}) {
        ExpectRefused({option, File("none/file")}, File("none/file") + ": cannot be written");
        ExpectRefused({option, std::filesystem::path(File("x")).parent_path()},
                      ": cannot be written: it is a directory");
        ExpectRefused({option, File("model.pdb")}, File("model.pdb") + ": is an input");
        ExpectRefused({option, File("map.mrc")}, File("map.mrc") + ": is an input");
        ExpectRefused({option, File("link")}, File("link") + ": is an input");
        ExpectRefused({option, File("hard")}, File("hard") + ": is an input");
        ExpectRefused({"--restraints", File("restraints.txt"), option, File("restraints.txt")},
                      File("restraints.txt") + ": is an input");
    }
    ExpectRefused({"--models", "1", "--model-prefix", File("none/m")},
                  File("none/m1.pdb") + ": cannot be written");
}

TEST_F(Fit, RefusesOneFileForTwoOutputs) {
    Put("old", "precious");
    std::filesystem::create_symlink("old", File("link"));
    ExpectRefused({"--results", File("old"), "--log", File("old")},
                  File("old") + ": is named for two outputs");
    ExpectRefused({"--results", File("old"), "--json", File("link")},
                  File("link") + ": is named for two outputs");
    ExpectRefused({"--models", "2", "--model-prefix", File("m"), "--log", File("m2.pdb")},
                  File("m2.pdb") + ": is named for two outputs");
}

TEST_F(Fit, RefusesALogThatIsAPipe) {
    ASSERT_EQ(mkfifo(File("pipe").c_str(), 0600), 0);
    ExpectRefused({"--log", File("pipe")}, File("pipe") + ": is a pipe; the log needs a file");
}

TEST_F(Fit, LeavesOldFilesWhereTheDiskIsFull) {
    Put("r", "old results");
    Put("j", "old json");
    auto expected = Contents();
    const Outcome outcome = RunFit(
        {"--results", File("r"), "--json", File("j"), "--models", "1", "--model-prefix", File("m-")}, 300);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("error: " + File("r") + ": cannot be written: File too large\n"));
    EXPECT_THAT(outcome.errors, HasSubstr("error: " + File("j") + ": cannot be written: File too large\n"));
    EXPECT_THAT(outcome.errors,
                HasSubstr("error: " + File("m-1.pdb") + ": cannot be written: File too large\n"));
    EXPECT_THAT(outcome.output, HasSubstr("Rank ")) << "what was found is still shown";
    EXPECT_EQ(Contents(), expected);
}

TEST_F(Fit, WritesTheOtherFilesWhereOneFails) {
    const Outcome outcome = RunFit({"--results", "/dev/full", "--json", File("j")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("error: /dev/full: cannot be written: No space left on device\n"));
    EXPECT_EQ(Saved(File("j")).size(), 20u);
}

TEST_F(Fit, StopsWhereTheLogCannotBeWritten) {
    const auto before = Contents();
    const Outcome outcome = RunFit({"--log", "/dev/full", "--results", File("r")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors,
                HasSubstr("error: /dev/full: cannot be written: No space left on device; the fit was "
                          "stopped\n"));
    EXPECT_EQ(Contents(), before);
}

TEST_F(Fit, NoticesThatStandardOutputIsFull) {
    const std::string command = std::string(MORVANEX_PROGRAM) + " fit --quiet --map " + File("map.mrc") +
                                " --target " + File("model.pdb") +
                                " --axis 0 --rotation-step 90 --translation-steps 1 >/dev/full 2>" +
                                File("errors");
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 1);
    EXPECT_EQ(ReadFile(File("errors")), "morvanex fit: error: standard output cannot be written\n");
}

// Signals

TEST_F(Fit, StopsAtASignalAndWritesWhatWasFound) {
    for (const auto &[signal, name] :
         {std::pair(SIGINT, "Ctrl-C"), std::pair(SIGTERM, "SIGTERM"), std::pair(SIGHUP, "SIGHUP")}) {
        SCOPED_TRACE(name);
        std::vector<std::string> words = Words(longSearch);
        words.insert(words.end(), {"--results", File("r"), "--json", File("j"), "--models", "1",
                                   "--model-prefix", File("m-")});
        Process process(words);
        ASSERT_TRUE(process.WaitFor("% done"));
        process.Send(signal);
        const Outcome outcome = process.Finish();
        EXPECT_EQ(outcome.status, 128 + signal);
        EXPECT_THAT(outcome.errors, HasSubstr("\nStopping at the end of the current axis; "));
        EXPECT_THAT(outcome.errors,
                    ContainsRegex("warning: stopped by " + std::string(name) +
                                  " after [0-9]+ of 321 axes; what was found by then is written\n"));
        EXPECT_THAT(outcome.output, HasSubstr("20 kept"));
        EXPECT_EQ(Lines(ReadFile(File("r"))).size(), 21u);
        EXPECT_EQ(Saved(File("j")).size(), 20u);
        EXPECT_TRUE(std::filesystem::exists(File("m-1.pdb")));
        const auto json = nlohmann::json::parse(ReadFile(File("j")));
        EXPECT_LT(json["counts"]["axesDone"], 321);
        EXPECT_EQ(json["counts"]["poses"], longSteps * longSteps * longSteps *
                                               (1 + json["counts"]["axesDone"].get<long long>() *
                                                        json["counts"]["angles"].get<long long>()));
        for (const char *file : {"r", "j", "m-1.pdb"})
            std::filesystem::remove(File(file));
    }
}

TEST_F(Fit, SaysAtASignalHowLongALongAxisWillTake) {
    std::vector<std::string> words = Words({"--translation-steps", "51", "--rotation-step", "0.01"});
    words.insert(words.end(), {"--log", File("log")});
    Process process(words);
    // The log is written to the disk when the first pass has ended, after a buffer's worth at the latest.
    ASSERT_TRUE(process.WaitFor("Search "));
    while (!std::filesystem::exists(File("log")) ||
           std::filesystem::file_size(File("log")) < std::uintmax_t(51) * 51 * 51 * 61)
        usleep(1000);
    usleep(100'000);
    process.Send(SIGINT);
    ASSERT_TRUE(process.WaitFor("at once"));
    process.Send(SIGINT);
    EXPECT_THAT(
        process.Finish().errors,
        ContainsRegex("Stopping at the end of the current axis, within about [0-9]+ (h|min); Ctrl-C again"));
}

TEST_F(Fit, EndsAtOnceAtTheSecondSignal) {
    std::vector<std::string> words = Words({"--translation-steps", "51", "--rotation-step", "0.01"});
    words.insert(words.end(), {"--results", File("r"), "--log", File("log")});
    Process process(words);
    ASSERT_TRUE(process.WaitFor("Search "));
    while (!std::filesystem::exists(File("log")) || std::filesystem::file_size(File("log")) == 0)
        usleep(1000);
    process.Send(SIGINT);
    ASSERT_TRUE(process.WaitFor("Stopping"));
    process.Send(SIGINT);
    EXPECT_EQ(process.Finish().status, 130);
    EXPECT_FALSE(std::filesystem::exists(File("r")));
    EXPECT_EQ(Contents().size(), 3u) << "map, model and log";
}

// How the process was started

TEST_F(Fit, KeepsMessagesOutOfTheLogWhereStreamsAreClosed) {
    RunFit({"--log", File("expected")});
    std::string command = MORVANEX_PROGRAM;
    for (const std::string &word : Words({"--log", File("log"), "--keep", "0"}))
        command += " '" + word + "'";
    EXPECT_EQ(WEXITSTATUS(std::system((command + " <&- >&- 2>&-").c_str())), 0);
    EXPECT_EQ(ReadFile(File("log")), ReadFile(File("expected")));
}

// Numbers and settings

TEST_F(Fit, RefusesNumbersBeyondSinglePrecision) {
    ExpectRefused({"--solid", File("model.pdb"), "--inclusion-distance", "1e300"},
                  "--inclusion-distance: 1e+300 is not");
    ExpectRefused({"--translation-step", "1e39", "--json", File("j")}, "--translation-step: 1e+39 is not");
}

TEST_F(Fit, SavesAnInfiniteInclusionDistance) {
    EXPECT_EQ(
        RunFit({"--solid", File("model.pdb"), "--inclusion-distance", "inf", "--json", File("j")}).status, 0);
    EXPECT_THAT(ReadFile(File("j")), HasSubstr("\"inclusionDistance\": \"inf\"\n"));
    EXPECT_EQ(Saved(File("j")).size(), 20u);
}

TEST_F(Fit, WarnsOfATargetThatNeverTouchesTheMap) {
    std::string far = m_chainA;
    for (std::size_t line = 0; line < far.size(); line = far.find('\n', line) + 1)
        if (far.compare(line, 4, "ATOM") == 0)
            far.replace(line + 30, 8, "9000.000");
    const Outcome outcome = RunFit({"--target", Put("far.pdb", far + "END\n"), "--keep", "3"});
    EXPECT_EQ(outcome.status, 0);
    const std::string warning =
        "morvanex fit: warning: no pose of the search touches the map: the target lies 8,9";
    const std::size_t first = outcome.errors.find(warning);
    EXPECT_NE(first, std::string::npos) << outcome.errors;
    EXPECT_NE(outcome.errors.find(warning, first + 1), std::string::npos) << "before and after";
    EXPECT_THAT(outcome.errors, HasSubstr(" Å from it; are both in one frame?\n"));
    EXPECT_EQ(RunFit().errors, "");
}
