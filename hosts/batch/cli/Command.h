#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace cli {

struct Arguments;

/// What kind of value an option takes. File names are not empty. Numbers are read in the C locale, as
/// the dialogs read their fields.
enum class Value { None, Text, File, Integer, Number };

/// One option of a subcommand. The usage line, the help and the manual page are made from it.
struct Option {
    std::string name; ///< "--rotation-step"
    Value value = Value::None;
    std::string valueName = {}; ///< "DEG"; empty without a value
    std::string help = {};      ///< what it does, with the unit; a sentence or two without the last full stop
    std::string defaultText = {}; ///< the default; empty where there is none to tell
    bool required = false;
    bool repeatable = false;
    std::string heading = {}; ///< begins a group of options in the help
    unsigned words = 1; ///< that the value is made of, each an argument of its own; Text alone has several
};

/// A subcommand of the program: one file each.
struct Command {
    std::string name;                 ///< "fit"; of two words, "screen export"
    std::string summary;              ///< one line for the list of commands
    std::string description;          ///< paragraphs for its help, separated by empty lines
    std::vector<Option> options = {}; ///< in the order in which the help shows them
    std::string operand = {}; ///< name of the one argument that is not an option, "FILE"; empty without one
    std::string example = {}; ///< one command line
    int (*run)(const Arguments &) = nullptr; ///< returns the exit status; what it throws is reported
};

/// The command line itself is wrong: exit status 2.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Exit statuses of the program. A signal gives 128 plus its number.
enum ExitStatus { Succeeded = 0, Failed = 1, WrongUsage = 2 };

} // namespace cli
