#pragma once

#include "solutions/Solution.h"

#include <QObject>

class StartFit;

/// What lives from the host's first call to its clean-up: the set-up dialog, shown as soon as it is made. Fit
/// parameters, solutions and the results dialog outlive it.
class Morvanex : public QObject {
public:
    Morvanex();
    Morvanex(const Morvanex &) = delete;
    Morvanex &operator=(const Morvanex &) = delete;
    /// Closes and deletes the dialog. A fit that is running is cancelled and takes the dialog with it when it
    /// has ended.
    ~Morvanex() override;

    /// Shows the dialog again, as the user left it; a minimised one comes back to the size that it had.
    void replay();

private:
    std::list<SolutionScore> m_solutions; ///< of this session alone, and always empty
    StartFit *dialog;
};
