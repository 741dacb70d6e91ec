#include "hosts/common/FitJson.h"

#include "base/Numbers.h"

#include "formats/files/FileError.h"
#include "solutions/RecordBytes.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <limits>
#include <optional>

using formats::FileError;

namespace hosts {

namespace {

using Json = nlohmann::json;

std::optional<double> NumberOf(const std::string &text) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    if (text == "inf")
        return infinity;
    if (text == "-inf")
        return -infinity;
    if (text == "nan")
        return std::numeric_limits<double>::quiet_NaN();
    return {};
}

/// A solution as far as it has been read.
class Entry {
public:
    explicit Entry(std::size_t rank)
        : m_rank(rank) {}

    void SetScalar(const std::string &key, std::optional<double> number) {
        if (key == "rank")
            SetRank(number);
        else if (key == "score" && !number)
            Complain("score is not a number");
        else if (key == "score")
            m_score = number;
        else if (List(key))
            Complain(key + " is not a list");
    }
    void BeginList(const std::string &key) {
        if (auto *list = List(key))
            list->emplace();
        else if (key == "rank" || key == "score")
            Complain(key + " is not a number");
    }
    void AddNumber(const std::string &key, std::optional<double> number) {
        auto *list = List(key);
        if (list && *list && number)
            (*list)->push_back(*number);
        else if (list)
            Complain(key + " holds something other than numbers");
    }

    /// The solution, as far as there is one.
    SolutionScore Finish() {
        CheckCount("rotation", m_rotation, 4);
        CheckCount("translation", m_translation, 3);
        CheckCount("restraintDistances", m_distances, {});
        if (!m_score)
            Complain("score is missing");
        if (!m_hasRank)
            Complain("rank is missing");
        SolutionScore solution;
        if (!m_problem.empty())
            return solution;
        const std::vector<double> &q = *m_rotation, &t = *m_translation;
        solution.rotation.Set(q[0], q[1], q[2], q[3]);
        solution.translation.setValue(float(t[0]), float(t[1]), float(t[2]), false);
        solution.score = *m_score;
        solution.extraScores = std::move(*m_distances);
        return solution;
    }
    /// Memory of the numbers, while their lists grow.
    double Bytes() const {
        std::size_t numbers = 0;
        for (const Numbers *list : {&m_rotation, &m_translation, &m_distances})
            numbers += *list ? (*list)->size() : 0;
        return 3.0 * sizeof(double) * double(numbers);
    }
    /// What was found first; empty where all is well.
    const std::string &Problem() const { return m_problem; }
    void Complain(const std::string &problem) {
        if (m_problem.empty())
            m_problem = problem;
    }

private:
    void SetRank(std::optional<double> rank) {
        m_hasRank = true;
        if (!rank)
            Complain("rank is not a number");
        else if (*rank != double(m_rank))
            Complain("the solution that stands there has rank " + base::GeneralNumber(*rank).toStdString());
    }

    using Numbers = std::optional<std::vector<double>>;

    Numbers *List(const std::string &key) {
        return key == "rotation"             ? &m_rotation
               : key == "translation"        ? &m_translation
               : key == "restraintDistances" ? &m_distances
                                             : nullptr;
    }
    void CheckCount(const std::string &key, const Numbers &numbers, std::optional<std::size_t> count) {
        if (!numbers)
            Complain(key + " is missing");
        else if (count && numbers->size() != *count)
            Complain(key + " holds " + std::to_string(numbers->size()) + " numbers instead of " +
                     std::to_string(*count));
    }

    std::size_t m_rank;
    bool m_hasRank = false;
    std::optional<double> m_score;
    Numbers m_rotation, m_translation, m_distances;
    std::string m_problem;
};

/// Takes what the parser finds, piece by piece. A tree of the whole file would take twenty times its size,
/// and freeing it takes memory again, which may have run out.
class Reader {
public:
    using number_integer_t = Json::number_integer_t;
    using number_unsigned_t = Json::number_unsigned_t;
    using number_float_t = Json::number_float_t;
    using string_t = Json::string_t;
    using binary_t = Json::binary_t;

    Reader(const std::string &bytes, double memory)
        : m_bytes(bytes)
        , m_memory(memory) {}

    JsonSolutions TakeFound() { return std::move(m_found); }
    /// Throws FileError for a file of another kind.
    void CheckKind(const std::string &file) const {
        if (!m_isObject)
            throw FileError(file, "", "is not a list that 'morvanex fit' saved");
        if (!m_format)
            throw FileError(file, "format", "is missing");
        if (m_format != fitFormat)
            throw FileError(file, "format", "is '" + *m_format + "' and not '" + fitFormat + "'");
        if (m_version != fitVersion)
            throw FileError(file, "version",
                            "is " + m_versionText + "; this program reads version " +
                                std::to_string(fitVersion));
        if (!m_hasList)
            throw FileError(file, "solutions", "is missing or not a list");
    }

