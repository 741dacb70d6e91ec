#pragma once

#include "fast/BestPoses.h"
#include "fast/LevelGrids.h"
#include "fast/OffsetTables.h"
#include "search/PoseScorer.h"

#include <optional>

namespace fast {

/// The counts of some scored poses.
struct PoseTally {
    std::uint64_t accepted = 0;
    std::uint64_t scoredExactly = 0;

    PoseTally &operator+=(const PoseTally &other) {
        accepted += other.accepted;
        scoredExactly += other.scoredExactly;
        return *this;
    }
};

/// Scores a rotation at all its offsets at once.
class CubeScorer {
public:
    /// Both must outlive it.
    CubeScorer(const fit::Preparation &fit, const LevelGrids &grids);

    /// Adds to `best` those poses of the rotation that reach its threshold. The pose at the first offset is
    /// entry number `first`, the others follow.
    PoseTally Score(const VARNO::Quaternion &rotation, EntryNumber first, BestPoses &best);

private:
    /// Some x and y offsets, and a unit of z offsets.
    struct Block {
        std::size_t xBegin, xEnd, yBegin, yEnd, unit;
    };
    /// A row of a block: one x and one y offset.
    struct Row {
        std::size_t x, y;
        unsigned open; ///< a bit per offset of the unit: neither collided nor known to score too low
    };

    void ScoreSinglePose(EntryNumber first, BestPoses &best);
    void ScoreSlabs(EntryNumber first, BestPoses &best);
    void ScoreBlock(const Block &block, EntryNumber first, BestPoses &best);
    void ListRows(const Block &block);
    void DropCollidingRows(const Block &block);
    void SumLevels(OffsetTables &tables, const GridValues<std::uint8_t> &levels, const Block &block,
                   std::vector<std::uint16_t> &sums);
    unsigned Marks(std::size_t row) const;
    void CloseLowRows(double threshold);
    void CloseByFineLevels(const Block &block, double threshold);
    bool FineLevelsPay(double threshold) const;
    void ListCandidates(const Block &block);
    void ScoreCandidates(EntryNumber first, BestPoses &best);
    void ScoreOneByOne(const VARNO::Quaternion &rotation, EntryNumber first, BestPoses &best);

    const fit::Preparation &m_fit;
    const LevelGrids &m_grids;
    RotatedTarget m_target;
    OffsetUnits m_units;
    OffsetTables m_mapTables;
    std::optional<OffsetTables> m_keepOutTables;
    search::PoseScorer m_poseScorer;
    PoseTally m_tally; ///< of the current rotation

    // What one block needs, kept to be used again.
    std::vector<Row> m_rows;
    std::vector<const std::int32_t *> m_xs, m_ys;
    std::vector<std::uint32_t> m_rowsBegin;
    std::vector<std::uint16_t> m_sums, m_fineSums, m_marks; ///< per look-up: `lookUpOffsets`, as many, one
    std::vector<std::size_t> m_candidates;                  ///< numbers of offsets
    std::vector<PoseIndices> m_candidateIndices;
    std::vector<double> m_scores;
};

} // namespace fast
