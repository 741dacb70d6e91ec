#include "hosts/report/Viewer.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include <dlfcn.h>

namespace fs = std::filesystem;

namespace report {

namespace {

constexpr int foldersAbove = 4; ///< lib/python3/dist-packages/morvanex stands so deep below the prefix

std::optional<std::string> ContentOf(const fs::path &file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream content;
    if (!in || !(content << in.rdbuf()))
        return std::nullopt;
    return content.str();
}

std::optional<Viewer> ViewerIn(const fs::path &folder) {
    std::optional<std::string> script = ContentOf(folder / "ngl.js"), notices = ContentOf(folder / "NOTICES");
    if (!script || !notices)
        return std::nullopt;
    return Viewer{std::move(*script), std::move(*notices)};
}

/// The program or the shared library that this code is linked into.
fs::path OwnBinary() {
    Dl_info info{};
    std::error_code error;
    if (dladdr(reinterpret_cast<const void *>(&InstalledViewer), &info) == 0 || !info.dli_fname)
        return {};
    const fs::path file = fs::canonical(info.dli_fname, error);
    // A program that was found by PATH is known by its bare name.
    return error ? fs::read_symlink("/proc/self/exe", error) : file;
}

} // namespace

std::optional<Viewer> InstalledViewer() {
    fs::path folder = OwnBinary().parent_path();
    for (int i = 0; i <= foldersAbove && folder.has_relative_path(); ++i, folder = folder.parent_path())
        if (std::optional<Viewer> viewer = ViewerIn(folder / "share" / "morvanex" / "report"))
            return viewer;
    return std::nullopt;
}

} // namespace report
