#include "cli/CommandLine.h"

#include <QString>
#include <QStringList>

#include <algorithm>

namespace cli {

namespace {

bool IsOption(const std::string &word) {
    return word.starts_with("--");
}

const Option &FindOption(const Command &command, const std::string &name) {
    const auto found = std::ranges::find(command.options, name, &Option::name);
    if (found == command.options.end())
        throw UsageError("unknown option '" + name + "'");
    return *found;
}

void CheckInteger(const Option &option, const QString &text) {
    bool fits, isWhole;
    text.toInt(&fits);
    text.toLongLong(&isWhole);
    if (!fits)
        throw UsageError(option.name + ": '" + text.toStdString() + "' is " +
                         (isWhole ? "too large a number" : "not a whole number"));
}

void CheckNumber(const Option &option, const QString &text) {
    bool ok;
    text.toDouble(&ok);
    if (!ok)
        throw UsageError(option.name + ": '" + text.toStdString() + "' is not a number");
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
        values.push_back(equals == std::string::npos ? NextWord(option) : word.substr(equals + 1));
        if (option.value == Value::Integer)
            CheckInteger(option, QString::fromStdString(values.back()));
        if (option.value == Value::Number)
            CheckNumber(option, QString::fromStdString(values.back()));
    }

    std::string NextWord(const Option &option) {
        if (m_next == m_words.size() || IsOption(m_words[m_next]))
            throw UsageError(option.name + " needs a value, " + option.valueName);
        return m_words[m_next++];
    }

    void TakeOperand(const std::string &word) {
        if (m_command.operand.empty() || m_hasOperand)
            throw UsageError("unexpected argument '" + word + "'");
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

std::string Arguments::Text(const std::string &option) const {
    const auto found = values.find(option);
    return found == values.end() || found->second.empty() ? std::string() : found->second.back();
}

std::vector<std::string> Arguments::Texts(const std::string &option) const {
    const auto found = values.find(option);
    return found == values.end() ? std::vector<std::string>() : found->second;
}

std::optional<std::vector<std::string>> Arguments::List(const std::string &option) const {
    if (!Has(option))
        return {};
    std::vector<std::string> parts;
    for (const QString &part : QString::fromStdString(Text(option)).split(','))
        parts.push_back(part.toStdString());
    return parts;
}

int Arguments::Integer(const std::string &option) const {
    return QString::fromStdString(Text(option)).toInt();
}

double Arguments::Number(const std::string &option) const {
    return QString::fromStdString(Text(option)).toDouble();
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
