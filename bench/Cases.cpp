#include "Cases.h"

#include "Collect.h"
#include "DataAdder.h"
#include "DataMaker.h"
#include "MapFile.h"
#include "Space.h"
#include "StructureFile.h"

#include <cmath>
#include <random>
#include <stdexcept>

namespace {

/// All residues of a solid are taken, however far from the target.
constexpr float everywhere = 1e6f;

std::vector<TaggedPoint> Ball(std::mt19937 &generator, unsigned points, const Vertex &centre) {
    std::normal_distribution<float> coordinate(0, 2.1f * std::cbrt(float(points)));
    std::vector<TaggedPoint> ball;
    for (unsigned i = 0; i < points; ++i) {
        Vertex point;
        point = centre + Vertex(coordinate(generator), coordinate(generator), coordinate(generator), false);
        ball.emplace_back(point, 'A');
    }
    return ball;
}

} // namespace

Case SyntheticCase(unsigned points, bool withSolid) {
    constexpr unsigned edge = 100;
    std::mt19937 generator(1);
    auto map = std::make_unique<Grid>("map", VARNO::Vector<unsigned, 3>(edge, edge, edge),
                                      VARNO::Vector<float, 3>(-100, -100, -100),
                                      VARNO::Vector<float, 3>(2, 2, 2), VARNO::Vector<float, 3>(90, 90, 90));
    std::normal_distribution<float> density(0, 1);
    for (float &value : map->Values())
        value = density(generator);
    const VARNO::DataAdder<Compound> batch(VARNO::Space::instance());
    Case made;
    made.map = VARNO::DataMaker::addGrid(VARNO::Space::instance(), std::move(map));
    made.target.points = Ball(generator, points, Vertex(0, 0, 0, false));
    made.target.centre = Vertex(0, 0, 0, false);
    if (withSolid) {
        const float away = 7 * std::cbrt(float(points));
        Solid solid;
        solid.points = Ball(generator, points, Vertex(away, 0, 0, false));
        solid.low = solid.high = solid.points.front().first;
        for (const auto &[point, tag] : solid.points)
            for (const unsigned i : {0u, 1u, 2u}) {
                solid.low[i] = std::min(solid.low[i], point[i]);
                solid.high[i] = std::max(solid.high[i], point[i]);
            }
        made.keepOut = BuildKeepOut(solid);
    }
    return made;
}

Case RealCase(const std::string &map, const std::string &structure, const std::string &chain,
              bool withSolid) {
    Case made;
    made.map = VARNO::ReadMap(map);
    std::vector<Compound *> chains, others;
    VARNO::GetPeptides(VARNO::ReadStructure(structure), chains, true);
    Compound *chosen = nullptr;
    for (Compound *one : chains)
        if (one->GetName() == chain)
            chosen = one;
        else
            VARNO::GetResidues(one, others, true);
    if (!chosen)
        throw std::runtime_error(structure + ": no polymer chain '" + chain + "'");
    made.target = CollectTarget(chosen, {});
    if (withSolid)
        made.keepOut = BuildKeepOut(CollectSolid(others, made.target.centre, everywhere));
    return made;
}
