#pragma once

#include "cli/CommandLine.h"

#include <pybind11/stl.h>

#include <string>
#include <vector>

namespace python {

/// The options of a command by name, "--resolution", as texts: they are read and refused where the command
/// line's are, in the same words.
using OptionTexts = std::map<std::string, std::vector<std::string>>;

inline cli::Arguments ArgumentsOf(OptionTexts options) {
    return {.values = std::move(options), .operand = {}};
}

/// What a command's work comes to, for Python.
struct Outcome {
    std::string json;                  ///< the record, as the command writes it
    std::vector<std::string> warnings; ///< without the program's name
    std::vector<std::string> written, errors;
    pybind11::object stopped = pybind11::none(); ///< the exception that stopped the work

    pybind11::dict ToPython() const {
        using namespace pybind11::literals;
        return pybind11::dict("json"_a = json, "warnings"_a = warnings, "written"_a = written,
                              "errors"_a = errors, "stopped"_a = stopped);
    }
};

} // namespace python
