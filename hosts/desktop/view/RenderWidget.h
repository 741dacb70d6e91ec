#pragma once

#include <QOpenGLWidget>

#include <vtkGenericOpenGLRenderWindow.h>
#include <vtkNew.h>
#include <vtkRenderer.h>

namespace desktop {

/// Draws a VTK renderer into a widget. The toolkit owns the context and the frame buffer; VTK draws into
/// buffers of its own, and the finished picture is copied.
class RenderWidget : public QOpenGLWidget {
    Q_OBJECT

public:
    RenderWidget();
    ~RenderWidget() override;

    /// The format that every context must have; to be called before there is an application object.
    static void SetDefaultFormat();

    vtkRenderer *Renderer() { return m_renderer; }
    /// Draws translucent surfaces one behind the other as they lie, which takes several times as long.
    void SetExactTransparency(bool exact) { m_wantsExact = exact; }
    /// While the camera moves there is no time for that.
    void SetMoving(bool moving) { m_isMoving = moving; }
    /// What is drawn has changed: how long it takes is not known any more.
    void ForgetPace() { m_seconds = -1; }
    /// How long the last picture in full detail took, without exact transparency; negative where not known.
    double Seconds() const { return m_seconds; }
    /// Whether the last picture is to be followed by a better one.
    bool IsProvisional() const { return m_wantsExact && !m_isExact && MayBeExact(); }

protected:
    void initializeGL() override;
    void resizeGL(int width, int height) override;
    void paintGL() override;

private:
    void MakeCurrent();
    void TellWhetherCurrent(vtkObject *caller, unsigned long event, void *answer);
    void TellThatItIsSo(vtkObject *caller, unsigned long event, void *answer);
    void LeaveContext();
    void Blit();
    bool MayBeExact() const;

    vtkNew<vtkGenericOpenGLRenderWindow> m_window;
    vtkNew<vtkRenderer> m_renderer;
    QMetaObject::Connection m_contextDies;
    bool m_wantsExact = false, m_isExact = false, m_isMoving = false;
    double m_seconds = -1;
};

} // namespace desktop
