#pragma once

#include <QColor>

namespace desktop {

/// How a map is drawn.
struct MapLook {
    double level = 2; ///< of the isosurface, in standard deviations above the map's mean
    QColor colour = QColor(90, 140, 200);
    double opacity = 0.4; ///< from 0 to 1
    bool surface = true;
    int sliceAxis = -1; ///< 0, 1, 2: a slice across x, y or z; -1: none
    double slice = 0.5; ///< where the slice lies, from 0 at the first voxel to 1 at the last

    bool operator==(const MapLook &) const = default;
};

/// How a chain is drawn.
struct ChainLook {
    enum class Style { Tube, BallAndStick };

    Style style = Style::Tube;
    bool rainbow = true; ///< blue at the first residue to red at the last; else in one colour
    QColor colour = QColor(200, 200, 200);

    bool operator==(const ChainLook &) const = default;
};

/// The n-th of a row of colours that are easily told apart.
QColor DistinctColour(int n);

} // namespace desktop
