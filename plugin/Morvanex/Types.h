#pragma once

#include "Grid.h"
#include "Transform.h"

#include <utility>

/// A point in Å with the one-letter tag of the residue it stands for. Scoring carries the tag and never reads
/// it.
using TaggedPoint = std::pair<VARNO::Vertex, char>;

/// A distance restraint: the preferred position in the model frame, and the target's point that a pose moves
/// (Å both).
using RestraintPair = std::pair<VARNO::Vertex, VARNO::Vertex>;
