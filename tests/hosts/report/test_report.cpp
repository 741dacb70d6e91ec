#include "hosts/report/Report.h"

#include "TemporaryFolder.h"
#include "TestData.h"
#include "formats/files/FileError.h"
#include "formats/structures/StructureFile.h"

#include "Collect.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <random>

using namespace report;
using ::testing::HasSubstr;
using ::testing::Not;
using Json = nlohmann::ordered_json;

namespace {

const Viewer fakeViewer{"/* a library */", "The licence of <a library>"};

Json Place(double score, double probability) {
    return {{"rank", 1},           {"score", score},           {"probability", probability},
            {"otherTurn", false},  {"inDensity", 0.9},         {"overlap", 0.0},
            {"centre", {1, 2, 3}}, {"rotation", {1, 0, 0, 0}}, {"translation", {5, 0, 0}}};
}

class Report : public ::testing::Test {
protected:
    Report()
        : m_map("map", {20, 20, 20}, {40, -30, 0}, {2, 2, 2}, {90, 90, 90}) {
        for (unsigned i = 0; i < 20; ++i)
            m_map.SetValue(i, 10, 10, float(i));
        formats::ByteSource source(SourceFolder() + "/examples/1tii_D_displaced.pdb");
        m_model = formats::ReadFreeStructure(source);
        std::vector<VARNO::Compound *> chains;
        VARNO::GetPeptides(m_model.get(), chains, true);
        m_sources.map = &m_map;
        m_sources.models.push_back({"model.pdb", {dynamic_cast<VARNO::Chain *>(chains.front())}});
        m_sources.command = "morvanex place --map map.mrc";
    }

    static Json Record() {
        return {{"format", "morvanex place"},
                {"program", "morvanex 1.2.3"},
                {"verdict", "placed"},
                {"statement", "placed, with a probability above 0.999"},
                {"copies", 1},
                {"input", {{"map", "map.mrc"}, {"model", "model.pdb"}, {"resolution", 8.0}}},
                {"search", {{"cancelled", false}, {"seconds", 2.0}}},
                {"places", {Place(9, 1), Place(3, 0.01)}}};
    }

    static Json FitRecord() {
        return {{"format", "morvanex fit"},
                {"input", {{"map", "map.mrc"}, {"target", "model.pdb"}, {"chain", "D"}}},
                {"settings", {{"rotationStep", 30.0}}},
                {"counts", {{"axes", 21}, {"axesDone", 21}, {"poses", 29000}, {"accepted", 28000}}},
                {"sample", {{"poses", 4096}, {"mean", 10.0}, {"deviation", 2.0}}},
                {"centre", {0, 0, 0}},
                {"solutions", Json::array()}};
    }

    std::string PageOf(const Json &record, const std::optional<Viewer> &viewer = std::nullopt) {
        WriteReport(m_folder.File("report.html"), record.dump(), m_sources, viewer);
        return ReadFile(m_folder.File("report.html"));
    }

    TemporaryFolder m_folder;
    VARNO::Grid m_map;
    std::unique_ptr<VARNO::Clump> m_model;
    Sources m_sources;
};

} // namespace

TEST_F(Report, TellsTheVerdictThePlacesAndWhatWasDone) {
    const std::string page = PageOf(Record());
    EXPECT_THAT(page, HasSubstr("<h1>model.pdb in map.mrc</h1>"));
    EXPECT_THAT(page, HasSubstr("Placed, with a probability above 0.999."));
    EXPECT_THAT(page, HasSubstr("aria-label=\"Show place 2\""));
    EXPECT_THAT(page, HasSubstr("<td class=\"confidence\">sure</td>"));
    EXPECT_THAT(page, HasSubstr("<td class=\"confidence\">as by chance</td>"));
    EXPECT_THAT(page, HasSubstr("<dd>8 Å</dd>"));
    EXPECT_THAT(page, HasSubstr("<dd>morvanex 1.2.3</dd>"));
    EXPECT_THAT(page, HasSubstr("<pre>morvanex place --map map.mrc</pre>"));
    EXPECT_THAT(page, HasSubstr("data-picture=\"1\""));
    EXPECT_THAT(page, HasSubstr("Histogram of 2 scores"));
}

