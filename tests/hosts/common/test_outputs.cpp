#include "hosts/common/Outputs.h"

#include "TemporaryFolder.h"
#include "formats/files/FileError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

using namespace hosts;
using testing::HasSubstr;

namespace {

std::string ErrorOf(const std::vector<std::string> &outputs, const std::vector<std::string> &inputs) {
    try {
        CheckOutputs(outputs, inputs);
    } catch (const formats::FileError &error) {
        return error.what();
    }
    return "no error";
}

} // namespace

TEST(CheckOutputs, LetsNewFilesAndExistingOnesPassUntouched) {
    const TemporaryFolder folder;
    const std::string input = folder.Write("in.pdb", "in"), old = folder.Write("old.pdb", "old");
    EXPECT_EQ(ErrorOf({folder.File("new.pdb"), old}, {input}), "no error");
    EXPECT_EQ(ReadFile(old), "old");
    EXPECT_FALSE(std::filesystem::exists(folder.File("new.pdb")));
}

TEST(CheckOutputs, RefusesAnInputUnderAnyPath) {
    const TemporaryFolder folder;
    const std::string input = folder.Write("in.pdb", "in"), link = folder.File("link.pdb");
    std::filesystem::create_symlink(input, link);
    std::filesystem::create_hard_link(input, folder.File("hard.pdb"));
    for (const std::string &path : {input, link, folder.File("hard.pdb"), folder.Path() + "/./in.pdb"})
        EXPECT_EQ(ErrorOf({path}, {input}), path + ": is an input; it cannot be written to");
    EXPECT_EQ(ReadFile(input), "in");
}

TEST(CheckOutputs, RefusesTheSameOutputTwice) {
    const TemporaryFolder folder;
    const std::string first = folder.File("out.pdb"), second = folder.Path() + "/./out.pdb";
    EXPECT_EQ(ErrorOf({first, second}, {}), second + ": is named for two outputs");
    const std::string link = folder.File("link.pdb");
    std::filesystem::create_symlink("out.pdb", link);
    EXPECT_EQ(ErrorOf({link, first}, {}), first + ": is named for two outputs") << "no file stands there yet";
    EXPECT_EQ(ErrorOf({"/dev/null", "/dev/null"}, {}), "no error");
}

TEST(CheckOutputs, RefusesWhatCannotBeWritten) {
    const TemporaryFolder folder;
    EXPECT_THAT(ErrorOf({folder.Path()}, {}), HasSubstr("it is a directory"));
    EXPECT_THAT(ErrorOf({folder.File("none/out.pdb")}, {}), HasSubstr("No such file or directory"));
    std::filesystem::create_symlink("loop", folder.File("loop"));
    EXPECT_THAT(ErrorOf({folder.File("loop")}, {}), HasSubstr("loop: cannot be written: "));
    EXPECT_EQ(ErrorOf({folder.File("out.pdb")}, {folder.File("loop")}), "no error") << "for whoever reads it";
}
