#include "EngineTest.h"
#include "LongTests.h"
#include "Messages.h"
#include "RandomFit.h"

#include <QProcess>

namespace {

/// What the fits of a run of seeds had in them, so that no kind of fit goes missing unnoticed.
struct Tally {
    int collided = 0, cancelled = 0, restrained = 0, trimmed = 0, dropped = 0;
};

std::size_t Lines(const std::string &text) {
    return std::size_t(std::ranges::count(text, '\n'));
}

void Compare(const FitInput &input, Tally &tally) {
    const FitOutcome plain = PlainFit(input), engine = EngineFit(input);
    ASSERT_EQ(engine.finished, plain.finished);
    ASSERT_EQ(engine.translationCount, plain.translationCount);
    ASSERT_EQ(engine.keepOut, plain.keepOut);
    ASSERT_EQ(engine.log, plain.log);
    ASSERT_EQ(engine.results, plain.results);
    ASSERT_EQ(engine.list, plain.list);
    if (input.logging) { // without a log the search may take another way to the same list
        FitInput silent = input;
        silent.logging = false;
        ASSERT_EQ(EngineFit(silent).list, plain.list);
    }
    tally.collided += !plain.keepOut.empty();
    tally.cancelled += !plain.finished;
    tally.restrained += plain.log.find('\n') != std::string::npos && plain.log.find('\n') > 65;
    tally.trimmed += Lines(plain.results) == 11;
    tally.dropped += plain.log.find("   -1.000") != std::string::npos;
}

} // namespace

TEST(PlainFit, AgreesWithTheEngineByteForByte) {
    const Messages quiet;
    Tally tally;
    const unsigned cases = RandomCases(150, 600);
    for (unsigned seed = 0; seed < cases; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        ASSERT_NO_FATAL_FAILURE(Compare(RandomFit(seed), tally));
    }
    const int some = int(cases) / 50;
    EXPECT_GT(tally.collided, some);
    EXPECT_GT(tally.cancelled, some);
    EXPECT_GT(tally.restrained, some);
    EXPECT_GT(tally.trimmed, some);
    EXPECT_GT(tally.dropped, some);
}

TEST(Optimisation, DoesNotChangeAByteOfAFit) {
    const Messages quiet;
    const unsigned cases = RandomCases(50, 150);
    QProcess unoptimised;
    unoptimised.start(FITS_UNOPTIMISED, {QString::number(cases)});
    ASSERT_TRUE(unoptimised.waitForFinished(300000));
    ASSERT_EQ(unoptimised.exitStatus(), QProcess::NormalExit);
    const std::string printed = unoptimised.readAllStandardOutput().toStdString();
    EXPECT_GT(printed.size(), 600u * cases);
    EXPECT_TRUE(printed == TextOfFits(cases));
}

TEST(PlainFit, AgreesOnATargetWithoutAnyPosition) {
    const Messages quiet;
    FitInput input = RandomFit(1);
    for (PlainResidue &residue : input.target)
        residue.position.reset();
    input.cancelAfter.reset();
    Tally tally;
    Compare(input, tally);
}

TEST(PlainFit, AgreesOnAMapWithVoxelsThatAreNotFinite) {
    const Messages quiet;
    Tally tally;
    for (unsigned seed = 0; seed < RandomCases(20, 40); ++seed) {
        FitInput input = RandomFit(seed);
        input.keep = 1000000; // a list with scores that are not numbers has no order
        if (!input.map)
            continue;
        auto &values = input.map->values;
        values[seed % values.size()] = std::numeric_limits<float>::quiet_NaN();
        values[7ul * seed % values.size()] = std::numeric_limits<float>::infinity();
        values[13ul * seed % values.size()] = -std::numeric_limits<float>::infinity();
        SCOPED_TRACE("seed " + std::to_string(seed));
        ASSERT_NO_FATAL_FAILURE(Compare(input, tally));
    }
}
