#include "Config.h"

#include <QDir>
#include <QSettings>
#include <QStandardPaths>
#include <QTextStream>

#include <map>
#include <utility>

namespace VARNO {

namespace {

/// What the host ships.
const std::map<std::pair<std::string, std::string>, std::string> defaults = {
    {{"Morvanex", "Axis"}, "2"},         {{"Morvanex", "RotationStep"}, "10.0"},
    {{"Morvanex", "TransNum"}, "5"},     {{"Morvanex", "TransStep"}, "5.0"},
    {{"Morvanex", "TopList"}, "100"},    {{"Morvanex", "Output"}, "morvanex.log"},
    {{"Morvanex", "Marginal"}, "60.0"},
};

/// Reads "key=value" lines below "[section]" lines as they stand. The toolkit's own INI format splits a value
/// at commas and eats backslashes, which a file name written by hand may hold.
bool ReadPlainIni(QIODevice &device, QSettings::SettingsMap &values) {
    QTextStream text(&device);
    QString section, line;
    while (text.readLineInto(&line)) {
        line = line.trimmed();
        if (line.startsWith('[') && line.endsWith(']'))
            section = line.mid(1, line.size() - 2).trimmed();
        else if (const auto equals = line.indexOf('='); equals > 0 && !line.startsWith('#') && !line.startsWith(';'))
            values[section + '/' + line.left(equals).trimmed()] = line.mid(equals + 1).trimmed();
    }
    return true;
}

bool WritePlainIni(QIODevice &device, const QSettings::SettingsMap &values) {
    QTextStream text(&device);
    QString section;
    for (auto it = values.begin(); it != values.end(); ++it) {
        const auto slash = it.key().lastIndexOf('/');
        if (const QString own = it.key().left(slash); own != section)
            text << '[' << (section = own) << "]\n";
        text << it.key().mid(slash + 1) << '=' << it.value().toString() << '\n';
    }
    return true;
}

QSettings::Format PlainIni() {
    static const QSettings::Format format = QSettings::registerFormat("ini", ReadPlainIni, WritePlainIni);
    return format;
}

QString &UserFile() {
    static QString path =
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + "/varno/varno.ini";
    return path;
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
    const QString name = QString::fromStdString(section + '/' + key);
    if (user.contains(name))
        return Setting(user.value(name).toString().toStdString());
    const auto shipped = defaults.find({section, key});
    return shipped == defaults.end() ? Setting() : Setting(shipped->second);
}

std::string Config::GetPersonalDir() { return QDir::homePath().toStdString(); }

std::string Config::GetUserFile() { return UserFile().toStdString(); }

void Config::SetUserFile(const std::string &path) { UserFile() = QString::fromStdString(path); }

} // namespace VARNO
