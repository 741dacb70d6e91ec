#pragma once

#include "document/Document.h"
#include "document/NodeJson.h"
#include "place/PlaceSearch.h"
#include "view/Ghost.h"

#include <QJsonObject>
#include <QWidget>

class QLabel;
class QProgressBar;
class QPushButton;
class QTreeWidget;

namespace desktop {

class PlaceForm;

/// Finds where models belong in a map: what is looked for, the running search, the places that it found.
class PlacePanel : public QWidget {
    Q_OBJECT

public:
    explicit PlacePanel(Document &document);

    /// Whether a search runs, whose places would be lost.
    bool IsSearching() const { return m_search.IsRunning(); }

    /// What is asked for and the list of places, as a session keeps them; and back, as far as the nodes are
    /// there.
    QJsonObject State(const JsonOfNode &jsonOf) const;
    void Restore(const QJsonObject &state, const NodeOfJson &nodeOf);

signals:
    /// There is another list of places.
    void listed();
    /// The chosen places, which are to be shown.
    void placesShown(const std::vector<desktop::Ghost> &ghosts);

private:
    QWidget *MakeProgress();
    QWidget *MakeAnswer();
    void MakeList();
    void Update();
    void Start();
    void ShowProgress(double share, double secondsLeft);
    void ShowAnswer(const std::shared_ptr<PlaceAnswer> &answer);
    void ListPlaces();
    void AddMirroredMap();
    void ShowPlaces();
    void Keep();
    std::vector<const FoundPlace *> ChosenPlaces() const;

    Document &m_document;
    PlaceSearch m_search;
    VARNO::Grid *m_map = nullptr; ///< that was searched last
    std::shared_ptr<PlaceAnswer> m_answer;
    PlaceForm *m_form;
    QWidget *m_progressRow;
    QPushButton *m_start, *m_cancel, *m_keep;
    QProgressBar *m_progress;
    QLabel *m_timeLeft, *m_verdict;
    QTreeWidget *m_places;
};

} // namespace desktop
