#include "Diagnostics.h"

#include <QtGlobal>

#include <QString>

#include <iostream>

namespace Batch {

namespace {

std::string &ProgramName() {
    static std::string name = "morvanex";
    return name;
}

void Say(const std::string &kind, const std::string &text) {
    std::cerr << ProgramName() + ": " + kind + ": " + text + '\n' << std::flush;
}

void TakeMessage(QtMsgType type, const QMessageLogContext &, const QString &text) {
    if (type != QtDebugMsg && type != QtInfoMsg)
        Warn(text.toStdString());
}

} // namespace

void SetProgramName(const std::string &name) {
    ProgramName() = name;
}

void Warn(const std::string &text) {
    Say("warning", text);
}

void ReportError(const std::string &text) {
    Say("error", text);
}

void CatchToolkitMessages() {
    qInstallMessageHandler(TakeMessage);
}

} // namespace Batch
