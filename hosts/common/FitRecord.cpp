#include "hosts/common/FitRecord.h"

#include "formats/files/FileError.h"

#include <nlohmann/json.hpp>

#include <QString>

#include <algorithm>
#include <array>
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

Json Coordinates(const Vertex &vertex) {
    return {double(vertex[0]), double(vertex[1]), double(vertex[2])};
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
        {"rotationStep", options.rotationStep},
        {"translationStep", options.translationStep},
        {"translationSteps", options.translationSteps},
        {"keep", options.keep},
        {"inclusionDistance", double(QString::fromStdString(options.inclusionDistance).toFloat())},
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
        {"format", "morvanex fit"},
        {"version", 1},
        {"program", "morvanex " MORVANEX_VERSION},
        {"input", Input(record)},
        {"settings", Settings(record.options)},
        {"counts", Counts(record)},
        {"sample",
         {{"poses", record.sample.poses},
          {"mean", record.sample.mean},
          {"deviation", record.sample.deviation}}},
        {"centre", Coordinates(record.centre)},
    };
}

Json Entry(const RankedSolution &ranked) {
    const SolutionScore &solution = *ranked.solution;
    const Quaternion &q = solution.rotation;
    return {
        {"rank", ranked.rank},
        {"rankInFile", ranked.rankInFile},
        {"score", solution.score},
        {"rotation", {q.w(), q.x(), q.y(), q.z()}},
        {"translation", Coordinates(solution.translation)},
        {"restraintDistances", solution.extraScores},
    };
}

template <std::size_t N>
std::array<double, N> Numbers(const Json &entry, const char *key) {
    const auto numbers = entry.at(key).get<std::vector<double>>();
    if (numbers.size() != N)
        throw std::runtime_error(std::string(key) + " holds " + std::to_string(numbers.size()) +
                                 " numbers instead of " + std::to_string(N));
    std::array<double, N> array;
    std::ranges::copy(numbers, array.begin());
    return array;
}

SolutionScore SolutionOf(const Json &entry) {
    SolutionScore solution;
    const auto [w, x, y, z] = Numbers<4>(entry, "rotation");
    const auto [tx, ty, tz] = Numbers<3>(entry, "translation");
    solution.rotation.Set(w, x, y, z);
    solution.translation.setValue(float(tx), float(ty), float(tz), false);
    solution.score = entry.at("score").get<double>();
    solution.extraScores = entry.at("restraintDistances").get<std::vector<double>>();
    return solution;
}

Json Parse(const std::string &file, const std::string &bytes) {
    try {
        return Json::parse(bytes);
    } catch (const Json::exception &error) {
        throw formats::FileError(file, "", std::string("is not JSON: ") + error.what());
    }
}

} // namespace

std::vector<RankedSolution> RankByScore(const std::list<SolutionScore> &solutions) {
    std::vector<RankedSolution> ranked;
    for (auto it = solutions.rbegin(); it != solutions.rend(); ++it)
        ranked.push_back({&*it, 0, ranked.size() + 1});
    std::ranges::stable_sort(ranked, [](const RankedSolution &a, const RankedSolution &b) {
        return b.solution->score < a.solution->score;
    });
    for (std::size_t i = 0; i < ranked.size(); ++i)
        ranked[i].rank = i + 1;
    return ranked;
}

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

std::vector<SolutionScore> ReadFitJson(const std::string &file, const std::string &bytes) {
    const Json json = Parse(file, bytes);
    std::vector<SolutionScore> solutions;
    try {
        for (const Json &entry : json.at("solutions"))
            solutions.push_back(SolutionOf(entry));
    } catch (const std::exception &error) {
        throw formats::FileError(file, "solution " + std::to_string(solutions.size() + 1), error.what());
    }
    return solutions;
}

} // namespace hosts
