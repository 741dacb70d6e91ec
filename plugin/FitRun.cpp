#include "FitRun.h"

#include "base/Numbers.h"

#include "Parameters.h"
#include "Progress.h"
#include "RunFit.h"
#include "SolutionsList.h"

#include <QApplication>
#include <QLabel>
#include <QPointer>
#include <QProgressBar>

Progress *WhiskyBar;

namespace {

/// Shows a search in a new progress dialog. The host's code that runs while events are processed may delete
/// the dialog; the search then goes on unseen, as it does when the user closes the window by its frame.
class ProgressMonitor : public search::FitMonitor {
public:
    void Started(const fit::Preparation &) override {
        m_dialog = WhiskyBar = new Progress(nullptr, nullptr, false, {});
        m_dialog->show();
        m_dialog->raise();
        QApplication::processEvents();
    }

    bool IsCancelled() override { return m_stopped || (m_dialog && m_dialog->cancelled); }

    void IdentityDone(std::size_t axes) override {
        if (m_dialog) {
            m_dialog->progressBar->setRange(0, int(axes));
            m_dialog->progressBar->setValue(1);
        }
        QApplication::processEvents();
    }

    void AxisDone(std::size_t done, std::size_t, double minutes) override {
        if (m_dialog) {
            m_dialog->progressBar->setValue(int(done));
            m_dialog->etaLabel->setText(QString("%1 min").arg(base::FixedNumber(minutes, 0, 2)));
            m_dialog->update();
        }
        QApplication::processEvents();
    }

    void Cancelled() override {
        if (m_dialog)
            m_dialog->close();
        delete m_dialog;
    }

    void Finished() override {
        if (m_dialog)
            m_dialog->close();
    }

    void LogLost(const QString &reason) override {
        qWarning("%s: %s", qUtf8Printable(em_fname), qUtf8Printable(reason));
    }

    void Stop() { m_stopped = true; }

private:
    QPointer<Progress> m_dialog;
    bool m_stopped = false;
};

/// The monitor of the fit that is running.
ProgressMonitor *running;

} // namespace

bool runfit() {
    if (IsFitting()) {
        qWarning("A fit is running already; no other one starts.");
        return false;
    }
    ProgressMonitor monitor;
    running = &monitor;
    const bool finished = RunFit(monitor, nullptr, {.bytesBeside = bytesOfARow});
    running = nullptr;
    return finished;
}

bool IsFitting() {
    return running;
}

void StopFit() {
    if (running)
        running->Stop();
}
