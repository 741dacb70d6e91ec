#include "FitRun.h"

#include "Progress.h"
#include "SolutionsList.h"

#include "DialogTest.h"
#include "base/Memory.h"

#include "Space.h"

#include <QLabel>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>

#include <limits>

using testing::ElementsAre;
using testing::SizeIs;

namespace {

/// What the progress dialog shows.
struct Picture {
    int value, maximum;
    std::string estimate;
    bool visible;
};

Picture Look() {
    return {WhiskyBar->progressBar->value(), WhiskyBar->progressBar->maximum(), TextOf(WhiskyBar->etaLabel),
            WhiskyBar->isVisible()};
}

} // namespace

class FitRun : public DialogTest {
protected:
    FitRun() {
        m_Target = MakeChain("1abc", "A", 4);
        m_Map = MakeMap("density");
        Axis = 0;
        gammaStep = Radians(70);
        Step = 2;
        TCount = 1;
        top_size = 10;
    }

    /// Runs a fit and calls `look` in each round of event processing, with the round's number from 0.
    template <class Action>
    bool RunWhile(Action look) {
        int round = 0;
        const Meanwhile looking([&] {
            look(round++);
            return false;
        });
        return runfit();
    }
};

TEST_F(FitRun, ShowsProgressAfterTheIdentityAndAfterEachAxis) {
    std::vector<Picture> seen;
    EXPECT_TRUE(RunWhile([&](int) { seen.push_back(Look()); }));
    ASSERT_EQ(seen.size(), 8u) << "shown, the identity, and six axes";
    EXPECT_EQ(seen[0].estimate, "N/A");
    EXPECT_EQ(seen[1].estimate, "N/A");
    EXPECT_EQ(seen[1].maximum, 6);
    EXPECT_EQ(seen[1].value, 1);
    for (int axis = 1; axis <= 6; ++axis) {
        EXPECT_EQ(seen[1 + axis].value, axis);
        EXPECT_THAT(seen[1 + axis].estimate, testing::MatchesRegex("[0-9]+\\.[0-9][0-9] min"));
    }
    EXPECT_EQ(seen.back().estimate, "0.00 min");
    for (const Picture &picture : seen)
        EXPECT_TRUE(picture.visible);
}

TEST_F(FitRun, DoesNotStartWhereTheResultsDialogCouldNotShowWhatIsKept) {
    const double rows = base::MemoryLimit() / bytesOfARow;
    if (rows > std::numeric_limits<int>::max())
        GTEST_SKIP() << "this machine shows as many rows as an int counts";
    top_size = int(rows);
    EXPECT_FALSE(runfit());
    EXPECT_THAT(messages.Warnings(), testing::ElementsAre(testing::HasSubstr("GiB of memory")));
    top_size = int(rows / 2);
    EXPECT_TRUE(runfit());
}

TEST_F(FitRun, ClosesTheDialogAtTheEndAndKeepsIt) {
    EXPECT_TRUE(runfit());
    EXPECT_EQ(FindWindow("Progress", false), WhiskyBar);
    EXPECT_FALSE(WhiskyBar->isVisible());
    EXPECT_EQ(WhiskyBar->objectName(), "Progress");
    EXPECT_FALSE(WhiskyBar->isModal());
    const Progress *first = WhiskyBar;
    EXPECT_TRUE(runfit());
    EXPECT_NE(WhiskyBar, first);
    EXPECT_EQ(CountWindows("Progress"), 2);
}

TEST_F(FitRun, CancelDeletesTheDialogAndKeepsWhatWasFound) {
    TCount = 3;
    EXPECT_FALSE(RunWhile([&](int) { Click(WhiskyBar->cancelButton); }));
    EXPECT_EQ(CountWindows("Progress"), 0);
    EXPECT_THAT(Solutions, SizeIs(27)) << "the identity's poses, untrimmed";
}

TEST_F(FitRun, CancelStopsAfterTheAxisAtHand) {
    int rounds = 0;
    EXPECT_FALSE(RunWhile([&](int round) {
        rounds = round + 1;
        if (round == 2)
            Click(WhiskyBar->cancelButton);
    }));
    EXPECT_LE(rounds, 4) << "the click itself lets events be processed";
    EXPECT_THAT(Solutions, SizeIs(1 + 2 * 5)) << "the identity and two axes";
}

TEST_F(FitRun, SeveralPressesOfCancelAreOne) {
    EXPECT_FALSE(RunWhile([&](int round) {
        for (int press = 0; round == 0 && press < 3; ++press)
            Click(WhiskyBar->cancelButton);
    }));
    EXPECT_EQ(CountWindows("Progress"), 0);
}

TEST_F(FitRun, ClosingTheWindowByItsFrameDoesNotStopTheFit) {
    EXPECT_TRUE(RunWhile([](int round) {
        if (round == 0)
            CloseByFrame(WhiskyBar);
    }));
    EXPECT_THAT(Solutions, SizeIs(10));
}

TEST_F(FitRun, DeletedDialogDoesNotStopTheFit) {
    EXPECT_TRUE(RunWhile([](int round) {
        if (round == 1)
            delete FindWindow("Progress");
    }));
    EXPECT_THAT(Solutions, SizeIs(10));
}

TEST_F(FitRun, WithoutATargetNoDialogIsShown) {
    m_Target = nullptr;
    WhiskyBar = nullptr;
    EXPECT_FALSE(runfit());
    EXPECT_EQ(WhiskyBar, nullptr);
    EXPECT_THAT(messages.Debug(), ElementsAre("Fit!"));
    EXPECT_EQ(TCount, 1);
}

TEST_F(FitRun, StopsFromOutside) {
    EXPECT_FALSE(RunWhile([](int) { StopFit(); }));
    EXPECT_EQ(CountWindows("Progress"), 0);
    EXPECT_TRUE(runfit()) << "the next fit is not concerned";
    StopFit();
    EXPECT_TRUE(runfit()) << "nor is one that begins after a stop without a fit";
}

TEST_F(FitRun, StopsFromOutsideWithoutItsDialog) {
    EXPECT_FALSE(RunWhile([](int round) {
        if (round > 0)
            return;
        delete FindWindow("Progress");
        StopFit();
    }));
    EXPECT_THAT(Solutions, SizeIs(1));
}

TEST_F(FitRun, RefusesAFitInsideAnotherOne) {
    bool inner = true;
    EXPECT_TRUE(RunWhile([&](int round) {
        if (round == 1)
            inner = runfit();
    }));
    EXPECT_FALSE(inner);
    EXPECT_THAT(Warnings(), ElementsAre("A fit is running already; no other one starts."));
    EXPECT_EQ(CountWindows("Progress"), 1);
    EXPECT_TRUE(runfit());
}

TEST_F(FitRun, NodesRemovedMeanwhileLeaveWhenItHasEnded) {
    VARNO::Compound *target = m_Target, *map = m_Map;
    EXPECT_TRUE(RunWhile([&](int round) {
        if (round != 1)
            return;
        Remove(target->GetParent()->GetParent());
        Remove(map);
        EXPECT_TRUE(target->IsAttached() && map->IsAttached());
    }));
    EXPECT_FALSE(target->IsAttached() || map->IsAttached());
    EXPECT_THAT(Solutions, SizeIs(10));
}

TEST_F(FitRun, SaysThatTheLogCanNoLongerBeWritten) {
    logging = true;
    em_fname = "/dev/full";
    EXPECT_TRUE(runfit());
    EXPECT_THAT(Warnings(), ElementsAre(testing::StartsWith("/dev/full: ")));
}