    // What the parser calls, by the names that it gives.
    bool null() { return Scalar({}, "null"); }
    bool boolean(bool value) { return Scalar({}, value ? "true" : "false"); }
    bool number_integer(number_integer_t value) { return Scalar(double(value), std::to_string(value)); }
    bool number_unsigned(number_unsigned_t value) { return Scalar(double(value), std::to_string(value)); }
    bool number_float(number_float_t value, const string_t &text) { return Scalar(value, text); }
    bool string(string_t &value) { return Scalar(NumberOf(value), value); }
    bool binary(binary_t &) { return Scalar({}, ""); }
    bool key(string_t &value) {
        if (m_depth == 1)
            m_key = value;
        else if (m_entry && m_depth == 3)
            m_entryKey = value;
        return true;
    }
    bool start_object(std::size_t) {
        if (m_depth == 0)
            m_isObject = true;
        else if (m_inList && m_depth == 2)
            m_entry.emplace(m_found.solutions.size() + 1);
        else
            Scalar({}, "an object");
        ++m_depth;
        return true;
    }
    bool end_object() {
        --m_depth;
        return !m_entry || m_depth != 2 || TakeEntry();
    }
    bool start_array(std::size_t) {
        if (m_depth == 1 && m_key == "solutions")
            m_inList = m_hasList = true;
        else if (m_entry && m_depth == 3)
            m_entry->BeginList(m_entryKey);
        else
            Scalar({}, "a list");
        ++m_depth;
        return true;
    }
    bool end_array() {
        --m_depth;
        if (m_depth == 1)
            m_inList = false;
        return true;
    }
    bool parse_error(std::size_t position, const std::string &, const nlohmann::detail::exception &) {
        constexpr std::size_t shown = 20;
        const std::string before = m_bytes.substr(0, position);
        const std::string line = before.substr(before.find_last_of('\n') + 1);
        m_errorPlace = "line " + std::to_string(1 + std::ranges::count(before, '\n'));
        m_error = position > m_bytes.size()
                      ? "is not JSON: it ends too early"
                      : "is not JSON near '" + line.substr(line.size() - std::min(line.size(), shown)) + "'";
        return false;
    }
    const std::string &ErrorPlace() const { return m_errorPlace; }
    const std::string &Error() const { return m_error; }

private:
    /// A value that is not a list, or a list where none is expected.
    bool Scalar(std::optional<double> number, const std::string &text) {
        if (m_depth == 1 && m_key == "format") {
            m_format = text;
        } else if (m_depth == 1 && m_key == "version") {
            m_version = number;
            m_versionText = text;
        } else if (m_inList && m_depth == 2) {
            m_entry.emplace(m_found.solutions.size() + 1);
            m_entry->Complain("is not an object");
            return TakeEntry();
        } else if (m_entry && m_depth == 3) {
            m_entry->SetScalar(m_entryKey, number);
        } else if (m_entry && m_depth == 4) {
            m_entry->AddNumber(m_entryKey, number);
            return HasRoomFor(m_entry->Bytes());
        }
        return true;
    }

    /// False, and the error is set, where the memory does not hold what was found.
    bool TakeEntry() {
        // A map's node and its text.
        constexpr double problemBytes = 160;
        m_found.solutions.push_back(m_entry->Finish());
        // While the list grows, each solution stands in the old place and in the new one.
        m_taken += 2 * solutions::RecordBytes(m_found.solutions.back().extraScores.size());
        if (!m_entry->Problem().empty()) {
            m_found.problems[m_found.solutions.size()] = m_entry->Problem();
            m_taken += problemBytes;
        }
        m_entry.reset();
        return HasRoomFor(0);
    }

    bool HasRoomFor(double bytes) {
        if (m_taken + bytes <= m_memory)
            return true;
        m_errorPlace = "solutions";
        m_error = "the list would need more than " + base::GiB(m_memory) + " of memory";
        return false;
    }

    const std::string &m_bytes;
    double m_memory, m_taken = 0; ///< bytes that the solutions may take, and take
    JsonSolutions m_found;
    std::size_t m_depth = 0; ///< objects and lists that are open
    bool m_isObject = false, m_hasList = false, m_inList = false;
    std::string m_key, m_entryKey;
    std::optional<std::string> m_format;
    std::string m_versionText = "missing";
    std::optional<double> m_version;
    std::optional<Entry> m_entry; ///< the solution that is being read
    std::string m_error, m_errorPlace;
};

} // namespace

JsonSolutions ReadFitJson(const std::string &file, const std::string &bytes, double memory) {
    Reader reader(bytes, memory);
    if (!Json::sax_parse(bytes, &reader))
        throw FileError(file, reader.ErrorPlace(), reader.Error());
    reader.CheckKind(file);
    return reader.TakeFound();
}

} // namespace hosts
