#include "TemporaryFolder.h"
#include "TestData.h"
#include "Wait.h"
#include "document/FileReading.h"

#include <QSignalSpy>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace desktop;
using testing::HasSubstr;

namespace {

class FileReadingTest : public testing::Test {
protected:
    FileReadingTest() {
        QObject::connect(&reading, &FileReading::read, &reading,
                         [this](const std::shared_ptr<FileContent> &file) { files.push_back(file); });
        QObject::connect(&reading, &FileReading::finished, &reading, [this] { finished = true; });
    }

    static QString Example(const std::string &name) {
        return QString::fromStdString(SourceFolder() + "/examples/" + name);
    }
    void Read(const QStringList &names) {
        reading.Read(names);
        WaitUntil([this] { return finished; });
    }

    TemporaryFolder folder;
    FileReading reading;
    std::vector<std::shared_ptr<FileContent>> files;
    bool finished = false;
};

} // namespace

TEST_F(FileReadingTest, ReadsMapsAndStructuresInTheirOrderWithoutTouchingTheModel) {
    Read({Example("1tii_8A.mrc"), Example("1tii.pdb")});
    ASSERT_EQ(files.size(), 2u);
    ASSERT_TRUE(files[0]->map);
    EXPECT_EQ(files[0]->map->GetName(), "1tii_8A");
    EXPECT_GT(files[0]->statistics.deviation, 0);
    ASSERT_TRUE(files[1]->structure);
    EXPECT_FALSE(files[1]->structure->IsAttached());
}

TEST_F(FileReadingTest, SaysWhyAFileCannotBeReadAndGoesOn) {
    const QString absent = QString::fromStdString(folder.File("absent.mrc"));
    const QString noise = QString::fromStdString(folder.Write("noise.pdb", "no structure\n"));
    Read({absent, noise, Example("1tii.pdb")});
    ASSERT_EQ(files.size(), 3u);
    EXPECT_EQ(files[0]->error, folder.File("absent.mrc") + ": cannot be read: No such file or directory");
    EXPECT_THAT(files[1]->error, HasSubstr("is neither PDB"));
    EXPECT_TRUE(files[2]->structure);
}

TEST_F(FileReadingTest, WaitsForNoPipe) {
    const std::string pipe = folder.File("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    Read({QString::fromStdString(pipe), QString::fromStdString(folder.Path()), "/dev/zero"});
    ASSERT_EQ(files.size(), 3u);
    for (const auto &file : files)
        EXPECT_THAT(file->error, testing::StartsWith(file->file + ": "));
}

TEST_F(FileReadingTest, StopsAtOnceAndForgetsWhatWaits) {
    reading.Read({Example("1tii.pdb"), Example("1tii.pdb"), Example("1tii_8A.mrc")});
    EXPECT_TRUE(reading.IsReading());
    reading.Cancel();
    WaitUntil([this] { return finished; });
    EXPECT_LE(files.size(), 1u);
    EXPECT_FALSE(reading.IsReading());
}

TEST_F(FileReadingTest, StopsInTheMiddleOfAFile) {
    struct Stop {};
    int calls = 0;
    EXPECT_THROW(ReadAnyFile(Example("1tii.pdb").toStdString(),
                             [&](double share) {
                                 EXPECT_LE(share, 1);
                                 ++calls;
                                 throw Stop();
                             }),
                 Stop);
    EXPECT_EQ(calls, 1);
}
