#include "Cases.h"

#include "Collect.h"
#include "DataAdder.h"
#include "DataMaker.h"
#include "Space.h"
#include "formats/maps/MapFile.h"
#include "formats/structures/StructureFile.h"

#include <cmath>
#include <random>
#include <stdexcept>

using namespace VARNO;

namespace {

/// All residues of a solid are taken, however far from the target.
constexpr float everywhere = 1e6f;

/// Of a ball that a protein of so many residues fills, Å: each takes about 134 Å³.
float Radius(unsigned residues) {
    return 3.2f * std::cbrt(float(residues));
}

/// A chain of residues: steps of 3.8 Å in any direction that stay within a ball as large as such a protein.
std::vector<TaggedPoint> Walk(std::mt19937 &generator, unsigned points, const Vertex &centre) {
    const float radius = Radius(points);
    std::normal_distribution<float> coordinate(0, 1);
    Vector<float, 3> place(0, 0, 0);
    std::vector<TaggedPoint> walk;
    while (walk.size() < points) {
        Vector<float, 3> step(coordinate(generator), coordinate(generator), coordinate(generator));
        const float scale = 3.8f / std::sqrt(step.SquaredLength());
        for (const unsigned i : {0u, 1u, 2u})
            step[i] *= scale;
        if ((place + step).SquaredLength() > radius * radius)
            continue;
        place = place + step;
        Vertex point;
        point = centre + place;
        walk.emplace_back(point, 'A');
    }
    return walk;
}

} // namespace

Case SyntheticCase(unsigned points, bool withSolid) {
    constexpr unsigned edge = 100;
    std::mt19937 generator(1);
    auto map = std::make_unique<Grid>("map", Vector<unsigned, 3>(edge, edge, edge),
                                      Vector<float, 3>(-100, -100, -100), Vector<float, 3>(2, 2, 2),
                                      Vector<float, 3>(90, 90, 90));
    std::normal_distribution<float> density(0, 1);
    for (float &value : map->Values())
        value = density(generator);
    Case made;
    {
        const DataAdder<Compound> batch(Space::instance());
        made.map = DataMaker::addGrid(Space::instance(), std::move(map));
    }
    made.target.points = Walk(generator, points, Vertex(0, 0, 0, false));
    made.target.centre = Vertex(0, 0, 0, false);
    if (withSolid) {
        const float away = 2.2f * Radius(points);
        fit::Solid solid;
        solid.points = Walk(generator, points, Vertex(away, 0, 0, false));
        solid.low = solid.high = solid.points.front().first;
        for (const auto &[point, tag] : solid.points)
            for (const unsigned i : {0u, 1u, 2u}) {
                solid.low[i] = std::min(solid.low[i], point[i]);
                solid.high[i] = std::max(solid.high[i], point[i]);
            }
        made.keepOut = fit::BuildKeepOut(solid);
    }
    return made;
}

Case RealCase(const std::string &map, const std::string &structure, const std::string &chain,
              bool withSolid) {
    Case made;
    made.map = formats::ReadMap(map);
    std::vector<Compound *> chains, others;
    GetPeptides(formats::ReadStructure(structure), chains, true);
    Compound *chosen = nullptr;
    for (Compound *one : chains)
        if (one->GetName() == chain)
            chosen = one;
        else
            GetResidues(one, others, true);
    if (!chosen)
        throw std::runtime_error(structure + ": no polymer chain '" + chain + "'");
    made.target = fit::CollectTarget(chosen, {});
    if (withSolid)
        made.keepOut = fit::BuildKeepOut(fit::CollectSolid(others, made.target.centre, everywhere));
    return made;
}
