#pragma once

#include "Grid.h"

#include <QFutureWatcher>
#include <QObject>
#include <QTimer>

#include <vtkImageData.h>
#include <vtkPolyData.h>
#include <vtkSmartPointer.h>

#include <memory>
#include <optional>

namespace desktop {

/// A map's values as VTK's image: not a copy. The grid must live as long as the image.
vtkSmartPointer<vtkImageData> ImageOf(const VARNO::Grid &grid);

/// The surface where a map has a value.
vtkSmartPointer<vtkPolyData> SurfaceOf(const VARNO::Grid &grid, double value);

/// Every n-th voxel along each axis.
std::unique_ptr<VARNO::Grid> Thinned(const VARNO::Grid &grid, unsigned n);

/// A map's surface at a level that changes, made on a thread of its own: of a large map first a coarse one,
/// and the full one when the level has rested for a moment.
class Isosurface : public QObject {
    Q_OBJECT

public:
    /// Shares the values of the map, which may leave the model meanwhile.
    explicit Isosurface(const VARNO::Grid &map);
    ~Isosurface() override;

    void SetLevel(double value);
    /// The last surface that was made; null before the first.
    vtkPolyData *Surface() const { return m_surface; }
    /// The coarse one of a large map, else the same.
    vtkPolyData *CoarseSurface() const { return m_coarse ? m_coarse : m_surface; }
    /// Whether the surface is the full one of the level that was asked for last.
    bool IsUpToDate() const { return !m_asked && !m_running && !m_rest.isActive(); }

signals:
    void changed();

private:
    struct Work {
        double value;
        bool coarse;
    };

    void Ask(const Work &work);
    void Start(const Work &work);
    void Take();

    std::shared_ptr<const VARNO::Grid> m_map;
    std::shared_ptr<const VARNO::Grid> m_thinned; ///< null for a small map
    std::optional<Work> m_asked;                  ///< waits for what is being made
    std::optional<Work> m_running;
    vtkSmartPointer<vtkPolyData> m_surface, m_coarse;
    QTimer m_rest; ///< runs from a coarse surface to the full one
    double m_value = 0;
    QFutureWatcher<vtkSmartPointer<vtkPolyData>> m_watcher;
};

} // namespace desktop
