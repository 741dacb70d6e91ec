#include "hosts/common/FitOptions.h"

#include "base/Numbers.h"

#include "hosts/common/ParameterError.h"

#include <QString>

#include <cmath>

namespace hosts {

namespace {

std::string Text(double number) {
    return base::GeneralNumber(number).toStdString();
}

[[noreturn]] void Refuse(const std::string &parameter, const std::string &value,
                         const std::string &expected) {
    throw ParameterError(parameter, value + " is not " + expected);
}

/// The toolkit, through which these files are opened, knows names as Unicode.
void CheckName(const std::string &parameter, const std::optional<std::string> &name) {
    if (name && QString::fromStdString(*name).toStdString() != *name)
        Refuse(parameter, *name, "a name in UTF-8");
}

void CheckTranslationStep(const FitOptions &options) {
    const double step = options.translationStep;
    const int stepsToEachSide = options.translationSteps / 2;
    if (!std::isfinite(step))
        Refuse("translation step", Text(step), "a finite number of Å");
    if (!std::isfinite(float(step * stepsToEachSide)))
        Refuse("translation step", Text(step),
               "a step whose translations fit into single precision (3.4e+38 Å)");
}

void CheckInclusionDistance(double distance) {
    if (!(distance >= 0))
        Refuse("inclusion distance", Text(distance), "a distance in Å");
    if (std::isfinite(distance) && !std::isfinite(float(distance)))
        Refuse("inclusion distance", Text(distance),
               "a distance that fits into single precision (3.4e+38 Å)");
}

} // namespace

void CheckFitOptions(const FitOptions &options) {
    if (options.axis < 0 || options.axis > maxAxis)
        Refuse("axis", std::to_string(options.axis), "a whole number from 0 to 99");
    if (options.translationSteps < 0)
        Refuse("translation steps", std::to_string(options.translationSteps), "a number of steps");
    CheckTranslationStep(options);
    if (options.keep < 0)
        Refuse("keep", std::to_string(options.keep), "a number of solutions");
    CheckInclusionDistance(options.inclusionDistance);
    if (options.models < 0)
        Refuse("models", std::to_string(options.models), "a number of models");
    if (options.threads < 1 || options.threads > maxThreads)
        Refuse("threads", std::to_string(options.threads), "a whole number from 1 to 1024");
    CheckName("log", options.log);
    CheckName("restraints", options.restraints);
}

} // namespace hosts
