#include "fit/Target.h"

#include "Collect.h"
#include "Residue.h"

#include <map>

using namespace VARNO;

namespace fit {

namespace {

Vertex Mean(const Vector<float, 3> &sum, std::size_t count) {
    const auto coordinate = [&](unsigned i) { return float(double(sum[i]) / double(count)); };
    return Vertex(coordinate(0), coordinate(1), coordinate(2), false);
}

} // namespace

QString RestraintKey(const Residue &residue) {
    return QString::fromStdString(residue.GetName() + residue.GetSeqId()).trimmed();
}

Target CollectTarget(Compound *chain, const std::vector<RestraintRecord> &records) {
    Target target;
    std::map<QString, std::vector<Vertex>> preferred;
    for (const auto &[key, position] : records)
        preferred[key].push_back(position);
    std::vector<Compound *> nodes;
    GetResidues(chain, nodes, true);
    Vector<float, 3> sum;
    for (const Compound *node : nodes) {
        const auto *residue = dynamic_cast<const Residue *>(node);
        if (!residue)
            continue;
        const Vertex position = residue->GetPosition();
        if (!position.IsValid()) {
            ++target.invalidResidues;
            continue;
        }
        if (const auto found = preferred.find(RestraintKey(*residue)); found != preferred.end())
            for (const Vertex &wanted : found->second)
                target.restraints.emplace_back(wanted, position);
        sum = sum + position;
        target.points.emplace_back(position, residue->GetCode());
    }
    target.centre = Mean(sum, target.points.size());
    return target;
}

} // namespace fit
