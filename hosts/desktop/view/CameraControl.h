#pragma once

#include <vtkRenderer.h>

#include <QPointF>
#include <QSizeF>

namespace desktop {

/// Moves a renderer's camera as the mouse is dragged. Lengths are fractions of the picture: (1, 1) goes from
/// its upper left corner to the lower right one.
class CameraControl {
public:
    explicit CameraControl(vtkRenderer &renderer)
        : m_renderer(renderer) {}

    /// About the point that the camera looks at, half a turn for the whole picture.
    void Rotate(const QPointF &by);
    /// So that what lies in the plane of that point follows the mouse.
    void Pan(const QPointF &by, double aspect);
    /// Makes things appear larger by that factor.
    void Zoom(double factor);
    void SetPerspective(bool perspective);
    bool IsPerspective() const;
    /// Looks at the box with the least and greatest x, y, z from where it looks now.
    void Fit(const double box[6]);

private:
    vtkRenderer &m_renderer;
};

} // namespace desktop
