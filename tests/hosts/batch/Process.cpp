#include "Process.h"

#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// In the child; does not return.
[[noreturn]] void Become(const std::vector<std::string> &words, int output, int errors, long fileSizeLimit) {
    dup2(output, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
    // Test drivers in the background ignore the keyboard's signals.
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        std::signal(signal, SIG_DFL);
    if (fileSizeLimit >= 0) {
        std::signal(SIGXFSZ, SIG_DFL);
        const rlimit limit{rlim_t(fileSizeLimit), rlim_t(fileSizeLimit)};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    setenv("XDG_CONFIG_HOME", "/nonexistent", 1);
    std::vector<char *> arguments{const_cast<char *>(MORVANEX_PROGRAM)};
    for (const std::string &word : words)
        arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);
    execv(MORVANEX_PROGRAM, arguments.data());
    _exit(127);
}

} // namespace

Process::Process(const std::vector<std::string> &words, long fileSizeLimit) {
    int output[2], errors[2];
    if (pipe(output) != 0 || pipe(errors) != 0)
        throw std::runtime_error("no pipe");
    m_process = fork();
    if (m_process == 0)
        Become(words, output[1], errors[1], fileSizeLimit);
    close(output[1]);
    close(errors[1]);
    m_streams[0] = output[0];
    m_streams[1] = errors[0];
}

Process::~Process() {
    for (const int stream : m_streams)
        if (stream >= 0)
            close(stream);
    if (m_process > 0) {
        kill(m_process, SIGKILL);
        waitpid(m_process, nullptr, 0);
    }
}

bool Process::Read() {
    pollfd polled[2] = {{m_streams[0], POLLIN, 0}, {m_streams[1], POLLIN, 0}};
    poll(polled, 2, -1);
    std::string *const texts[2] = {&m_outcome.output, &m_outcome.errors};
    for (const int i : {0, 1}) {
        if (polled[i].revents == 0)
            continue;
        char buffer[4096];
        const ssize_t count = read(m_streams[i], buffer, sizeof buffer);
        if (count > 0) {
            texts[i]->append(buffer, std::size_t(count));
        } else {
            close(m_streams[i]);
            m_streams[i] = -1;
        }
    }
    return m_streams[0] >= 0 || m_streams[1] >= 0;
}

bool Process::WaitFor(const std::string &text) {
    const auto said = [&] { return (m_outcome.output + m_outcome.errors).find(text) != std::string::npos; };
    while (!said())
        if (!Read())
            return said();
    return true;
}

void Process::Send(int signal) const {
    kill(m_process, signal);
}

Outcome Process::Finish() {
    while (Read())
        ;
    int status = 0;
    waitpid(m_process, &status, 0);
    m_process = -1;
    m_outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return m_outcome;
}
