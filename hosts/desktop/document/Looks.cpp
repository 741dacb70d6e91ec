#include "document/Looks.h"

#include <array>

namespace desktop {

QColor DistinctColour(int n) {
    static const std::array colours = {QColor(86, 180, 233),  QColor(230, 159, 0),  QColor(0, 158, 115),
                                       QColor(204, 121, 167), QColor(240, 228, 66), QColor(213, 94, 0),
                                       QColor(0, 114, 178),   QColor(150, 150, 150)};
    return colours[std::size_t(n) % colours.size()];
}

} // namespace desktop
