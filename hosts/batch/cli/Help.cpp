#include "cli/Help.h"

#include <algorithm>
#include <sstream>

namespace cli {

namespace {

constexpr std::size_t lineWidth = 80;
constexpr std::size_t optionColumn = 4;
constexpr std::size_t textColumn = 8;

const char *const programSummary = "fit an atomic model into a cryo-EM density map";

const char *const exitStatusText =
    "0 when the work was done, 1 when it failed (the reason is on standard error), 2 when the command line "
    "was wrong. A search that a signal stops writes what it has found and exits with 130 after Ctrl-C, 143 "
    "after SIGTERM, 129 after SIGHUP.";

/// The text as lines of at most `lineWidth` characters, all indented; empty lines stay.
std::string Wrap(const std::string &text, std::size_t indent) {
    std::string wrapped;
    std::istringstream paragraphs(text);
    for (std::string paragraph; std::getline(paragraphs, paragraph);) {
        std::string line(indent, ' ');
        std::istringstream words(paragraph);
        for (std::string word; words >> word;) {
            if (line.size() > indent && line.size() + 1 + word.size() > lineWidth) {
                wrapped += line + '\n';
                line.assign(indent, ' ');
            }
            line += (line.size() > indent ? " " : "") + word;
        }
        wrapped += (line.size() > indent ? line : "") + '\n';
    }
    return wrapped;
}

std::string OptionText(const Option &option) {
    return option.name + (option.value == Value::None ? "" : " " + option.valueName);
}

/// The option as the usage line shows it.
std::string UsageWord(const Option &option) {
    std::string word = OptionText(option);
    if (!option.required)
        word.insert(0, 1, '[').append(1, ']');
    return option.repeatable ? word + "..." : word;
}

std::string Explanation(const Option &option) {
    std::string text = option.help + '.';
    if (option.required)
        text += " Required.";
    if (option.repeatable)
        text += " May be given several times.";
    if (!option.defaultText.empty())
        text += " Default: " + option.defaultText + '.';
    return text;
}

std::string Usage(const Command &command) {
    const std::string start = "morvanex " + command.name;
    const std::string indent(start.size() + 3, ' ');
    std::vector<std::string> words;
    for (const Option &option : command.options)
        words.push_back(UsageWord(option));
    if (!command.operand.empty())
        words.push_back(command.operand);
    std::string usage, line = "  " + start;
    for (const std::string &word : words) {
        if (line.size() + 1 + word.size() > lineWidth) {
            usage += line + '\n';
            line = indent + word;
        } else {
            line += ' ' + word;
        }
    }
    return usage + line + '\n';
}

/// Text for the manual page: what its language takes for a command is escaped.
std::string Roff(const std::string &text) {
    std::string escaped;
    for (const char character : text) {
        if (character == '\\')
            escaped += "\\e";
        else if (character == '-')
            escaped += "\\-";
        else if ((character == '.' || character == '\'') && (escaped.empty() || escaped.back() == '\n'))
            escaped += std::string("\\&") + character;
        else
            escaped += character;
    }
    return escaped;
}

/// Paragraphs, separated by empty lines, each begun with the macro.
std::string RoffParagraphs(const std::string &text, const std::string &macro) {
    std::string page = macro + '\n';
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
        page += (line.empty() ? macro : Roff(line)) + '\n';
    return page;
}

std::string RoffCommand(const Command &command) {
    std::string page = ".SH MORVANEX " + command.name + '\n';
    std::ranges::transform(page, page.begin(),
                           [](char c) { return c >= 'a' && c <= 'z' ? char(c - 32) : c; });
    page += ".B morvanex " + command.name + '\n';
    for (const Option &option : command.options)
        page += Roff(UsageWord(option)) + '\n';
    if (!command.operand.empty())
        page += Roff(command.operand) + '\n';
    page += RoffParagraphs(command.description, ".PP");
    for (const Option &option : command.options) {
        if (!option.heading.empty())
            page += ".SS " + Roff(option.heading) + '\n';
        page += ".TP\n\\fB" + Roff(option.name) + "\\fR";
        if (option.value != Value::None)
            page += " \\fI" + Roff(option.valueName) + "\\fR";
        page += '\n' + Roff(Explanation(option)) + '\n';
    }
    if (!command.example.empty())
        page += ".PP\nExample:\n.PP\n.EX\n" + Roff(command.example) + "\n.EE\n";
    return page;
}

} // namespace

std::string ProgramHelp(const std::vector<Command> &commands) {
    std::string text = "morvanex - " + std::string(programSummary) +
                       "\n\nUsage:\n  morvanex COMMAND [options]\n\n"
                       "Commands:\n";
    for (const Command &command : commands)
        text += "  " + command.name + std::string(12 - std::min<std::size_t>(command.name.size(), 11), ' ') +
                command.summary + '\n';
    return text +
           "\n'morvanex COMMAND --help' explains a command and its options.\n"
           "'morvanex --version' prints the version.\n\n" +
           Wrap("Exit status: " + std::string(exitStatusText), 0);
}

std::string CommandHelp(const Command &command) {
    std::string text = "morvanex " + command.name + " - " + command.summary + "\n\nUsage:\n" +
                       Usage(command) + '\n' + Wrap(command.description, 0);
    for (const Option &option : command.options) {
        if (!option.heading.empty())
            text += '\n' + option.heading + ":\n";
        else if (&option == &command.options.front())
            text += "\nOptions:\n";
        text += std::string(optionColumn, ' ') + OptionText(option) + '\n' +
                Wrap(Explanation(option), textColumn);
    }
    if (!command.example.empty())
        text += "\nExample:\n  " + command.example + '\n';
    return text;
}

std::string ManualPage(const std::vector<Command> &commands) {
    std::string page = ".TH MORVANEX 1 \"\" \"Morvanex " MORVANEX_VERSION "\" \"User Commands\"\n"
                       // Option names must not be broken at their dashes.
                       ".nh\n.ad l\n"
                       ".SH NAME\nmorvanex \\- " +
                       Roff(programSummary) +
                       "\n.SH SYNOPSIS\n.B morvanex\n.I command\n.RI [ options ]\n"
                       ".SH COMMANDS\n";
    for (const Command &command : commands)
        page += ".TP\n.B " + command.name + '\n' + Roff(command.summary) + '\n';
    for (const Command &command : commands)
        page += RoffCommand(command);
    return page + ".SH EXIT STATUS\n" + Roff(exitStatusText) + '\n';
}

} // namespace cli
