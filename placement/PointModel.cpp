#include "placement/PointModel.h"

#include "placement/Constants.h"
#include "placement/EqualTurns.h"

#include <algorithm>
#include <numbers>
#include <stdexcept>

namespace placement {

namespace {

/// Pairs whose distances are taken one by one: a few milliseconds.
constexpr double maxPairs = 2e6;

/// A sum of weighted positions.
struct Gathered {
    Point sum;
    double weight = 0;

    void Add(const Point &position, double w) {
        sum = sum + w * position;
        weight += w;
    }
    Point Mean() const { return 1 / weight * sum; }
};

ResidueCentres AddPoints(const std::vector<ModelAtom> &atoms, PointModel &model) {
    ResidueCentres centres;
    for (auto first = atoms.begin(); first != atoms.end();) {
        const auto end = std::find_if(first, atoms.end(), [&](const ModelAtom &atom) {
            return atom.residue != first->residue || atom.chain != first->chain;
        });
        Gathered backbone, sideChain, whole;
        for (auto atom = first; atom != end; ++atom) {
            (atom->inBackbone ? backbone : sideChain).Add(atom->position, atom->electrons);
            whole.Add(atom->position, atom->electrons);
        }
        for (const Gathered &part : {backbone, sideChain})
            if (part.weight > 0) {
                model.points.push_back(part.Mean());
                model.weights.push_back(part.weight);
                model.residue.push_back(unsigned(centres.positions.size()));
            }
        centres.positions.push_back(whole.Mean());
        centres.chains.push_back(first->chain);
        first = end;
    }
    return centres;
}

void CentrePoints(PointModel &model) {
    Gathered all;
    for (std::size_t i = 0; i < model.points.size(); ++i)
        all.Add(model.points[i], model.weights[i]);
    model.centre = all.Mean();
    for (std::size_t i = 0; i < model.points.size(); ++i) {
        Point &p = model.points[i];
        p = p - model.centre;
        const double w = model.weights[i] / all.weight;
        const std::array<double, 3> r{p.x, p.y, p.z};
        for (std::size_t a = 0; a < 3; ++a)
            for (std::size_t b = 0; b < 3; ++b)
                model.covariance[3 * a + b] += w * r[a] * r[b];
        model.radius = std::max(model.radius, Length(p));
    }
    model.gyration = std::sqrt(model.covariance[0] + model.covariance[4] + model.covariance[8]);
}

/// Means of equally many consecutive residues; a remainder of less than half joins the last ones.
void AddScanPoints(const ResidueCentres &centres, PointModel &model) {
    const std::size_t number = centres.positions.size();
    const std::size_t each = (number + scanPoints - 1) / scanPoints;
    for (std::size_t chainFirst = 0; chainFirst < number;) {
        std::size_t chainEnd = chainFirst;
        while (chainEnd < number && centres.chains[chainEnd] == centres.chains[chainFirst])
            ++chainEnd;
        for (std::size_t first = chainFirst; first < chainEnd;) {
            std::size_t end = std::min(chainEnd, first + each);
            if (2 * (chainEnd - end) < each)
                end = chainEnd;
            Gathered mean;
            for (std::size_t i = first; i < end; ++i)
                mean.Add(centres.positions[i] - model.centre, 1);
            model.scanPoints.push_back(mean.Mean());
            first = end;
        }
        chainFirst = chainEnd;
    }
}

} // namespace

PointModel MakePointModel(const std::vector<ModelAtom> &atoms) {
    if (atoms.empty())
        throw std::invalid_argument("the model has no atom");
    PointModel model;
    const ResidueCentres centres = AddPoints(atoms, model);
    model.atoms = atoms.size();
    model.residues = centres.positions.size();
    CentrePoints(model);
    model.equalTurns = EqualTurns(centres, model.centre, equalTurnRmsd);
    AddScanPoints(centres, model);
    return model;
}

RadialCurve DebyePower(const PointModel &model, double end, double step) {
    const std::size_t points = model.points.size();
    const auto stride = std::size_t(std::max(1.0, std::ceil(double(points) * double(points) / 2 / maxPairs)));
    const double binWidth = 0.02 / end; // a fiftieth of the shortest wave
    std::vector<double> pairs(std::size_t(2 * model.radius / binWidth) + 2);
    double self = 0;
    for (const double w : model.weights)
        self += w * w;
    // Pairs i < j whose distance along the list is a multiple of the stride would favour neighbours of one
    // fixed distance; a start that moves along with i does not.
    for (std::size_t i = 0; i < points; ++i)
        for (std::size_t j = i + 1 + i % stride; j < points; j += stride) {
            const double distance = Length(model.points[i] - model.points[j]);
            pairs[std::size_t(distance / binWidth)] +=
                2 * double(stride) * model.weights[i] * model.weights[j];
        }
    return Sample(end, step, [&](double k) {
        double sum = self;
        for (std::size_t bin = 0; bin < pairs.size(); ++bin) {
            const double x = 2 * std::numbers::pi * k * (double(bin) + 0.5) * binWidth;
            if (pairs[bin] > 0)
                sum += pairs[bin] * (x < 1e-6 ? 1 : std::sin(x) / x);
        }
        return std::max(sum, minModelPower * self);
    });
}

} // namespace placement
