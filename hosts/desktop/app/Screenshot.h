#pragma once

#include <QStringList>

namespace desktop {

/// Reads the files, draws them in a view of that size ("1200x900") and writes the picture. Returns the exit
/// status of the program: 0, or 1 after the reason was written to standard error.
int TakeScreenshot(const QString &picture, const QString &size, const QStringList &files);

} // namespace desktop
