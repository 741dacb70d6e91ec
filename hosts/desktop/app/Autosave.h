#pragma once

#include "document/Document.h"
#include "panels/PlacePanel.h"
#include "view/SceneView.h"

#include <QObject>
#include <QTimer>

namespace desktop {

/// Saves the session every minute in which something has changed, so that a crash loses no more than that.
/// The file goes when the application ends as it should.
class Autosave : public QObject {
    Q_OBJECT

public:
    Autosave(const Document &document, const SceneView &view, const PlacePanel &place,
             int milliseconds = 60'000);

    void SaveNow();
    /// Nothing is to be restored any more.
    void Finish();

    /// Sessions of applications that have died without ending.
    static QStringList LeftBehind();

private:
    const Document &m_document;
    const SceneView &m_view;
    const PlacePanel &m_place;
    std::string m_file;
    QTimer m_timer;
    bool m_hasChanged = false;
};

} // namespace desktop
