#pragma once

#include "hosts/report/Contents.h"
#include "hosts/report/Report.h"
#include "hosts/report/Slices.h"

namespace report {

constexpr double aroundModel = 25; ///< Å of the map that are shown around a model

/// The map of a record in the hand in which its places lie, and the models where its rows say. Valid as long
/// as what it was made of.
class PlacedModels {
public:
    PlacedModels(const Contents &contents, const Sources &sources);

    placement::VolumeView Map() const;
    /// Of the map's values.
    double Mean() const { return m_mean; }
    double Deviation() const { return m_deviation; }
    /// The level at which the map is first shown: nine of ten residues of the first place lie within, but
    /// for two standard deviations above the mean at least.
    double Level() const { return m_level; }

    /// The model of a row that has a place; null where there is none to show.
    const ReportedModel *ModelOf(const Row &row) const;
    /// Its chains in their place; none where there is none to show.
    std::vector<Trace> TracesAt(const Row &row) const;
    /// The map that was placed, and the level at which it is shown; nothing where none was.
    std::optional<std::pair<placement::VolumeView, double>> MovedMap() const;
    /// The chains that were in place before.
    std::vector<Trace> FixedTraces() const;

private:
    double LevelAround(const std::vector<Trace> &traces) const;

    const Sources &m_sources;
    std::optional<placement::Volume> m_mirrored;
    double m_mean = 0, m_deviation = 0, m_level = 0;
};

} // namespace report
