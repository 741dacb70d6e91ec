#pragma once

#include "placement/Connections.h"
#include "placement/FindPlaces.h"

namespace placement {

/// A place that a search of one part found, and that others may claim as well.
struct Claim {
    std::size_t part = 0;
    JudgedPlace judged;
    std::vector<Point> residues;     ///< in this place
    double share = 1;                ///< probability that it is this part that stands here
    std::vector<std::size_t> rivals; ///< the other parts that fit as well

    Claim(std::size_t number, const PointModel &model, const JudgedPlace &place);

    /// Of the part's coordinates as they were given.
    PartInPlace Copy() const { return {part, {judged.place.pose.rotation, judged.place.translation}}; }
    void MoveTo(const Pose &pose, const PointModel &model);
    /// ln of the odds that it is right.
    double LogOdds() const;
    /// That a sure place is right, and this part's.
    double Probability() const { return share * judged.confidence.probability; }
};

/// Whether two claims cannot both be right, as their residues clash.
bool Clash(const Claim &a, const Claim &b);

/// Of what a choice among claims is made.
struct ClaimsProblem {
    std::vector<Claim> claims;
    std::vector<std::size_t> wanted; ///< of each part, copies at most
    std::vector<PartInPlace> placed; ///< what is in place already
    std::span<const Connection> connections;
    /// Of each pair of parts, whether they are one molecule, of which nobody can tell one copy from another.
    std::vector<std::vector<bool>> areEqual;
};

/// The claims that together have the greatest odds, of those that do not clash; each connection that holds
/// counts as a further odds of e^20, so that of sure places those are taken that satisfy it. Where another
/// part fits a place nearly as well, the odds of the two best sets tell its share, and the part is named as a
/// rival.
std::vector<Claim> MostProbable(const ClaimsProblem &problem);

} // namespace placement
