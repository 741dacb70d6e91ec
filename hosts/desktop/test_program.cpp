#include "TemporaryFolder.h"
#include "TestData.h"

#include <QImage>
#include <QProcess>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;

namespace {

/// The program as a process, on this program's display.
struct Run {
    explicit Run(const QStringList &arguments, const char *platform = "xcb") {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_QPA_PLATFORM", platform);
        process.setProcessEnvironment(environment);
        process.start(MORVANEX_VARNO, arguments);
        EXPECT_TRUE(process.waitForFinished(60'000));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        status = process.exitCode();
        output = process.readAllStandardOutput().toStdString();
        errors = process.readAllStandardError().toStdString();
    }

    int status = -1;
    std::string output, errors;
};

class Program : public testing::Test {
protected:
    TemporaryFolder folder;
    QString picture = QString::fromStdString(folder.File("picture.png"));
    QString model = QString::fromStdString(SourceFolder() + "/examples/1tii.pdb");
};

} // namespace

TEST_F(Program, DrawsFilesWithoutAPerson) {
    const QString map = QString::fromStdString(SourceFolder() + "/examples/1tii_8A.mrc");
    const Run run({"--screenshot", picture, "--size", "320x240", map, model});
    EXPECT_EQ(run.status, 0) << run.errors;
    const QImage image(picture);
    EXPECT_EQ(image.size(), QSize(320, 240));
    int drawn = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            drawn += image.pixel(x, y) != image.pixel(0, 0);
    EXPECT_GT(drawn, 2000);
}

TEST_F(Program, SaysWhyItDrawsNoPicture) {
    const auto errorOf = [](const QStringList &arguments, const char *platform = "xcb") {
        const Run run(arguments, platform);
        EXPECT_EQ(run.status, 1);
        return run.errors;
    };
    EXPECT_THAT(errorOf({"--screenshot", picture, "/absent.pdb"}),
                HasSubstr("varno: /absent.pdb: cannot be read: No such file or directory\n"));
    EXPECT_THAT(errorOf({"--screenshot", picture, "--size", "big", model}),
                HasSubstr("--size: big is no size"));
    EXPECT_THAT(errorOf({"--screenshot", "/absent/x.png", model}),
                HasSubstr("/absent/x.png: the picture cannot be"));
    EXPECT_THAT(errorOf({"--screenshot", picture, model}, "offscreen"), HasSubstr("needs a display"));
}

TEST_F(Program, TellsItsVersionAndOptions) {
    EXPECT_THAT(Run({"--version"}).output, HasSubstr("arno"));
    EXPECT_THAT(Run({"--help"}).output, HasSubstr("--screenshot"));
}
