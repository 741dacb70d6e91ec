#include "HostTest.h"

#include "TestData.h"

#include "Collect.h"
#include "Config.h"
#include "Space.h"
#include "formats/maps/MapFile.h"
#include "formats/structures/StructureFile.h"

#include <QAbstractButton>
#include <QLabel>
#include <QProgressBar>
#include <QTreeWidget>

using VARNO::Compound;
using VARNO::Space;

namespace {

/// The bar of the fit that is running; null when there is none to be seen.
QProgressBar *ShownBar() {
    return Find<QProgressBar>(FindNamedWindow("Progress"), "progressBar");
}

} // namespace

HostTest::HostTest() {
    VARNO::Config::SetUserFile(folder.File("varno.ini"));
    Configure("");
}

HostTest::~HostTest() {
    plugin.Cleanup();
    // Results that a test has left open outlive the session.
    while (QWidget *results = ResultsDialog())
        results->close();
}

Assembly HostTest::ReadExample() {
    const std::string examples = SourceFolder() + "/examples/";
    Assembly assembly;
    assembly.target = ChainOf(formats::ReadStructure(examples + "1tii_D_displaced.pdb"), "D");
    assembly.map = formats::ReadMap(examples + "1tii_8A.mrc");
    const Compound *rest = formats::ReadStructure(examples + "1tii.pdb");
    for (const char *chain : {"A", "C", "E", "F", "G", "H"})
        assembly.solid.push_back(ChainOf(rest, chain));
    return assembly;
}

Compound *HostTest::ChainOf(const Compound *clump, const std::string &identifier) {
    return (*clump->ChildBegin())->FindChild(identifier);
}

std::vector<Compound *> HostTest::BuiltClumps() {
    std::vector<Compound *> clumps;
    for (auto it = Space::instance()->PartBegin(); it != Space::instance()->PartEnd(); ++it)
        if ((*it)->GetName().starts_with("MVX_"))
            clumps.push_back(*it);
    return clumps;
}

std::vector<Compound *> HostTest::ResiduesOf(Compound *node) {
    std::vector<Compound *> residues;
    VARNO::GetResidues(node, residues, true);
    return residues;
}

int HostTest::CountMaps(const std::string &name) {
    int count = 0;
    for (auto it = Space::instance()->PartBegin(); it != Space::instance()->PartEnd(); ++it)
        count += dynamic_cast<VARNO::Grid *>(*it) && (*it)->GetName() == name;
    return count;
}

void HostTest::Press(QWidget *window, const char *button) {
    Click(Find<QAbstractButton>(window, button));
}

void HostTest::Enter(const char *field, const QString &text) {
    Type(Find<QWidget>(FitDialog(), field), text);
}

std::string HostTest::Shown(QWidget *window, const char *label) {
    const auto *found = Find<QLabel>(window, label);
    return found ? found->text().toStdString() : std::string("no label ") + label;
}

bool HostTest::IsEnabled(QWidget *window, const char *control) {
    const auto *found = Find<QWidget>(window, control);
    return found && found->isEnabled();
}

void HostTest::Choose(const char *button, const std::vector<Compound *> &nodes) {
    Select({});
    for (Compound *node : nodes)
        node->SetSelected(true);
    Press(FitDialog(), button);
}

void HostTest::Choose(const Assembly &assembly) {
    Choose("moleculeButton", {assembly.target});
    Choose("densButton", {assembly.map});
    Choose("surfmolButton", assembly.solid);
}

void HostTest::EnterQuickSearch() {
    Enter("recursionSpinBox", "1");
    Enter("rotstepComboBox", "30");
    Enter("transstepComboBox", "4");
    Enter("transstepsComboBox", "3");
    Enter("keepComboBox", "20");
}

bool HostTest::Apply() {
    Press(FitDialog(), "applyButton");
    return ResultsDialog() != nullptr;
}

void HostTest::LeaveResults() {
    Press(ResultsDialog(), "doneButton");
    Settle();
}

std::vector<Row> HostTest::Rows() {
    const auto *list = Find<QTreeWidget>(ResultsDialog(), "solutionsListView");
    std::vector<Row> rows;
    for (int i = 0; list && i < list->topLevelItemCount(); ++i)
        rows.push_back(
            {list->topLevelItem(i)->text(0).toStdString(), list->topLevelItem(i)->text(1).toStdString()});
    return rows;
}

void HostTest::Forget() {
    const bool shown = ResultsDialog();
    if (!shown)
        Press(FitDialog(), "loadButton");
    Answer("loadButton", QString());
    if (!shown)
        LeaveResults();
}

void HostTest::Answer(const char *button, const QString &path) {
    const FileDialogAnswer answer(path);
    Press(ResultsDialog(), button);
    EXPECT_TRUE(answer.asked);
}

std::vector<std::string> HostTest::Warnings() const {
    std::vector<std::string> warnings = messages.Warnings();
    std::erase_if(warnings, [](const std::string &text) { return text.starts_with("This plugin does not"); });
    return warnings;
}

ProgressWatch::ProgressWatch()
    : m_meanwhile([this] {
        const QProgressBar *bar = ShownBar();
        if (!bar)
            return false;
        const Sight sight{bar->value(), bar->maximum(),
                          Find<QLabel>(bar->window(), "etaLabel")->text().toStdString()};
        if (sights.empty() || sights.back().value != sight.value || sights.back().estimate != sight.estimate)
            sights.push_back(sight);
        return false;
    }) {}

DuringAFit::DuringAFit(std::function<void()> action, int value)
    : m_meanwhile([action = std::move(action), value] {
        const QProgressBar *bar = ShownBar();
        if (!bar || bar->value() < value)
            return false;
        action();
        return true;
    }) {}
