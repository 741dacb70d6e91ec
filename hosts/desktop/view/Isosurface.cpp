#include "view/Isosurface.h"

#include <QtConcurrentRun>

#include <vtkFloatArray.h>
#include <vtkFlyingEdges3D.h>
#include <vtkNew.h>
#include <vtkPointData.h>

#include <algorithm>
#include <cmath>

using VARNO::Grid;

namespace desktop {

namespace {

/// More voxels than this take so long that a level that is dragged shows a thinned map first.
constexpr double smallMap = 2e6;

/// A level that has not changed for so long rests.
constexpr int restMilliseconds = 250;

unsigned ThinningOf(const Grid &map) {
    return unsigned(std::ceil(std::cbrt(double(map.Values().size()) / smallMap)));
}

} // namespace

vtkSmartPointer<vtkImageData> ImageOf(const Grid &grid) {
    const auto &n = grid.Dimensions();
    const auto &origin = grid.Origin();
    const auto &spacing = grid.Spacing();
    auto image = vtkSmartPointer<vtkImageData>::New();
    image->SetDimensions(int(n[0]), int(n[1]), int(n[2]));
    image->SetOrigin(double(origin[0]), double(origin[1]), double(origin[2]));
    image->SetSpacing(double(spacing[0]), double(spacing[1]), double(spacing[2]));
    vtkNew<vtkFloatArray> values;
    // VTK only reads them, and frees nothing.
    values->SetArray(const_cast<float *>(grid.Values().data()), vtkIdType(grid.Values().size()), 1);
    image->GetPointData()->SetScalars(values);
    return image;
}

vtkSmartPointer<vtkPolyData> SurfaceOf(const Grid &grid, double value) {
    const auto &n = grid.Dimensions();
    if (std::min({n[0], n[1], n[2]}) < 2)
        return vtkSmartPointer<vtkPolyData>::New();
    vtkNew<vtkFlyingEdges3D> edges;
    edges->SetInputData(ImageOf(grid));
    edges->SetValue(0, value);
    edges->ComputeNormalsOn();
    edges->ComputeScalarsOff();
    edges->Update();
    return edges->GetOutput();
}

std::unique_ptr<Grid> Thinned(const Grid &grid, unsigned n) {
    VARNO::Vector<unsigned, 3> size;
    VARNO::Vector<float, 3> spacing;
    for (unsigned axis = 0; axis < 3; ++axis) {
        size[axis] = (grid.Dimensions()[axis] + n - 1) / n;
        spacing[axis] = float(n) * grid.Spacing()[axis];
    }
    auto thinned = std::make_unique<Grid>(grid.GetName(), size, grid.Origin(), spacing, grid.Angles());
    for (unsigned k = 0; k < size[2]; ++k)
        for (unsigned j = 0; j < size[1]; ++j)
            for (unsigned i = 0; i < size[0]; ++i)
                thinned->SetValue(i, j, k, grid.GetValue(n * i, n * j, n * k));
    return thinned;
}

Isosurface::Isosurface(const Grid &map)
    : m_map(map.Share()) {
    if (const unsigned n = ThinningOf(map); n > 1)
        m_thinned = Thinned(map, n);
    m_rest.setSingleShot(true);
    m_rest.setInterval(restMilliseconds);
    connect(&m_rest, &QTimer::timeout, this, [this] { Ask({m_value, false}); });
    connect(&m_watcher, &QFutureWatcherBase::finished, this, &Isosurface::Take);
}

Isosurface::~Isosurface() {
    m_watcher.disconnect(this);
}

void Isosurface::SetLevel(double value) {
    m_value = value;
    m_rest.stop();
    Ask({value, m_thinned != nullptr});
}

void Isosurface::Ask(const Work &work) {
    if (m_running)
        m_asked = work;
    else
        Start(work);
}

void Isosurface::Start(const Work &work) {
    m_running = work;
    m_watcher.setFuture(QtConcurrent::run(
        [map = work.coarse ? m_thinned : m_map, value = work.value] { return SurfaceOf(*map, value); }));
}

void Isosurface::Take() {
    const Work done = *m_running;
    m_running.reset();
    m_surface = m_watcher.result();
    if (done.coarse)
        m_coarse = m_surface;
    emit changed();
    if (m_asked) {
        const Work next = *m_asked;
        m_asked.reset();
        Start(next);
    } else if (done.coarse) {
        m_rest.start();
    }
}

} // namespace desktop
