#include "ModelGuard.h"
#include "TestData.h"
#include "formats/files/FileError.h"
#include "formats/maps/MapFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cctype>
#include <fstream>
#include <map>

using namespace formats;
using namespace VARNO;
using nlohmann::json;
using testing::HasSubstr;

namespace {

/// One map file and what a reader must make of it. Without data there is one case, which skips.
struct MapCase {
    std::string file;
    json expected;
};

void PrintTo(const MapCase &map, std::ostream *out) {
    *out << map.file;
}

std::vector<MapCase> AllCases() {
    if (TestDataFolder().empty())
        return {{"absent", {}}};
    std::vector<MapCase> cases;
    const json all = json::parse(std::ifstream(TestDataFolder() + "/format/format.json"));
    for (const json &entry : all.at("files"))
        cases.push_back({entry.at("file"), entry});
    return cases;
}

std::string CaseName(const testing::TestParamInfo<MapCase> &info) {
    std::string name = info.param.file;
    for (char &c : name)
        c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    return name;
}

/// What the error has to name, for each file that is refused.
const std::map<std::string, std::string> refusals = {
    {"EMD-3001.map", "CELLB BETA (word 15): 94.326 degrees: the cell is not orthogonal"},
    {"EMD-3001.map.bz2", "CELLB BETA (word 15): 94.326 degrees: the cell is not orthogonal"},
    {"emd_3001.map.gz", "CELLB BETA (word 15): 94.326 degrees: the cell is not orthogonal"},
    {"3197_mode3.map", "MODE (word 4): 3 "},
    {"3197_mode4.map", "MODE (word 4): 4 "},
    {"3197_mode101.map", "MODE (word 4): 101 "},
    {"3197_cell0.map", "CELLA X (word 11): 0 Å is not a cell length, so the scale is unknown"},
    {"3197_truncated.map", "byte 20024: the map ends too early, its header promises 33024 bytes"},
    {"3197_headeronly.map", "byte 1024: the map ends too early, its header promises 33024 bytes"},
    {"3197_500bytes.map", "byte 500: the map ends too early, a header takes 1024 bytes"},
    {"empty.map", "the file is empty"},
    {"text.map", "not an MRC/CCP4 map"},
    {"3197_hugedims.map", "NX (word 1): 2000000 "},
    {"3197_negdims.map", "NX (word 1): -20 "},
    {"3197_negexthdr.map", "NSYMBT (word 24): -80 "},
    {"3197_hugeexthdr.map", "NSYMBT (word 24): 2000000000 "},
    {"3197_truncated.map.gz", ": the gzip stream ends too early"},
};

/// The reference values are rounded to five decimals.
double Tolerance(double value) {
    return 1e-5 + 1e-6 * std::abs(value);
}

void ExpectNear(const Vector<float, 3> &found, const json &expected) {
    for (unsigned axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(found[axis], expected.at(axis).get<double>(), 1e-4) << "axis " << axis;
}

class MapData : public testing::TestWithParam<MapCase> {
protected:
    void ExpectGrid(const Grid &grid, const MapReport &report, const json &expected) {
        for (unsigned axis = 0; axis < 3; ++axis)
            ASSERT_EQ(grid.Dimensions()[axis], expected.at("dims").at(axis).get<unsigned>())
                << "axis " << axis;
        ExpectNear(grid.Origin(), expected.at("origin"));
        ExpectNear(grid.Spacing(), expected.at("spacing"));
        EXPECT_NEAR(report.minimum, expected.at("min").get<double>(), Tolerance(report.minimum));
        EXPECT_NEAR(report.maximum, expected.at("max").get<double>(), Tolerance(report.maximum));
        EXPECT_NEAR(report.mean, expected.at("mean").get<double>(), Tolerance(report.mean));
        EXPECT_EQ(expected.at("probes_x_y_z_value").size(), 6u);
        for (const json &probe : expected.at("probes_x_y_z_value"))
            EXPECT_NEAR(grid.GetValue(probe.at(0), probe.at(1), probe.at(2)), probe.at(3).get<double>(),
                        Tolerance(probe.at(3)))
                << probe;
    }

    ModelGuard m_guard;
};

} // namespace

TEST_P(MapData, IsReadOrRefusedAsItShouldBe) {
    REQUIRE_TEST_DATA();
    const std::string path = TestDataFolder() + "/format/" + GetParam().file;
    if (GetParam().expected.at("expect") == "read") {
        MapReport report;
        const Grid *grid = ReadMap(path, &report);
        ExpectGrid(*grid, report, GetParam().expected.at("grid"));
        return;
    }
    try {
        ReadMap(path);
        FAIL() << "was read";
    } catch (const FileError &error) {
        EXPECT_THAT(error.what(), testing::StartsWith(path + ": "));
        EXPECT_THAT(error.what(), HasSubstr(refusals.at(GetParam().file)));
    }
}

INSTANTIATE_TEST_SUITE_P(Format, MapData, testing::ValuesIn(AllCases()), CaseName);

/// The maps that the fits use. Where ORIGIN and NSTART disagree, this is what puts the model into the map.
TEST(MapsOfTheCases, LieWhereTheirModelsLie) {
    REQUIRE_TEST_DATA();
    const ModelGuard guard;
    const auto expect = [](const std::string &name, const std::string &source,
                           const Vector<unsigned, 3> &dimensions, float spacing,
                           const Vector<float, 3> &origin) {
        SCOPED_TRACE(name);
        MapReport report;
        const Grid *grid = ReadMap(TestDataFolder() + "/maps/" + name, &report);
        EXPECT_EQ(grid->Dimensions(), dimensions);
        EXPECT_EQ(report.originSource, source);
        for (unsigned axis = 0; axis < 3; ++axis) {
            EXPECT_NEAR(grid->Spacing()[axis], spacing, 1e-5);
            EXPECT_NEAR(grid->Origin()[axis], origin[axis], 1e-4);
        }
    };
    expect("emd_5168.map", "NSTART", {100, 100, 100}, 1.742f, {-87.1f, -87.1f, -87.1f});
    expect("1z5s_10.mrc", "ORIGIN", {54, 57, 43}, 2.0f, {34, 10, -92});
    expect("Ubi-12.5.mrc", "ORIGIN", {64, 64, 64}, 1.2156f, {-8.3587f, -9.3847f, -20.9382f});
    expect("1akeA_10A.mrc", "ORIGIN", {22, 22, 22}, 3.0f, {-6.494f, 13.381f, -5.41f});
    expect("1tii_8A_noise.mrc", "ORIGIN", {52, 48, 53}, 2.0f, {-2, -38, -42});
}
