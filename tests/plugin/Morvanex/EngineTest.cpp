#include "EngineTest.h"

#include "Parameters.h"
#include "RandomFit.h"
#include "solutions/ResultsFile.h"
#include "solutions/Solution.h"

#include "Collect.h"
#include "Config.h"
#include "DataMaker.h"
#include "Space.h"

#include <QBuffer>

#include <cstdio>

using namespace VARNO;

namespace {

std::string Number(float number) {
    char text[40];
    std::snprintf(text, sizeof(text), "%.9g", number);
    return text;
}

Vertex ToVertex(const Point &p) {
    return Vertex(p[0], p[1], p[2], true);
}

SolutionScore ToSolution(const PlainRecord &record) {
    SolutionScore solution;
    const auto &[w, x, y, z] = record.rotation;
    solution.rotation.Set(w, x, y, z);
    solution.translation = ToVertex(record.translation);
    solution.score = record.score;
    solution.extraScores = record.extraScores;
    return solution;
}

std::string RestraintsText(const std::vector<PlainRestraint> &records) {
    std::string text;
    for (const auto &[key, p] : records)
        text += key + ' ' + Number(p[0]) + ' ' + Number(p[1]) + ' ' + Number(p[2]) + '\n';
    return text;
}

} // namespace

void ResetEngine() {
    Axis = TCount = top_size = 0;
    gammaStep = Step = 0;
    logging = restraints = false;
    em_fname = re_fname = QString();
    m_Target = m_Map = nullptr;
    m_Solid.clear();
    Solutions.clear();
}

void SetMarginal(const TemporaryFolder &folder, const std::string &text) {
    static int files = 0; // the toolkit keeps a settings file that it has read in memory
    const std::string name = "settings" + std::to_string(++files) + ".ini";
    Config::SetUserFile(folder.Write(name, "[Morvanex]\nMarginal=" + text + "\n"));
}

Compound *AddChain(const std::vector<PlainResidue> &residues) {
    Compound *molecule = DataMaker::makeMolecule(DataMaker::makeClump("model"), "model");
    Compound *chain = DataMaker::makeChain(molecule, "A", true);
    for (const auto &[name, sequenceId, position] : residues) {
        Compound *residue = DataMaker::makeGroup(chain, name, sequenceId);
        if (position)
            DataMaker::makeAtom(residue, "C", "CA", "1", ToVertex(*position), 1, "", 0, 0);
    }
    return chain;
}

std::vector<PlainResidue> ResiduesAt(const std::vector<Point> &positions) {
    std::vector<PlainResidue> residues;
    for (const Point &position : positions)
        residues.push_back({"GLY", std::to_string(residues.size() + 1), position});
    return residues;
}

std::vector<Compound *> ResiduesOf(Compound *node) {
    std::vector<Compound *> residues;
    GetResidues(node, residues, true);
    return residues;
}

Grid *AddMap(const PlainMap &map) {
    const auto &[size, origin, spacing, values] = map;
    auto *grid = dynamic_cast<Grid *>(DataMaker::makeGrid(nullptr, "map", size[0], size[1], size[2],
                                                          origin[0], origin[1], origin[2], spacing[0],
                                                          spacing[1], spacing[2], 90, 90, 90));
    std::ranges::copy(values, grid->Values().begin());
    return grid;
}

PlainMap ConstantMap(std::array<unsigned, 3> size, float value) {
    return {size, {0, 0, 0}, {1, 1, 1}, std::vector<float>(std::size_t(size[0]) * size[1] * size[2], value)};
}

const Grid *FindGrid(const std::string &name) {
    std::vector<Compound *> grids;
    GetItems<Grid>(Space::instance(), grids, true, nullptr, true);
    for (const Compound *grid : grids)
        if (grid->GetName() == name)
            return dynamic_cast<const Grid *>(grid);
    return nullptr;
}

void LoadFit(const FitInput &input, const TemporaryFolder &folder) {
    ResetEngine();
    SetMarginal(folder, Number(input.inclusionDistance));
    Axis = input.axisDepth;
    gammaStep = input.angleStep;
    Step = input.step;
    TCount = input.translationCount;
    top_size = input.keep;
    logging = input.logging;
    em_fname = QString::fromStdString(folder.File("poses.log"));
    restraints = !input.restraints.empty();
    re_fname = QString::fromStdString(folder.Write("restraints.txt", RestraintsText(input.restraints)));
    m_Target = AddChain(input.target);
    m_Solid = ResiduesOf(AddChain(input.solid));
    if (input.map)
        m_Map = AddMap(*input.map);
    for (const PlainRecord &record : input.earlier)
        Solutions.push_back(ToSolution(record));
}

FitOutcome EngineFit(const FitInput &input) {
    const TemporaryFolder folder;
    const ModelGuard guard;
    LoadFit(input, folder);
    RecordingMonitor monitor(input.cancelAfter);
    FitOutcome outcome;
    outcome.finished = RunFit(monitor);
    outcome.translationCount = TCount;
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    solutions::WriteResults(buffer, Solutions);
    outcome.results = buffer.data().toStdString();
    outcome.log = ReadFile(folder.File("poses.log"));
    outcome.list = FullPrecision(PlainSolutions());
    if (const Grid *grid = FindGrid("GridFix"))
        outcome.keepOut.assign(grid->Values().begin(), grid->Values().end());
    ResetEngine();
    return outcome;
}

std::string TextOfFits(unsigned seeds) {
    std::string text;
    for (unsigned seed = 0; seed < seeds; ++seed) {
        const FitOutcome outcome = EngineFit(RandomFit(seed));
        text += std::to_string(seed) + '\n' + outcome.results + outcome.log + outcome.list;
    }
    return text;
}

std::vector<PlainRecord> PlainSolutions() {
    std::vector<PlainRecord> records;
    for (const auto &[rotation, t, score, extraScores] : Solutions)
        records.push_back({{rotation.w(), rotation.x(), rotation.y(), rotation.z()},
                           {t[0], t[1], t[2]},
                           score,
                           extraScores});
    return records;
}

void RecordingMonitor::Started(const fit::Preparation &prepared) {
    calls.push_back("Started");
    fit = prepared;
    if (whenStarting)
        whenStarting();
}

bool RecordingMonitor::IsCancelled() {
    calls.push_back("IsCancelled");
    if (duringFit)
        duringFit();
    return m_cancelAt == m_asked++;
}

void RecordingMonitor::IdentityDone(std::size_t axes) {
    calls.push_back("IdentityDone of " + std::to_string(axes));
}

void RecordingMonitor::AxisDone(std::size_t done, std::size_t axes, double remaining) {
    calls.push_back("AxisDone " + std::to_string(done) + " of " + std::to_string(axes));
    minutes.push_back(remaining);
}
