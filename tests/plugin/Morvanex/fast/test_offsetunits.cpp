#include "OnlyTarget.h"
#include "fast/OffsetUnits.h"

#include <gmock/gmock.h>

namespace {

using fast::CutIntoUnits;
using fast::OffsetUnits;
using testing::ElementsAre;

class OffsetUnitsOn : public testing::TestWithParam<std::int64_t> {};

std::vector<std::size_t> Sizes(const OffsetUnits &cut) {
    std::vector<std::size_t> sizes;
    for (const auto &unit : cut.units)
        sizes.push_back(unit.count);
    return sizes;
}

void ExpectShape(const OffsetUnits &cut, std::size_t bytes, std::size_t lookUps) {
    EXPECT_EQ(cut.shape.bytes, bytes);
    EXPECT_EQ(cut.shape.lookUps, lookUps);
}

} // namespace

TEST_P(OffsetUnitsOn, TakeAllOffsetsInTheirOrderAndFitIntoTheirWindows) {
    const OnlyTarget target(GetParam());
    for (std::size_t count = 1; count <= 70; ++count)
        for (const double stride : {0.0, 0.01, 0.3, 0.5, 0.93, 1.0, 1.5, 2.5, 7.0, 14.0, 15.0, 1e9}) {
            SCOPED_TRACE(std::to_string(count) + " offsets, stride " + std::to_string(stride));
            const OffsetUnits cut = CutIntoUnits(count, stride);
            EXPECT_LE(cut.shape.bytes, fast::LargestWindow());
            std::size_t next = 0;
            for (const auto &unit : cut.units) {
                EXPECT_EQ(unit.first, next);
                EXPECT_GE(unit.count, 1u);
                EXPECT_LE(unit.count, cut.shape.MaxOffsets());
                // The first offset's byte, the distance to the last, and one for rounding.
                if (unit.count > 1) {
                    EXPECT_LE(double(unit.count - 1) * stride + 2, double(cut.shape.bytes));
                }
                next += unit.count;
            }
            EXPECT_EQ(next, count);
        }
}

INSTANTIATE_TEST_SUITE_P(Targets, OffsetUnitsOn, testing::ValuesIn(Targets()), NameOf);

TEST(OffsetUnits, TakeTheShapeWithTheLeastWork) {
    ExpectShape(CutIntoUnits(5, 2.5), 16, 1);
    const OffsetUnits dense = CutIntoUnits(21, 0.25);
    EXPECT_THAT(Sizes(dense), ElementsAre(21));
    ExpectShape(dense, 16, 2);
    const OffsetUnits many = CutIntoUnits(21, 1.5);
    if (fast::LargestWindow() == 32) {
        EXPECT_THAT(Sizes(many), ElementsAre(21));
        ExpectShape(many, 32, 2);
        EXPECT_THAT(Sizes(CutIntoUnits(11, 1.5)), ElementsAre(11));
        ExpectShape(CutIntoUnits(11, 1.5), 32, 1);
    } else {
        EXPECT_THAT(Sizes(many), ElementsAre(7, 7, 7));
        ExpectShape(many, 16, 1);
    }
}
