#include "app/MainWindow.h"
#include "app/Screenshot.h"
#include "view/SceneView.h"

#include <QApplication>
#include <QCommandLineParser>

int main(int count, char **words) {
    desktop::SceneView::PrepareApplication();
    QApplication application(count, words);
    QApplication::setApplicationName("varno");
    QApplication::setApplicationDisplayName("Varno");
    QApplication::setApplicationVersion(MORVANEX_VERSION);
    QApplication::setDesktopFileName("varno");
    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Shows density maps and atomic models, and finds where models belong in maps.");
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption screenshot(
        "screenshot", "Draw the files without a person, write the picture to <file.png>, and quit.",
        "file.png");
    const QCommandLineOption size("size", "Size of that picture in pixels, <width>x<height>.", "size",
                                  "1200x900");
    parser.addOptions({screenshot, size});
    parser.addPositionalArgument("files", "Maps and models to open.", "[FILES...]");
    parser.process(application);
    if (parser.isSet(screenshot))
        return desktop::TakeScreenshot(parser.value(screenshot), parser.value(size),
                                       parser.positionalArguments());
    desktop::MainWindow window;
    // A results dialog that is open still does not keep the application alive.
    QObject::connect(&window, &desktop::MainWindow::closed, &application, &QApplication::quit,
                     Qt::QueuedConnection);
    window.show();
    window.OfferToRestore();
    window.Open(parser.positionalArguments());
    return QApplication::exec();
}
