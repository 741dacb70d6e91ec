#include <QApplication>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include "view/SceneView.h"

#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <link.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// An X server without a screen, for as long as the tests run.
class Screen {
public:
    Screen() {
        int channel[2];
        if (pipe(channel) != 0)
            std::perror("pipe");
        std::string number = std::to_string(channel[1]), size = "4000x3000x24";
        std::string words[] = {"Xvfb", "-displayfd", number, "-screen", "0", size, "-nolisten", "tcp"};
        char *arguments[9] = {};
        for (int i = 0; i < 8; ++i)
            arguments[i] = words[i].data();
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", 1, 0);
        if (posix_spawnp(&m_process, "Xvfb", &actions, nullptr, arguments, environ) != 0)
            std::fprintf(stderr, "Xvfb cannot be started\n");
        posix_spawn_file_actions_destroy(&actions);
        close(channel[1]);
        std::string display = ":";
        for (char c; read(channel[0], &c, 1) == 1 && c != '\n';)
            display += c;
        close(channel[0]);
        setenv("DISPLAY", display.c_str(), 1);
    }
    Screen(const Screen &) = delete;
    Screen &operator=(const Screen &) = delete;
    ~Screen() {
        if (m_process > 0)
            kill(m_process, SIGTERM);
        waitpid(m_process, nullptr, 0);
    }

private:
    pid_t m_process = 0;
};

/// What a library leaks is told with its name, and what its own variables still reach is no leak, only as
/// long as it is loaded: those that draw would be unloaded before the leaks are looked for.
void KeepLibraries() {
    std::vector<std::string> files;
    dl_iterate_phdr(
        [](dl_phdr_info *library, std::size_t, void *list) {
            static_cast<std::vector<std::string> *>(list)->emplace_back(library->dlpi_name);
            return 0;
        },
        &files);
    for (const std::string &file : files)
        dlopen(file.c_str(), RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
}

int RunInEventLoop(int &count, char **arguments) {
    const QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
    qputenv("XDG_RUNTIME_DIR", home.path().toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("LIBGL_ALWAYS_SOFTWARE", "1");
    desktop::SceneView::PrepareApplication();
    QApplication application(count, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    int result = 1;
    const auto runTests = [&result] {
        result = RUN_ALL_TESTS();
        KeepLibraries();
        QApplication::quit();
    };
    QMetaObject::invokeMethod(&application, runTests, Qt::QueuedConnection);
    QApplication::exec();
    return result;
}

} // namespace

/// The tests run inside the event loop of an application on a display of their own. Naming the tests takes
/// none.
int main(int count, char **arguments) {
    testing::InitGoogleTest(&count, arguments);
    if (GTEST_FLAG_GET(list_tests))
        return RUN_ALL_TESTS();
    const Screen screen;
    return RunInEventLoop(count, arguments);
}
