#include "panels/MessagePanel.h"

#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTime>
#include <QVBoxLayout>

#include <atomic>

namespace desktop {

namespace {

constexpr int maxLines = 10'000;

std::atomic<MessagePanel *> listener = nullptr;
QtMessageHandler previous = nullptr;

/// Shows a message, and hands it on to where it went before, a terminal or a log.
void Hear(QtMsgType level, const QMessageLogContext &context, const QString &text) {
    if (MessagePanel *panel = listener)
        panel->Add(level, text);
    if (previous)
        previous(level, context, text);
}

QString NameOf(QtMsgType level) {
    switch (level) {
    case QtDebugMsg:
    case QtInfoMsg:
        return MessagePanel::tr("Note");
    case QtWarningMsg:
        return MessagePanel::tr("Warning");
    default:
        return MessagePanel::tr("Error");
    }
}

} // namespace

MessagePanel::MessagePanel()
    : m_text(new QPlainTextEdit) {
    m_text->setObjectName("messages");
    m_text->setReadOnly(true);
    m_text->setMaximumBlockCount(maxLines);
    m_text->setPlaceholderText(tr("What the application and the plug-ins have to say appears here."));
    auto *copy = new QPushButton(tr("&Copy"));
    copy->setObjectName("copyMessages");
    copy->setToolTip(tr("Copy all messages to the clipboard"));
    auto *clear = new QPushButton(tr("C&lear"));
    clear->setObjectName("clearMessages");
    connect(copy, &QPushButton::clicked, this,
            [this] { QApplication::clipboard()->setText(m_text->toPlainText()); });
    connect(clear, &QPushButton::clicked, m_text, &QPlainTextEdit::clear);
    auto *layout = new QHBoxLayout(this);
    auto *buttons = new QVBoxLayout;
    buttons->addWidget(copy);
    buttons->addWidget(clear);
    buttons->addStretch();
    layout->addWidget(m_text);
    layout->addLayout(buttons);
    // Queued where it is said on another thread.
    connect(this, &MessagePanel::said, this, &MessagePanel::Append);
    listener = this;
    previous = qInstallMessageHandler(Hear);
}

MessagePanel::~MessagePanel() {
    qInstallMessageHandler(previous);
    previous = nullptr;
    listener = nullptr;
}

void MessagePanel::Add(QtMsgType level, const QString &text) {
    emit said(int(level), text);
}

void MessagePanel::Append(int type, const QString &text) {
    const auto level = QtMsgType(type);
    m_text->appendPlainText(QTime::currentTime().toString("HH:mm:ss") + "  " + NameOf(level) + ": " + text);
    if (level != QtDebugMsg && level != QtInfoMsg)
        emit warned(text);
}

} // namespace desktop
