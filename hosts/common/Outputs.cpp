#include "hosts/common/Outputs.h"

#include "formats/files/FileError.h"
#include "formats/files/ReplaceFile.h"

#include <cerrno>
#include <filesystem>
#include <set>

#include <sys/stat.h>

namespace fs = std::filesystem;

namespace hosts {

namespace {

/// The path without links and detours. The file need not exist, and a link may lead to one that does not; the
/// links are known to be no loop.
std::string PlainPath(fs::path path) {
    std::error_code error;
    while (fs::is_symlink(path, error))
        path = path.parent_path() / fs::read_symlink(path);
    return fs::weakly_canonical(fs::absolute(path), error);
}

/// The same text for every path that leads to one file. Empty for a device or a pipe: these may be named as
/// often as one likes; and where the path can lead nowhere, which is said when the file is opened.
std::string IdentityOf(const std::string &path) {
    struct stat state;
    if (stat(path.c_str(), &state) != 0)
        return errno == ENOENT ? PlainPath(path) : "";
    return S_ISREG(state.st_mode) ? std::to_string(state.st_dev) + ':' + std::to_string(state.st_ino) : "";
}

} // namespace

void CheckOutputs(const std::vector<std::string> &outputs, const std::vector<std::string> &inputs) {
    std::set<std::string> read, written;
    for (const std::string &input : inputs)
        read.insert(IdentityOf(input));
    for (const std::string &output : outputs) {
        formats::CheckReplaceable(output);
        const std::string identity = IdentityOf(output);
        if (identity.empty())
            continue;
        if (read.contains(identity))
            throw formats::FileError(output, "", "is an input; it cannot be written to");
        if (!written.insert(identity).second)
            throw formats::FileError(output, "", "is named for two outputs");
    }
}

} // namespace hosts
