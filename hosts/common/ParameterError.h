#pragma once

#include <stdexcept>
#include <string>

namespace hosts {

/// Nothing can be run with the value of a parameter. what() is "PARAMETER: PROBLEM"; a host may put its own
/// name of the parameter, that of an option or of a field, in the place of the words.
class ParameterError : public std::runtime_error {
public:
    /// The parameter in words, "translation step".
    ParameterError(const std::string &parameter, const std::string &problem)
        : std::runtime_error(parameter + ": " + problem)
        , m_parameter(parameter)
        , m_problem(problem) {}

    const std::string &Parameter() const { return m_parameter; }
    const std::string &Problem() const { return m_problem; }

private:
    std::string m_parameter, m_problem;
};

} // namespace hosts
