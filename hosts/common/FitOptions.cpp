#include "hosts/common/FitOptions.h"

#include <QString>

#include <cmath>
#include <stdexcept>

namespace hosts {

namespace {

[[noreturn]] void Refuse(const std::string &option, const std::string &value, const std::string &expected) {
    throw std::runtime_error(option + ": " + value + " is not " + expected);
}

/// The toolkit, through which these files are opened, knows names as Unicode.
void CheckName(const std::string &option, const std::optional<std::string> &name) {
    if (name && QString::fromStdString(*name).toStdString() != *name)
        Refuse(option, *name, "a name in UTF-8");
}

} // namespace

void CheckFitOptions(const FitOptions &options) {
    if (options.axis < 0 || options.axis > maxAxis)
        Refuse("--axis", std::to_string(options.axis), "a whole number from 0 to 99");
    if (!std::isfinite(options.translationStep))
        Refuse("--translation-step", std::to_string(options.translationStep), "a finite number of Å");
    if (options.translationSteps < 0)
        Refuse("--translation-steps", std::to_string(options.translationSteps), "a number of steps");
    if (options.keep < 0)
        Refuse("--keep", std::to_string(options.keep), "a number of solutions");
    if (!(QString::fromStdString(options.inclusionDistance).toFloat() >= 0))
        Refuse("--inclusion-distance", options.inclusionDistance, "a distance in Å");
    if (options.models < 0)
        Refuse("--models", std::to_string(options.models), "a number of models");
    if (options.threads < 1 || options.threads > maxThreads)
        Refuse("--threads", std::to_string(options.threads), "a whole number from 1 to 1024");
    CheckName("--log", options.log);
    CheckName("--restraints", options.restraints);
}

} // namespace hosts
