#include "RealCase.h"

#include "Parameters.h"
#include "TestData.h"
#include "formats/maps/MapFile.h"
#include "formats/structures/StructureFile.h"

#include "Collect.h"

#include <cmath>

using namespace VARNO;

using nlohmann::json;

namespace {

json AllCases() {
    return json::parse(ReadFile(TestDataFolder() + "/cases.json")).at("cases");
}

Motion ToMotion(const json &numbers) {
    const auto n = numbers.get<std::array<double, 7>>();
    return {{n[0], n[1], n[2], n[3]}, {n[4], n[5], n[6]}};
}

Motion ToMotion(const SolutionScore &solution) {
    const auto &[r, t, score, extraScores] = solution;
    return {{r.w(), r.x(), r.y(), r.z()}, {t[0], t[1], t[2]}};
}

std::vector<Motion> RightAnswers(const json &description) {
    std::vector<Motion> answers = {ToMotion(description.at("truth").at("transform"))};
    for (const json &copy : description.at("symmetric_truths"))
        answers.push_back(ToMotion(copy));
    return answers;
}

} // namespace

std::array<double, 3> Apply(const Motion &motion, const Vertex &p) {
    const auto &[w, x, y, z] = motion.rotation;
    const auto &t = motion.translation;
    // p + 2 u × (u × p + w p) / |q|², u being the quaternion's vector part
    const double n = w * w + x * x + y * y + z * z;
    const double a = y * p[2] - z * p[1] + w * p[0], b = z * p[0] - x * p[2] + w * p[1],
                 c = x * p[1] - y * p[0] + w * p[2];
    return {p[0] + 2 * (y * c - z * b) / n + t[0], p[1] + 2 * (z * a - x * c) / n + t[1],
            p[2] + 2 * (x * b - y * a) / n + t[2]};
}

double Rmsd(const Motion &a, const Motion &b, const std::vector<TaggedPoint> &points) {
    double sum = 0;
    for (const auto &[p, tag] : points) {
        const auto first = Apply(a, p), second = Apply(b, p);
        for (const unsigned i : {0u, 1u, 2u})
            sum += (first[i] - second[i]) * (first[i] - second[i]);
    }
    return std::sqrt(sum / double(points.size()));
}

RealCase::RealCase(const std::string &name) {
    for (const json &description : AllCases())
        if (description.at("name") == name)
            m_case = description;
}

void RealCase::Load(const TemporaryFolder &folder, const std::string &structure) {
    const std::string data = TestDataFolder() + "/";
    const json &target = m_case.at("target"), &solid = m_case.at("solid");
    ResetEngine();
    Compound *model =
        formats::ReadStructure(structure.empty() ? data + target.at("file").get<std::string>() : structure);
    m_Target = FindChain(model, target.at("chain"));
    m_Map = formats::ReadMap(data + m_case.at("map").get<std::string>());
    if (!solid.is_null())
        for (const json &chain : solid.at("chains"))
            GetResidues(FindChain(model, chain), m_Solid, true);
    restraints = !m_case.at("restraints").is_null();
    if (restraints)
        re_fname = QString::fromStdString(data + m_case.at("restraints").get<std::string>());
    em_fname = QString::fromStdString(folder.File("poses.log"));
}

void RealCase::Set(const TemporaryFolder &folder, const std::string &settings) {
    const json &values = m_case.at(settings);
    Axis = values.at("Axis");
    gammaStep = Radians(values.at("RotationStep"));
    Step = values.at("TransStep");
    TCount = values.at("TransNum");
    top_size = values.at("TopList");
    SetMarginal(folder, values.at("Marginal").dump());
}

Transform RealCase::Truth() const {
    const auto [r, t] = RightAnswers(m_case).front();
    Quaternion rotation;
    rotation.Set(r[0], r[1], r[2], r[3]);
    return Transform(rotation, Vertex(float(t[0]), float(t[1]), float(t[2]), false));
}

Verdict RealCase::Judge(const std::list<SolutionScore> &solutions,
                        const std::vector<TaggedPoint> &points) const {
    const std::vector<Motion> answers = RightAnswers(m_case);
    const auto nearest = [&](const SolutionScore &solution) {
        double rmsd = INFINITY;
        for (const Motion &answer : answers)
            rmsd = std::min(rmsd, Rmsd(ToMotion(solution), answer, points));
        return rmsd;
    };
    const double tolerance = m_case.at("tolerance_rmsd");
    Verdict verdict;
    verdict.foundAt.resize(answers.size());
    std::size_t rank = solutions.size();
    for (const SolutionScore &solution : solutions) { // the worst first
        for (std::size_t i = 0; i < answers.size(); ++i)
            if (Rmsd(ToMotion(solution), answers[i], points) <= tolerance)
                verdict.firstWithin = verdict.foundAt[i] = rank;
        --rank;
    }
    SolutionScore rounded;
    rounded.setFromLine(solutions.back().getLine());
    verdict.firstRmsd = nearest(solutions.back());
    verdict.firstRmsdFromFile = nearest(rounded);
    return verdict;
}

std::vector<std::string> CaseNames() {
    std::vector<std::string> names;
    if (TestDataFolder().empty())
        return {"absent"};
    for (const json &description : AllCases())
        names.push_back(description.at("name"));
    return names;
}

Compound *FindChain(Compound *node, const std::string &identifier) {
    std::vector<Compound *> chains;
    GetPeptides(node, chains, true);
    for (Compound *chain : chains)
        if (chain->GetName() == identifier)
            return chain;
    ADD_FAILURE() << "no chain '" << identifier << "'";
    return nullptr;
}
