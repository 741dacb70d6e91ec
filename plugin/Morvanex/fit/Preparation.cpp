#include "fit/Preparation.h"

#include "base/Numbers.h"

#include "Assertion.h"
#include "Parameters.h"
#include "fit/Axes.h"

#include "Collect.h"
#include "Config.h"
#include "DataAdder.h"
#include "DataMaker.h"
#include "Group.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <map>
#include <sstream>

using namespace VARNO;

namespace fit {

namespace {

double Distance(const Vertex &a, const Vertex &b) {
    return std::sqrt(double((a - b).SquaredLength()));
}

Vertex Mean(const Vector<float, 3> &sum, std::size_t count) {
    const auto coordinate = [&](unsigned i) { return float(double(sum[i]) / double(count)); };
    return Vertex(coordinate(0), coordinate(1), coordinate(2), false);
}

/// Half-open range of node indices along one axis.
struct NodeRange {
    unsigned low, high;
};

/// The nodes along axis i that a solid point may reach, held inside the grid: far from the origin, where
/// floats are coarser than the margin, the range can leave it.
NodeRange NodesInside(const Vertex &p, const Grid &grid, unsigned i) {
    static constexpr const char *lowTexts[] = {"0 < low[ 0 ]", "0 < low[ 1 ]", "0 < low[ 2 ]"};
    static constexpr const char *highTexts[] = {"hgh[ 0 ] < ValSize[0]", "hgh[ 1 ] < ValSize[1]",
                                                "hgh[ 2 ] < ValSize[2]"};
    constexpr float reach = KeepOutLayout::reach, spacing = KeepOutLayout::spacing;
    const double count = grid.Dimensions()[i];
    const float origin = grid.Origin()[i];
    const double low = std::floor(((p[i] - reach) - origin) / spacing + 0.5f);
    const double high = double(std::floor(((p[i] + reach) - origin) / spacing + 0.5f)) + 1;
    if (!(0 < low))
        WarnAssertion(lowTexts[i], "Morvanex", 703);
    if (!(high < count))
        WarnAssertion(highTexts[i], "Morvanex", 704);
    return {unsigned(std::clamp(low, 0.0, count)), unsigned(std::clamp(high, 0.0, count))};
}

void FillAround(const Vertex &p, Grid &grid) {
    const NodeRange xs = NodesInside(p, grid, 0), ys = NodesInside(p, grid, 1), zs = NodesInside(p, grid, 2);
    for (unsigned k = zs.low; k < zs.high; ++k)
        for (unsigned j = ys.low; j < ys.high; ++j)
            for (unsigned i = xs.low; i < xs.high; ++i) {
                const double depth = KeepOutLayout::reach - Distance(p, grid.GetPoint(i, j, k));
                if (depth >= 0 && double(grid.GetValue(i, j, k)) < depth)
                    grid.SetValue(i, j, k, float(depth));
            }
}

void TellRestraints(const std::vector<RestraintRecord> &records) {
    for (const auto &[residue, position] : records)
        qDebug("Residue: %s should prefer position ( %s %s %s )", qUtf8Printable(residue),
               qPrintable(base::FixedNumber(position[0], 7, 3)),
               qPrintable(base::FixedNumber(position[1], 7, 3)),
               qPrintable(base::FixedNumber(position[2], 7, 3)));
}

void TellTarget(const Target &target) {
    for (std::size_t i = 0; i < target.invalidResidues; ++i)
        qDebug("Invalid Residues in structure");
    if (target.points.empty())
        WarnAssertion("0 < count", "Morvanex", 580);
    qDebug("Extra scores %zu", target.restraints.size() + 1);
}

void TellSolid(const Solid &solid) {
    for (std::size_t i = 0; i < solid.invalidResidues; ++i)
        qDebug("Invalid Residues in solid");
    std::ostringstream line;
    line.imbue(std::locale::classic());
    line << std::setprecision(3);
    const auto corner = [&line](const Vertex &v) -> std::ostream & {
        return line << std::setw(6) << v[0] << ',' << std::setw(6) << v[1] << ',' << std::setw(6) << v[2];
    };
    line << "Solid residues: " << solid.points.size() << ", box (";
    corner(solid.low) << ") - (";
    corner(solid.high) << ')';
    qDebug("%s", line.str().c_str());
}

} // namespace

QString RestraintKey(const Residue &residue) {
    return QString::fromStdString(residue.GetName() + residue.GetSeqId()).trimmed();
}

Target CollectTarget(Compound *chain, const std::vector<RestraintRecord> &records) {
    Target target;
    std::map<QString, std::vector<Vertex>> preferred;
    for (const auto &[key, position] : records)
        preferred[key].push_back(position);
    std::vector<Compound *> nodes;
    GetResidues(chain, nodes, true);
    Vector<float, 3> sum;
    for (const Compound *node : nodes) {
        const auto *residue = dynamic_cast<const Residue *>(node);
        if (!residue)
            continue;
        const Vertex position = residue->GetPosition();
        if (!position.IsValid()) {
            ++target.invalidResidues;
            continue;
        }
        if (const auto found = preferred.find(RestraintKey(*residue)); found != preferred.end())
            for (const Vertex &wanted : found->second)
                target.restraints.emplace_back(wanted, position);
        sum = sum + position;
        target.points.emplace_back(position, residue->GetCode());
    }
    target.centre = Mean(sum, target.points.size());
    return target;
}

Solid CollectSolid(const std::vector<Compound *> &residues, const Vertex &centre, float inclusionDistance) {
    Solid solid;
    for (const Compound *node : residues) {
        const auto *residue = dynamic_cast<const Residue *>(node);
        if (!residue || !residue->IsAttached())
            continue;
        const Vertex position = residue->GetPosition();
        if (!position.IsValid()) {
            ++solid.invalidResidues;
            continue;
        }
        if (!(Distance(position, centre) < double(inclusionDistance)))
            continue;
        if (solid.points.empty())
            solid.low = solid.high = position;
        for (const unsigned i : {0u, 1u, 2u}) {
            solid.low[i] = std::min(solid.low[i], position[i]);
            solid.high[i] = std::max(solid.high[i], position[i]);
        }
        solid.points.emplace_back(position, residue->GetCode());
    }
    return solid;
}

KeepOutLayout LayOutKeepOut(const Solid &solid) {
    constexpr float margin = 8.5f;
    KeepOutLayout layout;
    for (const unsigned i : {0u, 1u, 2u}) {
        const float low = solid.low[i] - margin;
        const float extent = (solid.high[i] + margin) - low;
        const double whole = std::trunc(double(extent) / 2.0);
        layout.nodes[i] = whole + 2;
        layout.origin[i] = float(double(low) - (2 * (whole + 1) - double(extent)) * 0.5);
    }
    return layout;
}

const Grid *BuildKeepOut(const Solid &solid) {
    if (solid.points.empty())
        return nullptr;
    const DataAdder<Compound> batch(Space::instance());
    if (!batch.MayAdd())
        return nullptr;
    const auto [nodes, origin] = LayOutKeepOut(solid);
    constexpr float spacing = KeepOutLayout::spacing;
    auto *grid = dynamic_cast<Grid *>(DataMaker::makeGrid(
        Space::instance(), "GridFix", unsigned(nodes[0]), unsigned(nodes[1]), unsigned(nodes[2]), origin[0],
        origin[1], origin[2], spacing, spacing, spacing, 90.0f, 90.0f, 90.0f));
    for (const auto &[position, tag] : solid.points)
        FillAround(position, *grid);
    return grid;
}

std::vector<Vertex> TranslationOffsets(int count, double step) {
    const int half = count / 2;
    const auto offset = [&](int i) { return float((i - half) * step); };
    std::vector<Vertex> offsets;
    if (count > 0)
        offsets.reserve(std::size_t(count) * std::size_t(count) * std::size_t(count));
    for (int i = 0; i < count; ++i)
        for (int j = 0; j < count; ++j)
            for (int k = 0; k < count; ++k)
                offsets.emplace_back(offset(i), offset(j), offset(k), false);
    return offsets;
}

int OddCount(int count) {
    return count % 2 == 0 ? count + 1 : count;
}

Survey SurveyFit() {
    Survey survey;
    if (restraints)
        survey.records = ReadRestraints(re_fname);
    survey.target = CollectTarget(m_Target, survey.records);
    survey.inclusionDistance = Config::GetSetting("Morvanex", "Marginal").ToFloat(nullptr);
    survey.solid = CollectSolid(m_Solid, survey.target.centre, survey.inclusionDistance);
    return survey;
}

Preparation PrepareFit(const Survey &survey, const Grid *map) {
    Preparation fit;
    fit.map = map;
    fit.target = survey.target;
    fit.angleStep = gammaStep;
    TCount = OddCount(TCount);
    TellRestraints(survey.records);
    fit.axes = RotationAxes(Axis);
    qDebug("Points %zu", fit.axes.size());
    TellTarget(survey.target);
    qDebug("Solid inclusion distance: %s", qPrintable(base::FixedNumber(survey.inclusionDistance, 7, 3)));
    if (!m_Solid.empty()) {
        TellSolid(survey.solid);
        fit.keepOut = BuildKeepOut(survey.solid);
    }
    fit.offsets = TranslationOffsets(TCount, Step);
    return fit;
}

} // namespace fit
