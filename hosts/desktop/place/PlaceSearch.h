#pragma once

#include "place/PlaceAnswer.h"

#include <QElapsedTimer>
#include <QFutureWatcher>
#include <QObject>
#include <QThreadPool>

#include <atomic>
#include <functional>
#include <memory>

namespace desktop {

/// What is looked for and where. Copies, several models, or as many as are found are placed together, as an
/// assembly; of one copy of one model the places are listed.
struct PlaceQuestion {
    VARNO::Grid *map = nullptr;
    std::vector<SoughtModel> models;
    hosts::PlaceOptions options; ///< without files and parts

    bool IsAssembly() const { return models.size() > 1 || models.front().copies != 1; }
};

/// Refuses what cannot be asked for together, as the command does. `nameOf` gives what the user calls an
/// option of the command's: "near", "refine", "hands", "symmetry", "model". Throws std::runtime_error.
void CheckQuestion(const PlaceQuestion &question,
                   const std::function<std::string(const std::string &)> &nameOf);

/// Finds the places of models in a map on a thread of its own. Map and models may leave the model tree
/// meanwhile: the search has what it needs of them.
class PlaceSearch : public QObject {
    Q_OBJECT

public:
    PlaceSearch();
    /// Stops the search, and waits for that.
    ~PlaceSearch() override;

    /// Throws formats::FileError for a model of which no atom is left to be placed.
    void Start(const PlaceQuestion &question);
    /// The search ends soon, and answers with what it has found by then.
    void Cancel();
    bool IsRunning() const { return m_isRunning; }

signals:
    /// How much is done, from 0 to 1, and how many seconds that leaves, as far as it can be told.
    void progressed(double share, double secondsLeft);
    void answered(const std::shared_ptr<desktop::PlaceAnswer> &answer);

private:
    void Take();

    bool m_isRunning = false;
    std::shared_ptr<std::atomic<bool>> m_cancelled;
    QElapsedTimer m_timer;
    /// Its own: the toolkit paints with the shared one's threads, and waits for them.
    QThreadPool m_pool;
    QFutureWatcher<std::shared_ptr<PlaceAnswer>> m_watcher;
};

} // namespace desktop
