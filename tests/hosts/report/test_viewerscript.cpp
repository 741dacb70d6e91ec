#include "hosts/report/ViewerScript.h"

#include "TemporaryFolder.h"
#include "TestData.h"
#include "formats/structures/StructureFile.h"

#include "Collect.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

using namespace report;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using Json = nlohmann::ordered_json;

namespace {

Json Place(double x) {
    return {{"score", 5}, {"probability", 1}, {"rotation", {0, 0, 0, 1}}, {"translation", {x, 2.5, -3}}};
}

/// Two places of a chain, of which the first is found.
class ViewerScript : public ::testing::Test {
protected:
    ViewerScript()
        : m_map("map", {4, 4, 4}, {0, 0, 0}, {2, 2, 2}, {90, 90, 90}) {
        m_map.SetValue(1, 1, 1, 8);
        formats::ByteSource source(SourceFolder() + "/examples/1tii_D_displaced.pdb");
        m_model = formats::ReadFreeStructure(source);
        std::vector<VARNO::Compound *> chains;
        VARNO::GetPeptides(m_model.get(), chains, true);
        m_sources.map = &m_map;
        m_sources.models.push_back({"/data/it's.pdb", {dynamic_cast<VARNO::Chain *>(chains.front())}});
        m_record = {{"format", "morvanex place"},
                    {"program", "morvanex 1.2.3"},
                    {"verdict", "placed"},
                    {"statement", "placed\nos.system('x')"},
                    {"copies", 1},
                    {"input", {{"map", "/data/map.mrc"}, {"model", "/data/it's.pdb"}}},
                    {"places", {Place(1), Place(2)}}};
    }

    std::string Script(const std::string &name) {
        WriteViewerScript(m_folder.File(name), m_record.dump(), m_sources);
        return ReadFile(m_folder.File(name));
    }

    TemporaryFolder m_folder;
    VARNO::Grid m_map;
    std::unique_ptr<VARNO::Clump> m_model;
    Sources m_sources;
    Json m_record;
};

} // namespace

TEST_F(ViewerScript, IsKnownByItsName) {
    EXPECT_TRUE(IsViewerScript("a.cxc") && IsViewerScript("a.pml"));
    EXPECT_FALSE(IsViewerScript("a.txt") || IsViewerScript("cxc") || IsViewerScript(""));
}

TEST_F(ViewerScript, ForChimeraXOpensEachPlaceAsAModel) {
    const std::string script = Script("s.cxc");
    EXPECT_THAT(script,
                AllOf(HasSubstr("open '/data/map.mrc' id 1\n"), HasSubstr("volume #1 style surface level ")));
    EXPECT_THAT(script,
                HasSubstr("open '/data/it\\'s.pdb' id 2 name place_1\ndelete #2 & ~#2/D\n"
                          "view matrix models #2,-1.000000,0.000000,0.000000,1.000000,0.000000,-1.000000,"
                          "0.000000,2.500000,0.000000,0.000000,1.000000,-3.000000\n"));
    EXPECT_THAT(script, HasSubstr("hide #3 models\n"));
    EXPECT_THAT(script, Not(HasSubstr("hide #2 models\n")));
}

TEST_F(ViewerScript, ForPymolHasOnlyNumbersWithAPoint) {
    const std::string script = Script("s.pml");
    EXPECT_THAT(script, HasSubstr("cmd.load('/data/map.mrc', 'map', format='mrc')\n"));
    EXPECT_THAT(script,
                HasSubstr("cmd.load('/data/it\\'s.pdb', 'place_1')\ncmd.remove('place_1 and not chain D')\n"
                          "cmd.transform_selection('place_1', [-1.000000, 0.000000, 0.000000, 1.000000, "));
    EXPECT_THAT(script, HasSubstr(", 0.0, 0.0, 0.0, 1.0], homogenous=1)\n"));
    EXPECT_THAT(script, HasSubstr("cmd.disable('place_2')\n"));
}

TEST_F(ViewerScript, LetsNoTextBecomeACommand) {
    for (const char *name : {"s.cxc", "s.pml"})
        EXPECT_THAT(Script(name),
                    HasSubstr("# morvanex 1.2.3: it's.pdb in map.mrc. Placed os.system('x').\n"));
}

TEST_F(ViewerScript, HasTheLevelOfADarkMapBelowZero) {
    m_record["input"]["inverted"] = true;
    EXPECT_THAT(Script("s.cxc"), HasSubstr("level -"));
}

TEST_F(ViewerScript, OpensTheMirroredMapWherePlacesLieInIt) {
    m_record["hand"] = {{"placesAreMirrored", true}};
    EXPECT_THAT(Script("s.pml"), AllOf(Not(HasSubstr("map.mrc'")), HasSubstr("--mirrored-map writes it")));
    m_sources.mirroredMap = "/data/mirrored.mrc";
    EXPECT_THAT(Script("s.pml"), HasSubstr("cmd.load('/data/mirrored.mrc', 'map'"));
}

TEST_F(ViewerScript, ShowsTheFirstPlaceWhereNoneIsFound) {
    m_record["verdict"] = "nothing-found";
    m_record["copies"] = 0;
    const std::string script = Script("s.cxc");
    EXPECT_THAT(script, AllOf(HasSubstr("hide #3 models"), Not(HasSubstr("hide #2 models"))));
}
