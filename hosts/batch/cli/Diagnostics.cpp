#include "cli/Diagnostics.h"

#include "cli/Printable.h"

#include <QtGlobal>

#include <QString>

#include <iostream>

#include <unistd.h>

namespace cli {

namespace {

std::string &ProgramName() {
    static std::string name = "morvanex";
    return name;
}

void TakeMessage(QtMsgType type, const QMessageLogContext &, const QString &text) {
    if (type != QtDebugMsg && type != QtInfoMsg)
        Warn(text.toStdString());
}

} // namespace

void SetProgramName(const std::string &name) {
    ProgramName() = name;
}

void Print(const std::string &text) {
    // A progress bar may stand on the terminal's current line.
    static const std::string eraseLine = isatty(STDERR_FILENO) ? "\r\033[K" : "";
    std::cerr << eraseLine + ProgramName() + ": " + Printable(text) + '\n' << std::flush;
}

void Warn(const std::string &text) {
    Print("warning: " + text);
}

void ReportError(const std::string &text) {
    Print("error: " + text);
}

void CatchToolkitMessages() {
    qInstallMessageHandler(TakeMessage);
}

} // namespace cli
