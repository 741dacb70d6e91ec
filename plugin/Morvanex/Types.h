#pragma once

#include "Grid.h"
#include "Transform.h"

#include <utility>

/// The host's values by their plain names, and the engine's own pairs of them.

using VARNO::Compound;
using VARNO::Grid;
using VARNO::Quaternion;
using VARNO::Transform;
using VARNO::Vertex;

/// A point in Å with the one-letter tag of the residue it stands for. Scoring carries the tag and never reads
/// it.
using TaggedPoint = std::pair<Vertex, char>;

/// A distance restraint: the preferred position in the model frame, and the target's point that a pose moves
/// (Å both).
using RestraintPair = std::pair<Vertex, Vertex>;
