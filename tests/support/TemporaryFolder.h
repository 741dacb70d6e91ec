#pragma once

#include <string>

/// A folder of its own for one test, gone when it ends.
class TemporaryFolder {
public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;
    ~TemporaryFolder();

    const std::string &Path() const { return m_path; }
    std::string File(const std::string &name) const { return m_path + "/" + name; }
    /// Writes the bytes to a file of that name and returns its path.
    std::string Write(const std::string &name, const std::string &bytes) const;

private:
    std::string m_path;
};

/// All bytes of a file; fails the test when it cannot be read.
std::string ReadFile(const std::string &path);
