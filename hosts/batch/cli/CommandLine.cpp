#include "cli/CommandLine.h"

#include "base/Numbers.h"

#include "cli/Suggestion.h"

#include <algorithm>
#include <iterator>

namespace cli {

namespace {

bool IsOption(const std::string &word) {
    return word.starts_with("--");
}

const Option &FindOption(const Command &command, const std::string &name) {
    const auto found = std::ranges::find(command.options, name, &Option::name);
    if (found == command.options.end()) {
        std::vector<std::string> names;
        std::ranges::transform(command.options, std::back_inserter(names), &Option::name);
        throw UsageError("unknown option '" + name + "'" + Suggestion(name, names));
    }
    return *found;
}

class Parser {
public:
    Parser(const Command &command, const std::vector<std::string> &words)
        : m_command(command)
        , m_words(words) {}

    Arguments Parse() {
        while (m_next < m_words.size()) {
            const std::string &word = m_words[m_next++];
            if (!m_operandsOnly && word == "--")
                m_operandsOnly = true;
            else if (!m_operandsOnly && word.size() > 1 && word.starts_with('-'))
                TakeOption(word);
            else
                TakeOperand(word);
        }
        CheckNothingIsMissing();
        return std::move(m_arguments);
    }

private:
    void TakeOption(const std::string &word) {
        const std::size_t equals = IsOption(word) ? word.find('=') : std::string::npos;
        const Option &option = FindOption(m_command, word.substr(0, equals));
        if (m_arguments.Has(option.name) && !option.repeatable)
            throw UsageError(option.name + " is given twice");
        std::vector<std::string> &values = m_arguments.values[option.name];
        if (option.value == Value::None && equals != std::string::npos)
            throw UsageError(option.name + " takes no value");
        if (option.value == Value::None)
            return;
        values.push_back(equals == std::string::npos ? NextWords(option) : word.substr(equals + 1));
        if (option.value == Value::File && values.back().empty())
            throw UsageError(option.name + ": the name of the file is empty");
        if (option.value == Value::Integer)
            ReadInteger(option.name, values.back());
        if (option.value == Value::Number)
            ReadNumber(option.name, values.back());
    }

    std::string NextWords(const Option &option) {
        std::string text = NextWord(option);
        for (unsigned i = 1; i < option.words; ++i)
            text += ' ' + NextWord(option);
        return text;
    }

    std::string NextWord(const Option &option) {
        if (m_next == m_words.size() || IsOption(m_words[m_next]))
            throw UsageError(option.name + " needs a value, " + option.valueName);
        return m_words[m_next++];
    }

    void TakeOperand(const std::string &word) {
        if (m_command.operand.empty() || m_hasOperand)
            throw UsageError("unexpected argument '" + word + "'");
        if (word.empty())
            throw UsageError(m_command.operand + ": the name of the file is empty");
        m_arguments.operand = word;
        m_hasOperand = true;
    }

    void CheckNothingIsMissing() const {
        for (const Option &option : m_command.options)
            if (option.required && !m_arguments.Has(option.name))
                throw UsageError(option.name + " " + option.valueName + " is missing");
        if (!m_command.operand.empty() && !m_hasOperand)
            throw UsageError(m_command.operand + " is missing");
    }

    const Command &m_command;
    const std::vector<std::string> &m_words;
    std::size_t m_next = 0;
    bool m_operandsOnly = false;
    bool m_hasOperand = false;
    Arguments m_arguments;
};

bool AsksForHelp(const std::vector<std::string> &words) {
    const auto end = std::ranges::find(words, "--");
    return std::any_of(words.begin(), end, [](const auto &word) { return word == "--help" || word == "-h"; });
}

} // namespace

int ReadInteger(const std::string &option, const std::string &text) {
    if (const std::optional<int> number = base::ReadInteger(text))
        return *number;
    const bool isWhole =
        base::ReadNumber(text) && text.find_first_not_of("+-0123456789 ") == std::string::npos;
    throw UsageError(option + ": '" + text + "' is " +
                     (isWhole ? "too large a number" : "not a whole number"));
}

double ReadNumber(const std::string &option, const std::string &text) {
    const std::optional<double> number = base::ReadNumber(text);
    if (!number)
        throw UsageError(option + ": '" + text + "' is not a number");
    return *number;
}

std::string Arguments::Text(const std::string &option) const {
    const auto found = values.find(option);
    return found == values.end() || found->second.empty() ? std::string() : found->second.back();
}

std::optional<std::string> Arguments::GivenText(const std::string &option) const {
    return Has(option) ? std::optional(Text(option)) : std::nullopt;
}

std::vector<std::string> Arguments::Texts(const std::string &option) const {
    const auto found = values.find(option);
    return found == values.end() ? std::vector<std::string>() : found->second;
}

std::optional<std::vector<std::string>> Arguments::List(const std::string &option) const {
    if (!Has(option))
        return {};
    std::vector<std::string> parts(1);
    for (const char character : Text(option)) {
        if (character == ',')
            parts.emplace_back();
        else
            parts.back() += character;
    }
    return parts;
}

int Arguments::Integer(const std::string &option) const {
    return Has(option) ? ReadInteger(option, Text(option)) : 0;
}

double Arguments::Number(const std::string &option) const {
    return Has(option) ? ReadNumber(option, Text(option)) : 0;
}

Arguments ParseArguments(const Command &command, const std::vector<std::string> &words) {
    if (AsksForHelp(words)) {
        Arguments help;
        help.wantsHelp = true;
        return help;
    }
    return Parser(command, words).Parse();
}

} // namespace cli
