#include "view/SceneView.h"

#include "view/CameraControl.h"
#include "view/RenderWidget.h"
#include "view/Scene.h"

#include <QApplication>
#include <QLabel>
#include <QMouseEvent>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <vtkCamera.h>

#include <cmath>

using namespace VARNO;

namespace desktop {

namespace {

/// A click hits what is no farther from it, in pixels of the screen's 100 %.
constexpr double reach = 12;

/// A camera that has not moved for so long rests.
constexpr int restMilliseconds = 250;

/// Pictures that take longer are drawn with less detail while the camera moves.
constexpr double smoothSeconds = 0.05;

/// The platform without screens has no context that a widget could draw with.
bool PlatformCanDraw() {
    return QGuiApplication::platformName() != "offscreen" && QGuiApplication::platformName() != "minimal";
}

} // namespace

struct SceneView::Drawing {
    explicit Drawing(Document &document)
        : scene(document, *widget.Renderer())
        , camera(*widget.Renderer()) {}

    RenderWidget widget;
    Scene scene;
    CameraControl camera;
};

SceneView::SceneView(Document &document)
    : m_document(document)
    , m_hint(new QLabel(this)) {
    setObjectName("sceneView");
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    m_hint->setObjectName("sceneHint");
    m_hint->setAlignment(Qt::AlignCenter);
    m_hint->setWordWrap(true);
    m_hint->setAttribute(Qt::WA_TransparentForMouseEvents);
    if (!PlatformCanDraw()) {
        m_hint->setText(tr("The three-dimensional view needs a display."));
        layout->addWidget(m_hint);
        return;
    }
    m_drawing = std::make_unique<Drawing>(document);
    layout->addWidget(&m_drawing->widget);
    m_drawing->widget.installEventFilter(this);
    m_drawing->widget.setFocusPolicy(Qt::StrongFocus);
    m_hint->setText(tr("Open a map and a model:\nFile ▸ Open, or drop the files here."));
    m_hint->raise();
    SetExactTransparency(true);
    SetDark(false);
    m_rest.setSingleShot(true);
    m_rest.setInterval(restMilliseconds);
    connect(&m_rest, &QTimer::timeout, this, &SceneView::Rest);
    connect(&m_drawing->scene, &Scene::changed, this, [this] {
        m_drawing->widget.ForgetPace();
        if (m_fitsWhenReady && IsUpToDate())
            FitToView();
        Changed();
    });
    connect(&document, &Document::removed, this, [this] { m_from = nullptr; });
    UpdateHint();
}

SceneView::~SceneView() = default;

void SceneView::PrepareApplication() {
    RenderWidget::SetDefaultFormat();
}

void SceneView::FitToView() {
    m_fitsWhenReady = !IsUpToDate();
    FitTo(m_document.Tops());
}

void SceneView::FitTo(const std::vector<Compound *> &nodes) {
    if (!m_drawing)
        return;
    if (const auto box = m_drawing->scene.BoxOf(nodes))
        m_drawing->camera.Fit(box->data());
    Changed();
}

void SceneView::SetPerspective(bool perspective) {
    if (m_drawing)
        m_drawing->camera.SetPerspective(perspective);
    Changed();
}

bool SceneView::IsPerspective() const {
    return !m_drawing || m_drawing->camera.IsPerspective();
}

void SceneView::SetExactTransparency(bool exact) {
    if (m_drawing)
        m_drawing->widget.SetExactTransparency(exact);
    Changed();
}

void SceneView::SetDark(bool dark) {
    if (!m_drawing)
        return;
    const double grey = dark ? 0.11 : 1;
    m_drawing->widget.Renderer()->SetBackground(grey, grey, grey);
    m_hint->setStyleSheet(dark ? "color: #ddd; font-size: 14pt" : "color: #444; font-size: 14pt");
    Changed();
}

Viewpoint SceneView::GetViewpoint() const {
    Viewpoint viewpoint;
    if (!m_drawing)
        return viewpoint;
    vtkCamera *camera = m_drawing->widget.Renderer()->GetActiveCamera();
    camera->GetPosition(viewpoint.position.data());
    camera->GetFocalPoint(viewpoint.focus.data());
    camera->GetViewUp(viewpoint.up.data());
    viewpoint.scale = camera->GetParallelScale();
    viewpoint.perspective = IsPerspective();
    return viewpoint;
}

void SceneView::SetViewpoint(const Viewpoint &viewpoint) {
    if (!m_drawing)
        return;
    m_fitsWhenReady = false;
    vtkCamera *camera = m_drawing->widget.Renderer()->GetActiveCamera();
    camera->SetPosition(viewpoint.position.data());
    camera->SetFocalPoint(viewpoint.focus.data());
    camera->SetViewUp(viewpoint.up.data());
    camera->SetParallelScale(viewpoint.scale);
    SetPerspective(viewpoint.perspective);
}

void SceneView::SetMeasuring(bool measuring) {
    m_isMeasuring = measuring;
    m_from = nullptr;
    if (m_drawing && !measuring)
        m_drawing->scene.ShowDistance(nullptr, nullptr);
}

void SceneView::ShowGhosts(const std::vector<Ghost> &ghosts) {
    if (m_drawing)
        m_drawing->scene.ShowGhosts(ghosts);
}

bool SceneView::IsUpToDate() const {
    return !m_drawing || m_drawing->scene.IsUpToDate();
}

QImage SceneView::Picture() {
    if (!m_drawing)
        return {};
    Rest();
    QImage picture = m_drawing->widget.grabFramebuffer();
    if (m_drawing->widget.IsProvisional())
        picture = m_drawing->widget.grabFramebuffer();
    return picture;
}

bool SceneView::eventFilter(QObject *, QEvent *event) {
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        m_pressed = m_last = mouse->position();
        m_button = mouse->button();
        m_modifiers = mouse->modifiers();
        m_isDragging = false;
        return false;
    }
    case QEvent::MouseMove:
        if (m_button != Qt::NoButton)
            Drag(static_cast<QMouseEvent *>(event)->position());
        return true;
    case QEvent::MouseButtonRelease:
        if (m_button == Qt::LeftButton && !m_isDragging)
            ClickAt(m_pressed, m_modifiers & Qt::ControlModifier);
        m_button = Qt::NoButton;
        return false;
    case QEvent::Wheel:
        m_drawing->camera.Zoom(std::pow(1.001, static_cast<QWheelEvent *>(event)->angleDelta().y()));
        Moved();
        return true;
    default:
        return false;
    }
}

