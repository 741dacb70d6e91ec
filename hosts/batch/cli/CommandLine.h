#pragma once

#include "cli/Command.h"

#include <map>
#include <optional>

namespace cli {

/// A subcommand's command line, parsed. Only options that were given are in it.
struct Arguments {
    std::map<std::string, std::vector<std::string>> values; ///< by option name; an empty list for a flag
    std::string operand;
    bool wantsHelp = false; ///< --help or -h was given; nothing else was checked then

    bool Has(const std::string &option) const { return values.contains(option); }
    /// The option's value; empty where it was not given.
    std::string Text(const std::string &option) const;
    /// The option's value; nothing where it was not given.
    std::optional<std::string> GivenText(const std::string &option) const;
    /// The option's value split at its commas; nothing where it was not given.
    std::optional<std::vector<std::string>> List(const std::string &option) const;
    /// All values of a repeatable option, in the order given.
    std::vector<std::string> Texts(const std::string &option) const;
    /// The option's value as a number; 0 where it was not given.
    int Integer(const std::string &option) const;
    double Number(const std::string &option) const;
};

/// An option's value as a number, in the C locale; blanks around it are allowed. Throw UsageError for what is
/// not a number, or is beyond an int.
int ReadInteger(const std::string &option, const std::string &text);
double ReadNumber(const std::string &option, const std::string &text);

/// Parses the words after the subcommand's name: "--option value", "--option=value", and the operand;
/// after "--" everything is an operand. A value may begin with one dash (-5), not with two; the words of a
/// value of several are joined by blanks. Throws
/// UsageError, naming the option: unknown (with the name that was probably meant), repeated, without its
/// value or with one that is not a number, required and missing.
Arguments ParseArguments(const Command &command, const std::vector<std::string> &words);

} // namespace cli
