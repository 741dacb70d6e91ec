#include "cli/Completion.h"

#include <algorithm>
#include <functional>

namespace cli {

namespace {

/// The names of the options that `takes` holds for, with a blank on each side of each.
std::string OptionNames(const Command &command, const std::function<bool(const Option &)> &takes) {
    std::string names = " ";
    for (const Option &option : command.options)
        if (takes(option))
            names += option.name + ' ';
    return names;
}

/// The name's first word; its second one, empty for a name of one.
std::string FirstWord(const Command &command) {
    return command.name.substr(0, command.name.find(' '));
}

std::string SecondWord(const Command &command) {
    const std::size_t blank = command.name.find(' ');
    return blank == std::string::npos ? "" : command.name.substr(blank + 1);
}

/// What may follow `first` as the second word of a command's name.
std::string SecondWords(const std::vector<Command> &commands, const std::string &first) {
    std::string words;
    for (const Command &command : commands)
        if (FirstWord(command) == first && !SecondWord(command).empty())
            words += SecondWord(command) + ' ';
    return words;
}

/// The branch of bash's case for one command.
std::string BashBranch(const std::vector<Command> &commands, const Command &command) {
    const auto takesFile = [](const Option &option) { return option.value == Value::File; };
    const auto takesOther = [](const Option &option) {
        return option.value != Value::None && option.value != Value::File;
    };
    const auto isOption = [](const Option &) { return true; };
    std::string branch = "        \"" + command.name + "\" | \"" + command.name + " \"*)\n";
    branch += "            options=\"" + OptionNames(command, isOption) + "--help\"\n";
    branch += "            files=\"" + OptionNames(command, takesFile) + "\"\n";
    branch += "            values=\"" + OptionNames(command, takesOther) + "\"\n";
    if (!command.operand.empty())
        branch += "            operand=yes\n";
    if (const std::string words = SecondWords(commands, command.name); !words.empty())
        branch += "            ((COMP_CWORD > 2)) || options+=\" " + words + "\"\n";
    return branch + "            ;;\n";
}

/// The text up to the end of its first clause.
std::string FirstClause(const std::string &text) {
    std::size_t end = text.size();
    for (const char *mark : {". ", "; ", ": "})
        end = std::min(end, text.find(mark));
    return text.substr(0, end);
}

/// The text within single quotes of the shell, in a specification that brackets and colons divide.
std::string ZshText(const std::string &text) {
    std::string escaped;
    for (const char character : text) {
        if (character == '\'')
            escaped += "'\\'";
        else if (std::string("[]:\\").find(character) != std::string::npos)
            escaped += '\\';
        escaped += character;
    }
    return escaped;
}

std::string ZshArgument(const Option &option) {
    std::string argument =
        option.name + (option.value == Value::None ? "[" : "=[") + ZshText(FirstClause(option.help)) + ']';
    if (option.value != Value::None)
        argument += ':' + ZshText(option.valueName) + ':' + (option.value == Value::File ? "_files" : "");
    return (option.repeatable ? "'*" : "'") + argument + '\'';
}

std::string ZshBranch(const Command &command) {
    std::string branch = "        '" + command.name + "')\n            _arguments -s";
    for (const Option &option : command.options)
        branch += " \\\n                " + ZshArgument(option);
    branch += " \\\n                '--help[Explain the command]'";
    if (!command.operand.empty())
        branch += " \\\n                ':" + ZshText(command.operand) + ":_files'";
    return branch + "\n            ;;\n";
}

std::string ZshDescription(const std::string &word, const Command &command) {
    return std::string("'").append(ZshText(word)) + ':' + ZshText(command.summary) + "' ";
}

} // namespace

std::string BashCompletion(const std::vector<Command> &commands) {
    std::string names, branches;
    for (const Command &command : commands)
        if (SecondWord(command).empty())
            names += command.name + ' ';
    // Of two names that begin alike the longer one is looked for first.
    for (const bool isPair : {true, false})
        for (const Command &command : commands)
            if (SecondWord(command).empty() != isPair)
                branches += BashBranch(commands, command);
    return R"(# Completion of morvanex for bash.
_morvanex() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} name=${COMP_WORDS[1]}
    local options='' files='' values='' operand=''
    # Bash takes --option=value for three words.
    [[ $before != = ]] || before=${COMP_WORDS[COMP_CWORD - 2]}
    [[ $word != = ]] || word=
    ((COMP_CWORD < 3)) || name+=" ${COMP_WORDS[2]}"
    ((COMP_CWORD > 1)) || name=
    case $name in
        "")
            options=")" +
           names + R"(--help --version"
            ;;
)" + branches +
           R"(    esac
    COMPREPLY=()
    if [[ $files == *" $before "* || (-n $operand && $word != -* && $values != *" $before "*) ]]; then
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    elif [[ $values != *" $before "* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
    fi
}
complete -F _morvanex morvanex
)";
}

std::string ZshCompletion(const std::vector<Command> &commands) {
    std::string names, pairs, branches;
    for (const Command &command : commands) {
        if (SecondWord(command).empty())
            names += ZshDescription(command.name, command);
        else
            pairs += "        " + FirstWord(command) + ") commands=(" +
                     ZshDescription(SecondWord(command), command) + ") ;;\n";
        branches += ZshBranch(command);
    }
    return R"(#compdef morvanex
# Completion of morvanex for zsh.
_morvanex() {
    local -a commands
    if ((CURRENT == 2)); then
        commands=()" +
           names + R"()
        _describe command commands
        return
    fi
    local name=$words[2]
    commands=()
    case $name in
)" + pairs +
           R"(    esac
    if ((CURRENT == 3)); then
        (($#commands)) && _describe command commands
    elif (($commands[(I)$words[3]:*])); then
        name+=" $words[3]"
        shift words
        ((CURRENT--))
    fi
    shift words
    ((CURRENT--))
    case $name in
)" + branches +
           R"(    esac
}
_morvanex "$@"
)";
}

} // namespace cli
