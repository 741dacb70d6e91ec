#include "app/Screenshot.h"

#include "document/Document.h"
#include "view/SceneView.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QRegularExpression>

#include <cstdio>

namespace desktop {

namespace {

int Fail(const QString &reason) {
    std::fprintf(stderr, "varno: %s\n", qPrintable(reason));
    return 1;
}

QSize SizeOf(const QString &text) {
    static const QRegularExpression form("^(\\d{1,4})x(\\d{1,4})$");
    const QRegularExpressionMatch match = form.match(text);
    return match.hasMatch() ? QSize(match.captured(1).toInt(), match.captured(2).toInt()) : QSize();
}

} // namespace

int TakeScreenshot(const QString &picture, const QString &size, const QStringList &files) {
    const QSize pixels = SizeOf(size);
    if (pixels.isEmpty())
        return Fail("--size: " + size + " is no size such as 1200x900");
    Document document;
    SceneView view(document);
    if (!view.CanDraw())
        return Fail("--screenshot needs a display; without one, xvfb-run gives it one");
    for (const QString &file : files) {
        FileContent read = ReadAnyFile(file.toStdString(), [](double) {});
        if (!read.error.empty())
            return Fail(QString::fromStdString(read.error));
        if (const QString error = document.Add(std::move(read)); !error.isEmpty())
            return Fail(error);
    }
    view.resize(pixels);
    view.setAttribute(Qt::WA_DontShowOnScreen);
    view.show();
    view.FitToView();
    while (!view.IsUpToDate())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    if (!view.Picture().save(picture))
        return Fail(picture + ": the picture cannot be written");
    return 0;
}

} // namespace desktop
