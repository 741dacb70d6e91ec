#include "plugins/Plugin.h"

#include "plugins/ElfFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QRegularExpression>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include <dlfcn.h>

namespace desktop {

namespace {

/// Two versions of Qt in one process overwrite each other's objects.
void CheckQt(const std::vector<std::string> &needed) {
    static const QRegularExpression qtCore("^libQt(\\d+)?Core\\.so\\.(\\d+)|^libqt-mt\\.so|^libQt(\\d+)");
    for (const std::string &name : needed) {
        const QString library = QString::fromStdString(name);
        const bool isQt = qtCore.match(library).hasMatch();
        if (isQt && !library.startsWith(QString("libQt%1").arg(QT_VERSION_MAJOR)))
            throw std::runtime_error("it links " + name + ", not the application's Qt " QT_VERSION_STR);
    }
}

} // namespace

QString Plugin::Name() const {
    QString name = QFileInfo(m_file).fileName();
    name.remove(QRegularExpression("^lib|\\.so\\.0$"));
    return name;
}

std::string Plugin::Problem() const {
    try {
        const ElfFile elf = ReadElf(m_file.toStdString());
        if (elf.machine != OwnMachine())
            return "it is built for another kind of processor";
        CheckQt(elf.needed);
        for (const char *name : {"Execute0", "Cleanup", "IsDone"})
            if (!elf.names.contains(name))
                return std::string("it has no entry point ") + name;
        return {};
    } catch (const std::runtime_error &error) {
        return error.what();
    }
}

void Plugin::Execute() {
    if (!m_execute)
        Load();
    m_isStarted = true;
    m_execute();
}

void Plugin::Load() {
    const auto fail = [this](const std::string &reason) {
        throw std::runtime_error(m_file.toStdString() + ": " + reason);
    };
    if (const std::string problem = Problem(); !problem.empty())
        fail(problem);
    void *library = dlopen(m_file.toLocal8Bit(), RTLD_NOW | RTLD_NODELETE);
    if (!library)
        throw std::runtime_error(dlerror());
    m_cleanup = reinterpret_cast<bool *(*)()>(dlsym(library, "Cleanup"));
    m_execute = reinterpret_cast<void (*)()>(dlsym(library, "Execute0"));
    if (!m_execute || !m_cleanup || !dlsym(library, "IsDone")) {
        m_execute = nullptr;
        fail("it lacks an entry point");
    }
}

void Plugin::Cleanup() {
    if (std::exchange(m_isStarted, false))
        m_cleanup();
}

std::vector<std::unique_ptr<Plugin>> PluginsOf(const QString &folder) {
    std::vector<std::unique_ptr<Plugin>> plugins;
    for (const QFileInfo &file : QDir(folder).entryInfoList({"lib*.so.0"}, QDir::Files, QDir::Name))
        plugins.push_back(std::make_unique<Plugin>(file.absoluteFilePath()));
    return plugins;
}

std::vector<std::unique_ptr<Plugin>> FindPlugins(const std::function<void(const QString &)> &warn) {
    std::vector<std::unique_ptr<Plugin>> found;
    const auto take = [&](const QString &folder, const std::function<void(const QString &)> &complain) {
        for (auto &plugin : PluginsOf(folder)) {
            const std::string problem = plugin->Problem();
            if (!problem.empty())
                complain(plugin->File() + ": " + QString::fromStdString(problem));
            else if (std::ranges::none_of(found,
                                          [&](const auto &one) { return one->Name() == plugin->Name(); }))
                found.push_back(std::move(plugin));
        }
    };
    if (qEnvironmentVariableIsSet("VARNO_PLUGINS"))
        take(qEnvironmentVariable("VARNO_PLUGINS"), warn);
    for (const char *folder : {"/../lib", "/../" MORVANEX_LIBRARY_FOLDER})
        take(QCoreApplication::applicationDirPath() + folder, [](const QString &) {});
    return found;
}

} // namespace desktop
