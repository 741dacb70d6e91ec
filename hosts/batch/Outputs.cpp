#include "Outputs.h"

#include "FileError.h"
#include "ReplaceFile.h"

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

namespace Batch {

namespace {

/// Whether both paths lead to one file. A device or a pipe may be named as often as one likes.
bool IsSameFile(const std::string &a, const std::string &b) {
    std::error_code error;
    if (fs::exists(a, error) && fs::exists(b, error))
        return fs::equivalent(a, b, error) && fs::is_regular_file(a, error);
    return fs::weakly_canonical(a, error) == fs::weakly_canonical(b, error);
}

bool Contains(const std::vector<std::string> &files, const std::string &file) {
    return std::ranges::any_of(files, [&](const std::string &other) { return IsSameFile(other, file); });
}

} // namespace

void CheckOutputs(const std::vector<std::string> &outputs, const std::vector<std::string> &inputs) {
    std::vector<std::string> checked;
    for (const std::string &output : outputs) {
        if (Contains(inputs, output))
            throw VARNO::FileError(output, "", "is an input; it cannot be written to");
        if (Contains(checked, output))
            throw VARNO::FileError(output, "", "is named for two outputs");
        VARNO::CheckReplaceable(output);
        checked.push_back(output);
    }
}

} // namespace Batch
