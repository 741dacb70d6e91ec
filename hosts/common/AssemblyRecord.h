#pragma once

#include "hosts/common/PlaceRecord.h"

#include "placement/Assembly.h"

namespace hosts {

/// A part of an assembly, as its record tells it.
struct PartRecord {
    std::string file;
    std::string name;                  ///< of the file without folder and extensions
    std::optional<std::size_t> copies; ///< that are wanted; not set: as many as are found
    std::vector<std::string> chains;   ///< identifiers
    std::size_t residues = 0;          ///< that take part in the search
};

/// What an assembly was asked for and what came of it, as the JSON file tells it.
struct AssemblyRecord {
    PlaceOptions options;
    double resolution = 0; ///< Å, as given or as estimated
    std::vector<PartRecord> parts;
    std::vector<FixedPart> fixed; ///< what was already in place
    placement::AssemblyResult result;
    std::optional<SymmetryRecord> symmetry; ///< where one was looked for
    /// Of each placed copy the names of its chains in the file of the assembly: the author's where they are
    /// free, else with the first number from 2 on that makes them so, "A2".
    std::vector<std::vector<std::string>> chainNames;
    std::vector<placement::Connection> connections; ///< of the options' distances, in their order
    /// Of each the shortest distance between copies, Å; nothing where a part is not placed.
    std::vector<std::optional<double>> distances;
    double seconds = 0;
};

/// The record of an assembly that is still to be placed.
AssemblyRecord MakeAssemblyRecord(const PlaceOptions &options, const PlaceInput &input);

/// Places the parts.
void FindAssemblyOf(const PlaceInput &input, AssemblyRecord &record, placement::Monitor &monitor);

/// Where a placed copy stands.
placement::PartInPlace InPlace(const placement::PlacedCopy &copy);

/// Whether every copy that was asked for is placed, and at least one of each part.
bool IsComplete(const AssemblyRecord &record);

/// "1 copy", "3 copies".
std::string CopiesText(std::size_t number);

/// How much of the assembly is placed, a sentence for people without the last full stop.
std::string AssemblyText(const AssemblyRecord &record);

/// What came of a part, likewise: "2 of 3 copies are placed; no further place stands out (probability 0.02)".
std::string PartText(const AssemblyRecord &record, std::size_t part);

/// Whether a distance is known and no longer than it may be.
bool Holds(const AssemblyRecord &record, std::size_t distance);

/// A distance, likewise: "A:120 to B:15: 41.2 Å, at most 30 Å".
std::string DistanceText(const AssemblyRecord &record, std::size_t distance);

/// How far the refinement of all copies together moved them, and what they explain of the map, likewise.
std::string RefinementText(const AssemblyRecord &record);
std::string ExplainedText(const AssemblyRecord &record);

/// What is remarkable in what came of a search, for the user: a warning each.
std::vector<std::string> WarningsOf(const AssemblyRecord &record);

/// Writes the record: numbers in full precision.
void WriteAssemblyJson(std::ostream &out, const AssemblyRecord &record);

} // namespace hosts
