#include "NameLabel.h"

#include <QPainter>
#include <QStyle>

#include <algorithm>

namespace {

constexpr int shortName = 12; ///< characters

/// A tool tip takes what looks like mark-up for mark-up.
QString AsToolTip(const QString &name) {
    return Qt::mightBeRichText(name) ? Qt::convertFromPlainText(name) : name;
}

} // namespace

QSize NameLabel::minimumSizeHint() const {
    const QSize hint = QLabel::minimumSizeHint();
    return {std::min(hint.width(), shortName * fontMetrics().averageCharWidth()), hint.height()};
}

void NameLabel::paintEvent(QPaintEvent *event) {
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideMiddle, contentsRect().width());
    const bool whole = shown == text();
    setToolTip(whole ? QString() : AsToolTip(text()));
    if (whole) {
        QLabel::paintEvent(event);
        return;
    }
    QPainter painter(this);
    style()->drawItemText(&painter, contentsRect(), int(alignment()), palette(), isEnabled(), shown,
                          foregroundRole());
}
