#pragma once

#include <cstddef>

namespace placement {

/// What can be found at all, known before the search. A model of n atoms in a map of a resolution stands out
/// of the noise by
///
///     z = sqrt(17·n·∫ 4πk²·C dk) = 6.84·sqrt(n/resolution³),   k from 0 to 1.3/resolution:
///
/// the number of independent waves that its volume (17 Å³ for each atom) holds, weighed by their share of
/// signal.
double PredictedSignal(std::size_t atoms, double resolution);

enum class Prospect { Poor, Uncertain, Good };

/// Below 4.5 few places are found, from 7 on nearly all.
Prospect ProspectOf(double predictedSignal);

} // namespace placement
