#include "Commands.h"

#include "cli/Help.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

using namespace batch;
using namespace cli;

namespace {

/// Characters, not bytes: continuation bytes of UTF-8 are passed by.
std::size_t Width(const std::string &line) {
    return std::size_t(std::ranges::count_if(line, [](char c) { return (c & 0xC0) != 0x80; }));
}

} // namespace

TEST(AllCommands, ExplainEveryOptionWithinTheLineWidth) {
    for (const Command &command : AllCommands()) {
        EXPECT_TRUE(command.run) << command.name;
        EXPECT_FALSE(command.description.empty()) << command.name;
        for (const Option &option : command.options) {
            EXPECT_FALSE(option.help.empty()) << command.name << ' ' << option.name;
            EXPECT_FALSE(option.help.ends_with('.')) << command.name << ' ' << option.name;
            EXPECT_EQ(option.valueName.empty(), option.value == Value::None)
                << command.name << ' ' << option.name;
        }
        std::istringstream lines(CommandHelp(command));
        for (std::string line; std::getline(lines, line);)
            EXPECT_LE(Width(line), 80u) << line;
    }
}
