#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

/// A whole fit as one slow, plain loop over its poses, for comparison with the engine. It shares no code with
/// the engine or the model: points are arrays of floats, every rotation is made anew for every point, every
/// list is searched from its beginning.

using Point = std::array<float, 3>;

struct PlainResidue {
    std::string name, sequenceId;
    std::optional<Point> position; ///< Å; none for a residue without coordinates
};

struct PlainRestraint {
    std::string key; ///< name and sequence identifier of a residue
    Point preferred; ///< Å
};

struct PlainMap {
    std::array<unsigned, 3> size;
    Point origin, spacing;     ///< Å
    std::vector<float> values; ///< x runs fastest
};

struct PlainRecord {
    std::array<double, 4> rotation; ///< w, x, y, z
    Point translation;              ///< Å
    double score;
    std::vector<double> extraScores;
};

/// What goes into a fit.
struct FitInput {
    std::vector<PlainResidue> target;
    std::vector<PlainResidue> solid;
    std::vector<PlainRestraint> restraints;
    std::optional<PlainMap> map;
    std::vector<PlainRecord> earlier; ///< in the list before the fit begins
    int axisDepth = 0;
    double angleStep = 1; ///< radians
    double step = 1;      ///< Å
    int translationCount = 1;
    int keep = 10;
    bool logging = true;
    float inclusionDistance = 60; ///< Å
    /// The axis (from 1) after which the fit is cancelled, 0 for the identity pass.
    std::optional<std::size_t> cancelAfter;
};

/// What comes out of it. Texts are those of the files; `list` holds the list in full precision.
struct FitOutcome {
    bool finished = true;
    int translationCount = 0;
    std::string results, log, list;
    std::vector<float> keepOut; ///< values of the keep-out grid, x fastest; empty where there is none
};

FitOutcome PlainFit(const FitInput &input);

/// The axes of a search, each candidate compared with all before it.
std::vector<Point> PlainAxes(int depth);

/// The angles about each axis.
std::vector<double> PlainAngles(double step);

/// The file of a list of solutions.
std::string PlainResults(const std::vector<PlainRecord> &records);

/// All numbers of the records with all their bits.
std::string FullPrecision(const std::vector<PlainRecord> &records);
