#pragma once

#include "hosts/common/AssemblyRecord.h"
#include "placement/Motion.h"

#include <QString>

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace desktop {

/// A model that is looked for. The chains are nodes of the model, which stay alive when they leave it.
struct SoughtModel {
    std::string name;                      ///< "1tii", or "1tii-D" of a chain alone
    std::vector<VARNO::Chain *> chains;    ///< that move together
    std::optional<std::size_t> copies = 1; ///< not set: as many as are found
};

/// A place of a model, a row of the list.
struct FoundPlace {
    std::size_t model = 0;  ///< index of the sought one
    std::size_t number = 1; ///< of its places or copies, from 1 on
    placement::Motion motion;
    std::vector<std::string> chainNames; ///< of a copy there, each once in an assembly
    QString sureness, remark;            ///< in words; the remark may be empty
    double probability = 0, score = 0;
    double share = 0; ///< of the model in density; of an assembly the part of the map that the copy explains
};

/// What came of a search.
struct PlaceAnswer {
    std::vector<SoughtModel> models;
    bool isAssembly = false;        ///< the places are copies that stand together
    std::vector<FoundPlace> places; ///< the best first; of an assembly model by model
    std::size_t together = 0;       ///< how many of the first places belong together
    QString verdict, details;       ///< sentences
    /// Where the map's other hand is the right one: the mirrored map, in which the places lie.
    std::unique_ptr<VARNO::Grid> mirrored;
    std::string error; ///< why there was no search; else empty
};

/// Enters what a search found into its answer.
void Enter(const hosts::PlaceRecord &record, PlaceAnswer &answer);
void Enter(const hosts::AssemblyRecord &record, PlaceAnswer &answer);

/// A motion as a 4 x 4 matrix, rows first.
std::array<double, 16> MatrixOf(const placement::Motion &motion);

/// Copies the chains of a place's model into the model tree, moved there: one clump, named after the model
/// and the place's number, with one molecule of that name.
void MakePlacedCopy(const PlaceAnswer &answer, const FoundPlace &place);

} // namespace desktop
