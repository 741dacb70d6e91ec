#include "cli/Process.h"

#include <cerrno>
#include <csignal>
#include <initializer_list>

#include <fcntl.h>
#include <unistd.h>

namespace cli {

void PrepareProcess() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(stream, F_GETFD) == -1 && errno == EBADF)
            // The lowest number that is free, which is this one.
            open("/dev/null", O_RDWR);
    std::signal(SIGXFSZ, SIG_IGN);
}

} // namespace cli
