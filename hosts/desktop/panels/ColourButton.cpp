#include "panels/ColourButton.h"

#include <QColorDialog>
#include <QPixmap>

namespace desktop {

ColourButton::ColourButton() {
    setAutoDefault(false);
    setToolTip(tr("Choose another colour"));
    connect(this, &QPushButton::clicked, this, &ColourButton::Choose);
}

void ColourButton::SetColour(const QColor &colour) {
    m_colour = colour;
    QPixmap swatch(iconSize());
    swatch.fill(colour);
    setIcon(swatch);
}

void ColourButton::Choose() {
    const QColor colour = QColorDialog::getColor(m_colour, this, {}, QColorDialog::DontUseNativeDialog);
    if (!colour.isValid())
        return;
    SetColour(colour);
    emit chosen(colour);
}

} // namespace desktop