TEST_F(Report, HasTheChecksumsOfItsInputs) {
    Json record = Record();
    record["input"]["map"] = m_folder.Write("abc.mrc", "abc");
    const std::string page = PageOf(record);
    EXPECT_THAT(page, HasSubstr("SHA-256 ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"));
    EXPECT_THAT(page, HasSubstr("model.pdb<code class=\"checksum\">no file to take a checksum of"));
}

TEST_F(Report, AsksForNothingFromOutside) {
    const std::string page = PageOf(Record(), fakeViewer);
    EXPECT_THAT(
        page,
        HasSubstr(
            "http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; script-src 'sha256-"));
    EXPECT_THAT(page, Not(HasSubstr("http://")));
    EXPECT_THAT(page, Not(HasSubstr("https://")));
    EXPECT_THAT(page, Not(HasSubstr("src=")));
}

TEST_F(Report, HasTheViewWhereItsLibraryIs) {
    const std::string with = PageOf(Record(), fakeViewer), without = PageOf(Record());
    EXPECT_THAT(with, HasSubstr("<script>/* a library */</script>"));
    EXPECT_THAT(with, HasSubstr("The licence of &lt;a library&gt;"));
    EXPECT_THAT(with, HasSubstr("id=\"level\""));
    EXPECT_THAT(without, HasSubstr("The 3D view is not installed here"));
    EXPECT_THAT(without, HasSubstr("<script type=\"application/json\" id=\"data\">{}</script>"));
    EXPECT_THAT(without, Not(HasSubstr("id=\"level\"")));
}

TEST_F(Report, RefusesALibraryThatWouldEndItsElement) {
    EXPECT_THROW(PageOf(Record(), Viewer{"a </script> b", ""}), std::invalid_argument);
    EXPECT_THROW(PageOf(Record(), Viewer{"a <script> b", ""}), std::invalid_argument);
}

TEST_F(Report, EscapesNames) {
    const std::string name = "<img src=x onerror=alert(1)>&\"'.pdb";
    Json record = Record();
    record["input"]["model"] = record["input"]["map"] = name;
    record["statement"] = record["program"] = "<script>alert(1)</script>";
    m_sources.models.front().file = name;
    m_sources.command = name;
    const std::string page = PageOf(record, fakeViewer);
    EXPECT_THAT(page, Not(HasSubstr("<img")));
    EXPECT_THAT(page, Not(HasSubstr("<script>alert")));
    EXPECT_THAT(page, HasSubstr("\\u003cimg src=x"));
}

TEST_F(Report, SaysThatThereIsNoPlace) {
    Json record = Record();
    record["verdict"] = "no-density";
    record["statement"] = "the map holds no density where the model could lie";
    record["places"] = Json::array();
    const std::string page = PageOf(record, fakeViewer);
    EXPECT_THAT(page, HasSubstr("There is none to show."));
    EXPECT_THAT(page, HasSubstr("class=\"verdict unsure\""));
    EXPECT_THAT(page, HasSubstr("id=\"level\""));
}

TEST_F(Report, OfAFitTellsThatItIsNoProbability) {
    Json record = FitRecord();
    record["solutions"].push_back({{"score", 16.0},
                                   {"rotation", {0, 0, 0, 1}},
                                   {"translation", {3, 4, 0}},
                                   {"restraintDistances", {}}});
    const std::string page = PageOf(record);
    EXPECT_THAT(page, HasSubstr("29,000 poses searched, 28,000 without a clash, the best 1 kept."));
    EXPECT_THAT(page, HasSubstr("it is no probability"));
    EXPECT_THAT(page, HasSubstr(">16.000</td><td class=\"number\">3.00</td><td class=\"number\">180.0</td>"
                                "<td class=\"number\">5.00</td>"));
    EXPECT_THAT(page, HasSubstr("class=\"all\""));
}

