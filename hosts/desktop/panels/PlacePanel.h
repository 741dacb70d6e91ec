#pragma once

#include "place/PlaceSearch.h"

#include <QWidget>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QSpinBox;
class QToolButton;
class QTreeWidget;

namespace desktop {

/// Finds where a model belongs in a map: what is looked for, the running search, the places that it found.
class PlacePanel : public QWidget {
    Q_OBJECT

public:
    explicit PlacePanel(Document &document);

    /// Whether a search runs, whose places would be lost.
    bool IsSearching() const { return m_search.IsRunning(); }

signals:
    /// The chains are to be shown as they lie after the 4 x 4 matrix, rows first; none where no place is
    /// chosen.
    void placeShown(const std::vector<VARNO::Compound *> &chains, const std::array<double, 16> &matrix);

private:
    QWidget *MakeQuestion();
    QWidget *MakeMore();
    QWidget *MakeProgress();
    QWidget *MakeAnswer();
    void UpdateChoices();
    void UpdateButtons();
    void Start();
    void ShowProgress(double share, double secondsLeft);
    void ShowAnswer(const std::shared_ptr<const PlaceAnswer> &answer);
    void ShowPlace();
    void Keep();
    int CurrentPlace() const; ///< -1 where none is chosen

    Document &m_document;
    PlaceSearch m_search;
    std::shared_ptr<const PlaceAnswer> m_answer;
    QComboBox *m_map, *m_model, *m_scope;
    QDoubleSpinBox *m_resolution;
    QToolButton *m_moreButton;
    QWidget *m_more, *m_progressRow;
    QCheckBox *m_invert, *m_leavesOut;
    QDoubleSpinBox *m_minPlddt;
    QPushButton *m_start, *m_cancel, *m_keep;
    QProgressBar *m_progress;
    QLabel *m_timeLeft, *m_verdict;
    QTreeWidget *m_places;
};

} // namespace desktop
