#pragma once

#include <string>

/// Where the real maps and models lie: $MORVANEX_DATA, else beside the project. Empty when there are none.
std::string TestDataFolder();

/// The project's own folder.
std::string SourceFolder();

/// Skips the running test, saying so, where the real data are absent; else names the file `name` among them.
#define REQUIRE_TEST_DATA()                                                                                  \
    if (TestDataFolder().empty())                                                                            \
    GTEST_SKIP() << "no test data: set MORVANEX_DATA to the folder that holds cases.json"
