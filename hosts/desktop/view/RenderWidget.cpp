#include "view/RenderWidget.h"

#include <QElapsedTimer>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QSurfaceFormat>

#include <vtkCommand.h>
#include <vtkOpenGLState.h>

namespace desktop {

namespace {

/// At which VTK draws a letter as many pixels high as its size says.
constexpr double pointsPerInch = 72;

/// Layers of translucent surfaces that are told apart.
constexpr int maxPeels = 6;

/// A picture that would take longer is not drawn with them.
constexpr double maxExactSeconds = 1;

} // namespace

RenderWidget::RenderWidget() {
    // Multisampling with depth peeling makes translucent surfaces vanish.
    m_window->SetMultiSamples(0);
    m_window->SetFrameBlitModeToNoBlit();
    m_window->AddRenderer(m_renderer);
    m_window->AddObserver(vtkCommand::WindowMakeCurrentEvent, this, &RenderWidget::MakeCurrent);
    m_window->AddObserver(vtkCommand::WindowIsCurrentEvent, this, &RenderWidget::TellWhetherCurrent);
    m_window->AddObserver(vtkCommand::WindowSupportsOpenGLEvent, this, &RenderWidget::TellThatItIsSo);
    m_window->AddObserver(vtkCommand::WindowIsDirectEvent, this, &RenderWidget::TellThatItIsSo);
    m_renderer->UseFXAAOn();
    m_renderer->SetMaximumNumberOfPeels(maxPeels);
    m_renderer->SetOcclusionRatio(0);
}

RenderWidget::~RenderWidget() {
    disconnect(m_contextDies);
    LeaveContext();
    m_window->RemoveAllObservers();
}

void RenderWidget::SetDefaultFormat() {
    QSurfaceFormat format;
    format.setVersion(3, 2);
    format.setProfile(QSurfaceFormat::CoreProfile);
    format.setDepthBufferSize(24);
    format.setSamples(0);
    QSurfaceFormat::setDefaultFormat(format);
}

/// Each layer is another picture.
bool RenderWidget::MayBeExact() const {
    return !m_isMoving && m_seconds >= 0 && m_seconds * maxPeels < maxExactSeconds;
}

void RenderWidget::initializeGL() {
    m_window->SetOwnContext(0);
    m_window->SetReadyForRendering(true);
    m_window->OpenGLInitContext();
    m_contextDies =
        connect(context(), &QOpenGLContext::aboutToBeDestroyed, this, &RenderWidget::LeaveContext);
}

void RenderWidget::resizeGL(int, int) {
    const QSize pixels = size() * devicePixelRatio();
    m_window->SetSize(pixels.width(), pixels.height());
    m_window->SetDPI(int(pointsPerInch * devicePixelRatio())); // by which text grows
}

void RenderWidget::paintGL() {
    vtkOpenGLState *state = m_window->GetState();
    state->Reset();
    state->Push();
    m_renderer->ResetCameraClippingRange();
    m_isExact = m_wantsExact && MayBeExact();
    m_renderer->SetUseDepthPeeling(m_isExact);
    QElapsedTimer timer;
    timer.start();
    m_window->Render();
    Blit();
    context()->functions()->glFinish();
    if (!m_isExact && !m_isMoving)
        m_seconds = double(timer.nsecsElapsed()) * 1e-9;
    state->Pop();
    if (IsProvisional())
        update();
}

void RenderWidget::Blit() {
    vtkOpenGLState *state = m_window->GetState();
    context()->functions()->glBindFramebuffer(GL_FRAMEBUFFER, defaultFramebufferObject());
    state->ResetFramebufferBindings();
    m_window->BlitDisplayFramebuffer();
    // What is translucent must not let the windows behind this one shine through.
    state->vtkglColorMask(false, false, false, true);
    state->vtkglClearColor(0, 0, 0, 1);
    state->vtkglClear(GL_COLOR_BUFFER_BIT);
    state->vtkglColorMask(true, true, true, true);
}

/// Making the context current binds the widget's frame buffer behind the back of VTK's cache of the state.
void RenderWidget::MakeCurrent() {
    if (isValid() && QOpenGLContext::currentContext() != context())
        makeCurrent();
}

void RenderWidget::TellWhetherCurrent(vtkObject *, unsigned long, void *answer) {
    *static_cast<bool *>(answer) = isValid() && QOpenGLContext::currentContext() == context();
}

void RenderWidget::TellThatItIsSo(vtkObject *, unsigned long, void *answer) {
    *static_cast<int *>(answer) = 1;
}

void RenderWidget::LeaveContext() {
    if (!m_window->GetReadyForRendering())
        return;
    makeCurrent();
    m_window->Finalize();
    m_window->SetReadyForRendering(false);
    doneCurrent();
}

} // namespace desktop
