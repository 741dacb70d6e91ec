#include "fit/KeepOut.h"

#include "Assertion.h"

#include "DataAdder.h"
#include "DataMaker.h"
#include "Residue.h"

#include <algorithm>
#include <cmath>

using namespace VARNO;

namespace fit {

namespace {

double Distance(const Vertex &a, const Vertex &b) {
    return std::sqrt(double((a - b).SquaredLength()));
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

} // namespace

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

} // namespace fit
