#pragma once

#include "Types.h"

#include <vector>

/// Adds to `axes` the new points of `depth` levels of subdivision of the spherical triangle (u, v, w): the
/// normalised midpoints of its sides that are the upper one of their antipodal pair and not in the list yet.
/// The corners themselves are never added. Unit vectors.
void Subdivide(const VARNO::Vertex &u, const VARNO::Vertex &v, const VARNO::Vertex &w, int depth,
               std::vector<VARNO::Vertex> &axes);

namespace fit {

/// The rotation axes of a search: the upper half of an icosahedron's vertices and of the points that `depth`
/// subdivisions of its faces give, 5·4^depth + 1 unit vectors without duplicates. A rotation about -v by an
/// angle is one about v by the opposite angle, and every axis is swept through a full turn, so one of each
/// antipodal pair is enough.
std::vector<VARNO::Vertex> RotationAxes(int depth);

} // namespace fit