void SceneView::resizeEvent(QResizeEvent *) {
    UpdateHint();
}

void SceneView::Drag(const QPointF &to) {
    if (3 * (to - m_pressed).manhattanLength() >= QApplication::startDragDistance())
        m_isDragging = true;
    if (!m_isDragging)
        return;
    const QPointF by((to.x() - m_last.x()) / width(), (to.y() - m_last.y()) / height());
    m_last = to;
    if (m_button == Qt::RightButton)
        m_drawing->camera.Zoom(std::exp(-2 * by.y()));
    else if (m_button == Qt::MiddleButton || m_modifiers & Qt::ShiftModifier)
        m_drawing->camera.Pan(by, double(width()) / height());
    else
        m_drawing->camera.Rotate(by);
    Moved();
}

void SceneView::Moved() {
    m_fitsWhenReady = false;
    m_drawing->widget.SetMoving(true);
    m_drawing->scene.SetCoarse(m_drawing->widget.Seconds() > smoothSeconds);
    m_rest.start();
    Changed();
}

void SceneView::Rest() {
    m_rest.stop();
    m_drawing->widget.SetMoving(false);
    m_drawing->scene.SetCoarse(false);
    Changed();
}

void SceneView::ClickAt(const QPointF &position, bool adds) {
    Compound *node = m_drawing->scene.At(position.x(), position.y(), width(), height(), reach);
    if (m_isMeasuring)
        Measure(node);
    else
        emit picked(node, adds);
}

void SceneView::Measure(Compound *node) {
    if (!node)
        return;
    if (!m_from) {
        m_from = node;
        return;
    }
    Compound *from = std::exchange(m_from, nullptr);
    m_drawing->scene.ShowDistance(from, node);
    emit measured(from, node, std::sqrt(double((node->GetPosition() - from->GetPosition()).SquaredLength())));
}

void SceneView::Changed() {
    if (!m_drawing)
        return;
    m_drawing->widget.update();
    UpdateHint();
}

void SceneView::UpdateHint() {
    if (!m_drawing)
        return;
    m_hint->setGeometry(rect());
    m_hint->setVisible(m_document.Tops().empty());
}

} // namespace desktop
