#include "Process.h"

#include "Collect.h"
#include "ModelGuard.h"
#include "TemporaryFolder.h"
#include "TestData.h"
#include "formats/structures/StructureFile.h"
#include "hosts/common/Chains.h"
#include "hosts/common/FitJson.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace VARNO;

using namespace hosts;
using nlohmann::json;

// Real fits with known right answers, by the program as a user runs it.

namespace {

std::string Data(const std::string &name) {
    return TestDataFolder() + "/" + name;
}

json ReadCase(const std::string &name) {
    const json file = json::parse(ReadFile(Data("cases.json")));
    for (const json &entry : file["cases"])
        if (entry["name"] == name)
            return entry;
    throw std::runtime_error("no case " + name);
}

std::string Joined(const std::vector<std::string> &texts) {
    std::string joined;
    for (const std::string &text : texts)
        joined += (joined.empty() ? "" : ",") + text;
    return joined;
}

std::vector<std::string> Words(const json &entry, const json &settings) {
    std::vector<std::string> words{"fit", "--quiet"};
    const auto add = [&](const std::string &option, const std::string &value) {
        words.insert(words.end(), {option, value});
    };
    add("--map", Data(entry["map"]));
    add("--target", Data(entry["target"]["file"]));
    add("--chain", entry["target"]["chain"]);
    if (!entry["solid"].is_null()) {
        add("--solid", Data(entry["solid"]["file"]));
        add("--solid-chains", Joined(entry["solid"]["chains"]));
    }
    if (!entry["restraints"].is_null())
        add("--restraints", Data(entry["restraints"]));
    add("--axis", settings["Axis"].dump());
    add("--rotation-step", settings["RotationStep"].dump());
    add("--translation-step", settings["TransStep"].dump());
    add("--translation-steps", settings["TransNum"].dump());
    add("--keep", settings["TopList"].dump());
    add("--inclusion-distance", settings["Marginal"].dump());
    return words;
}

Transform TransformOf(const json &numbers) {
    Quaternion rotation;
    rotation.Set(numbers[0], numbers[1], numbers[2], numbers[3]);
    return Transform(rotation, Vertex(numbers[4], numbers[5], numbers[6], false));
}

class Case {
public:
    explicit Case(const std::string &name)
        : m_entry(ReadCase(name)) {
        const std::string file = Data(m_entry["target"]["file"]);
        GetResidues(ChooseChain(file, formats::ReadStructure(file), std::string(m_entry["target"]["chain"])),
                    m_residues, true);
        m_truths.push_back(TransformOf(m_entry["truth"]["transform"]));
        for (const json &numbers : m_entry["symmetric_truths"])
            m_truths.push_back(TransformOf(numbers));
    }

    /// Solutions, the best first.
    std::vector<SolutionScore> Fit(const std::string &settings) const {
        const TemporaryFolder folder;
        const json &used = m_entry[m_entry.contains(settings) ? settings : "settings"];
        std::vector<std::string> words = Words(m_entry, used);
        words.insert(words.end(), {"--json", folder.File("fit.json")});
        const Outcome outcome = RunProgramProcess(words);
        EXPECT_EQ(outcome.status, 0) << outcome.errors;
        return ReadFitJson("fit.json", ReadFile(folder.File("fit.json"))).solutions;
    }

    /// Root mean square distance in Å of the target's residues from one of their right places.
    double Rmsd(const SolutionScore &solution, const Transform &truth) const {
        const Transform pose(solution.rotation, solution.translation);
        double squares = 0;
        for (const Compound *residue : m_residues)
            squares += (pose * residue->GetPosition() - truth * residue->GetPosition()).SquaredLength();
        return std::sqrt(squares / double(m_residues.size()));
    }

    /// From the nearest right place.
    double Rmsd(const SolutionScore &solution) const {
        double nearest = INFINITY;
        for (const Transform &truth : m_truths)
            nearest = std::min(nearest, Rmsd(solution, truth));
        return nearest;
    }

    void ExpectFound(const std::string &settings) const {
        const std::vector<SolutionScore> solutions = Fit(settings);
        const std::size_t rank = m_entry["expect"]["rank"];
        ASSERT_GE(solutions.size(), rank);
        double best = INFINITY;
        for (std::size_t i = 0; i < rank; ++i)
            best = std::min(best, Rmsd(solutions[i]));
        EXPECT_LE(best, double(m_entry["tolerance_rmsd"]));
        testing::Test::RecordProperty("rmsd", std::to_string(best));
        std::printf("%s: RMSD %.2f Å\n", std::string(m_entry["name"]).c_str(), best);
    }

    const std::vector<Transform> &Truths() const { return m_truths; }
    double Tolerance() const { return m_entry["tolerance_rmsd"]; }

private:
    ModelGuard m_guard;
    json m_entry;
    std::vector<Compound *> m_residues;
    std::vector<Transform> m_truths;
};

} // namespace

#ifdef MORVANEX_SANITIZED
constexpr bool sanitized = true;
#else
constexpr bool sanitized = false;
#endif

#define REQUIRE_SPEED()                                                                                      \
    if (sanitized)                                                                                           \
    GTEST_SKIP() << "takes minutes under the sanitizers"

class RealFit : public testing::TestWithParam<const char *> {};

TEST_P(RealFit, FindsTheRightPlace) {
    REQUIRE_TEST_DATA();
    Case(GetParam()).ExpectFound("settings_quick");
}

TEST_P(RealFit, FindsTheRightPlaceWithItsFullSettings) {
    REQUIRE_TEST_DATA();
    REQUIRE_SPEED();
    Case(GetParam()).ExpectFound("settings");
}

INSTANTIATE_TEST_SUITE_P(Cases, RealFit,
                         testing::Values("actin_5168", "1z5s_C_solid", "ubi_restraints", "ake_10A",
                                         "tii_sym5", "tii_D_solid"));

TEST(RealFits, HoldAllPlacesOfASymmetricComplex) {
    REQUIRE_TEST_DATA();
    REQUIRE_SPEED();
    const Case pentamer("tii_sym5");
    const std::vector<SolutionScore> solutions = pentamer.Fit("settings");
    for (const Transform &truth : pentamer.Truths())
        EXPECT_TRUE(std::ranges::any_of(solutions, [&](const SolutionScore &solution) {
            return pentamer.Rmsd(solution, truth) <= pentamer.Tolerance();
        }));
}
