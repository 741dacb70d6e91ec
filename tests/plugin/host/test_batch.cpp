#include "HostTest.h"

#include "TestData.h"

#include "Residue.h"

#include <QProcess>

using testing::IsEmpty;
using testing::SizeIs;

/// The command and the plug-in, on the same input with the same settings.
class SameAsTheCommand : public HostTest {
protected:
    SameAsTheCommand() {
        plugin.Execute0();
        Choose("moleculeButton", {example.target});
        Choose("densButton", {example.map});
        EnterQuickSearch();
        Forget();
        Press(FitDialog(), "logfileCheckBox");
    }

    static QString Example(const char *name) {
        return QString::fromStdString(SourceFolder() + "/examples/" + name);
    }
    QString File(const char *name) const { return QString::fromStdString(Path(name)); }

    void Compare(const QStringList &options) {
        QProcess command;
        command.start(MORVANEX_PROGRAM,
                      QStringList{"fit", "--map", Example("1tii_8A.mrc"), "--target",
                                  Example("1tii_D_displaced.pdb"), "--axis", "1", "--rotation-step", "30",
                                  "--translation-step", "4", "--translation-steps", "3", "--results",
                                  File("command.txt"), "--log", File("command.log"), "--quiet"} +
                          options);
        ASSERT_TRUE(command.waitForFinished(-1));
        ASSERT_EQ(command.exitCode(), 0) << command.readAllStandardError().toStdString();

        Enter("logfileEdit", File("plugin.log"));
        ASSERT_TRUE(Apply());
        Save(Path("plugin.txt"));
        EXPECT_THAT(ReadFile(Path("plugin.txt")), SizeIs(testing::Gt(1000u)));
        EXPECT_EQ(ReadFile(Path("plugin.txt")), ReadFile(Path("command.txt")));
        EXPECT_THAT(ReadFile(Path("plugin.log")), Not(IsEmpty()));
        EXPECT_EQ(ReadFile(Path("plugin.log")), ReadFile(Path("command.log")));
    }

    Assembly example = ReadExample();
};

TEST_F(SameAsTheCommand, AFitIntoAMap) {
    Compare({"--keep", "20"});
}

TEST_F(SameAsTheCommand, AFitThatKeepsEveryPose) {
    Enter("keepComboBox", "100000");
    Compare({"--keep", "100000"});
}

TEST_F(SameAsTheCommand, AFitAmongOtherChainsWithRestraints) {
    const auto residues = ResiduesOf(example.target);
    const std::string restraints = folder.Write(
        "restraints.txt", residues[3]->GetLabel() + " 1 2 3\n" + residues[50]->GetLabel() + " 50 -7.5 10\n");
    Choose("surfmolButton", example.solid);
    Press(FitDialog(), "restraintfileCheckBox");
    Enter("restraintfileEdit", restraints.c_str());
    Compare({"--keep", "20", "--solid", Example("1tii.pdb"), "--solid-chains", "A,C,E,F,G,H", "--restraints",
             restraints.c_str()});
}
