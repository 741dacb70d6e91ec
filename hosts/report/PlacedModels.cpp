#include "hosts/report/PlacedModels.h"

#include "Collect.h"

#include <algorithm>
#include <cmath>
#include <tuple>

using placement::Point;
using placement::Volume;
using placement::VolumeView;

namespace report {

namespace {

VolumeView ViewOf(const VARNO::Grid &map) {
    const auto &size = map.Dimensions();
    const auto &voxel = map.Spacing();
    const auto &origin = map.Origin();
    return {{size[0], size[1], size[2]},
            {double(voxel[0]), double(voxel[1]), double(voxel[2])},
            {double(origin[0]), double(origin[1]), double(origin[2])},
            map.Values()};
}

/// A copy with the voxels in the opposite order along x.
Volume Mirrored(const VolumeView &map) {
    Volume mirrored{map.count, map.spacing, map.origin, {}};
    for (std::size_t k = 0; k < map.count[2]; ++k)
        for (std::size_t j = 0; j < map.count[1]; ++j) {
            const std::span<const float> row = map.Row(j, k);
            mirrored.values.insert(mirrored.values.end(), row.rbegin(), row.rend());
        }
    return mirrored;
}

Trace TraceOf(const VARNO::Chain *chain) {
    std::vector<VARNO::Compound *> residues;
    VARNO::GetResidues(const_cast<VARNO::Chain *>(chain), residues, true);
    Trace trace;
    for (const VARNO::Compound *residue : residues)
        if (const VARNO::Vertex at = residue->GetPosition(); at.IsValid())
            trace.push_back({double(at[0]), double(at[1]), double(at[2])});
    return trace;
}

std::vector<Trace> TracesOf(const ReportedModel &model) {
    std::vector<Trace> traces;
    std::ranges::transform(model.chains, std::back_inserter(traces), TraceOf);
    return traces;
}

std::vector<Trace> Moved(std::vector<Trace> traces, const ModelPose &pose) {
    const placement::Matrix rotation = MatrixOf(pose.rotation);
    for (Trace &trace : traces)
        for (Point &point : trace)
            point = rotation * point + pose.translation;
    return traces;
}

/// The value of the nearest voxel; nothing outside of the map.
std::optional<float> ValueNear(const VolumeView &map, const Point &point) {
    const Point from = point - map.origin;
    const std::array<double, 3> at{from.x / map.spacing[0], from.y / map.spacing[1], from.z / map.spacing[2]};
    std::array<std::size_t, 3> voxel{};
    for (unsigned axis = 0; axis < 3; ++axis) {
        const double nearest = std::round(at[axis]);
        if (!(nearest >= 0 && nearest <= double(map.count[axis] - 1)))
            return std::nullopt;
        voxel[axis] = std::size_t(nearest);
    }
    return map.values[map.Index(voxel[0], voxel[1], voxel[2])];
}

/// Mean and standard deviation of the values.
std::pair<double, double> MeanAndDeviation(const VolumeView &map) {
    double sum = 0, squares = 0;
    for (const float value : map.values) {
        sum += double(value);
        squares += double(value) * double(value);
    }
    const double number = double(std::max<std::size_t>(map.values.size(), 1)), mean = sum / number;
    return {mean, std::sqrt(std::max(0.0, squares / number - mean * mean))};
}

} // namespace

PlacedModels::PlacedModels(const Contents &contents, const Sources &sources)
    : m_sources(sources) {
    if (contents.isMirrored && !sources.movedMap)
        m_mirrored = Mirrored(ViewOf(*sources.map));
    std::tie(m_mean, m_deviation) = MeanAndDeviation(Map());
    const auto first =
        std::ranges::find_if(contents.rows, [this](const Row &row) { return ModelOf(row) != nullptr; });
    m_level = LevelAround(first == contents.rows.end() ? std::vector<Trace>() : TracesAt(*first));
}

VolumeView PlacedModels::Map() const {
    return m_mirrored ? VolumeView(*m_mirrored) : ViewOf(*m_sources.map);
}

double PlacedModels::LevelAround(const std::vector<Trace> &traces) const {
    std::vector<float> values;
    for (const Trace &trace : traces)
        for (const Point &point : trace)
            if (const std::optional<float> value = ValueNear(Map(), point))
                values.push_back(*value);
    const double low = m_mean + 2 * m_deviation;
    if (values.empty())
        return low;
    const auto tenth = values.begin() + std::ptrdiff_t(values.size() / 10);
    std::ranges::nth_element(values, tenth);
    return std::max(double(*tenth), low);
}

const ReportedModel *PlacedModels::ModelOf(const Row &row) const {
    const auto found = std::ranges::find(m_sources.models, row.model, &ReportedModel::file);
    return row.pose && found != m_sources.models.end() ? &*found : nullptr;
}

std::vector<Trace> PlacedModels::TracesAt(const Row &row) const {
    const ReportedModel *model = ModelOf(row);
    return model ? Moved(TracesOf(*model), *row.pose) : std::vector<Trace>();
}

std::optional<std::pair<VolumeView, double>> PlacedModels::MovedMap() const {
    if (!m_sources.movedMap)
        return std::nullopt;
    const VolumeView moved = ViewOf(*m_sources.movedMap);
    const auto [mean, deviation] = MeanAndDeviation(moved);
    return std::pair(moved, mean + 2 * deviation);
}

std::vector<Trace> PlacedModels::FixedTraces() const {
    std::vector<Trace> traces;
    for (const ReportedModel &model : m_sources.fixed)
        std::ranges::copy(TracesOf(model), std::back_inserter(traces));
    return traces;
}

} // namespace report
