#include "fast/BestPoses.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using fast::BestPoses;
using fast::EntryNumber;
using fast::ScoredEntry;

/// The list as the search keeps it pose by pose: all entries, and where the last trim was.
class PlainList {
public:
    explicit PlainList(std::size_t keep)
        : m_keep(keep) {}

    void Append(double score, EntryNumber number) {
        m_entries.push_back({score, number});
        if (++m_size > 2 * m_keep) {
            m_size = m_keep;
            m_lastTrim = number + 1;
        }
    }

    /// The first entry that the last trim did not see.
    EntryNumber LastTrim() const { return m_lastTrim; }

    std::vector<ScoredEntry> Greatest(EntryNumber end) const {
        std::vector<ScoredEntry> chosen;
        std::ranges::copy_if(m_entries, std::back_inserter(chosen),
                             [end](const ScoredEntry &entry) { return entry.number < end; });
        std::ranges::stable_sort(chosen, {}, &ScoredEntry::score);
        if (chosen.size() > m_keep)
            chosen.erase(chosen.begin(), chosen.end() - std::ptrdiff_t(m_keep));
        return chosen;
    }

private:
    std::size_t m_keep, m_size = 0;
    EntryNumber m_lastTrim = 0;
    std::vector<ScoredEntry> m_entries;
};

void ExpectSame(const std::vector<ScoredEntry> &found, const std::vector<ScoredEntry> &expected) {
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        ASSERT_EQ(found[i].number, expected[i].number) << "entry " << i;
        ASSERT_EQ(found[i].score, expected[i].score) << "entry " << i;
    }
}

} // namespace

TEST(BestPoses, HoldWhatTheTrimmedListHolds) {
    for (const std::size_t keep : {0u, 1u, 2u, 10u, 100u, 1000u})
        for (const unsigned scores : {2u, 50u, 1'000'000u}) {
            SCOPED_TRACE("keep " + std::to_string(keep) + " of " + std::to_string(scores) + " scores");
            std::mt19937 random(unsigned(keep) + scores);
            BestPoses best(keep);
            PlainList list(keep);
            EntryNumber number = 0;
            for (int part = 0; part < 60; ++part) {
                std::uint64_t appended = 0;
                for (auto size = random() % 400; size > 0; --size, ++number) {
                    if (random() % 4 == 0) // a rejected pose
                        continue;
                    // Better and better ones now and then, as in a search that comes near the place.
                    const double score = double(random() % scores) + (part % 20) * double(scores) / 40;
                    list.Append(score, number);
                    ++appended;
                    if (score >= best.Threshold())
                        best.Add(score, number);
                }
                best.Advance(number, appended);
                ASSERT_NO_FATAL_FAILURE(ExpectSame(best.Greatest(), list.Greatest(number)));
                ASSERT_NO_FATAL_FAILURE(
                    ExpectSame(best.Greatest(list.LastTrim()), list.Greatest(list.LastTrim())));
                EXPECT_LE(best.Entries().size(), 4 * keep + 3000);
            }
        }
}

TEST(BestPoses, NeedNoEntriesBelowTheThresholdTheyStartWith) {
    BestPoses best(2, 5.0);
    EXPECT_EQ(best.Threshold(), 5.0);
    best.Add(6.0, 0);
    best.Add(7.0, 1);
    best.Add(8.0, 2);
    best.Advance(3, 3);
    ASSERT_NO_FATAL_FAILURE(ExpectSame(best.Greatest(), {{7.0, 1}, {8.0, 2}}));
}

TEST(BestPoses, KeepNothingWhereNothingIsToBeKept) {
    BestPoses best(0);
    EXPECT_EQ(best.Threshold(), std::numeric_limits<double>::infinity());
}
