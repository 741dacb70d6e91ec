#pragma once

#include <QPushButton>

namespace desktop {

/// Shows a colour, and lets the user choose another.
class ColourButton : public QPushButton {
    Q_OBJECT

public:
    ColourButton();

    void SetColour(const QColor &colour);
    QColor Colour() const { return m_colour; }

signals:
    void chosen(const QColor &colour);

private:
    void Choose();

    QColor m_colour;
};

} // namespace desktop
