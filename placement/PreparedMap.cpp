#include "placement/PreparedMap.h"

#include "placement/Constants.h"
#include "placement/Trim.h"

#include <algorithm>

namespace placement {

namespace {

template <class Values>
std::size_t BytesOf(const Values &values) {
    return values.size() * sizeof(values.front());
}

/// Forgets what was used longest ago until the rest takes so many bytes, but the first `spared`.
template <class List, class Bytes>
void Limit(List &list, std::size_t most, std::size_t spared, Bytes bytesOf) {
    std::size_t bytes = 0, number = 0;
    const auto end = std::ranges::find_if(list, [&](const auto &kept) {
        bytes += bytesOf(kept);
        return number++ >= spared && bytes > most;
    });
    list.erase(end, list.end());
}

bool AreEqual(const VolumeView &a, const VolumeView &b) {
    return a.count == b.count && a.values.data() == b.values.data();
}

} // namespace

MapPart::MapPart(const VolumeView &view, double resolution, unsigned threads, std::size_t keptBytes)
    : m_view(view)
    , m_spectrum(TransformMap(view, resolution, threads))
    , m_keptBytes(keptBytes) {}

std::shared_ptr<MapPart> MapPart::Changed(std::shared_ptr<MapPart> part,
                                          const std::function<void(Spectrum &)> &change) {
    if (part.use_count() > 1)
        part = std::shared_ptr<MapPart>(new MapPart(part->m_view, part->m_spectrum));
    part->m_kept.clear();
    part->m_keptBytes = 0;
    change(part->m_spectrum);
    return part;
}

std::shared_ptr<const Volume> MapPart::Filtered(const FilteredKind &kind,
                                                const std::function<Volume()> &make) {
    if (m_keptBytes == 0)
        return std::make_shared<const Volume>(make());
    const std::lock_guard lock(m_mutex);
    const auto found = std::ranges::find(m_kept, kind, &Kept::kind);
    if (found != m_kept.end()) {
        m_kept.splice(m_kept.begin(), m_kept, found);
        return found->volume;
    }
    std::shared_ptr<const Volume> volume = std::make_shared<const Volume>(make());
    m_kept.push_front({kind, volume});
    Limit(m_kept, m_keptBytes, 0, [](const Kept &kept) { return BytesOf(kept.volume->values); });
    return volume;
}

PreparedMap::PreparedMap(const VolumeView &map, double resolution, unsigned threads)
    : m_map(map)
    , m_resolution(resolution)
    , m_threads(threads) {}

VolumeView PreparedMap::TrimmedFor(const PointModel &model) {
    if (const double cutOff = TrimCutOff(model, m_resolution); cutOff > m_cutOff) {
        m_waves = TrimWaves(m_map, m_resolution, cutOff, m_threads);
        m_cutOff = cutOff;
    }
    return Trimmed(m_map, m_waves, model, m_resolution, m_threads);
}

std::shared_ptr<MapPart> PreparedMap::PartFor(const PointModel &model) {
    const std::lock_guard lock(m_mutex);
    const VolumeView view = TrimmedFor(model);
    const auto found =
        std::ranges::find_if(m_parts, [&](const auto &part) { return AreEqual(part->View(), view); });
    if (found != m_parts.end())
        m_parts.splice(m_parts.begin(), m_parts, found);
    else
        m_parts.push_front(std::make_shared<MapPart>(view, m_resolution, m_threads, keptFiltered));
    Limit(m_parts, keptSpectra, 1,
          [](const auto &part) { return BytesOf(part->MapSpectrum().waves.values); });
    return m_parts.front();
}

} // namespace placement
