#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <vector>

namespace desktop {

/// A plug-in library. Once loaded it is never unmapped: queued calls, meta-objects and strings that the
/// toolkit keeps would point to nowhere.
class Plugin {
public:
    /// Does not load it yet.
    explicit Plugin(QString file)
        : m_file(std::move(file)) {}
    Plugin(const Plugin &) = delete;
    Plugin &operator=(const Plugin &) = delete;

    const QString &File() const { return m_file; }
    /// "Morvanex" of libMorvanex.so.0.
    QString Name() const;
    /// Why the library cannot be a plug-in of this application, as its file tells; empty where it can.
    std::string Problem() const;
    /// Loads the library where that has not been done, and runs the plug-in or shows its dialog again. Throws
    /// std::runtime_error with the file and the reason where it cannot be loaded.
    void Execute();
    /// Ends the session of a plug-in that was started.
    void Cleanup();

private:
    void Load();

    QString m_file;
    void (*m_execute)() = nullptr;
    bool *(*m_cleanup)() = nullptr;
    bool m_isStarted = false;
};

/// The plug-in libraries of a folder (lib*.so.0), the unfit ones too.
std::vector<std::unique_ptr<Plugin>> PluginsOf(const QString &folder);

/// The plug-ins that can be loaded: those of the folder that the environment names (VARNO_PLUGINS), and those
/// of the library folder beside the program, in the build tree or installed. Of one name only the first.
/// `warn` hears which library of the environment's folder is unfit and why; other libraries beside the
/// program are no plug-ins.
std::vector<std::unique_ptr<Plugin>> FindPlugins(const std::function<void(const QString &)> &warn);

} // namespace desktop
