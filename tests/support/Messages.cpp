#include "Messages.h"

#include <QString>
#include <QtGlobal>

namespace {

std::vector<std::string> debug, warnings;
QtMessageHandler previous;

void Catch(QtMsgType type, const QMessageLogContext &, const QString &text) {
    (type == QtDebugMsg || type == QtInfoMsg ? debug : warnings).push_back(text.toStdString());
}

} // namespace

Messages::Messages() {
    Clear();
    previous = qInstallMessageHandler(Catch);
}

Messages::~Messages() {
    qInstallMessageHandler(previous);
}

const std::vector<std::string> &Messages::Debug() const {
    return debug;
}

const std::vector<std::string> &Messages::Warnings() const {
    return warnings;
}

void Messages::Clear() {
    debug.clear();
    warnings.clear();
}
