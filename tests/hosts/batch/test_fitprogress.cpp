#include "FitProgress.h"

#include "solutions/TopList.h"

#include <gtest/gtest.h>

using namespace VARNO;

using namespace batch;
using namespace cli;
using namespace hosts;

namespace {

fit::Preparation OnePoint() {
    fit::Preparation fit;
    fit.target.points = {{Vertex(1, 2, 3, true), 'A'}};
    fit.target.centre = Vertex(1, 2, 3, false);
    fit.axes = {Vertex(1, 0, 0, false), Vertex(0, 1, 0, false)};
    fit.offsets = {Vertex(0, 0, 0, false)};
    fit.angleStep = 1;
    return fit;
}

} // namespace

TEST(FitProgress, TakesDownWhatTheSearchIs) {
    FitRecord record;
    FitProgress progress(record, true);
    progress.Started(OnePoint());
    EXPECT_EQ(record.axes, 2u);
    EXPECT_EQ(record.angles, 6u);
    EXPECT_EQ(record.translations, 1u);
    EXPECT_EQ(record.centre, Vertex(1, 2, 3, false));
    EXPECT_EQ(record.sample.poses, 13u);
}

TEST(FitProgress, StopsOnlyAfterTheLogWasLost) {
    FitRecord record;
    FitProgress progress(record, true);
    progress.Started(OnePoint());
    EXPECT_FALSE(progress.IsCancelled());
    progress.LogLost("No space left on device");
    EXPECT_TRUE(progress.IsCancelled());
    EXPECT_EQ(progress.LogError(), "No space left on device");
}

TEST(FitProgress, CountsTheAxisAfterWhichTheSearchWasStopped) {
    FitRecord record;
    FitProgress first(record, true);
    first.Started(OnePoint());
    first.Cancelled();
    EXPECT_EQ(record.axesDone, 0u);
    FitProgress second(record, true);
    second.Started(OnePoint());
    second.IdentityDone(2);
    second.AxisDone(1, 2, 0.5);
    second.Cancelled();
    EXPECT_EQ(record.axesDone, 2u);
    EXPECT_GT(record.seconds, 0);
}
