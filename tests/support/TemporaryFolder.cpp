#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

TemporaryFolder::TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "morvanex-XXXXXX").string();
    if (mkdtemp(pattern.data()))
        m_path = pattern;
    EXPECT_FALSE(m_path.empty()) << "no temporary folder";
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    if (!m_path.empty())
        std::filesystem::remove_all(m_path, ignored);
}

std::string TemporaryFolder::Write(const std::string &name, const std::string &bytes) const {
    std::ofstream(File(name), std::ios::binary) << bytes;
    return File(name);
}

std::string ReadFile(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path << " cannot be read";
    return std::string(std::istreambuf_iterator<char>(file), {});
}
