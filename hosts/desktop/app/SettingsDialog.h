#pragma once

#include <QDialog>

class QLineEdit;

namespace desktop {

/// One key of the settings file, as the user sees it.
struct SettingRow {
    const char *key;
    const char *meaning; ///< with its unit
    enum Kind { Whole, Number, Text } kind;
    double least; ///< of a number
};

/// The keys of section "Morvanex", in their order.
const std::vector<SettingRow> &SettingRows();

/// Why the text is no value of that row; empty where it is one.
QString ProblemWith(const SettingRow &row, const QString &text);

/// Sets values of a section of a settings file and leaves every other line as it is; an empty value removes
/// the key, so that the shipped one holds. Throws formats::FileError where the file cannot be written.
void WriteSettings(const std::string &file, const QString &section,
                   const QList<std::pair<QString, QString>> &values);

/// Shows what each setting means and its default, and lets the user change it. An empty field is the default.
class SettingsDialog : public QDialog {
    Q_OBJECT

public:
    explicit SettingsDialog(QWidget *parent);

    void accept() override;

private:
    QList<QLineEdit *> m_fields; ///< in the order of the rows
};

} // namespace desktop
