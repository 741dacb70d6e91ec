#include "Desk.h"

#include "LongTests.h"

#include "Collect.h"
#include "formats/maps/MapFile.h"
#include "view/SceneView.h"

#include <QElapsedTimer>
#include <QMouseEvent>
#include <QTimer>

#include <cmath>
#include <cstdio>
#include <fstream>

using namespace desktop;
using namespace VARNO;

namespace {

/// How long the event loop has stood still at most, in seconds.
class LongestPause {
public:
    LongestPause() {
        m_clock.start();
        QObject::connect(&m_timer, &QTimer::timeout,
                         [this] { m_longest = std::max(m_longest, double(m_clock.restart()) / 1000); });
        m_timer.start(0);
    }
    double Seconds() const { return m_longest; }

private:
    QTimer m_timer;
    QElapsedTimer m_clock;
    double m_longest = 0;
};

class Large : public Desk {
protected:
    static double Seconds(const QElapsedTimer &clock) { return double(clock.nsecsElapsed()) * 1e-9; }

    /// Opens a file and turns what it holds; prints how long that takes.
    void OpenAndTurn(const char *what, const std::string &file) {
        QElapsedTimer clock;
        clock.start();
        const LongestPause pause;
        Open({QString::fromStdString(file)});
        const double opened = Seconds(clock);
        WaitUntil([this] { return window.View().IsUpToDate(); });
        window.View().Picture();
        const double drawn = Seconds(clock), longest = pause.Seconds();
        clock.restart();
        constexpr int turns = 12;
        QWidget *canvas = window.View().findChild<QWidget *>({}, Qt::FindDirectChildrenOnly);
        QTest::mousePress(canvas, Qt::LeftButton, {}, {100, 100});
        for (int i = 1; i <= turns; ++i) {
            const QPointF to(100 + 10 * i, 100);
            QMouseEvent move(QEvent::MouseMove, to, canvas->mapToGlobal(to), Qt::LeftButton, Qt::LeftButton,
                             {});
            QApplication::sendEvent(canvas, &move);
            canvas->repaint();
        }
        QTest::mouseRelease(canvas, Qt::LeftButton, {}, {100 + 10 * turns, 100});
        std::printf(
            "%s: read after %.2f s, drawn after %.2f s, longest pause %.2f s, %.1f pictures per second\n",
            what, opened, drawn, longest, turns / Seconds(clock));
        EXPECT_LT(longest, 5);
    }

    /// Helices side by side: 100 chains of 300 residues of 5 atoms.
    std::string WriteStructure() {
        const std::string file = folder.File("large.cif");
        std::ofstream out(file);
        out << "data_large\nloop_\n";
        for (const char *tag :
             {"group_PDB", "id", "type_symbol", "label_atom_id", "label_alt_id", "label_comp_id",
              "label_asym_id", "label_entity_id", "label_seq_id", "Cartn_x", "Cartn_y", "Cartn_z",
              "auth_asym_id", "auth_seq_id", "pdbx_PDB_model_num"})
            out << "_atom_site." << tag << '\n';
        const char *names[] = {"N", "CA", "C", "O", "CB"};
        int id = 0;
        for (int chain = 0; chain < 100; ++chain)
            for (int residue = 1; residue <= 300; ++residue)
                for (int atom = 0; atom < 5; ++atom) {
                    const double turn = (residue + atom / 3.0) * 1.745;
                    char line[160];
                    std::snprintf(
                        line, sizeof line, "ATOM %d %c %s . ALA C%d 1 %d %.3f %.3f %.3f C%d %d 1\n", ++id,
                        names[atom][0], names[atom], chain, residue, chain % 10 * 14 + 2.3 * std::cos(turn),
                        chain / 10 * 14 + 2.3 * std::sin(turn), (residue + atom / 5.0) * 1.5, chain, residue);
                    out << line;
                }
        return file;
    }

    /// A ball of a quarter of the side, full of waves, whose surface is as large as that of a large complex.
    std::string WriteMap(unsigned side) {
        Grid grid("large", {side, side, side}, {0, 0, 0}, {1, 1, 1}, {90, 90, 90});
        const float centre = float(side) / 2, radius = float(side) / 4;
        for (unsigned k = 0; k < side; ++k)
            for (unsigned j = 0; j < side; ++j)
                for (unsigned i = 0; i < side; ++i) {
                    const float x = float(i), y = float(j), z = float(k);
                    const bool inside = std::hypot(x - centre, y - centre, z - centre) < radius;
                    grid.SetValue(i, j, k,
                                  inside ? std::sin(0.3f * x) * std::sin(0.3f * y) * std::sin(0.3f * z) : 0);
                }
        const std::string file = folder.File("large.mrc");
        formats::WriteMap(file, grid, "");
        return file;
    }
};

} // namespace

TEST_F(Large, StructureIsOpenedTurnedAndClosed) {
    OpenAndTurn("150,000 atoms", WriteStructure());
    std::vector<Compound *> atoms;
    GetAtoms(Top("large"), atoms, true);
    EXPECT_EQ(atoms.size(), 150'000u);
    QElapsedTimer clock;
    clock.start();
    ClickNode(Top("large"));
    Choose("remove");
    Choose("undo");
    std::printf("selected, removed and put back after %.2f s\n", Seconds(clock));
    EXPECT_TRUE(Top("large")->IsAttached());
}

TEST_F(Large, MapIsOpenedTurnedAndClosed) {
    const unsigned side = RandomCases(150, 400);
    OpenAndTurn((std::to_string(side) + "³ voxels").c_str(), WriteMap(side));
}
