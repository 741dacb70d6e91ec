#include "fast/CubeScorer.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

using namespace VARNO;

namespace fast {

namespace {

/// Rows of a block at most: their sums, 32 or 64 bytes each, stay in the first-level cache beside the rows of
/// the map.
constexpr std::size_t blockRows = 64;

constexpr double infinity = std::numeric_limits<double>::infinity();

double StrideInVoxels(const fit::Preparation &fit) {
    const auto stride = [&fit](const Grid &grid) {
        // A cube of one offset has no stride.
        const double step =
            fit.offsets.size() > 1 ? double(fit.offsets[1][2]) - double(fit.offsets[0][2]) : 0;
        return std::abs(step) / double(grid.Spacing()[2]);
    };
    return std::max(stride(*fit.map), fit.keepOut ? stride(*fit.keepOut) : 0);
}

} // namespace

CubeScorer::CubeScorer(const fit::Preparation &fit, const LevelGrids &grids)
    : m_fit(fit)
    , m_grids(grids)
    , m_target(fit)
    , m_units(CutIntoUnits(m_target.Offsets(), StrideInVoxels(fit)))
    , m_mapTables(grids.map.Layout(), m_target, m_units)
    , m_poseScorer(fit) {
    if (grids.collisions)
        m_keepOutTables.emplace(grids.collisions->Layout(), m_target, m_units);
}

PoseTally CubeScorer::Score(const Quaternion &rotation, EntryNumber first, BestPoses &best) {
    m_tally = {};
    m_target.Rotate(rotation);
    m_mapTables.MapXY();
    if (m_keepOutTables)
        m_keepOutTables->MapXY();
    if (m_target.Offsets() == 1)
        ScoreSinglePose(first, best);
    else if (m_mapTables.MapWindows() && (!m_keepOutTables || m_keepOutTables->MapWindows()))
        ScoreSlabs(first, best);
    else
        ScoreOneByOne(rotation, first, best);
    return m_tally;
}

/// With one offset there is nothing to share: the mapping of the points is the work.
void CubeScorer::ScoreSinglePose(EntryNumber first, BestPoses &best) {
    if (m_keepOutTables) {
        m_keepOutTables->MapZ();
        const PoseIndices pose{m_keepOutTables->Indices(0, 0), m_keepOutTables->Indices(1, 0),
                               m_keepOutTables->Indices(2, 0)};
        if (Touches(m_grids.collisions->Levels(), m_target.Points(), pose))
            return best.Advance(first + 1, 0);
    }
    m_tally.accepted = 1;
    m_candidates.assign(1, 0);
    ScoreCandidates(first, best);
    best.Advance(first + 1, m_tally.accepted);
}

/// The list learns of poses in their order, slab after slab along x: what one slab teaches serves the next.
void CubeScorer::ScoreSlabs(EntryNumber first, BestPoses &best) {
    const std::size_t side = m_target.Offsets();
    const std::size_t ySize = std::min(side, blockRows), xSize = std::max(blockRows / side, std::size_t(1));
    for (std::size_t x = 0; x < side; x += xSize) {
        const std::uint64_t acceptedBefore = m_tally.accepted;
        const std::size_t xEnd = std::min(x + xSize, side);
        for (std::size_t y = 0; y < side; y += ySize)
            for (std::size_t unit = 0; unit < m_units.units.size(); ++unit)
                ScoreBlock({x, xEnd, y, std::min(y + ySize, side), unit}, first, best);
        best.Advance(first + xEnd * side * side, m_tally.accepted - acceptedBefore);
    }
}

void CubeScorer::ScoreBlock(const Block &block, EntryNumber first, BestPoses &best) {
    ListRows(block);
    if (m_keepOutTables)
        DropCollidingRows(block);
    for (const Row &row : m_rows)
        m_tally.accepted += std::uint64_t(std::popcount(row.open));
    SumLevels(m_mapTables, m_grids.map.Levels(), block, m_sums);
    CloseLowRows(best.Threshold());
    if (FineLevelsPay(best.Threshold()))
        CloseByFineLevels(block, best.Threshold());
    ListCandidates(block);
    ScoreCandidates(first, best);
}

void CubeScorer::ListRows(const Block &block) {
    const unsigned all = ~0u >> (32 - m_units.units[block.unit].count);
    m_rows.clear();
    for (std::size_t x = block.xBegin; x < block.xEnd; ++x)
        for (std::size_t y = block.yBegin; y < block.yEnd; ++y)
            m_rows.push_back({x, y, all});
}

void CubeScorer::DropCollidingRows(const Block &block) {
    SumLevels(*m_keepOutTables, m_grids.collisions->Levels(), block, m_sums);
    MarkSums(m_sums, {1, 65535}, {}, m_marks);
    for (std::size_t row = 0; row < m_rows.size(); ++row)
        m_rows[row].open &= ~Marks(row);
    std::erase_if(m_rows, [](const Row &row) { return row.open == 0; });
}

void CubeScorer::SumLevels(OffsetTables &tables, const GridValues<std::uint8_t> &levels, const Block &block,
                           std::vector<std::uint16_t> &sums) {
    m_xs.clear();
    m_ys.clear();
    m_rowsBegin.assign(1, 0);
    std::size_t row = 0;
    for (std::size_t x = block.xBegin; x < block.xEnd; ++x) {
        m_xs.push_back(tables.Indices(0, x));
        for (; row < m_rows.size() && m_rows[row].x == x; ++row)
            m_ys.push_back(tables.Indices(1, m_rows[row].y));
        m_rowsBegin.push_back(std::uint32_t(row));
    }
    sums.resize(m_rows.size() * m_units.shape.MaxOffsets());
    m_marks.resize(m_rows.size() * m_units.shape.lookUps);
    SumRows({levels, m_target.Points(), tables.WindowsOf(block.unit), m_xs, m_rowsBegin, m_ys, sums});
}

/// A bit per offset of the row's unit.
unsigned CubeScorer::Marks(std::size_t row) const {
    const std::size_t lookUps = m_units.shape.lookUps;
    unsigned marks = 0;
    for (std::size_t i = lookUps; i-- > 0;)
        marks = marks << lookUpOffsets | m_marks[row * lookUps + i];
    return marks;
}

/// Closes the poses that score too low for the list, and drops the rows without others. Poses that may score
/// exactly what marks a rejected pose stay open, where there are any: they are not accepted.
void CubeScorer::CloseLowRows(double threshold) {
    const LevelMap &map = m_grids.map;
    const SumRange rejectable = map.HasNegativeVoxels()
                                    ? map.SumsBetween(SolutionScore::rejected, SolutionScore::rejected)
                                    : SumRange();
    MarkSums(m_sums, map.SumsBetween(threshold, infinity), rejectable, m_marks);
    const std::size_t rowSums = m_units.shape.MaxOffsets();
    std::size_t kept = 0;
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        m_rows[i].open &= Marks(i);
        if (m_rows[i].open == 0)
            continue;
        m_rows[kept] = m_rows[i];
        std::copy_n(m_sums.begin() + std::ptrdiff_t(i * rowSums), rowSums,
                    m_sums.begin() + std::ptrdiff_t(kept * rowSums));
        ++kept;
    }
    m_rows.resize(kept);
}

