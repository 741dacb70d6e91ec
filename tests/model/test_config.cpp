#include "Config.h"
#include "Messages.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

using namespace VARNO;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class ConfigTest : public testing::Test {
protected:
    ConfigTest() { Config::SetUserFile(folder.File("absent.ini")); }
    ~ConfigTest() override { Config::SetUserFile(before); }

    void UserFile(const std::string &text) { Config::SetUserFile(folder.Write("user.ini", text)); }

    static std::string Text(const std::string &key) { return Config::GetSetting("Morvanex", key).ToString(); }

    const std::string before = Config::GetUserFile();
    TemporaryFolder folder;
};

std::string ValueOf(const char *variable) {
    const char *value = std::getenv(variable);
    return value ? value : "";
}

/// Sets an environment variable for one test.
class Environment {
public:
    Environment(const char *name, const char *value)
        : m_name(name)
        , m_before(ValueOf(name)) {
        setenv(name, value, 1);
    }
    ~Environment() { setenv(m_name, m_before.c_str(), 1); }

private:
    const char *m_name;
    std::string m_before;
};

} // namespace

TEST_F(ConfigTest, ShipsDefaults) {
    EXPECT_EQ(Text("Axis"), "2");
    EXPECT_EQ(Text("RotationStep"), "10.0");
    EXPECT_EQ(Text("TransNum"), "5");
    EXPECT_EQ(Text("TransStep"), "5.0");
    EXPECT_EQ(Text("TopList"), "100");
    EXPECT_EQ(Text("Output"), "morvanex.log");
    EXPECT_EQ(Text("Marginal"), "60.0");
    EXPECT_EQ(Config::GetSetting("Morvanex", "Axis").ToInt(), 2);
    EXPECT_EQ(Config::GetSetting("Morvanex", "Marginal").ToFloat(), 60.0f);
}

TEST_F(ConfigTest, GivesNothingForAnAbsentKeyAndSaysSo) {
    for (const auto &[section, key] :
         {std::pair("Morvanex", "Absent"), {"Other", "Axis"}, {"morvanex", "Axis"}}) {
        const Setting setting = Config::GetSetting(section, key);
        bool ok = true;
        EXPECT_EQ(setting.ToInt(&ok), 0);
        EXPECT_FALSE(ok);
        ok = true;
        EXPECT_EQ(setting.ToFloat(&ok), 0.0f);
        EXPECT_FALSE(ok);
        ok = true;
        EXPECT_EQ(setting.ToString(&ok), "");
        EXPECT_FALSE(ok);
    }
}

TEST_F(ConfigTest, DoesWithoutASuccessFlag) {
    EXPECT_EQ(Setting().ToInt(nullptr), 0);
    EXPECT_EQ(Setting().ToFloat(nullptr), 0.0f);
    EXPECT_EQ(Setting().ToString(nullptr), "");
    EXPECT_EQ(Setting("7").ToInt(nullptr), 7);
}

TEST_F(ConfigTest, PrefersTheUsersFileKeyByKey) {
    UserFile("[Morvanex]\nAxis=4\nOutput=/data/my.log\n");
    EXPECT_EQ(Text("Axis"), "4");
    EXPECT_EQ(Text("Output"), "/data/my.log");
    EXPECT_EQ(Text("TransNum"), "5");
}

TEST_F(ConfigTest, KeepsSectionsApart) {
    UserFile("Axis=1\n[Other]\nAxis=3\n[Morvanex]\nTransNum=7\n[Later]\nTransNum=9\n");
    EXPECT_EQ(Text("Axis"), "2");
    EXPECT_EQ(Text("TransNum"), "7");
    EXPECT_EQ(Config::GetSetting("Other", "Axis").ToInt(), 3);
}

TEST_F(ConfigTest, HandsOutAValueAsItStandsInTheFile) {
    UserFile("[Morvanex]\n"
             "Output=C:\\new\\table, second.log\n"
             "TopList=\"10, 20\"\n"
             "Marginal=a=b;c#d\n"
             "Axis=@Invalid()\n"
             "TransStep=%41\xc3\xa5\n");
    EXPECT_EQ(Text("Output"), "C:\\new\\table, second.log");
    EXPECT_EQ(Text("TopList"), "\"10, 20\"");
    EXPECT_EQ(Text("Marginal"), "a=b;c#d");
    EXPECT_EQ(Text("Axis"), "@Invalid()");
    EXPECT_EQ(Text("TransStep"), "%41\xc3\xa5");
}

