#pragma once

#include "placement/FindPlaces.h"

#include <nlohmann/json.hpp>

#include <ostream>
#include <string>

namespace hosts {

/// What the JSON files of placements share.
using Json = nlohmann::ordered_json;

/// File names need not be UTF-8, the file has to be.
inline std::string Dump(const Json &json, int indent = -1) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

inline Json PointOf(const placement::Point &p) {
    return {p.x, p.y, p.z};
}

inline Json RotationOf(const placement::Matrix &rotation) {
    const placement::UnitQuaternion q = placement::QuaternionOf(rotation);
    return {q.w, q.x, q.y, q.z};
}

inline Json ConfidenceJson(const placement::Confidence &confidence) {
    return {{"probability", confidence.probability},
            {"place", confidence.place},
            {"otherTurns", confidence.otherTurns},
            {"logExpected", confidence.logExpected}};
}

/// A place of a list, the best of which has the rank 1; of one that is not judged no probability is known.
inline Json PlaceEntry(const placement::Place &place, std::size_t rank, bool judged) {
    return {{"rank", rank},
            {"score", place.score},
            {"probability", judged ? Json(place.probability) : Json(nullptr)},
            {"logExpected", judged ? Json(place.logExpected) : Json(nullptr)},
            {"otherTurn", place.otherTurn},
            {"inDensity", place.inDensity},
            {"overlap", place.overlap},
            {"centre", PointOf(place.pose.centre)},
            {"rotation", RotationOf(place.pose.rotation)},
            {"translation", PointOf(place.translation)}};
}

/// Begins a file with the members of an object, which is still to be closed.
inline void WriteHead(std::ostream &out, const Json &head) {
    const std::string text = Dump(head, 2);
    out << text.substr(0, text.size() - std::string("\n}").size());
}

/// Writes the entries of a list, each on a line of its own.
template <class EntryAt>
void WriteList(std::ostream &out, const std::string &name, std::size_t size, EntryAt entryAt) {
    out << ",\n  \"" << name << "\": [";
    for (std::size_t i = 0; i < size; ++i)
        out << (i > 0 ? ",\n    " : "\n    ") << Dump(entryAt(i));
    out << "\n  ]";
}

} // namespace hosts
