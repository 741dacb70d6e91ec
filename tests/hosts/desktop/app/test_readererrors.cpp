#include "Compress.h"
#include "Desk.h"

#include "Commands.h"
#include "cli/Program.h"

#include <gmock/gmock.h>

using namespace desktop;
using namespace VARNO;

namespace {

/// A file that no reader takes.
struct BadFile {
    const char *name;
    std::string bytes;
};

const std::string atom = "ATOM      1  CA  ALA A   1      10.000   2.000   3.000  1.00 11.00           C  \n";

std::string With(std::string bytes, std::size_t at, const std::string &other) {
    return bytes.replace(at, other.size(), other);
}

/// The example's map with another header word, counted from 1.
std::string MapWith(std::size_t word, const std::string &bytes) {
    static const std::string map = ReadFile(SourceFolder() + "/examples/1tii_8A.mrc");
    return With(map, 4 * (word - 1), bytes);
}

/// Those of the command's tests: no file format, damaged ones, impossible maps, structures without a model.
std::vector<BadFile> BadFiles() {
    const std::string map = MapWith(53, "MAP "), table = "data_x\nloop_\n_atom_site.id\n_atom_site.Cartn_x\n";
    return {
        {"empty", ""},
        {"text", "some words\nof no format at all\n"},
        {"program", std::string("\x7F"
                                "ELF\2\1\1\0",
                                8)},
        {"header.mrc", map.substr(0, 500)},
        {"cut.mrc", map.substr(0, 5000)},
        {"cut.mrc.gz", Gzip(map).substr(0, 3000)},
        {"damaged.mrc.gz", With(Gzip(map), 2000, std::string(40, 'x'))},
        {"huge.mrc", MapWith(1, std::string("\xff\xff\xff\x7f", 4))},
        {"negative.mrc", MapWith(2, std::string("\xfb\xff\xff\xff", 4))},
        {"mode.mrc", MapWith(4, std::string("\x03\0\0\0", 4))},
        {"start.mrc", With(MapWith(5, std::string("\x40\x42\x0f\0", 4)), 196, std::string(12, '\0'))},
        {"samples.mrc", MapWith(8, std::string("\xff\xff\xff\xff", 4))},
        {"zero-cell.mrc", MapWith(11, std::string(4, '\0'))},
        {"negative-cell.mrc", MapWith(12, std::string("\0\0\x80\xbf", 4))},
        {"endless-cell.mrc", MapWith(13, std::string("\0\0\x80\x7f", 4))},
        {"slanted.mrc", MapWith(15, std::string("\0\0\xc8\x42", 4))},
        {"axes.mrc", MapWith(17, std::string("\x02\0\0\0", 4))},
        {"extended.mrc", MapWith(24, std::string("\xb0\xff\xff\xff", 4))},
        {"no-atom.pdb", "HEADER    HYDROLASE\nEND\n"},
        {"coordinate.pdb", atom + With(atom, 30, "  1x.000")},
        {"number.pdb", With(atom, 22, "A 12")},
        {"b-factor.pdb", With(atom, 60, " 1,000")},
        {"control.pdb", With(atom, 17, "A\tA")},
        {"short.pdb", atom + atom.substr(0, 53)},
        {"cut.pdb.gz", Gzip(atom).substr(0, 40)},
        {"no-model.cif", "data_x\n_cell.length_a 10\n"},
        {"no-column.cif", table + "1 2\n"},
        {"no-values.cif", table + "1 2 3\n"},
        {"control.cif", table + std::string("\0\1", 2)},
    };
}

class ReaderErrors : public Desk {
protected:
    ReaderErrors() { Open({Example("1tii.pdb")}); }

    /// What the command says of a file, without its own name in front.
    static std::string OfTheCommand(const std::string &file) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(cli::RunProgram(batch::AllCommands(), {"info", file}), 1) << file;
        std::string text = testing::internal::GetCapturedStderr();
        const std::string start = "morvanex info: error: ";
        EXPECT_THAT(text, testing::StartsWith(start));
        text.erase(0, start.size());
        text.pop_back();
        return text;
    }

    void ExpectTheSameInADialog(const std::string &file) {
        const BoxAnswer answer(QMessageBox::Ok);
        Open({QString::fromStdString(file)});
        EXPECT_EQ(answer.name, "errorBox") << file;
        EXPECT_EQ(answer.text, OfTheCommand(file));
        EXPECT_THAT(answer.text, testing::HasSubstr(file));
        EXPECT_EQ(window.GetDocument().Tops().size(), 1u) << file;
        EXPECT_EQ(Rows()->rowCount(), 1) << file;
        EXPECT_EQ(window.GetDocument().UndoStack().count(), 0) << file;
    }
};

} // namespace

TEST_F(ReaderErrors, AreThoseOfTheCommandInADialogAndChangeNothing) {
    for (const BadFile &bad : BadFiles())
        ExpectTheSameInADialog(folder.Write(bad.name, bad.bytes));
    EXPECT_EQ(Top("1tii")->GetName(), "1tii");
}

TEST_F(ReaderErrors, OfWhatIsNoFileLikewise) {
    ExpectTheSameInADialog(folder.File("absent"));
    ExpectTheSameInADialog(folder.Path() + "/.");
}
