#include "ToolkitMessages.h"

#include <QString>

#include <mutex>

namespace python {

namespace {

QtMessageHandler others = nullptr;
thread_local const hosts::WarningSink *sink = nullptr;

void TakeMessage(QtMsgType type, const QMessageLogContext &context, const QString &text) {
    if (!sink)
        return others ? others(type, context, text) : void();
    if (type != QtDebugMsg && type != QtInfoMsg)
        (*sink)(text.toStdString());
}

} // namespace

ToolkitMessages::ToolkitMessages(const hosts::WarningSink &warn)
    : m_before(sink) {
    static std::once_flag once;
    std::call_once(once, [] { others = qInstallMessageHandler(TakeMessage); });
    sink = &warn;
}

ToolkitMessages::~ToolkitMessages() {
    sink = m_before;
}

} // namespace python
