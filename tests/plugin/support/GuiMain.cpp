#include <QApplication>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

/// The tests run inside the event loop of an application without a display, as the plug-in runs inside its
/// host's. Settings of the toolkit's own go to a home of the program's own.
int main(int count, char **arguments) {
    const QTemporaryDir home;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
    QApplication application(count, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    testing::InitGoogleTest(&count, arguments);
    int result = 1;
    QTimer::singleShot(0, &application, [&result] {
        result = RUN_ALL_TESTS();
        QApplication::quit();
    });
    QApplication::exec();
    return result;
}
