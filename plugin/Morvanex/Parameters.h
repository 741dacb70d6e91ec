#pragma once

#include <QString>

#include <cstdint>
#include <vector>

namespace VARNO {
class Compound;
}

/// The fit parameters: one set of globals that every stage of a fit reads. They start zeroed and live as long
/// as the library is loaded.

extern int Axis;         ///< depth of the subdivision that gives the rotation axes: 5·4^Axis + 1 of them
extern double gammaStep; ///< step of the rotation about each axis, radians
extern double Step;      ///< translational step, Å
extern int TCount;       ///< translation steps along each direction; a fit makes an even number odd
extern int top_size;     ///< highest-scoring solutions kept; a negative number counts as 0
extern bool logging;     ///< whether every accepted pose is written to `em_fname`
extern QString em_fname; ///< the log file
extern bool restraints;  ///< whether distance restraints are read from `re_fname`
extern QString re_fname; ///< the restraints file

extern VARNO::Compound *m_Target;              ///< the peptide chain to be fitted; null when none is chosen
extern std::vector<VARNO::Compound *> m_Solid; ///< residues that the fitted chain must not penetrate
extern VARNO::Compound *m_Map;                 ///< the density map, a grid; null when none is chosen

/// Degrees to radians, in this order of operations wherever an angle is read from a text.
inline double Radians(double degrees) {
    return degrees * 3.141592653589793 / 180.0;
}

/// Axes of a subdivision of that depth, 5·4^depth + 1 truncated; numbers beyond an int are the nearest int.
int AxisCount(int depth);

/// Poses of a search as the set-up shows them: axes · (360 / degrees) · translations³, truncated. The
/// quotient is not rounded. Numbers beyond 64 bits are the nearest 64-bit number; one that is not a number is
/// 0.
std::int64_t TransformationCount(int axes, double degrees, int translations);
