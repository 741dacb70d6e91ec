#pragma once

#include "document/FileReading.h"
#include "document/Looks.h"

#include "Grid.h"
#include "Space.h"

#include <QObject>
#include <QUndoStack>

#include <functional>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace desktop {

/// The model as the application knows it: the tree below the root, which of it is drawn and how, what is
/// selected, which file it came from, and what can be undone. One per process, on the thread of the windows.
///
/// Hears of every change to the model, its own, the plug-ins' and the undone ones, and tells of it once per
/// batch.
class Document : public QObject, private VARNO::Subscriber {
    Q_OBJECT

public:
    using Nodes = std::vector<VARNO::Compound *>;

    Document();
    ~Document() override;

    /// Adds what was read from a file; the error where the model accepts no additions, else empty.
    QString Add(FileContent file);
    /// Makes nodes within one batch that undo takes back as a whole; false where the model accepts none.
    bool Make(const QString &what, const std::function<void()> &make);
    /// Takes nodes out of the model; undo puts them back. What is below another of them goes with it.
    void Remove(const Nodes &nodes);
    QUndoStack &UndoStack() { return m_undo; }
    /// Empties the model for good.
    void Clear();

    /// What hangs below the root, in order.
    Nodes Tops() const;
    bool IsShown(const VARNO::Compound *drawn) const;
    /// Shows or hides everything that is drawn of these nodes.
    void SetShown(const Nodes &nodes, bool shown);

    MapLook LookOf(const VARNO::Grid *map) const;
    void SetLook(VARNO::Grid *map, const MapLook &look);
    /// Minimum, maximum, mean and standard deviation of the map's values.
    formats::MapStatistics StatisticsOf(const VARNO::Grid *map) const;
    ChainLook LookOfChain(const VARNO::Compound *chain) const;
    void SetLookOfChain(VARNO::Compound *chain, const ChainLook &look);

    /// Makes these nodes the whole selection, which the plug-ins see: each of them, and the chains below a
    /// selected file or molecule.
    void Select(const Nodes &nodes);
    /// The nodes as they were selected, in the model still.
    const Nodes &Selection() const { return m_selection; }

    /// The file that a clump or map was read from or saved to last; empty where none holds it as it is.
    std::string FileOf(const VARNO::Compound *top) const;
    void SetSaved(const VARNO::Compound *top, const std::string &file);
    /// Molecules that were built or placed, and are in no file.
    Nodes Unsaved() const;

signals:
    /// Nodes that came into the tree, each with all below it; nothing of them lies below another one.
    void added(const std::vector<VARNO::Compound *> &nodes);
    /// The same, for nodes that come for the first time: no undo has put them back.
    void arrived(const std::vector<VARNO::Compound *> &nodes);
    /// A node has left the tree, with all below it.
    void removed(VARNO::Compound *node);
    void shownChanged(const std::vector<VARNO::Compound *> &drawn);
    void lookChanged(VARNO::Compound *drawn);
    void selectionChanged();

private:
    struct Map {
        MapLook look;
        /// Not set before they are asked for: a plug-in fills its map after it has made it.
        mutable std::optional<formats::MapStatistics> statistics;
    };

    struct File {
        std::string name;
        /// Removals from the molecule since it was as the file holds it; those undone count against them.
        int removals = 0;
    };

    void Notify(const VARNO::DataPointBase &notice) override;
    void TakeIn(const Nodes &nodes);
    void TakeIn(VARNO::Grid *map);
    void LetGo(VARNO::Compound *node);
    void DropFromSelection();
    /// Hears of what is taken out of some files' molecules, and of its return.
    std::function<void(int)> RemovalCount(const Nodes &removed);

    QUndoStack m_undo;
    Nodes m_selection;
    std::vector<VARNO::Compound *> m_flagged; ///< nodes whose mark of selection this object has set
    std::unordered_set<const VARNO::Compound *> m_known; ///< that have been in the tree
    std::unordered_map<const VARNO::Compound *, bool> m_shown;
    std::unordered_map<const VARNO::Compound *, Map> m_maps;
    std::unordered_map<const VARNO::Compound *, ChainLook> m_chains;
    std::unordered_map<const VARNO::Compound *, File> m_files;
    int m_colours = 0; ///< given out so far
};

} // namespace desktop
