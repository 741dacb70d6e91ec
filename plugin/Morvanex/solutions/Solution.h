#pragma once

#include "Transform.h"

#include <QString>

#include <list>
#include <vector>

/// One scored pose: it maps a target point p to rotation·p + translation, in the model frame.
struct SolutionScore {
    /// The score that marks a pose as rejected for collision. One whose density sums to exactly that is
    /// dropped the same way.
    static constexpr double rejected = -1.0;

    VARNO::Quaternion rotation;
    VARNO::Vertex translation;       ///< applied after the rotation, Å
    double score = rejected;         ///< sum of the density
    std::vector<double> extraScores; ///< one distance per restraint, Å

    bool IsAccepted() const { return score != rejected; }

    /// The record as a line of a results file, without a line end.
    QString getLine() const;
    /// Overwrites the record from such a line. Numbers are read in single precision; a word that is not
    /// a number, or is missing, reads as 0. Words beyond the eighth become the extra scores.
    void setFromLine(const QString &line);
    /// The comment line that heads a results file, without a line end.
    static QString getFormatComment();
};

/// Orders by score alone.
inline bool operator<(const SolutionScore &a, const SolutionScore &b) {
    return a.score < b.score;
}

/// The list that the search fills, the results dialog shows and builds from, and files are saved from and
/// loaded into.
extern std::list<SolutionScore> Solutions;
