#include "CommonOptions.h"

#include "hosts/common/FitOptions.h"

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <thread>

using namespace cli;

namespace batch {

Option Headed(const std::string &heading, Option option) {
    option.heading = heading;
    return option;
}

Option MapOption() {
    return {.name = "--map",
            .value = Value::File,
            .valueName = "FILE",
            .help = "The density map, MRC2014 or CCP4 with an orthogonal cell, plain or compressed by gzip "
                    "or bzip2",
            .required = true};
}

Option ThreadsOption(const std::string &work, const std::string &remark) {
    return {.name = "--threads",
            .value = Value::Integer,
            .valueName = "N",
            .help = "Number of threads that " + work + "; the results do not depend on it" +
                    (remark.empty() ? "" : ". " + remark),
            .defaultText = "one for each core available to the command"};
}

Option ResultsOption(const std::string &contents) {
    return {.name = "--results",
            .value = Value::File,
            .valueName = "FILE",
            .help = "Write " + contents + ", the best last, in the format that the results dialog loads",
            .defaultText = "no file"};
}

Option JsonOption(const std::string &help) {
    return {
        .name = "--json", .value = Value::File, .valueName = "FILE", .help = help, .defaultText = "no file"};
}

Option ReportOption() {
    return {
        .name = "--report",
        .value = Value::File,
        .valueName = "FILE",
        .help =
            "Write a page to look at and to send on, one HTML file that needs no network: what was done, the "
            "table, pictures, and a 3D view where that is installed",
        .defaultText = "no file"};
}

Option ViewerScriptOption() {
    return {
        .name = "--viewer-script",
        .value = Value::File,
        .valueName = "FILE",
        .help =
            "Write a script that opens the map and the models at their places: in ChimeraX where FILE ends in "
            ".cxc, in PyMOL where it ends in .pml. It names the input files, which must stay where they are",
        .defaultText = "no file"};
}

Option ModelsOption(const std::string &help) {
    return {.name = "--models", .value = Value::Integer, .valueName = "N", .help = help, .defaultText = "0"};
}

Option ModelPrefixOption(const std::string &input, const std::string &command) {
    return {.name = "--model-prefix",
            .value = Value::Text,
            .valueName = "PATH",
            .help = "What the models' file names begin with; the rank and .pdb or .cif follow",
            .defaultText = "the " + input.substr(2) + " file's name without folder and extensions, then -" +
                           command + "-, in the current folder"};
}

Option QuietOption(const std::string &help) {
    return {.name = "--quiet", .help = help};
}

int ThreadsOf(const Arguments &arguments) {
    const int cores = std::clamp(int(std::thread::hardware_concurrency()), 1, hosts::maxThreads);
    return IntegerOf(arguments, "--threads", 1, hosts::maxThreads, cores);
}

std::string ModelPrefixOf(const Arguments &arguments, const std::string &input, const std::string &command) {
    if (arguments.Has("--model-prefix"))
        return arguments.Text("--model-prefix");
    std::filesystem::path name = std::filesystem::path(arguments.Text(input)).filename();
    while (name.has_extension())
        name = name.stem();
    return name.string() + '-' + command + '-';
}

int IntegerOf(const Arguments &arguments, const std::string &option, int min, int max, int otherwise) {
    if (!arguments.Has(option))
        return otherwise;
    const int number = arguments.Integer(option);
    if (number < min || number > max)
        Refuse(option, std::to_string(number),
               "a whole number from " + std::to_string(min) + " to " + std::to_string(max));
    return number;
}

namespace {

/// As one word of a shell's command line.
std::string ShellWord(const std::string &text) {
    const auto isPlain = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               std::string_view("+,-./:=@_").find(c) != std::string_view::npos;
    };
    if (!text.empty() && std::ranges::all_of(text, isPlain))
        return text;
    std::string word = "'";
    for (const char character : text)
        word += character == '\'' ? std::string("'\\''") : std::string(1, character);
    return word + '\'';
}

} // namespace

std::string CommandLineOf(const std::string &command, const std::vector<Option> &options,
                          const Arguments &arguments) {
    std::string line = "morvanex " + command;
    for (const Option &option : options) {
        if (!arguments.Has(option.name))
            continue;
        if (option.value == Value::None)
            line += ' ' + option.name;
        for (const std::string &value : arguments.Texts(option.name)) {
            line += ' ' + option.name;
            std::istringstream words(value);
            for (std::string word; option.words > 1 && words >> word;)
                line += ' ' + ShellWord(word);
            if (option.words == 1)
                line += ' ' + ShellWord(value);
        }
    }
    return line;
}

std::string OptionOf(std::string parameter) {
    std::ranges::replace(parameter, ' ', '-');
    return "--" + parameter;
}

void Refuse(const std::string &option, const std::string &value, const std::string &expected) {
    throw std::runtime_error(option + ": " + value + " is not " + expected);
}

} // namespace batch
