#pragma once

#include "document/NodeJson.h"
#include "place/PlaceAnswer.h"

#include <QJsonObject>

namespace desktop {

/// A list of places as a session keeps it; empty where one of the chains is not in the session.
QJsonObject JsonOf(const PlaceAnswer &answer, const JsonOfNode &jsonOf);

/// And back: null for what is no list, or one of chains that are not there.
std::shared_ptr<PlaceAnswer> AnswerOf(const QJsonObject &json, const NodeOfJson &nodeOf);

/// A number of copies: null for as many as are found.
QJsonValue JsonOfCopies(const std::optional<std::size_t> &copies);
/// 1 for what is neither null nor a number above 0.
std::optional<std::size_t> CopiesOf(const QJsonValue &json);

} // namespace desktop
