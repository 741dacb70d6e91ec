#pragma once

#include "placement/Connections.h"
#include "placement/FindPlaces.h"

namespace placement {

/// A model of which copies are to be placed.
struct AssemblyPart {
    std::vector<ModelAtom> atoms;
    std::optional<std::size_t> copies; ///< at most so many; as many as are found where it is not set
};

/// What an assembly is asked for.
struct AssemblyParameters {
    double resolution = 0; ///< of the map, Å
    unsigned threads = 1;  ///< at least 1; the result does not depend on it
    /// Atoms of what is already in place, see KnownNeighbours.h.
    std::vector<ModelAtom> neighbours{};
    std::vector<Connection> connections{}; ///< that are known
};

/// A model in its place.
struct PlacedCopy {
    std::size_t part = 0;   ///< index of the model
    std::size_t copy = 0;   ///< of this part, from 0 on
    Pose pose;              ///< about the model's centre
    Point translation;      ///< x' = rotation·x + translation acts on the coordinates as they were given
    double score = 0;       ///< the log-likelihood ratio's sum, on a scale of the map's own
    double probability = 0; ///< that the copy is right where all others are
    double logExpected =
        0; ///< ln of the number of wrong places that are expected to score as well beside them
    std::size_t residues = 0, contacts = 0, clashes = 0; ///< of it with all others, see Contacts.h
    double explained = 0; ///< part of the map's power up to its resolution that it explains, see Explained.h
    double moved = 0;     ///< RMSD by which the joint refinement moved it, Å
    std::vector<std::size_t> rivals; ///< other parts that fit the place equally well
};

/// Why no further copy of a part was placed.
enum class Left {
    Nothing,      ///< all that were asked for are placed
    NothingFound, ///< no place stands out
    TurnUnsure,   ///< a place does, its turn does not
    Taken,        ///< its sure places are those of other parts
    Doubtful,     ///< one stood out until the others were known
    CutOff,       ///< a sure place reaches out of the map
    NotJudged,    ///< the map's scores say nothing of chance
    NotFinished,  ///< the search was cancelled before
};

/// What came of a part.
struct PartOutcome {
    std::size_t placed = 0; ///< copies
    Left left = Left::Nothing;
    double probability = 0;          ///< of the best place that is left
    std::vector<std::size_t> rivals; ///< the parts that stand in its sure places, where those are taken
};

struct AssemblyResult {
    std::vector<PlacedCopy> copies; ///< part by part, the surest first
    std::vector<PartOutcome> parts; ///< of each part as given
    double explained = 0;           ///< likewise, by all of them and what stood already
    std::size_t searches = 0;       ///< of the whole map, for one model each
    bool cancelled = false;
};

/// Places several models, or several copies of one, into one map.
///
/// Each model is searched for by itself, and places that are sure compete: of all sets of them that do not
/// clash the most probable one is placed, the product of the odds being the measure (Claims.h). With
/// those as known neighbours the others are searched for, and so on until nothing more stands out. Then every
/// copy is searched for once more beside all others, and taken out where that does not find it again as the
/// best place that is left. Its probability is the greater one of both searches: what others hide of it, and
/// its own density as a background, may make the second one less sure. Nothing is placed that is not sure. In
/// the end all are refined together (JointRefinement.h).
///
/// Known connections count twice. A place that satisfies some with what is placed already competes with such
/// wrong places only that satisfy as many: E is multiplied by their share of all places that the search
/// found. And of sets of sure places those are taken that satisfy more.
///
/// Throws as FindPlaces does.
AssemblyResult FindAssembly(const VolumeView &map, std::span<const AssemblyPart> parts,
                            const AssemblyParameters &parameters, Monitor &monitor);

} // namespace placement
