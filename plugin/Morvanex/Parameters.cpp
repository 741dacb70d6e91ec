#include "Parameters.h"

#include <cmath>
#include <limits>

int Axis;
double gammaStep;
double Step;
int TCount;
int top_size;
bool logging;
QString em_fname;
bool restraints;
QString re_fname;
VARNO::Compound *m_Target;
std::vector<VARNO::Compound *> m_Solid;
VARNO::Compound *m_Map;

namespace {

/// The number truncated to an integer type, held at the type's ends where it does not fit.
template <class Integer>
Integer Saturated(double number) {
    using Limits = std::numeric_limits<Integer>;
    if (std::isnan(number))
        return 0;
    // The upper end as a double may be one too large to convert, hence >=.
    if (number >= double(Limits::max()))
        return Limits::max();
    if (number <= double(Limits::min()))
        return Limits::min();
    return Integer(number);
}

} // namespace

int AxisCount(int depth) {
    return Saturated<int>((std::pow(4.0, depth) * 10.0 + 2.0) * 0.5);
}

std::int64_t TransformationCount(int axes, double degrees, int translations) {
    return Saturated<std::int64_t>(axes * (360.0 / degrees) * std::pow(double(translations), 3.0));
}
