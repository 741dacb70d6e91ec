#include "hosts/common/SavedList.h"

#include "formats/files/FileError.h"
#include "formats/files/ReadBytes.h"
#include "hosts/common/FitJson.h"
#include "solutions/ResultsFile.h"

#include <QBuffer>

#include <algorithm>
#include <cmath>
#include <iterator>

using namespace VARNO;
using formats::FileError;

namespace hosts {

namespace {

/// The share of the memory that the text may take. While it is read it stands there twice; the solutions take
/// more than their text.
constexpr double shareOfText = 0.25;

/// What a line of a results file takes besides its record: its place in the list by rank, and the text of a
/// problem with it.
constexpr double bytesOfARank = sizeof(SolutionScore) + 160;

/// Bytes that no text has tell a binary file.
void CheckIsText(const std::string &file, const std::string &bytes) {
    const auto found = std::ranges::find_if(
        bytes, [](char c) { return static_cast<unsigned char>(c) < ' ' && !(c >= '\t' && c <= '\r'); });
    if (found != bytes.end())
        throw FileError(file, "byte " + std::to_string(found - bytes.begin()),
                        "is a control character; a list of solutions is text");
}

SavedList FromResults(const std::string &file, const std::string &bytes, double memory) {
    QByteArray array = QByteArray::fromRawData(bytes.data(), qsizetype(bytes.size()));
    QBuffer buffer(&array);
    buffer.open(QIODevice::ReadOnly);
    solutions::ResultsRead read = solutions::ReadResults(buffer, memory, bytesOfARank);
    if (!read.isWhole)
        throw FileError(file, "", "the list would need more than " + base::GiB(memory) + " of memory");
    if (read.solutions.size() == read.doubtful.size())
        throw FileError(file, "", "no line holds the eight numbers of a solution");
    SavedList list{file, {}, true, std::move(read.skippedLines), {}};
    list.solutions.reserve(read.solutions.size());
    std::move(read.solutions.rbegin(), read.solutions.rend(), std::back_inserter(list.solutions));
    for (const auto &[place, line] : read.doubtful)
        list.problems[list.solutions.size() - place] =
            "line " + std::to_string(line) + " holds a word that is not a number";
    return list;
}

SavedList FromJson(const std::string &file, const std::string &bytes, double memory) {
    JsonSolutions read = ReadFitJson(file, bytes, memory);
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

SavedList ReadSavedList(const std::string &file, double memory) {
    const std::string bytes = formats::ReadBytes(file, std::size_t(shareOfText * memory));
    const std::size_t start = bytes.find_first_not_of(" \t\r\n");
    if (start == std::string::npos)
        throw FileError(file, "", "is empty");
    CheckIsText(file, bytes);
    const double left = memory - double(bytes.size());
    return bytes[start] == '{' ? FromJson(file, bytes, left) : FromResults(file, bytes, left);
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
