#pragma once

#include "document/Document.h"
#include "hosts/common/PlaceRecord.h"

#include <QElapsedTimer>
#include <QFutureWatcher>
#include <QObject>

#include <array>
#include <atomic>
#include <memory>

namespace desktop {

/// What is looked for and where.
struct PlaceQuestion {
    const VARNO::Grid *map = nullptr;
    std::vector<VARNO::Chain *> chains; ///< that move together
    hosts::PlaceOptions options;        ///< without files
};

/// What came of a search. The chains are nodes of the model, which stay alive when they leave it.
struct PlaceAnswer {
    std::vector<VARNO::Chain *> chains;
    hosts::PlaceRecord record;
    std::string error; ///< why there was no search; else empty
};

/// Finds the places of chains in a map on a thread of its own. Map and chains may leave the model meanwhile:
/// the search has what it needs of them.
class PlaceSearch : public QObject {
    Q_OBJECT

public:
    PlaceSearch();
    /// Stops the search, and waits for that.
    ~PlaceSearch() override;

    void Start(const PlaceQuestion &question);
    /// The search ends soon, and answers with what it has found by then.
    void Cancel();
    bool IsRunning() const { return m_isRunning; }

signals:
    /// How much is done, from 0 to 1, and how many seconds that leaves, as far as it can be told.
    void progressed(double share, double secondsLeft);
    void answered(const std::shared_ptr<const desktop::PlaceAnswer> &answer);

private:
    void Take();

    bool m_isRunning = false;
    std::shared_ptr<std::atomic<bool>> m_cancelled;
    QElapsedTimer m_timer;
    QFutureWatcher<std::shared_ptr<const PlaceAnswer>> m_watcher;
};

/// The pose that brings the chains of a search to a place, as a 4 x 4 matrix, rows first.
std::array<double, 16> MatrixOf(const placement::Place &place);

/// Copies chains into the model at a place, as one clump with one molecule of that name.
void MakePlacedCopy(const std::string &name, const std::vector<VARNO::Chain *> &chains,
                    const placement::Place &place);

/// How sure a place is, in words.
QString ConfidenceInWords(const hosts::PlaceRecord &record, const placement::Place &place);

} // namespace desktop
