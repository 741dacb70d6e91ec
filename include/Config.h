#pragma once

#include <optional>
#include <string>

namespace VARNO {

/// One value read from the settings, as text. Conversions of an absent or unreadable value give 0, 0.0f or
/// the empty string and set `*ok` to false; `ok` may be null. Numbers are read in the C locale.
class Setting {
public:
    Setting() = default;
    explicit Setting(std::string text)
        : m_text(std::move(text)) {}

    int ToInt(bool *ok = nullptr) const;
    float ToFloat(bool *ok = nullptr) const;
    std::string ToString(bool *ok = nullptr) const;

private:
    std::optional<std::string> m_text;
};

/// The host's settings: the user's INI file over the defaults that the host ships. A value arrives as it
/// stands in the file, commas, backslashes and quotes included; blanks around it do not belong to it.
/// Sections and keys are case-sensitive.
class Config {
public:
    /// The file is read anew where it has changed. One that is there but cannot be read counts as empty, and
    /// is named on the warning channel, once.
    static Setting GetSetting(const std::string &section, const std::string &key);
    /// The user's home directory, without a trailing separator: empty where that is the root directory.
    static std::string GetPersonalDir();

    /// The user's settings file: `varno/varno.ini` below the user's configuration directory unless set here.
    static std::string GetUserFile();
    static void SetUserFile(const std::string &path);
};

} // namespace VARNO
