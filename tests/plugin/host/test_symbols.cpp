#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>

using testing::UnorderedElementsAre;

namespace {

std::string OutputOf(const std::string &command) {
    std::string output;
    FILE *pipe = popen(command.c_str(), "r");
    if (!pipe) {
        ADD_FAILURE() << command;
        return output;
    }
    char buffer[4096];
    while (const std::size_t count = fread(buffer, 1, sizeof buffer, pipe))
        output.append(buffer, count);
    EXPECT_EQ(pclose(pipe), 0) << command;
    return output;
}

/// What stands in brackets on the line of the dynamic section with that tag.
std::string DynamicEntry(const std::string &tag) {
    std::istringstream section(OutputOf("readelf --wide --dynamic '" MORVANEX_PLUGIN "'"));
    for (std::string line; std::getline(section, line);)
        if (line.find("(" + tag + ")") != std::string::npos)
            return line.substr(line.find(')') + 1);
    return {};
}

} // namespace

TEST(Library, ExportsThreeFunctionsAndNothingElse) {
    std::istringstream table(OutputOf("nm --dynamic --defined-only --format=posix '" MORVANEX_PLUGIN "'"));
    std::vector<std::string> symbols;
    for (std::string line; std::getline(table, line);) {
        std::istringstream words(line);
        std::string name, type;
        words >> name >> type;
        symbols.push_back(name + " " + type);
    }
    EXPECT_THAT(symbols, UnorderedElementsAre("Execute0 T", "Cleanup T", "IsDone T"));
}

TEST(Library, HasTheNameThatHostsLoadItBy) {
    EXPECT_THAT(DynamicEntry("SONAME"), testing::HasSubstr("[libMorvanex.so.0]"));
}

TEST(Library, StaysMappedHoweverItIsLoaded) {
    EXPECT_THAT(DynamicEntry("FLAGS_1"), testing::HasSubstr("NODELETE"));
}