TEST_F(ConfigTest, ReadsFilesWrittenByHand) {
    UserFile("# a comment\r\n; Axis=8\r\n  [ Morvanex ]  \r\n\r\n  Axis =  3 \r\nno equals "
             "sign\r\n=5\r\n#TransNum=9\r\nTopList=7");
    EXPECT_EQ(Text("Axis"), "3");
    EXPECT_EQ(Text("TransNum"), "5");
    EXPECT_EQ(Text("TopList"), "7");
}

TEST_F(ConfigTest, TakesTheLastOfTwoLinesForOneKey) {
    UserFile("[Morvanex]\nAxis=3\nAxis=4\n");
    EXPECT_EQ(Text("Axis"), "4");
}

TEST_F(ConfigTest, LetsTheUserEmptyAValue) {
    UserFile("[Morvanex]\nOutput=\n");
    bool ok = false;
    EXPECT_EQ(Config::GetSetting("Morvanex", "Output").ToString(&ok), "");
    EXPECT_TRUE(ok);
    EXPECT_EQ(Config::GetSetting("Morvanex", "Output").ToInt(&ok), 0);
    EXPECT_FALSE(ok);
}

TEST_F(ConfigTest, GivesTheDefaultsForAFileOfAnotherKind) {
    UserFile(std::string("\0\xff\xfe[[==\n]\n[Morvanex\nAxis=9", 27));
    EXPECT_EQ(Text("Axis"), "2");
}

TEST_F(ConfigTest, SaysOnceThatAFileCannotBeReadAndGivesTheDefaults) {
    const std::string unreadable = folder.File("folder.ini");
    std::filesystem::create_directory(unreadable);
    Config::SetUserFile(unreadable);
    Messages messages;
    EXPECT_EQ(Text("Axis"), "2");
    EXPECT_EQ(Text("TransNum"), "5");
    EXPECT_THAT(messages.Warnings(), ElementsAre("The settings file " + unreadable +
                                                 " cannot be read: the default settings are used"));
}

TEST_F(ConfigTest, SaysNothingWhereThereIsNoFile) {
    Messages messages;
    EXPECT_EQ(Text("Axis"), "2");
    EXPECT_THAT(messages.Warnings(), IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(Config::GetUserFile())) << "reading has made a file";
}

TEST_F(ConfigTest, ConvertsWholeNumbers) {
    const std::tuple<const char *, int, bool> texts[] = {
        {"12", 12, true},   {"-3", -3, true},    {"007", 7, true},
        {"10.0", 0, false}, {"12a", 0, false},   {"0x10", 0, false},
        {"", 0, false},     {"1,000", 0, false}, {"2147483648", 0, false},
    };
    for (const auto &[text, number, converts] : texts) {
        bool ok = !converts;
        EXPECT_EQ(Setting(text).ToInt(&ok), number) << text;
        EXPECT_EQ(ok, converts) << text;
    }
}

TEST_F(ConfigTest, ConvertsNumbersInTheCLocale) {
    const std::tuple<const char *, float, bool> texts[] = {
        {"10", 10, true},  {"7.5", 7.5f, true}, {"-1e2", -100, true}, {"0.1", 0.1f, true},
        {"7,5", 0, false}, {"ten", 0, false},   {"", 0, false},       {"1e99", 0, false},
    };
    for (const auto &[text, number, converts] : texts) {
        bool ok = !converts;
        EXPECT_EQ(Setting(text).ToFloat(&ok), number) << text;
        EXPECT_EQ(ok, converts) << text;
    }
}

TEST_F(ConfigTest, LooksForTheUsersFileInTheUsersConfigurationFolder) {
    EXPECT_TRUE(before.ends_with("/varno/varno.ini")) << before;
}

TEST_F(ConfigTest, GivesTheHomeDirectoryWithoutATrailingSeparator) {
    const Environment home("HOME", "/home/somebody/");
    EXPECT_EQ(Config::GetPersonalDir(), "/home/somebody");
}

TEST_F(ConfigTest, GivesAnEmptyHomeDirectoryWhereThatIsTheRoot) {
    const Environment home("HOME", "/");
    EXPECT_EQ(Config::GetPersonalDir() + "/morvx.lst", "/morvx.lst");
}
