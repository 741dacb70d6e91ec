#pragma once

#include "hosts/report/Chart.h"

#include "placement/Geometry.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace report {

/// How a model stands: x' = rotation·x + translation, Å.
struct ModelPose {
    placement::UnitQuaternion rotation;
    placement::Point translation;
};

/// One line of a report's table: a place of a model.
struct Row {
    std::string name;               ///< "place 3"
    std::vector<std::string> cells; ///< of the columns behind the first one, which numbers the rows
    std::string model;              ///< the file whose model stands there
    std::optional<ModelPose> pose;  ///< none where there is no place
    bool isFound = false;
};

enum class Cells { Numbers, Words, Confidence };

struct Column {
    std::string head;
    Cells cells = Cells::Numbers;
};

/// A name and what belongs to it.
using Fact = std::pair<std::string, std::string>;

/// How sure the answer is.
enum class Tone { Sure, Unsure, Plain };

/// What a report tells, as texts: made of the record that is the command's JSON file alone.
struct Contents {
    std::string title, statement;
    Tone tone = Tone::Plain;
    std::vector<std::string> remarks; ///< sentences
    std::string rowWord;              ///< what a row is: "place", "copy", "pose", "model"
    std::vector<Column> columns;
    std::vector<Row> rows;
    std::size_t rowsLeftOut = 0;
    bool isTogether = false; ///< all rows stand in the map at once
    ScoreList scores;
    std::vector<RankedModel> ranking;
    std::vector<Fact> facts;
    std::vector<Fact> inputs; ///< what it is and the file
    std::string program;
    std::string map;         ///< its file
    bool isMirrored = false; ///< poses stand in the mirrored map
    bool isInverted = false; ///< the map was searched with its values' signs changed
};

/// Reads a record: "morvanex fit", "morvanex place", "morvanex assembly" or "morvanex screen". What it lacks
/// is left out. Throws std::invalid_argument for another one.
Contents ContentsOf(const nlohmann::ordered_json &record);

} // namespace report
