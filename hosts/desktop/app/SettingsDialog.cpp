#include "app/SettingsDialog.h"

#include "Config.h"
#include "ShippedSettings.h"
#include "formats/files/FileError.h"
#include "formats/files/ReplaceFile.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QVBoxLayout>

#include <ostream>

using VARNO::Config;

namespace desktop {

namespace {

constexpr const char *section = "Morvanex";

/// What the user's file says; empty where it says nothing, or the shipped value.
QString OwnValue(const char *key) {
    const std::string value = Config::GetSetting(section, key).ToString();
    const char *shipped = VARNO::ShippedSetting(section, key);
    return shipped && value == shipped ? QString() : QString::fromStdString(value);
}

QStringList LinesOf(const std::string &file) {
    QFile device(QString::fromStdString(file));
    if (!device.open(QIODevice::ReadOnly))
        return {};
    QString text = QString::fromUtf8(device.readAll());
    if (text.endsWith('\n'))
        text.chop(1);
    return text.isEmpty() ? QStringList() : text.split('\n');
}

/// The number of the first line after a section's; -1 where there is no such section.
int StartOf(const QStringList &lines, const QString &name) {
    for (int i = 0; i < lines.size(); ++i)
        if (lines[i].trimmed() == '[' + name + ']')
            return i + 1;
    return -1;
}

int EndOf(const QStringList &lines, int start) {
    int end = start;
    while (end < lines.size() && !lines[end].trimmed().startsWith('['))
        ++end;
    return end;
}

void SetValue(QStringList &lines, int start, const QString &key, const QString &value) {
    for (int i = EndOf(lines, start) - 1; i >= start; --i)
        if (lines[i].section('=', 0, 0).trimmed() == key && lines[i].contains('='))
            lines.removeAt(i);
    if (!value.isEmpty())
        lines.insert(start, key + '=' + value);
}

} // namespace

const std::vector<SettingRow> &SettingRows() {
    static const std::vector<SettingRow> rows = {
        {"Axis", "levels of recursion: 5·4ⁿ + 1 rotation axes", SettingRow::Whole, 0},
        {"RotationStep", "step of the turn about each axis, degrees", SettingRow::Number, 0.01},
        {"TransStep", "step of the translations, Å", SettingRow::Number, 0},
        {"TransNum", "translations along each of x, y and z", SettingRow::Whole, 1},
        {"TopList", "solutions kept", SettingRow::Whole, 0},
        {"Output", "log file; every fit empties it", SettingRow::Text, 0},
        {"Marginal", "fixed residues farther from the target's centre are left out, Å", SettingRow::Number,
         0},
    };
    return rows;
}

QString ProblemWith(const SettingRow &row, const QString &text) {
    if (text.isEmpty() || row.kind == SettingRow::Text)
        return {};
    bool isNumber = false;
    const double value = row.kind == SettingRow::Whole ? text.toInt(&isNumber) : text.toDouble(&isNumber);
    const QString name = QString(row.key) + ": \"" + text + "\" ";
    if (!isNumber)
        return name + (row.kind == SettingRow::Whole ? "is no whole number" : "is no number");
    if (!(value >= row.least))
        return name + QString("is less than %1").arg(row.least);
    return {};
}

void WriteSettings(const std::string &file, const QString &name,
                   const QList<std::pair<QString, QString>> &values) {
    QStringList lines = LinesOf(file);
    int start = StartOf(lines, name);
    if (start < 0) {
        lines << '[' + name + ']';
        start = int(lines.size());
    }
    for (auto value = values.rbegin(); value != values.rend(); ++value)
        SetValue(lines, start, value->first, value->second);
    QDir().mkpath(QFileInfo(QString::fromStdString(file)).path());
    const QByteArray text = lines.join('\n').toUtf8() + '\n';
    formats::ReplaceFile(file, [&](std::ostream &out) { out.write(text.data(), text.size()); });
}

SettingsDialog::SettingsDialog(QWidget *parent)
    : QDialog(parent) {
    setObjectName("settingsDialog");
    setWindowTitle(tr("Settings"));
    auto *form = new QFormLayout;
    form->addRow(
        new QLabel(tr("What the plug-in Morvanex starts with. An empty field stands for the default.")));
    for (const SettingRow &row : SettingRows()) {
        auto *field = new QLineEdit(OwnValue(row.key));
        field->setObjectName(row.key);
        field->setPlaceholderText(VARNO::ShippedSetting(section, row.key));
        auto *label = new QLabel(tr("%1\n%2").arg(row.key, row.meaning));
        form->addRow(label, field);
        m_fields << field;
    }
    auto *where = new QLabel(tr("Stored in %1").arg(QString::fromStdString(Config::GetUserFile())));
    where->setTextInteractionFlags(Qt::TextSelectableByMouse);
    where->setWordWrap(true);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->setObjectName("settingsButtons");
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(where);
    layout->addWidget(buttons);
}

void SettingsDialog::accept() {
    QStringList problems;
    QList<std::pair<QString, QString>> values;
    for (qsizetype i = 0; i < m_fields.size(); ++i) {
        const SettingRow &row = SettingRows()[std::size_t(i)];
        const QString text = m_fields[i]->text().trimmed();
        values.append({row.key, text});
        if (const QString problem = ProblemWith(row, text); !problem.isEmpty())
            problems << problem;
    }
    try {
        if (problems.isEmpty()) {
            WriteSettings(Config::GetUserFile(), section, values);
            QDialog::accept();
            return;
        }
    } catch (const formats::FileError &error) {
        problems << QString::fromStdString(error.what());
    }
    QMessageBox box(QMessageBox::Warning, tr("Settings"), problems.join('\n'), QMessageBox::Ok, this);
    box.setObjectName("errorBox");
    box.exec();
}

} // namespace desktop
