#include "Commands.h"
#include "FitArguments.h"
#include "PlaceArguments.h"

#include <cstdint>
#include <sstream>

namespace {

std::vector<std::string> Lines(const std::string &text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

const cli::Command *CommandNamed(const std::string &name) {
    for (const cli::Command &command : batch::AllCommands())
        if (command.name == name)
            return &command;
    return nullptr;
}

void Read(const cli::Command &command, const std::vector<std::string> &words) {
    const cli::Arguments arguments = cli::ParseArguments(command, words);
    // Nothing was checked then, and the program reads no more.
    if (arguments.wantsHelp)
        return;
    for (const cli::Option &option : command.options) {
        arguments.List(option.name);
        if (option.value == cli::Value::Integer)
            arguments.Integer(option.name);
        if (option.value == cli::Value::Number)
            arguments.Number(option.name);
    }
    if (command.name == "fit")
        hosts::CheckFitOptions(batch::ReadFitOptions(arguments, [](const std::string &) {}));
    if (command.name == "place")
        batch::ReadPlaceOptions(arguments);
}

} // namespace

/// The first line is the command, each further one a word of its command line.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    std::vector<std::string> words = Lines({reinterpret_cast<const char *>(data), size});
    const cli::Command *command = words.empty() ? nullptr : CommandNamed(words.front());
    if (!command)
        return 0;
    words.erase(words.begin());
    try {
        Read(*command, words);
    } catch (const std::runtime_error &) {
        // Refused, as it may be. Any other exception ends the run.
    }
    return 0;
}
