#include "placement/JointRefinement.h"

#include "placement/Constants.h"
#include "placement/Contacts.h"
#include "placement/Filter.h"
#include "placement/ModelDensity.h"
#include "placement/Refinement.h"

#include <algorithm>

namespace placement {

namespace {

/// One pose of a model among residues that stand.
class AmongOthers {
public:
    static constexpr std::size_t unknowns = 6;
    struct State {
        Pose pose;
        double score = 0;
        Unknowns<unknowns> gradient{};
    };

    AmongOthers(const PointModel &model, const Volume &volume, std::span<const Point> others)
        : m_model(model)
        , m_volume(volume)
        , m_points(model.points, model.weights)
        , m_others(others)
        , m_cells(softDistance)
        , m_gyration(std::max(model.gyration, 1.0)) {
        for (std::size_t i = 0; i < others.size(); ++i)
            m_cells.Add(others[i], i);
    }

    State At(const Pose &pose) const {
        ScoreGradient g = ScorePose(m_volume, m_points, pose);
        SubtractPenalty(pose, g);
        return {pose,
                g.score,
                {g.byShift.x, g.byShift.y, g.byShift.z, g.byRotation.x / m_gyration,
                 g.byRotation.y / m_gyration, g.byRotation.z / m_gyration}};
    }

    State Moved(const State &from, const Unknowns<unknowns> &by) const {
        const Point turn = 1 / m_gyration * Point{by[3], by[4], by[5]};
        return At({RotationBy(turn) * from.pose.rotation, from.pose.centre + Point{by[0], by[1], by[2]}});
    }

private:
    /// c·w·(1 - d/d0)² for each pair of residues less than d0 apart, w being the moving one's electrons.
    void SubtractPenalty(const Pose &pose, ScoreGradient &g) const {
        for (std::size_t i = 0; i < m_model.points.size(); ++i) {
            if (i > 0 && m_model.residue[i] == m_model.residue[i - 1])
                continue; // a residue stands at its first point
            const Point arm = pose.rotation * m_model.points[i], p = pose.centre + arm;
            m_cells.AnyNear(p, [&](std::size_t other) {
                const Point apart = p - m_others[other];
                const double distance = Length(apart), depth = 1 - distance / softDistance;
                if (depth > 0 && distance > 0) {
                    const double strength = clashStrength * m_model.weights[i];
                    const Point slope = -2 * strength * depth / (softDistance * distance) * apart;
                    g.score -= strength * depth * depth;
                    g.byShift = g.byShift - slope;
                    g.byRotation = g.byRotation - Cross(arm, slope);
                }
                return false;
            });
        }
    }

    const PointModel &m_model;
    const Volume &m_volume;
    WeightedPoints m_points;
    std::span<const Point> m_others;
    Cells m_cells; ///< of the others
    double m_gyration;
};

class JointRefinement {
public:
    JointRefinement(const Spectrum &map, std::span<const Body> bodies, std::span<const Point> standing,
                    unsigned threads)
        : m_map(map)
        , m_bodies(bodies)
        , m_standing(standing)
        , m_threads(threads) {
        for (const Body &body : bodies) {
            m_poses.push_back(body.pose);
            m_powers.push_back(DebyePower(*body.model, cutEnd / map.resolution, map.power.step / 2));
        }
    }

    std::vector<Pose> Run(Monitor &monitor) {
        if (m_bodies.empty())
            return {};
        Waves all = WavesOf(0);
        for (std::size_t i = 1; i < m_bodies.size(); ++i)
            Add(WavesOf(i), 1, all);
        const std::size_t steps = jointSweeps * m_bodies.size();
        for (std::size_t step = 0; step < steps && !monitor.IsCancelled(); ++step) {
            const std::size_t i = step % m_bodies.size();
            Add(WavesOf(i), -1, all);
            Climb(i, all);
            Add(WavesOf(i), 1, all);
            monitor.Advance(double(step + 1) / double(steps));
        }
        return std::move(m_poses);
    }

private:
    static void Add(const Waves &waves, float sign, Waves &to) {
        for (std::size_t i = 0; i < to.values.size(); ++i)
            to.values[i] += sign * waves.values[i];
    }

    Waves WavesOf(std::size_t i) const {
        const Pose &pose = m_poses[i];
        const Motion motion{pose.rotation, pose.centre - pose.rotation * m_bodies[i].model->centre};
        return TransformAtoms(ScatterersOf(m_bodies[i].atoms, motion), m_map, m_threads);
    }

    /// Moves one body in what the others leave.
    void Climb(std::size_t i, const Waves &others) {
        Spectrum left = m_map;
        Subtract(others, FittedAmplitude(m_map.waves, others, m_map.power), left, m_threads);
        const double resolution = m_map.resolution;
        Volume finest =
            Synthesise(left.waves, MatchedFilter(left, m_powers[i]),
                       LevelVoxel(m_map, finestVoxel * finestWidth * resolution), m_threads, Between::Linear);
        ScaleToUnitPower(finest, m_threads);
        const std::vector<Point> residues = ResiduesBut(i);
        const AmongOthers problem(*m_bodies[i].model, finest, residues);
        m_poses[i] = Ascent(problem, problem.At(m_poses[i]))
                         .Run({finalSteps, firstFinalStep * resolution, longestFinalStep * resolution})
                         .pose;
    }

    std::vector<Point> ResiduesBut(std::size_t leftOut) const {
        std::vector<Point> residues(m_standing.begin(), m_standing.end());
        for (std::size_t i = 0; i < m_bodies.size(); ++i)
            if (i != leftOut) {
                const std::vector<Point> own = ResiduesAt(*m_bodies[i].model, m_poses[i]);
                residues.insert(residues.end(), own.begin(), own.end());
            }
        return residues;
    }

    const Spectrum &m_map;
    std::span<const Body> m_bodies;
    std::span<const Point> m_standing;
    unsigned m_threads;
    std::vector<Pose> m_poses;
    std::vector<RadialCurve> m_powers; ///< of the bodies' points
};

} // namespace

std::vector<Pose> RefineTogether(const Spectrum &map, std::span<const Body> bodies,
                                 std::span<const Point> standing, unsigned threads, Monitor &monitor) {
    return JointRefinement(map, bodies, standing, threads).Run(monitor);
}

} // namespace placement
