#include "formats/files/ReplaceFile.h"

#include "formats/files/FileError.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <locale>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace formats {

namespace {

namespace fs = std::filesystem;

[[noreturn]] void Fail(const std::string &path, const std::string &problem, int error) {
    throw FileError(path, "", problem + ": " + std::strerror(error));
}

/// The file that a chain of symbolic links ends in, existing or not. The chain is known to be no loop.
fs::path FollowLinks(fs::path path) {
    while (fs::is_symlink(path))
        path = path.parent_path() / fs::read_symlink(path);
    return path;
}

/// Where the bytes are to go, and what is there now.
struct Target {
    fs::path path;
    bool stream = false; ///< takes bytes as they come: there is no file to replace
    bool exists = false;
    mode_t permissions = 0; ///< of an existing file
};

/// A stream of the process may lead to a regular file that the shell has opened: replacing it by name would
/// take it away from the shell.
bool IsStreamName(const std::string &path) {
    return path == "/dev/stdout" || path == "/dev/stderr" || path.starts_with("/dev/fd/") ||
           path.starts_with("/proc/");
}

Target Examine(const std::string &path) {
    struct stat state;
    const bool exists = stat(path.c_str(), &state) == 0;
    if (!exists && errno != ENOENT)
        Fail(path, "cannot be written", errno);
    if (exists && S_ISDIR(state.st_mode))
        throw FileError(path, "", "cannot be written: it is a directory");
    if (exists && access(path.c_str(), W_OK) != 0)
        Fail(path, "cannot be written", errno);
    if (exists && (!S_ISREG(state.st_mode) || IsStreamName(path)))
        return {path, true, true, 0};
    const fs::path target = FollowLinks(path);
    if (!target.has_filename())
        throw FileError(path, "", "cannot be written: it names no file");
    return {target, false, exists, exists ? state.st_mode & 07777 : 0};
}

/// An empty file of a name of its own beside the target; removed at the end unless it was renamed.
class Temporary {
public:
    Temporary(const std::string &path, const fs::path &folder) {
        for (unsigned i = 0; m_file < 0; ++i) {
            m_path = folder / (".morvanex-" + std::to_string(getpid()) + "-" + std::to_string(i) + ".tmp");
            m_file = open(m_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            if (m_file < 0 && errno != EEXIST)
                Fail(path, "cannot be written, no file can be made in its folder", errno);
        }
    }
    Temporary(const Temporary &) = delete;
    Temporary &operator=(const Temporary &) = delete;
    ~Temporary() {
        close(m_file);
        if (!m_renamed)
            unlink(m_path.c_str());
    }

    const fs::path &Path() const { return m_path; }

    /// False, with errno set, where a step fails.
    bool TakePlaceOf(const Target &target) {
        m_renamed = (!target.exists || fchmod(m_file, target.permissions) == 0) && fsync(m_file) == 0 &&
                    rename(m_path.c_str(), target.path.c_str()) == 0;
        return m_renamed;
    }

private:
    fs::path m_path;
    int m_file = -1;
    bool m_renamed = false;
};

/// `path` is what the caller named, `place` the file that is opened.
void WriteTo(const std::string &path, const fs::path &place, std::ios::openmode mode,
             const std::function<void(std::ostream &)> &write) {
    std::ofstream out;
    out.imbue(std::locale::classic());
    errno = 0;
    try {
        out.exceptions(std::ios::failbit | std::ios::badbit);
        out.open(place, std::ios::binary | mode);
        write(out);
        out.close();
    } catch (const std::ios::failure &) {
        Fail(path, "cannot be written", errno);
    }
}

} // namespace

void ReplaceFile(const std::string &path, const std::function<void(std::ostream &)> &write) {
    const Target target = Examine(path);
    if (target.stream)
        return WriteTo(path, target.path, std::ios::app, write);
    Temporary temporary(path, target.path.parent_path());
    WriteTo(path, temporary.Path(), std::ios::trunc, write);
    if (!temporary.TakePlaceOf(target))
        Fail(path, "cannot be written", errno);
}

void CheckReplaceable(const std::string &path) {
    const Target target = Examine(path);
    if (!target.stream)
        Temporary(path, target.path.parent_path());
}

} // namespace formats
