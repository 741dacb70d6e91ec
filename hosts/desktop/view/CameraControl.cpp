#include "view/CameraControl.h"

#include <vtkCamera.h>
#include <vtkMath.h>

#include <cmath>

namespace desktop {

void CameraControl::Rotate(const QPointF &by) {
    vtkCamera *camera = m_renderer.GetActiveCamera();
    camera->Azimuth(-180 * by.x());
    camera->Elevation(180 * by.y());
    camera->OrthogonalizeViewUp();
}

void CameraControl::Pan(const QPointF &by, double aspect) {
    vtkCamera *camera = m_renderer.GetActiveCamera();
    const double height =
        camera->GetParallelProjection()
            ? 2 * camera->GetParallelScale()
            : 2 * camera->GetDistance() * std::tan(vtkMath::RadiansFromDegrees(camera->GetViewAngle()) / 2);
    double up[3], towards[3], right[3], position[3], focus[3];
    camera->GetViewUp(up);
    camera->GetDirectionOfProjection(towards);
    vtkMath::Cross(towards, up, right);
    camera->GetPosition(position);
    camera->GetFocalPoint(focus);
    for (int axis = 0; axis < 3; ++axis) {
        const double shift = height * (by.y() * up[axis] - by.x() * aspect * right[axis]);
        position[axis] += shift;
        focus[axis] += shift;
    }
    camera->SetPosition(position);
    camera->SetFocalPoint(focus);
}

void CameraControl::Zoom(double factor) {
    vtkCamera *camera = m_renderer.GetActiveCamera();
    // The same in both projections, so that one may follow the other.
    camera->SetParallelScale(camera->GetParallelScale() / factor);
    camera->Dolly(factor);
}

void CameraControl::SetPerspective(bool perspective) {
    m_renderer.GetActiveCamera()->SetParallelProjection(!perspective);
}

bool CameraControl::IsPerspective() const {
    return !m_renderer.GetActiveCamera()->GetParallelProjection();
}

void CameraControl::Fit(const double box[6]) {
    m_renderer.ResetCamera(box);
    // The sphere around the box is seldom full.
    Zoom(1.3);
}

} // namespace desktop
