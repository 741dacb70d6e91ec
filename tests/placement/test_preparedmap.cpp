#include "placement/PreparedMap.h"

#include "SyntheticModel.h"
#include "placement/FindPlaces.h"
#include "placement/Trim.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

using namespace placement;

namespace {

constexpr double resolution = 8;

const std::vector<ModelAtom> &Large() {
    static const std::vector<ModelAtom> atoms = Moved(RandomModel(150, 1), RotationBy({}), {60, 80, 100});
    return atoms;
}

const std::vector<ModelAtom> &Small() {
    static const std::vector<ModelAtom> atoms = Moved(RandomModel(50, 2), RotationBy({}), {60, 80, 140});
    return atoms;
}

std::vector<ModelAtom> Both() {
    std::vector<ModelAtom> both = Large();
    both.insert(both.end(), Small().begin(), Small().end());
    return both;
}

/// Both models in a box that holds nearly nothing else, or in a corner of one that is trimmed.
Volume MapWithBorder(double border) {
    Volume map = DensityOf(Both(), resolution, {2, 2, 2}, border);
    AddNoise(map, 0.2, 1);
    return map;
}

PlacementParameters Parameters() {
    return {.resolution = resolution, .threads = 1, .region = {}};
}

/// That the result is the one of a search in the map itself, to the last bit.
void ExpectAsAlone(const Volume &map, PreparedMap &prepared, const std::vector<ModelAtom> &model,
                   const PlacementParameters &parameters) {
    Monitor silent;
    const PlacementResult alone = FindPlaces(map, model, parameters, silent);
    const PlacementResult found = FindPlaces(prepared, model, parameters, silent);
    EXPECT_EQ(found.searched, alone.searched);
    EXPECT_EQ(found.confidence.logExpected, alone.confidence.logExpected);
    EXPECT_EQ(found.confidence.otherTurns, alone.confidence.otherTurns);
    EXPECT_EQ(found.profile, alone.profile);
    EXPECT_EQ(found.seemsInverted, alone.seemsInverted);
    ASSERT_EQ(found.places.size(), alone.places.size());
    ASSERT_FALSE(found.places.empty());
    for (std::size_t i = 0; i < alone.places.size(); ++i) {
        EXPECT_EQ(found.places[i].score, alone.places[i].score) << i;
        EXPECT_EQ(found.places[i].translation.x, alone.places[i].translation.x) << i;
        EXPECT_EQ(found.places[i].inDensity, alone.places[i].inDensity) << i;
    }
}

Volume Blank(float value) {
    return {{4, 4, 4}, {2, 2, 2}, {}, LargeVector<float>(64, value)};
}

} // namespace

TEST(PreparedMap, EveryModelFindsInItWhatItFindsInTheMap) {
    for (const double border : {4.0, 60.0}) {
        const Volume map = MapWithBorder(border);
        PreparedMap prepared(map, resolution, 1);
        for (const auto *model : {&Large(), &Small(), &Large()})
            ExpectAsAlone(map, prepared, *model, Parameters());
    }
}

TEST(PreparedMap, NeighboursOfOneModelAreNotTakenOutForTheNext) {
    const Volume map = MapWithBorder(4);
    PreparedMap prepared(map, resolution, 1);
    PlacementParameters beside = Parameters();
    beside.neighbours = Large();
    ExpectAsAlone(map, prepared, Small(), beside);
    ExpectAsAlone(map, prepared, Large(), Parameters());
    ExpectAsAlone(map, prepared, Small(), beside);
}

TEST(PreparedMap, ModelsShareWhatMattersOfTheMap) {
    const Volume map = MapWithBorder(4);
    PreparedMap prepared(map, resolution, 1);
    const auto whole = prepared.PartFor(MakePointModel(Large()));
    EXPECT_EQ(whole->View().count, map.count);
    EXPECT_EQ(prepared.PartFor(MakePointModel(Small())), whole);
    const Volume wide = MapWithBorder(60);
    PreparedMap trimmed(wide, resolution, 1);
    const auto part = trimmed.PartFor(MakePointModel(Large()));
    EXPECT_LT(part->View().count[0], wide.count[0]);
    EXPECT_NE(trimmed.PartFor(MakePointModel(Small())), part);
    EXPECT_EQ(trimmed.PartFor(MakePointModel(Large())), part);
}

