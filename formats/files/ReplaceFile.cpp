#include "formats/files/ReplaceFile.h"

#include "formats/files/FileError.h"

#include <QFile>
#include <QSaveFile>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <locale>
#include <ostream>
#include <streambuf>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace formats {

namespace {

[[noreturn]] void Fail(const std::string &path, const std::string &reason) {
    throw FileError(path, "", "cannot be written: " + reason);
}

/// What stands under a path.
enum class Kind {
    File,   ///< a regular file, or nothing yet: replaced as a whole
    Stream, ///< takes bytes as they come
    Pipe    ///< a stream that somebody has to read
};

/// A stream of the process may lead to a regular file that the shell has opened: replacing it by name would
/// take it away from the shell.
bool IsStreamName(const std::string &path) {
    return path == "/dev/stdout" || path == "/dev/stderr" || path.starts_with("/dev/fd/") ||
           path.starts_with("/proc/");
}

/// Qt names files in UTF-8, and would write one of another name.
void CheckName(const std::string &path) {
    if (QFile::encodeName(QString::fromStdString(path)).toStdString() != path)
        Fail(path, "its name is not UTF-8");
    if (path.empty() || path.ends_with('/'))
        Fail(path, "it names no file");
}

Kind Examine(const std::string &path) {
    struct stat state;
    const bool exists = stat(path.c_str(), &state) == 0;
    if (!exists && errno != ENOENT)
        Fail(path, std::strerror(errno));
    if (exists && S_ISDIR(state.st_mode))
        Fail(path, "it is a directory");
    if (exists && access(path.c_str(), W_OK) != 0)
        Fail(path, std::strerror(errno));
    if (exists && S_ISFIFO(state.st_mode))
        return Kind::Pipe;
    if (exists && (!S_ISREG(state.st_mode) || IsStreamName(path)))
        return Kind::Stream;
    CheckName(path);
    return Kind::File;
}

/// Whatever takes the next bytes of a file; throws FileError.
using Sink = std::function<void(const char *bytes, std::size_t count)>;

class SinkBuffer : public std::streambuf {
public:
    explicit SinkBuffer(const Sink &sink)
        : m_sink(sink) {
        Reset();
    }

protected:
    int_type overflow(int_type next) override {
        sync();
        if (traits_type::eq_int_type(next, traits_type::eof()))
            return traits_type::not_eof(next);
        return sputc(traits_type::to_char_type(next));
    }
    int sync() override {
        const auto count = std::size_t(pptr() - pbase());
        Reset();
        m_sink(m_buffer.data(), count);
        return 0;
    }

private:
    void Reset() { setp(m_buffer.data(), m_buffer.data() + m_buffer.size()); }

    const Sink &m_sink;
    std::array<char, 1 << 16> m_buffer;
};

void WriteTo(const Sink &sink, const std::function<void(std::ostream &)> &write) {
    SinkBuffer buffer(sink);
    std::ostream out(&buffer);
    out.imbue(std::locale::classic());
    out.exceptions(std::ios::failbit | std::ios::badbit);
    write(out);
    out.flush();
}

/// A device or a pipe. Nothing here waits where Ctrl-C and its like go unheard: they may be held back while
/// a file is written.
class Stream {
public:
    Stream(const std::string &path, Kind kind)
        : m_path(path) {
        constexpr int flags = O_WRONLY | O_APPEND | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
        while ((m_file = open(path.c_str(), flags)) < 0) {
            if (errno != ENXIO || kind != Kind::Pipe)
                Fail(path, std::strerror(errno));
            Wait(-1);
        }
    }
    Stream(const Stream &) = delete;
    Stream &operator=(const Stream &) = delete;
    ~Stream() { close(m_file); }

    void Write(const char *bytes, std::size_t count) const {
        while (count > 0) {
            const ssize_t written = write(m_file, bytes, count);
            if (written >= 0) {
                bytes += written;
                count -= std::size_t(written);
            } else if (errno == EAGAIN) {
                Wait(m_file);
            } else if (errno != EINTR) {
                Fail(m_path, std::strerror(errno));
            }
        }
    }

private:
    /// Until the file takes bytes (-1: none is open yet), or for a moment.
    void Wait(int file) const {
        constexpr int moment = 100; // ms
        pollfd reader{file, POLLOUT, 0};
        poll(&reader, 1, moment);
        sigset_t pending;
        sigpending(&pending);
        for (const int end : {SIGINT, SIGTERM, SIGHUP})
            if (sigismember(&pending, end))
                Fail(m_path, "nothing reads the pipe");
    }

    const std::string &m_path;
    int m_file = -1;
};

void OpenSaveFile(const std::string &path, QSaveFile &file) {
    file.setFileName(QString::fromStdString(path));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        throw FileError(path, "",
                        "cannot be written, no file can be made in its folder: " +
                            file.errorString().toStdString());
}

void WriteToStream(const std::string &path, Kind kind, const std::function<void(std::ostream &)> &write) {
    const Stream stream(path, kind);
    WriteTo([&](const char *bytes, std::size_t count) { stream.Write(bytes, count); }, write);
}

void WriteToFile(const std::string &path, const std::function<void(std::ostream &)> &write) {
    QSaveFile file;
    OpenSaveFile(path, file);
    const auto check = [&](bool done) {
        if (!done)
            Fail(path, file.errorString().toStdString());
    };
    const Sink sink = [&](const char *bytes, std::size_t count) {
        // A full disk takes a part, and tells why it takes no more at the next attempt.
        for (qint64 written = 0; count > 0; bytes += written, count -= std::size_t(written)) {
            written = file.write(bytes, qint64(count));
            check(written > 0);
        }
    };
    WriteTo(sink, write);
    // A network's disk may turn out to be full only here; QSaveFile does not look.
    if (fsync(file.handle()) != 0)
        Fail(path, std::strerror(errno));
    check(file.commit());
}

} // namespace

void ReplaceFile(const std::string &path, const std::function<void(std::ostream &)> &write) {
    const Kind kind = Examine(path);
    if (kind == Kind::File)
        WriteToFile(path, write);
    else
        WriteToStream(path, kind, write);
}

void CheckReplaceable(const std::string &path) {
    if (Examine(path) != Kind::File)
        return;
    QSaveFile file;
    OpenSaveFile(path, file);
}

} // namespace formats
