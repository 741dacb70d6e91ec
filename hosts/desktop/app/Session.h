#pragma once

#include "document/Document.h"
#include "panels/PlacePanel.h"
#include "view/SceneView.h"

#include <QJsonObject>

namespace desktop {

/// The state of the application as a file: which files are open, what of them is shown and how, the
/// viewpoint, what Place was asked for and found. Molecules and maps that no file holds are written beside
/// it, into a folder of the file's name with ".files" appended.
///
/// Throws formats::FileError where something cannot be written.
void SaveSession(const std::string &file, const Document &document, const SceneView &view,
                 const PlacePanel &place);

/// A session that was saved, and its files on their way back into the model.
class SavedSession {
public:
    /// Throws formats::FileError for what is no session.
    explicit SavedSession(const std::string &file);

    /// What is to be read, in order.
    QStringList Files() const;
    /// Gives what the file held the state that it was saved with; of files that the session does not know
    /// nothing changes.
    void Apply(VARNO::Compound *top, Document &document);
    /// Once its files are in the model.
    void Apply(PlacePanel &place) const;
    Viewpoint GetViewpoint() const;

private:
    VARNO::Compound *NodeOf(const QJsonValue &name) const;

    QJsonObject m_json;
    std::vector<VARNO::Compound *> m_tops; ///< of the entries; null where the file is not in the model
};

/// Removes a session's file and what was written beside it.
void RemoveSession(const std::string &file);

} // namespace desktop
