#pragma once

#include "placement/PointModel.h"
#include "placement/Spectrum.h"

#include <functional>
#include <list>
#include <memory>
#include <mutex>

namespace placement {

/// A filtered map of a search that does not depend on the model but for its width.
struct FilteredKind {
    enum class Use { Scan, Extremes, Level, Finest, Density } use = Use::Level;
    double width = 0; ///< Å

    bool operator==(const FilteredKind &) const = default;
};

/// The part of a map that a model is searched for in: its spectrum, and the filtered maps made of it that do
/// not depend on the model. Searches in several threads may share it.
class MapPart {
public:
    /// Keeps filtered maps up to so many bytes, those that were used last. The view's values have to live as
    /// long as this does.
    MapPart(const VolumeView &view, double resolution, unsigned threads, std::size_t keptBytes = 0);
    /// Lets `change` change the part's spectrum, or that of a copy where others hold the part too. What comes
    /// of it keeps no filtered maps.
    static std::shared_ptr<MapPart> Changed(std::shared_ptr<MapPart> part,
                                            const std::function<void(Spectrum &)> &change);

    const VolumeView &View() const { return m_view; }
    const Spectrum &MapSpectrum() const { return m_spectrum; }

    /// The filtered map of that kind; `make` makes it where it is not kept.
    std::shared_ptr<const Volume> Filtered(const FilteredKind &kind, const std::function<Volume()> &make);

private:
    MapPart(const VolumeView &view, const Spectrum &spectrum)
        : m_view(view)
        , m_spectrum(spectrum) {}

    struct Kept {
        FilteredKind kind;
        std::shared_ptr<const Volume> volume;
    };

    VolumeView m_view;
    Spectrum m_spectrum;
    std::size_t m_keptBytes = 0;
    std::mutex m_mutex;
    std::list<Kept> m_kept; ///< the last used one first
};

/// A map that many models are searched for in: what depends on the map and its resolution alone is made once.
/// A search in it gives the same bytes as a search in the map itself. Searches in several threads may share
/// it.
class PreparedMap {
public:
    /// The map's values have to live as long as this does, and stay as they are.
    PreparedMap(const VolumeView &map, double resolution, unsigned threads);

    double Resolution() const { return m_resolution; }
    /// What of the map matters to a model, see Trim.h.
    std::shared_ptr<MapPart> PartFor(const PointModel &model);

private:
    VolumeView TrimmedFor(const PointModel &model);

    VolumeView m_map;
    double m_resolution;
    unsigned m_threads;
    std::mutex m_mutex;
    Waves m_waves; ///< of which maps are trimmed, up to the cut-off
    double m_cutOff = 0;
    std::list<std::shared_ptr<MapPart>> m_parts; ///< the last used one first
};

} // namespace placement