/// Summing a row's fine levels costs about as much as scoring one of its poses exactly.
bool CubeScorer::FineLevelsPay(double threshold) const {
    std::size_t open = 0;
    for (const Row &row : m_rows)
        open += std::size_t(std::popcount(row.open));
    return threshold > -infinity && open > 2 * m_rows.size();
}

void CubeScorer::CloseByFineLevels(const Block &block, double threshold) {
    const LevelMap &map = m_grids.map;
    SumLevels(m_mapTables, map.FineLevels(), block, m_fineSums);
    const FineRange rejectable = map.HasNegativeVoxels()
                                     ? map.FineSumsBetween(SolutionScore::rejected, SolutionScore::rejected)
                                     : FineRange();
    MarkFineSums(std::span(m_sums).first(m_fineSums.size()), m_fineSums, map.FineSteps(),
                 map.FineSumsBetween(threshold, infinity), rejectable, m_marks);
    for (std::size_t i = 0; i < m_rows.size(); ++i)
        m_rows[i].open &= Marks(i);
}

void CubeScorer::ListCandidates(const Block &block) {
    const std::size_t side = m_target.Offsets();
    m_candidates.clear();
    for (const Row &row : m_rows) {
        const std::size_t offset = (row.x * side + row.y) * side + m_units.units[block.unit].first;
        for (unsigned rest = row.open; rest != 0; rest &= rest - 1)
            m_candidates.push_back(offset + std::size_t(std::countr_zero(rest)));
    }
}

void CubeScorer::ScoreCandidates(EntryNumber first, BestPoses &best) {
    if (m_candidates.empty())
        return;
    m_mapTables.MapZ();
    const std::size_t side = m_target.Offsets();
    m_candidateIndices.clear();
    for (const std::size_t offset : m_candidates)
        m_candidateIndices.push_back({m_mapTables.Indices(0, offset / (side * side)),
                                      m_mapTables.Indices(1, offset / side % side),
                                      m_mapTables.Indices(2, offset % side)});
    m_scores.resize(m_candidates.size());
    ScorePoses(m_grids.map.Voxels(), m_target.Points(), m_candidateIndices, m_scores);
    m_tally.scoredExactly += m_candidates.size();
    for (std::size_t i = 0; i < m_candidates.size(); ++i)
        if (m_scores[i] == SolutionScore::rejected)
            --m_tally.accepted;
        else if (m_scores[i] >= best.Threshold())
            best.Add(m_scores[i], first + m_candidates[i]);
}

void CubeScorer::ScoreOneByOne(const Quaternion &rotation, EntryNumber first, BestPoses &best) {
    m_poseScorer.Rotate(rotation);
    for (std::size_t i = 0; i < m_fit.offsets.size(); ++i) {
        const SolutionScore solution = m_poseScorer.Score(m_fit.offsets[i]);
        ++m_tally.scoredExactly;
        if (!solution.IsAccepted())
            continue;
        ++m_tally.accepted;
        if (solution.score >= best.Threshold())
            best.Add(solution.score, first + i);
    }
    best.Advance(first + m_fit.offsets.size(), m_tally.accepted);
}

} // namespace fast
