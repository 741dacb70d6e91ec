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
    void SetExactTransparency(bool exact);

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

    vtkNew<vtkGenericOpenGLRenderWindow> m_window;
    vtkNew<vtkRenderer> m_renderer;
    QMetaObject::Connection m_contextDies;
};

} // namespace desktop