TEST_F(Report, OfAFitWithoutASolutionSaysSo) {
    const std::string page = PageOf(FitRecord(), fakeViewer);
    EXPECT_THAT(page, HasSubstr("No pose was accepted"));
    EXPECT_THAT(page, HasSubstr("There is none to show."));
}

TEST_F(Report, ShowsNumbersThatAreNotFiniteAsDashes) {
    Json record = FitRecord();
    record["sample"]["deviation"] = "nan";
    record["solutions"].push_back(
        {{"score", "inf"}, {"rotation", {"nan", 0, 0, 1}}, {"translation", {3, 4, 0}}});
    const std::string page = PageOf(record, fakeViewer);
    EXPECT_THAT(page,
                HasSubstr("<th scope=\"row\">1</th><td class=\"number\">–</td><td class=\"number\">–</td>"));
    EXPECT_THAT(page, Not(HasSubstr("nan")));
}

TEST_F(Report, OfAnAssemblyShowsWhatStandsBesideEachCopy) {
    const Json copy = {{"file", "model.pdb"},     {"chains", {{{"chain", "D"}, {"name", "D2"}}}},
                       {"probability", 1.0},      {"score", 5.0},
                       {"centre", {1, 2, 3}},     {"rotation", {1, 0, 0, 0}},
                       {"translation", {0, 0, 0}}};
    const Json record = {
        {"format", "morvanex assembly"},
        {"complete", false},
        {"statement", "2 copies placed"},
        {"explained", 0.5},
        {"input", {{"map", "map.mrc"}}},
        {"parts", {{{"file", "model.pdb"}, {"statement", "2 of 3 copies placed"}}}},
        {"copies", {copy, copy}},
        {"distances",
         {{{"from", "D:1"}, {"to", "D:9"}, {"max", 12.5}, {"distance", 13.25}, {"holds", false}}}}};
    const std::string page = PageOf(record, fakeViewer);
    EXPECT_THAT(page, HasSubstr("<li>Model.pdb: 2 of 3 copies placed.</li>"));
    EXPECT_THAT(page, HasSubstr("D:1 to D:9: 13.2 Å, at most 12.5 Å: it does not hold."));
    EXPECT_THAT(page, HasSubstr("50.0 % of the map"));
    EXPECT_THAT(page, HasSubstr("\"together\":true"));
    EXPECT_THAT(page, HasSubstr("class=\"around\" d=\"M"));
}

TEST_F(Report, OfAScreenShowsTheRankingAndTheBestModels) {
    Json row{{"rank", 1},         {"model", "model.pdb"}, {"domain", "D:1-98"}, {"declared", true},
             {"q", 1e-5},         {"expected", 1e-7},     {"score", 9.0},       {"same_place", 1},
             {"residues", 98},    {"rotation_w", 1.0},    {"rotation_x", 0.0},  {"rotation_y", 0.0},
             {"rotation_z", 0.0}, {"translation_x", 5.0}, {"translation_y", 0}, {"translation_z", 0}};
    Json wrong = row;
    wrong.update({{"model", "wrong.pdb"}, {"declared", false}, {"expected", "inf"}, {"rotation_w", nullptr}});
    const Json record = {{"format", "morvanex screen"},
                         {"settings", {{"map", "map.mrc"}, {"resolution", 8.0}}},
                         {"problems", {{{"model", "broken.pdb"}, {"problem", "it is empty"}}}},
                         {"ranking", {row, wrong}}};
    const std::string page = PageOf(record, fakeViewer);
    EXPECT_THAT(page, HasSubstr("<h1>2 models in map.mrc</h1>"));
    EXPECT_THAT(page, HasSubstr("1 of 2 models is found."));
    EXPECT_THAT(page, HasSubstr("Without a result: broken.pdb: it is empty."));
    EXPECT_THAT(page,
                HasSubstr("<td class=\"words\">model.pdb D:1-98</td><td class=\"confidence\">yes</td>"));
    EXPECT_THAT(page, HasSubstr("<td class=\"number\">inf</td>"));
    EXPECT_THAT(page, HasSubstr("of 2 models by rank, 1 of them found"));
    EXPECT_THAT(page, HasSubstr("data-picture=\"0\""));
    EXPECT_THAT(page, Not(HasSubstr("data-picture=\"1\"")));
}

