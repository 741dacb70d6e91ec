#include "TestData.h"
#include "Wait.h"
#include "document/FileReading.h"
#include "place/PlaceSearch.h"

#include "Collect.h"
#include "Grid.h"

#include <gmock/gmock.h>

using namespace desktop;
using namespace VARNO;
using testing::StartsWith;

namespace {

FileContent Read(const char *example) {
    FileContent file = ReadAnyFile(SourceFolder() + "/examples/" + example, [](double) {});
    EXPECT_EQ(file.error, "");
    return file;
}

class PlaceSearchTest : public testing::Test {
protected:
    PlaceSearchTest() {
        std::vector<Compound *> peptides;
        GetPeptides(model.structure.get(), peptides, true);
        question.models = {{"toxin", {dynamic_cast<Chain *>(peptides.front())}}};
        question.map = map.map.get();
        question.options.resolution = 8;
        QObject::connect(&search, &PlaceSearch::answered,
                         [this](const std::shared_ptr<PlaceAnswer> &given) { answer = given; });
    }

    FileContent map = Read("1tii_8A.mrc"), model = Read("1tii_D_displaced.pdb");
    PlaceQuestion question;
    PlaceSearch search;
    std::shared_ptr<PlaceAnswer> answer;
};

} // namespace

TEST_F(PlaceSearchTest, HasWhatItNeedsOfAMapThatIsGone) {
    search.Start(question);
    map.map.reset();
    WaitUntil([this] { return answer != nullptr; });
    EXPECT_EQ(answer->error, "");
    EXPECT_THAT(answer->verdict.toStdString(), StartsWith("Placed, with a probability above 0.999"));
}
