#include "hosts/common/FitJson.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <ostream>

using namespace VARNO;

namespace hosts {

namespace {

using Json = nlohmann::ordered_json;

/// File names need not be UTF-8, the file has to be.
std::string Dump(const Json &json, int indent = -1) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

template <class T>
Json OrNull(const std::optional<T> &value) {
    return value ? Json(*value) : Json(nullptr);
}

/// JSON has no word for a number that is not finite.
Json Number(double number) {
    if (std::isfinite(number))
        return number;
    return std::isnan(number) ? "nan" : number > 0 ? "inf" : "-inf";
}

Json Numbers(const std::vector<double> &numbers) {
    Json list = Json::array();
    std::ranges::transform(numbers, std::back_inserter(list), Number);
    return list;
}

Json Coordinates(const Vertex &vertex) {
    return Numbers({double(vertex[0]), double(vertex[1]), double(vertex[2])});
}

Json Input(const FitRecord &record) {
    return {
        {"map", record.options.map},
        {"target", record.options.target},
        {"chain", record.chain},
        {"solids", record.options.solids},
        {"solidChains", OrNull(record.options.solidChains)},
        {"restraints", OrNull(record.options.restraints)},
    };
}

Json Settings(const FitOptions &options) {
    return {
        {"axis", options.axis},
        {"rotationStep", Number(options.rotationStep)},
        {"translationStep", Number(options.translationStep)},
        {"translationSteps", options.translationSteps},
        {"keep", options.keep},
        {"inclusionDistance", Number(double(float(options.inclusionDistance)))},
    };
}

Json Counts(const FitRecord &record) {
    return {
        {"axes", record.axes},         {"axesDone", record.axesDone},
        {"angles", record.angles},     {"translations", record.translations},
        {"poses", record.poses.tried}, {"accepted", record.poses.accepted},
        {"seconds", record.seconds},
    };
}

Json Head(const FitRecord &record) {
    return {
        {"format", fitFormat},
        {"version", fitVersion},
        {"program", "morvanex " MORVANEX_VERSION},
        {"input", Input(record)},
        {"settings", Settings(record.options)},
        {"counts", Counts(record)},
        {"sample",
         {{"poses", record.sample.poses},
          {"mean", Number(record.sample.mean)},
          {"deviation", Number(record.sample.deviation)}}},
        {"centre", Coordinates(record.centre)},
    };
}

Json Entry(const RankedSolution &ranked) {
    const SolutionScore &solution = *ranked.solution;
    const Quaternion &q = solution.rotation;
    return {
        {"rank", ranked.rank},
        {"rankInFile", ranked.rankInFile},
        {"score", Number(solution.score)},
        {"rotation", Numbers({q.w(), q.x(), q.y(), q.z()})},
        {"translation", Coordinates(solution.translation)},
        {"restraintDistances", Numbers(solution.extraScores)},
    };
}

} // namespace

void WriteFitJson(std::ostream &out, const FitRecord &record) {
    std::string head = Dump(Head(record), 2);
    head.resize(head.size() - std::string("\n}").size());
    out << head << ",\n  \"solutions\": [";
    const char *separator = "\n    ";
    for (const RankedSolution &solution : record.solutions) {
        out << separator << Dump(Entry(solution));
        separator = ",\n    ";
    }
    out << "\n  ]\n}\n";
}

} // namespace hosts
