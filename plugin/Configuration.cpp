#include "StartFit.h"

#include "Parameters.h"

#include "Config.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>

// The fit parameters between the host's configuration and the controls. Nothing is checked on the way: what
// does not convert reads as 0, and the engine refuses what it cannot run.

namespace {

VARNO::Setting Configured(const char *key) {
    return VARNO::Config::GetSetting("Morvanex", key);
}

QString ConfiguredText(const char *key) {
    return QString::fromStdString(Configured(key).ToString(nullptr));
}

/// Appends the entries and makes the text current: an entry where one equals it, else in the edit field
/// alone.
void Fill(QComboBox *box, const QStringList &entries, const QString &text) {
    box->addItems(entries);
    if (const int index = box->findText(text); index >= 0)
        box->setCurrentIndex(index);
    box->setEditText(text);
}

} // namespace

void StartFit::GetConfig() {
    Axis = Configured("Axis").ToInt(nullptr);
    gammaStep = Radians(Configured("RotationStep").ToFloat(nullptr));
    TCount = Configured("TransNum").ToInt(nullptr);
    Step = Configured("TransStep").ToFloat(nullptr);
    recursionSpinBox->setValue(Axis);
    Fill(rotstepComboBox, {"1.0", "5.0", "10.0", "15.0"}, ConfiguredText("RotationStep"));
    Fill(transstepComboBox, {"1.0", "5.0", "10.0", "15.0"}, ConfiguredText("TransStep"));
    Fill(transstepsComboBox, {"3", "4", "5", "10", "15"}, ConfiguredText("TransNum"));
    Fill(keepComboBox, {"10", "100", "1000", "5000"}, ConfiguredText("TopList"));
    logfileEdit->setText(ConfiguredText("Output"));
    restraintfileEdit->setText(QString::fromStdString(VARNO::Config::GetPersonalDir() + "/morvx.lst"));
}

void StartFit::GetSettings() {
    Axis = recursionSpinBox->text().toInt(nullptr, 10);
    gammaStep = Radians(rotstepComboBox->currentText().toDouble());
    Step = transstepComboBox->currentText().toDouble();
    TCount = transstepsComboBox->currentText().toInt(nullptr, 10);
    top_size = keepComboBox->currentText().toInt(nullptr, 10);
    logging = logfileCheckBox->isChecked();
    em_fname = logfileEdit->text();
    restraints = restraintfileCheckBox->isChecked();
    re_fname = restraintfileEdit->text();
}

void StartFit::updateTransf() {
    const int axes = AxisCount(recursionSpinBox->text().toInt(nullptr, 10));
    const double degrees = rotstepComboBox->currentText().toDouble();
    const int translations = transstepsComboBox->currentText().toInt(nullptr, 10);
    selectedAxlesLabel->setText(QString::number(axes));
    selectedTotalLabel->setText(QString::number(TransformationCount(axes, degrees, translations)));
}
