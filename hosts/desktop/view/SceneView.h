#pragma once

#include "document/Document.h"
#include "view/Ghost.h"

#include <QImage>
#include <QTimer>
#include <QWidget>

#include <array>
#include <memory>

class QLabel;

namespace desktop {

/// From where the model is looked at; positions in Å.
struct Viewpoint {
    std::array<double, 3> position{0, 0, 1}, focus{0, 0, 0}, up{0, 1, 0};
    double scale = 1; ///< half the height of what is seen, Å, without perspective
    bool perspective = true;
};

/// The model in three dimensions. Left button: rotate, and click on a residue or an atom; middle button, or
/// left with Shift: move; right button and wheel: zoom.
///
/// Without a window system that can draw in three dimensions it is a plain surface that says so.
class SceneView : public QWidget {
    Q_OBJECT

public:
    explicit SceneView(Document &document);
    ~SceneView() override;

    /// Before there is an application object.
    static void PrepareApplication();

    /// Whether there is a picture, not only a surface that says why not.
    bool CanDraw() const { return m_drawing != nullptr; }
    void FitToView();
    void FitTo(const std::vector<VARNO::Compound *> &nodes);
    void SetPerspective(bool perspective);
    bool IsPerspective() const;
    /// Whether translucent surfaces are drawn one behind the other as they lie, which takes longer.
    void SetExactTransparency(bool exact);
    void SetDark(bool dark);
    Viewpoint GetViewpoint() const;
    void SetViewpoint(const Viewpoint &viewpoint);
    /// While it is on, two clicks measure a distance instead of selecting.
    void SetMeasuring(bool measuring);

    /// Draws chains as they would lie at other places, in the stead of those drawn so before.
    void ShowGhosts(const std::vector<Ghost> &ghosts);

    /// Whether every surface is that of its map's level.
    bool IsUpToDate() const;
    /// What is drawn now, in pixels of the screen; null where nothing can be drawn.
    QImage Picture();

signals:
    /// A residue or an atom was clicked, with or without the key that adds to the selection; null where
    /// nothing was there.
    void picked(VARNO::Compound *node, bool adds);
    /// Two positions were clicked, that far from each other in Å.
    void measured(VARNO::Compound *from, VARNO::Compound *to, double distance);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    struct Drawing;

    void Changed();
    void Moved();
    void Rest();
    void Drag(const QPointF &to);
    void ClickAt(const QPointF &position, bool adds);
    void Measure(VARNO::Compound *node);
    void UpdateHint();

    Document &m_document;
    std::unique_ptr<Drawing> m_drawing; ///< null where nothing can be drawn
    QLabel *m_hint;
    bool m_isMeasuring = false;
    bool m_fitsWhenReady = false; ///< once all surfaces are there
    QTimer m_rest;                ///< runs from the last movement of the camera to the picture in full detail
    VARNO::Compound *m_from = nullptr; ///< the first of two positions
    QPointF m_pressed, m_last;
    Qt::MouseButton m_button = Qt::NoButton;
    Qt::KeyboardModifiers m_modifiers;
    bool m_isDragging = false;
};

} // namespace desktop
