#include "place/PlaceJson.h"

#include <QJsonArray>

#include <algorithm>

using namespace VARNO;

namespace desktop {

namespace {

template <class Numbers>
QJsonArray ArrayOf(const Numbers &numbers) {
    QJsonArray array;
    for (const double number : numbers)
        array.append(number);
    return array;
}

QJsonArray ArrayOfNames(const std::vector<std::string> &names) {
    QJsonArray array;
    for (const std::string &name : names)
        array.append(QString::fromStdString(name));
    return array;
}

std::vector<std::string> NamesOf(const QJsonArray &array) {
    std::vector<std::string> names;
    for (const QJsonValue name : array)
        names.push_back(name.toString().toStdString());
    return names;
}

QJsonObject JsonOfModel(const SoughtModel &model, const JsonOfNode &jsonOf) {
    QJsonArray chains;
    for (const Chain *chain : model.chains)
        chains.append(jsonOf(chain));
    return {{"name", QString::fromStdString(model.name)},
            {"chains", chains},
            {"copies", JsonOfCopies(model.copies)}};
}

/// Without chains where one of them is not there.
SoughtModel ModelOf(const QJsonObject &json, const NodeOfJson &nodeOf) {
    SoughtModel model{json["name"].toString().toStdString(), {}, CopiesOf(json["copies"])};
    for (const QJsonValue name : json["chains"].toArray()) {
        auto *chain = dynamic_cast<Chain *>(nodeOf(name));
        if (!chain)
            return {};
        model.chains.push_back(chain);
    }
    return model;
}

QJsonObject JsonOfPlace(const FoundPlace &place) {
    const placement::Point &t = place.motion.translation;
    return {{"model", qint64(place.model)},
            {"number", qint64(place.number)},
            {"rotation", ArrayOf(place.motion.rotation)},
            {"translation", QJsonArray{t.x, t.y, t.z}},
            {"chainNames", ArrayOfNames(place.chainNames)},
            {"sureness", place.sureness},
            {"remark", place.remark},
            {"probability", place.probability},
            {"score", place.score},
            {"share", place.share}};
}

FoundPlace PlaceOf(const QJsonObject &json) {
    FoundPlace place{.model = std::size_t(json["model"].toInteger(-1)),
                     .number = std::size_t(json["number"].toInteger()),
                     .motion = {},
                     .chainNames = NamesOf(json["chainNames"].toArray()),
                     .sureness = json["sureness"].toString(),
                     .remark = json["remark"].toString(),
                     .probability = json["probability"].toDouble(),
                     .score = json["score"].toDouble(),
                     .share = json["share"].toDouble()};
    const QJsonArray rotation = json["rotation"].toArray(), translation = json["translation"].toArray();
    for (std::size_t i = 0; i < place.motion.rotation.size(); ++i)
        place.motion.rotation[i] = rotation[qsizetype(i)].toDouble();
    place.motion.translation = {translation[0].toDouble(), translation[1].toDouble(),
                                translation[2].toDouble()};
    return place;
}

bool IsSound(const PlaceAnswer &answer) {
    return std::ranges::none_of(answer.models, [](const auto &model) { return model.chains.empty(); }) &&
           std::ranges::all_of(answer.places, [&](const FoundPlace &place) {
               return place.model < answer.models.size() &&
                      place.chainNames.size() == answer.models[place.model].chains.size();
           });
}

} // namespace

QJsonObject JsonOf(const PlaceAnswer &answer, const JsonOfNode &jsonOf) {
    QJsonArray models, places;
    for (const SoughtModel &model : answer.models) {
        if (std::ranges::any_of(model.chains, [&](const Chain *chain) { return jsonOf(chain).isNull(); }))
            return {};
        models.append(JsonOfModel(model, jsonOf));
    }
    for (const FoundPlace &place : answer.places)
        places.append(JsonOfPlace(place));
    return {{"models", models},          {"assembly", answer.isAssembly},
            {"places", places},          {"together", qint64(answer.together)},
            {"verdict", answer.verdict}, {"details", answer.details}};
}

std::shared_ptr<PlaceAnswer> AnswerOf(const QJsonObject &json, const NodeOfJson &nodeOf) {
    auto answer = std::make_shared<PlaceAnswer>();
    for (const QJsonValue model : json["models"].toArray())
        answer->models.push_back(ModelOf(model.toObject(), nodeOf));
    for (const QJsonValue place : json["places"].toArray())
        answer->places.push_back(PlaceOf(place.toObject()));
    answer->isAssembly = json["assembly"].toBool();
    answer->together = std::min(answer->places.size(), std::size_t(json["together"].toInteger()));
    answer->verdict = json["verdict"].toString();
    answer->details = json["details"].toString();
    return answer->models.empty() || !IsSound(*answer) ? nullptr : answer;
}

QJsonValue JsonOfCopies(const std::optional<std::size_t> &copies) {
    return copies ? QJsonValue(qint64(*copies)) : QJsonValue();
}

std::optional<std::size_t> CopiesOf(const QJsonValue &json) {
    if (json.isNull())
        return std::nullopt;
    return std::size_t(std::max<qint64>(1, json.toInteger(1)));
}

} // namespace desktop
