#include "TemporaryFolder.h"
#include "plugins/ElfFile.h"
#include "plugins/Plugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <elf.h>

#include <cstddef>
#include <optional>
#include <stdexcept>

#include <dlfcn.h>

using namespace desktop;
using testing::HasSubstr;
using testing::IsSupersetOf;

namespace {

class PluginTest : public testing::Test {
protected:
    static std::string ProblemOf(const std::string &file) {
        return Plugin(QString::fromStdString(file)).Problem();
    }

    TemporaryFolder folder;
    std::string library = ReadFile(MORVANEX_PLUGIN);
};

} // namespace

TEST_F(PluginTest, IsNamedAfterItsFile) {
    EXPECT_EQ(Plugin("/lib/libMorvanex.so.0").Name(), "Morvanex");
}

TEST_F(PluginTest, HasNoProblemWhenItIsBuiltForThisApplication) {
    EXPECT_EQ(ProblemOf(MORVANEX_PLUGIN), "");
    EXPECT_THAT(ReadElf(MORVANEX_PLUGIN).needed, IsSupersetOf({"libQt6Core.so.6", "libvarno.so.0"}));
}

TEST_F(PluginTest, IsRefusedWithoutAnEntryPoint) {
    std::string without = library;
    for (auto at = without.find("IsDone"); at != std::string::npos; at = without.find("IsDone", at))
        without.replace(at, 6, "IsGone");
    EXPECT_EQ(ProblemOf(folder.Write("libX.so.0", without)), "it has no entry point IsDone");
}

TEST_F(PluginTest, IsRefusedForAnotherProcessor) {
    std::string other = library;
    other[offsetof(Elf64_Ehdr, e_machine)] = char(EM_AARCH64 == OwnMachine() ? EM_X86_64 : EM_AARCH64);
    other[offsetof(Elf64_Ehdr, e_machine) + 1] = 0;
    EXPECT_EQ(ProblemOf(folder.Write("libX.so.0", other)), "it is built for another kind of processor");
}

TEST_F(PluginTest, IsRefusedWithAnotherQt) {
    std::string other = library;
    for (auto at = other.find("libQt6Core.so.6"); at != std::string::npos; at = other.find("libQt6Core.so.6"))
        other.replace(at, 15, "libQt5Core.so.5");
    EXPECT_THAT(ProblemOf(folder.Write("libX.so.0", other)), HasSubstr("it links libQt5Core.so.5"));
}

TEST_F(PluginTest, IsRefusedWhereItIsNoLibraryAtAll) {
    EXPECT_EQ(ProblemOf(folder.File("absent")), "it cannot be read");
    EXPECT_EQ(ProblemOf(folder.Write("a", std::string(1000, 'x'))), "it is no shared library");
    EXPECT_EQ(ProblemOf(folder.Write("b", "x")), "it is cut short");
}

TEST_F(PluginTest, IsReadSafelyWhereverItsFileIsCut) {
    for (std::size_t size = 0; size < library.size(); size += library.size() / 97)
        EXPECT_NO_THROW(ProblemOf(folder.Write("libX.so.0", library.substr(0, size)))) << size;
}

TEST_F(PluginTest, StaysMappedWhoeverClosesItsLibrary) {
    std::optional<Plugin> plugin(MORVANEX_SMALL_PLUGIN);
    plugin->Execute();
    plugin->Cleanup();
    plugin.reset();
    for (int i = 0; i < 3; ++i) {
        void *handle = dlopen(MORVANEX_SMALL_PLUGIN, RTLD_LAZY | RTLD_NOLOAD);
        ASSERT_TRUE(handle);
        dlclose(handle);
        dlclose(handle);
    }
}

TEST_F(PluginTest, CannotBeStartedWhereItIsUnfitAndSaysWhy) {
    Plugin plugin(QString::fromStdString(folder.Write("libX.so.0", "x")));
    try {
        plugin.Execute();
        FAIL();
    } catch (const std::runtime_error &error) {
        EXPECT_EQ(error.what(), folder.File("libX.so.0") + ": it is cut short");
    }
    plugin.Cleanup();
}

TEST_F(PluginTest, IsFoundInTheFolderOfTheEnvironmentAndBadOnesAreNamed) {
    folder.Write("libBad.so.0", "x");
    folder.Write("libGood.so.0", library);
    qputenv("VARNO_PLUGINS", folder.Path().c_str());
    QStringList problems, names;
    for (const auto &plugin : FindPlugins([&](const QString &problem) { problems << problem; }))
        names << plugin->Name();
    qunsetenv("VARNO_PLUGINS");
    EXPECT_EQ(problems.join('\n').toStdString(), folder.File("libBad.so.0") + ": it is cut short");
    EXPECT_EQ(names.value(0), "Good");
    EXPECT_TRUE(names.contains("Morvanex"));
    EXPECT_FALSE(names.contains("varno"));
}
