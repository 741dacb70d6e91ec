#pragma once

#include "cli/CommandLine.h"

#include <string>

namespace batch {

/// Options that several commands have. What differs from command to command is a parameter.

/// The option as the first one under that heading of the help.
cli::Option Headed(const std::string &heading, cli::Option option);

/// --map, required.
cli::Option MapOption();
/// --threads: what they do, "score poses", and what else there is to say, a sentence without its full stop.
cli::Option ThreadsOption(const std::string &work, const std::string &remark = {});
/// --results: the file of what is found, "the places".
cli::Option ResultsOption(const std::string &contents);
/// --json: the file of what is found, as `help` lists it.
cli::Option JsonOption(const std::string &help);
/// --report: a page of what is found.
cli::Option ReportOption();
/// --viewer-script: opens what is found in a viewer.
cli::Option ViewerScriptOption();
/// --models: how many structures to write, as `help` explains.
cli::Option ModelsOption(const std::string &help);
/// --model-prefix of a command whose option `input` ("--model") names the structure.
cli::Option ModelPrefixOption(const std::string &input, const std::string &command);
/// --quiet: what it leaves out, as `help` explains.
cli::Option QuietOption(const std::string &help);

/// --threads, or one for each core that the command may use. Throws std::runtime_error outside 1 to
/// `hosts::maxThreads`.
int ThreadsOf(const cli::Arguments &arguments);
/// --model-prefix, or the name of the file that option `input` gives, without folder and extensions, then
/// "-COMMAND-".
std::string ModelPrefixOf(const cli::Arguments &arguments, const std::string &input,
                          const std::string &command);
/// The option's whole number, `otherwise` where it was not given. Throws std::runtime_error, naming option
/// and value, for one outside `min` to `max`.
int IntegerOf(const cli::Arguments &arguments, const std::string &option, int min, int max, int otherwise);

/// The command line that the arguments were read from, for a shell: options in the order of the help, values
/// quoted where they need it.
std::string CommandLineOf(const std::string &command, const std::vector<cli::Option> &options,
                          const cli::Arguments &arguments);

/// The option that sets a parameter: "--translation-step" for "translation step".
std::string OptionOf(std::string parameter);
/// Throws std::runtime_error: "OPTION: VALUE is not EXPECTED".
[[noreturn]] void Refuse(const std::string &option, const std::string &value, const std::string &expected);

} // namespace batch
