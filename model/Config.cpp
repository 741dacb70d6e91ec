#include "Config.h"

#include "ShippedSettings.h"

#include <QDir>
#include <QSettings>
#include <QStandardPaths>
#include <QTextStream>

namespace VARNO {

namespace {

/// Reads "key=value" lines below "[section]" lines as they stand. The toolkit's own INI format splits a value
/// at commas and eats backslashes, which a file name written by hand may hold. A comment that holds an equals
/// sign becomes the value of a key that nobody asks for.
bool ReadPlainIni(QIODevice &device, QSettings::SettingsMap &values) {
    QTextStream text(&device);
    QString section, line;
    while (text.readLineInto(&line)) {
        line = line.trimmed();
        if (line.startsWith('[') && line.endsWith(']'))
            section = line.mid(1, line.size() - 2).trimmed();
        else if (const auto equals = line.indexOf('='); equals != -1)
            values[section + '/' + line.left(equals).trimmed()] = line.mid(equals + 1).trimmed();
    }
    return true;
}

QSettings::Format PlainIni() {
    static const QSettings::Format format = QSettings::registerFormat("ini", ReadPlainIni, nullptr);
    return format;
}

QString &UserFile() {
    static QString path =
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/varno/varno.ini";
    return path;
}

void WarnWhereUnreadable(const QSettings &user) {
    static QString warned;
    if (user.status() == QSettings::NoError || user.fileName() == warned)
        return;
    warned = user.fileName();
    qWarning("The settings file %s cannot be read: the default settings are used", qPrintable(warned));
}

/// The number that `read` makes of the text, 0 where there is none or it does not convert.
template <class Number, class Read>
Number Convert(const std::optional<std::string> &text, bool *ok, Read read) {
    bool converted = false;
    const Number number = text ? read(QString::fromStdString(*text), &converted) : Number();
    if (ok)
        *ok = converted;
    return converted ? number : Number();
}

} // namespace

int Setting::ToInt(bool *ok) const {
    return Convert<int>(m_text, ok, [](const QString &text, bool *read) { return text.toInt(read, 10); });
}

float Setting::ToFloat(bool *ok) const {
    return Convert<float>(m_text, ok, [](const QString &text, bool *read) { return text.toFloat(read); });
}

std::string Setting::ToString(bool *ok) const {
    if (ok)
        *ok = m_text.has_value();
    return m_text.value_or("");
}

Setting Config::GetSetting(const std::string &section, const std::string &key) {
    const QSettings user(UserFile(), PlainIni());
    WarnWhereUnreadable(user);
    const QString name = QString::fromStdString(section + '/' + key);
    if (user.contains(name))
        return Setting(user.value(name).toString().toStdString());
    const char *const shipped = ShippedSetting(section, key);
    return shipped ? Setting(shipped) : Setting();
}

std::string Config::GetPersonalDir() {
    const QString home = QDir::homePath();
    return QDir(home).isRoot() ? std::string() : home.toStdString();
}

std::string Config::GetUserFile() {
    return UserFile().toStdString();
}

void Config::SetUserFile(const std::string &path) {
    UserFile() = QString::fromStdString(path);
}

} // namespace VARNO