TEST(PreparedMap, ASmallModelAfterALargeOneHasTheWavesThatItTakes) {
    const Volume map = MapWithBorder(60);
    const PointModel small = MakePointModel(RandomModel(20, 3)), large = MakePointModel(RandomModel(5000, 4));
    PreparedMap prepared(map, resolution, 1);
    prepared.PartFor(large);
    const VolumeView part = prepared.PartFor(small)->View(), alone = Trimmed(map, small, resolution, 1);
    EXPECT_LT(part.count[0], map.count[0]);
    EXPECT_EQ(part.count, alone.count);
    EXPECT_EQ(part.values.data(), alone.values.data());
}

TEST(PreparedMap, SearchesInSeveralThreadsShareIt) {
    const Volume map = MapWithBorder(4);
    PreparedMap prepared(map, resolution, 1);
    std::vector<std::thread> threads;
    for (const auto *model : {&Large(), &Small(), &Large()})
        threads.emplace_back([&, model] { ExpectAsAlone(map, prepared, *model, Parameters()); });
    for (std::thread &thread : threads)
        thread.join();
}

TEST(PreparedMap, IsOfOneResolution) {
    const Volume map = MapWithBorder(4);
    PreparedMap prepared(map, 9, 1), senseless(map, 0, 1);
    Monitor silent;
    EXPECT_THROW(FindPlaces(prepared, Large(), Parameters(), silent), std::invalid_argument);
    EXPECT_THROW(FindPlaces(senseless, Large(), {.resolution = 0, .region = {}}, silent),
                 std::invalid_argument);
}

TEST(MapPart, MakesAFilteredMapOnce) {
    const Volume map = Blank(1);
    MapPart part(map, resolution, 1, 1 << 20);
    const auto first = part.Filtered({FilteredKind::Use::Level, 2}, [] { return Blank(2); });
    const auto again = part.Filtered({FilteredKind::Use::Level, 2}, [] { return Blank(3); });
    EXPECT_EQ(again, first);
    EXPECT_EQ(part.Filtered({FilteredKind::Use::Level, 3}, [] { return Blank(4); })->values.front(), 4);
    EXPECT_EQ(part.Filtered({FilteredKind::Use::Scan, 2}, [] { return Blank(5); })->values.front(), 5);
}

TEST(MapPart, ForgetsWhatWasUsedLongestAgo) {
    const Volume map = Blank(1);
    MapPart part(map, resolution, 1, 2 * 64 * sizeof(float));
    const auto value = [&part](double width, float otherwise) {
        return part.Filtered({FilteredKind::Use::Level, width}, [&] { return Blank(otherwise); })
            ->values.front();
    };
    EXPECT_EQ(value(1, 1), 1);
    EXPECT_EQ(value(2, 2), 2);
    EXPECT_EQ(value(1, 7), 1);
    EXPECT_EQ(value(3, 3), 3) << "and the second one has to go";
    EXPECT_EQ(value(1, 7), 1);
    EXPECT_EQ(value(2, 7), 7);
    MapPart none(map, resolution, 1);
    const auto first = none.Filtered({FilteredKind::Use::Level, 1}, [] { return Blank(1); });
    EXPECT_NE(none.Filtered({FilteredKind::Use::Level, 1}, [] { return Blank(1); }), first);
}

TEST(MapPart, ChangesNobodyElsesSpectrum) {
    const Volume map = MapWithBorder(4);
    auto part = std::make_shared<MapPart>(map, resolution, 1, 1 << 20);
    const auto change = [](Spectrum &spectrum) { spectrum.strongest = -1; };
    part->Filtered({FilteredKind::Use::Level, 1}, [] { return Blank(1); });
    const auto changed = MapPart::Changed(part, change);
    EXPECT_EQ(changed->MapSpectrum().strongest, -1);
    EXPECT_GT(part->MapSpectrum().strongest, 0);
    EXPECT_EQ(changed->Filtered({FilteredKind::Use::Level, 1}, [] { return Blank(2); })->values.front(), 2);
    const MapPart *own = part.get();
    EXPECT_EQ(MapPart::Changed(std::move(part), change).get(), own) << "no copy where it is not needed";
}
