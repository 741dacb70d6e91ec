#include "app/Saving.h"

#include "document/Nodes.h"

#include "formats/files/FileError.h"
#include "formats/maps/MapFile.h"
#include "formats/structures/StructureFile.h"

#include <QFileDialog>
#include <QMessageBox>

using namespace VARNO;

namespace desktop {

namespace {

bool IsMapAlone(const Document::Nodes &nodes) {
    return nodes.size() == 1 && dynamic_cast<Grid *>(nodes.front());
}

Document::Nodes ChainsOf(const Document::Nodes &nodes) {
    Document::Nodes chains;
    for (Compound *node : nodes)
        for (Compound *drawn : Drawn(node))
            if (IsDrawnAsChain(drawn))
                chains.push_back(drawn);
    return chains;
}

} // namespace

Document::Nodes ToBeSaved(const Document &document) {
    const Document::Nodes &selection = document.Selection();
    if (IsMapAlone(selection))
        return selection;
    const Document::Nodes selected = ChainsOf(selection);
    if (!selected.empty())
        return Uppermost(selected);
    Document::Nodes shown = ChainsOf(document.Tops());
    std::erase_if(shown, [&](const Compound *chain) { return !document.IsShown(chain); });
    return shown;
}

void SaveTo(const std::string &file, const Document::Nodes &nodes, Document &document) {
    if (IsMapAlone(nodes)) {
        formats::WriteMap(file, *static_cast<Grid *>(nodes.front()), nodes.front()->GetName());
        document.SetSaved(nodes.front(), file);
        return;
    }
    const std::vector<const Compound *> chains(nodes.begin(), nodes.end());
    formats::WriteStructure(file, formats::StructureFormatOf(file), chains, Transform({}, {}));
    for (Compound *chain : nodes)
        document.SetSaved(TopOf(chain), file);
}

void SaveAsAsked(QWidget *parent, Document &document) {
    const Document::Nodes nodes = ToBeSaved(document);
    if (nodes.empty()) {
        QMessageBox::information(
            parent, QObject::tr("Nothing to save"),
            QObject::tr("Select a molecule or a map, or show the molecules to be saved."));
        return;
    }
    const bool isMap = IsMapAlone(nodes);
    QFileDialog dialog(parent, isMap ? QObject::tr("Save the map")
                                     : QObject::tr("Save %1").arg(Counted(qsizetype(nodes.size()), "chain")));
    dialog.setObjectName("saveDialog");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setNameFilters(isMap ? QStringList{"MRC (*.mrc)"} : QStringList{"mmCIF (*.cif)", "PDB (*.pdb)"});
    dialog.setDefaultSuffix(isMap ? "mrc" : "cif");
    QObject::connect(&dialog, &QFileDialog::filterSelected, [&](const QString &filter) {
        dialog.setDefaultSuffix(filter.startsWith("PDB") ? "pdb" : "cif");
    });
    dialog.selectFile(NameOf(TopOf(nodes.front())));
    if (dialog.exec() == QDialog::Accepted)
        SaveTo(dialog.selectedFiles().front().toStdString(), nodes, document);
}

} // namespace desktop