TEST_F(Report, OfAPlacedMapShowsBothContours) {
    Json record = Record();
    record["input"] = {{"map", "map.mrc"}, {"movedMap", "moved.mrc"}};
    record["hand"] = {{"placesAreMirrored", true}, {"statement", "the second map is a mirror image"}};
    m_sources.models.clear();
    m_sources.movedMap = &m_map;
    const std::string page = PageOf(record, fakeViewer);
    EXPECT_THAT(page, HasSubstr("<h1>moved.mrc in map.mrc</h1>"));
    EXPECT_THAT(page, HasSubstr("contour of the second map in its place"));
    EXPECT_THAT(page, HasSubstr("\"moved\":{\"map\":\""));
    EXPECT_THAT(page, HasSubstr("data-picture=\"0\""));
    EXPECT_THAT(page, Not(HasSubstr("data-picture=\"1\"")));
}

TEST_F(Report, ShowsTheMirroredMapWhereThePlacesLieInIt) {
    Json record = Record();
    const std::string given = PageOf(record);
    record["hand"] = {{"placesAreMirrored", true}, {"statement", "the map is mirrored"}};
    const std::string mirrored = PageOf(record);
    const auto picture = [](const std::string &page) {
        return page.substr(page.find("data:image/png"), 2000);
    };
    EXPECT_THAT(mirrored, HasSubstr("The map is mirrored."));
    EXPECT_NE(picture(mirrored), picture(given));
}

TEST_F(Report, ShowsTheBestHundred) {
    Json record = Record();
    for (int i = 0; i < 200; ++i)
        record["places"].push_back(Place(1, 0.01));
    const std::string page = PageOf(record);
    EXPECT_THAT(page, HasSubstr("aria-label=\"Show place 100\""));
    EXPECT_THAT(page, Not(HasSubstr("aria-label=\"Show place 101\"")));
    EXPECT_THAT(page, HasSubstr("102 more, of lower rank"));
}

TEST_F(Report, StaysSmallForALargeMapAndSaysHow) {
    VARNO::Grid large("large", {220, 220, 220}, {0, 0, 0}, {1, 1, 1}, {90, 90, 90});
    std::minstd_rand random;
    for (float &value : large.Values())
        value = float(random() % 10000);
    m_sources.map = &large;
    Json record = Record();
    for (const auto &[x, y, z] : {std::tuple{-50., 10., -30.}, std::tuple{150., 220., 180.}}) {
        Json place = Place(2, 0.01);
        place["translation"] = {x, y, z};
        record["places"].push_back(place);
    }
    const std::string page = PageOf(record, fakeViewer);
    EXPECT_LT(page.size(), 15'000'000u);
    EXPECT_THAT(page, HasSubstr("Every 2 × 2 × 2 voxels are averaged to one"));
}

TEST_F(Report, SaysWhereItCannotBeWritten) {
    EXPECT_THROW(WriteReport("/nonexistent/report.html", Record().dump(), m_sources, std::nullopt),
                 formats::FileError);
}

TEST_F(Report, IsMadeOfRecordsOfThisProgramAlone) {
    EXPECT_THROW(PageOf({{"format", "something else"}}), std::invalid_argument);
    EXPECT_THROW(PageOf(Json::array()), std::invalid_argument);
}

TEST_F(Report, LacksWhatTheRecordLacks) {
    EXPECT_THAT(PageOf({{"format", "morvanex place"}}, fakeViewer), HasSubstr("There is none to show."));
    EXPECT_THAT(PageOf({{"format", "morvanex assembly"}}, fakeViewer), HasSubstr("There is none to show."));
    EXPECT_THAT(PageOf({{"format", "morvanex fit"}}, fakeViewer), HasSubstr("There is none to show."));
}
