#include "placement/RadialCurve.h"

namespace placement {

RadialCurve Sample(double end, double step, const std::function<double(double)> &function) {
    RadialCurve curve{step, {}};
    for (std::size_t i = 0; double(i) * step < end + step; ++i)
        curve.values.push_back(function(double(i) * step));
    return curve;
}

} // namespace placement
