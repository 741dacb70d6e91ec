#include "cli/Program.h"

#include "cli/CommandLine.h"
#include "cli/Completion.h"
#include "cli/Diagnostics.h"
#include "cli/Help.h"
#include "cli/Suggestion.h"

#include <algorithm>
#include <iostream>
#include <iterator>
#include <new>

namespace cli {

namespace {

/// How many of the words name a command: two where there is one of such a name, "screen export".
std::size_t WordsOfName(const std::vector<Command> &commands, const std::vector<std::string> &words) {
    const bool isPair =
        words.size() > 1 && std::ranges::count(commands, words[0] + ' ' + words[1], &Command::name) > 0;
    return isPair ? 2 : 1;
}

const Command &FindCommand(const std::vector<Command> &commands, const std::string &name) {
    const auto found = std::ranges::find(commands, name, &Command::name);
    if (found == commands.end()) {
        std::vector<std::string> names;
        std::ranges::transform(commands, std::back_inserter(names), &Command::name);
        throw UsageError("unknown command '" + name + "'" + Suggestion(name, names));
    }
    return *found;
}

int RunCommand(const Command &command, const std::vector<std::string> &words) {
    SetProgramName("morvanex " + command.name);
    const Arguments arguments = ParseArguments(command, words);
    if (!arguments.wantsHelp)
        return command.run(arguments);
    std::cout << CommandHelp(command);
    return Succeeded;
}

std::string CompletionFor(const std::string &shell, const std::vector<Command> &commands) {
    if (shell == "bash")
        return BashCompletion(commands);
    if (shell == "zsh")
        return ZshCompletion(commands);
    throw UsageError("--completion: '" + shell + "' is neither bash nor zsh");
}

int Dispatch(const std::vector<Command> &commands, const std::vector<std::string> &words) {
    if (words.empty())
        throw UsageError("a command is missing");
    const std::string &first = words.front();
    if (first == "--help" || first == "-h")
        std::cout << ProgramHelp(commands);
    else if (first == "--version")
        std::cout << "morvanex " MORVANEX_VERSION "\n";
    else if (first == "--man")
        std::cout << ManualPage(commands);
    else if (first == "--completion")
        std::cout << CompletionFor(words.size() > 1 ? words[1] : "", commands);
    else if (WordsOfName(commands, words) == 2)
        return RunCommand(FindCommand(commands, first + ' ' + words[1]), {words.begin() + 2, words.end()});
    else
        return RunCommand(FindCommand(commands, first), {words.begin() + 1, words.end()});
    return Succeeded;
}

/// Output that did not reach its file must not pass for success.
int CheckStandardOutput(int status) {
    std::cout.flush();
    if (std::cout)
        return status;
    ReportError("standard output cannot be written");
    return Failed;
}

} // namespace

int RunProgram(const std::vector<Command> &commands, const std::vector<std::string> &words) {
    SetProgramName("morvanex");
    try {
        return CheckStandardOutput(Dispatch(commands, words));
    } catch (const UsageError &error) {
        ReportError(std::string(error.what()) + " (--help explains the options)");
        return WrongUsage;
    } catch (const std::bad_alloc &) {
        ReportError("not enough memory");
    } catch (const std::exception &error) {
        ReportError(error.what());
    }
    return Failed;
}

} // namespace cli
