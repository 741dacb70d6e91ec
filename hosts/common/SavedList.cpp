#include "hosts/common/SavedList.h"

#include "formats/files/FileError.h"
#include "formats/files/ReadBytes.h"
#include "hosts/common/FitJson.h"
#include "solutions/ResultsFile.h"

#include <QBuffer>

#include <algorithm>
#include <cmath>

using namespace VARNO;
using formats::FileError;

namespace hosts {

namespace {

/// Millions of solutions: larger files are something else, or more than anybody builds from.
constexpr std::size_t sizeLimit = std::size_t(1) << 28;

/// Bytes that no text has tell a binary file.
void CheckIsText(const std::string &file, const std::string &bytes) {
    const auto found = std::ranges::find_if(
        bytes, [](char c) { return static_cast<unsigned char>(c) < ' ' && !(c >= '\t' && c <= '\r'); });
    if (found != bytes.end())
        throw FileError(file, "byte " + std::to_string(found - bytes.begin()),
                        "is a control character: no list of solutions, which is text");
}

SavedList FromResults(const std::string &file, const std::string &bytes) {
    QByteArray array = QByteArray::fromRawData(bytes.data(), qsizetype(bytes.size()));
    QBuffer buffer(&array);
    buffer.open(QIODevice::ReadOnly);
    solutions::ResultsRead read = solutions::ReadResults(buffer);
    if (read.solutions.size() == read.doubtful.size())
        throw FileError(file, "", "no line holds the eight numbers of a solution");
    SavedList list{file, {read.solutions.rbegin(), read.solutions.rend()}, true, read.skippedLines, {}};
    for (const auto &[place, line] : read.doubtful)
        list.problems[list.solutions.size() - place] =
            "line " + std::to_string(line) + " holds a word that is no number";
    return list;
}

SavedList FromJson(const std::string &file, const std::string &bytes) {
    JsonSolutions read = ReadFitJson(file, bytes);
    if (read.solutions.empty())
        throw FileError(file, "solutions", "the list is empty");
    return {file, std::move(read.solutions), false, {}, std::move(read.problems)};
}

bool IsFinite(const SolutionScore &solution) {
    const Quaternion &q = solution.rotation;
    const Vertex &t = solution.translation;
    const double numbers[] = {q.w(), q.x(), q.y(), q.z(), double(t[0]), double(t[1]), double(t[2])};
    return std::ranges::all_of(numbers, [](double number) { return std::isfinite(number); });
}

} // namespace

const SolutionScore &SavedList::OfRank(long rank) const {
    const std::string place = "rank " + std::to_string(rank);
    if (rank < 1 || std::size_t(rank) > solutions.size())
        throw FileError(file, place, "the list has the ranks 1 to " + std::to_string(solutions.size()));
    if (const auto found = problems.find(std::size_t(rank)); found != problems.end())
        throw FileError(file, place, found->second);
    const SolutionScore &solution = solutions[std::size_t(rank) - 1];
    if (!IsFinite(solution))
        throw FileError(file, place, "its pose holds a number that is not finite");
    return solution;
}

SavedList ReadSavedList(const std::string &file) {
    const std::string bytes = formats::ReadBytes(file, sizeLimit);
    const std::size_t start = bytes.find_first_not_of(" \t\r\n");
    if (start == std::string::npos)
        throw FileError(file, "", "is empty");
    CheckIsText(file, bytes);
    return bytes[start] == '{' ? FromJson(file, bytes) : FromResults(file, bytes);
}

double RoundingCost(double distance) {
    // Each of the quaternion's four numbers is off by at most 0.005, so the quaternion by at most 0.01 from
    // one of length 1: the angle between the two, as vectors, has at most the sine 0.01. The rotations differ
    // by twice that angle, and a rotation by an angle 2a moves a point by at most 2·sin(a) times its distance
    // from the origin. Each coordinate of the translation is off by at most 0.005 too.
    const double half = 0.005;
    return 2 * (2 * half) * distance + std::sqrt(3.0) * half;
}

} // namespace hosts
