#include "placement/Forecast.h"

#include <cmath>

namespace placement {

double PredictedSignal(std::size_t atoms, double resolution) {
    // sqrt(17 · ∫ 4πx²·C(x) dx), x from 0 to 1.3.
    constexpr double perRoot = 6.84;
    return perRoot * std::sqrt(double(atoms) / (resolution * resolution * resolution));
}

Prospect ProspectOf(double predictedSignal) {
    constexpr double uncertain = 4.5, good = 7;
    if (predictedSignal >= good)
        return Prospect::Good;
    return predictedSignal >= uncertain ? Prospect::Uncertain : Prospect::Poor;
}

} // namespace placement
