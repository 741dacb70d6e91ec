#include "TestData.h"

#include <cstdlib>
#include <filesystem>

std::string TestDataFolder() {
    const char *named = std::getenv("MORVANEX_DATA");
    const std::filesystem::path folder = named ? named : MORVANEX_DATA_DEFAULT;
    return std::filesystem::exists(folder / "cases.json") ? folder.lexically_normal().string()
                                                          : std::string();
}

std::string SourceFolder() {
    return MORVANEX_SOURCE_DIR;
}
