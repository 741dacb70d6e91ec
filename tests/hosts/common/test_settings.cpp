#include "hosts/common/Settings.h"

#include "Config.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

using namespace hosts;
using VARNO::Config;

namespace {

/// A settings file of the test's own.
class Settings : public testing::Test {
protected:
    Settings() { Config::SetUserFile(m_folder.File("varno.ini")); }
    ~Settings() override { Config::SetUserFile(m_before); }

    void Configure(const std::string &line) { m_folder.Write("varno.ini", "[Morvanex]\n" + line + "\n"); }
    int Integer(const std::string &key) {
        m_warning.clear();
        return IntegerSetting(key, [this](const std::string &text) { m_warning = text; });
    }
    double Number(const std::string &key) {
        m_warning.clear();
        return NumberSetting(key, [this](const std::string &text) { m_warning = text; });
    }
    std::string Warning() const {
        return m_warning.empty() ? "none" : m_warning.substr(m_folder.Path().size() + 1);
    }

private:
    TemporaryFolder m_folder;
    std::string m_before = Config::GetUserFile(), m_warning;
};

} // namespace

TEST_F(Settings, AreTheShippedOnesByDefault) {
    EXPECT_EQ(Integer("TopList"), 100);
    EXPECT_EQ(Warning(), "none");
    EXPECT_EQ(Number("RotationStep"), 10);
    EXPECT_EQ(Warning(), "none");
}

TEST_F(Settings, AreReadInFullPrecision) {
    Configure("TransStep= 7.1 ");
    EXPECT_EQ(Number("TransStep"), 7.1);
    EXPECT_EQ(Warning(), "none");
}

TEST_F(Settings, ThatAreNoNumbersCountAsZeroWithAWarning) {
    Configure("TopList=1e3");
    EXPECT_EQ(Integer("TopList"), 0);
    EXPECT_EQ(
        Warning(),
        "varno.ini: section Morvanex: TopList=1e3 is not a whole number up to 2147483647; it counts as 0");
    Configure("TopList=3000000000");
    EXPECT_EQ(Integer("TopList"), 0);
    EXPECT_EQ(
        Warning(),
        "varno.ini: section Morvanex: TopList=3000000000 is not a whole number up to 2147483647; it counts as 0");
    Configure("TransStep=5 A");
    EXPECT_EQ(Number("TransStep"), 0);
    EXPECT_EQ(Warning(), "varno.ini: section Morvanex: TransStep=5 A is not a number; it counts as 0");
}
