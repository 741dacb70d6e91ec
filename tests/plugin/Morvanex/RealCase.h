#pragma once

#include "EngineTest.h"

#include <nlohmann/json.hpp>

/// The fits of real structures and maps with a known answer that cases.json describes.

/// A rigid motion in full precision.
struct Motion {
    std::array<double, 4> rotation;    ///< w, x, y, z
    std::array<double, 3> translation; ///< Å
};

std::array<double, 3> Apply(const Motion &motion, const VARNO::Vertex &p);

/// Root mean square distance in Å of the points moved by one motion and by the other.
double Rmsd(const Motion &a, const Motion &b, const std::vector<TaggedPoint> &points);

/// How good a list of solutions is.
struct Verdict {
    double firstRmsd = 0;         ///< Å, of the best solution from the nearest right answer
    double firstRmsdFromFile = 0; ///< the same after a results file has rounded the solution
    std::size_t firstWithin = 0;  ///< rank of the best solution within the tolerance; 0 where there is none
    std::vector<std::size_t> foundAt; ///< the same for each right answer
};

/// A case, loaded into the model and the engine's parameters.
class RealCase {
public:
    explicit RealCase(const std::string &name);

    const nlohmann::json &Description() const { return m_case; }
    /// Loads the structure, the map and the restraints; `structure` stands in for the case's own file.
    void Load(const TemporaryFolder &folder, const std::string &structure = {});
    /// Makes these settings ("settings", "settings_quick") the engine's parameters.
    void Set(const TemporaryFolder &folder, const std::string &settings);
    VARNO::Transform Truth() const;
    Verdict Judge(const std::list<SolutionScore> &solutions, const std::vector<TaggedPoint> &points) const;

private:
    nlohmann::json m_case;
};

/// Names of all cases.
std::vector<std::string> CaseNames();

/// The polymer chain of that identifier below the node.
VARNO::Compound *FindChain(VARNO::Compound *node, const std::string &identifier);
