#include "place/PlaceSearch.h"

#include "document/Nodes.h"

#include "Atom.h"
#include "DataMaker.h"
#include "Group.h"
#include "placement/Resolution.h"

#include <QPromise>
#include <QtConcurrentRun>

#include <algorithm>
#include <functional>
#include <new>

using namespace VARNO;

namespace desktop {

namespace {

using Answer = std::shared_ptr<const PlaceAnswer>;
using Flag = std::shared_ptr<std::atomic<bool>>;

constexpr int progressSteps = 1000;

class PromiseMonitor : public placement::Monitor {
public:
    PromiseMonitor(QPromise<Answer> &promise, const Flag &cancelled)
        : m_promise(promise)
        , m_cancelled(cancelled) {
        promise.setProgressRange(0, progressSteps);
    }

    void Advance(double share) override { m_promise.setProgressValue(int(share * progressSteps)); }
    bool IsCancelled() override { return *m_cancelled; }

private:
    QPromise<Answer> &m_promise;
    Flag m_cancelled;
};

/// What the thread works on: its own map, which shares the values, and the atoms.
struct Task {
    std::unique_ptr<Grid> map;
    hosts::PlaceInput input;
    std::shared_ptr<PlaceAnswer> answer;
};

std::shared_ptr<Task> MakeTask(const PlaceQuestion &question) {
    auto task = std::make_shared<Task>();
    task->map = question.map->Share();
    task->input.map = task->map.get();
    task->input.chains = question.chains;
    hosts::CollectModelAtoms(task->input, question.options.minPlddt);
    task->answer = std::make_shared<PlaceAnswer>();
    task->answer->chains = question.chains;
    task->answer->record.options = question.options;
    for (const Chain *chain : question.chains)
        task->answer->record.chains.push_back(chain->GetName());
    task->answer->record.residues = task->input.residues;
    return task;
}

void Negate(Task &task) {
    const Grid &map = *task.map;
    auto negative =
        std::make_unique<Grid>(map.GetName(), map.Dimensions(), map.Origin(), map.Spacing(), map.Angles());
    std::ranges::transform(map.Values(), negative->Values().begin(), std::negate());
    task.map = std::move(negative);
    task.input.map = task.map.get();
}

void Search(Task &task, placement::Monitor &monitor) {
    hosts::PlaceRecord &record = task.answer->record;
    hosts::PlaceInput &input = task.input;
    if (record.options.invert)
        Negate(task);
    input.resolution =
        record.options.resolution
            ? *record.options.resolution
            : placement::EstimateResolution(hosts::ViewOf(*input.map), placement::MakePointModel(input.atoms),
                                            unsigned(record.options.threads));
    record.resolution = input.resolution;
    hosts::FindPlacesOf(input, record, monitor);
}

void SearchInThread(QPromise<Answer> &promise, const std::shared_ptr<Task> &task, const Flag &cancelled) {
    PromiseMonitor monitor(promise, cancelled);
    QElapsedTimer timer;
    timer.start();
    try {
        Search(*task, monitor);
    } catch (const std::bad_alloc &) {
        task->answer->error = "there is not enough memory for this search";
    } catch (const std::exception &error) {
        task->answer->error = error.what();
    }
    task->answer->record.seconds = double(timer.nsecsElapsed()) * 1e-9;
    promise.addResult(task->answer);
}

Vertex Moved(const placement::Place &place, const Vertex &at) {
    const placement::Point moved =
        place.pose.rotation * placement::Point{double(at[0]), double(at[1]), double(at[2])} +
        place.translation;
    return Vertex(float(moved.x), float(moved.y), float(moved.z), at.IsValid());
}

void CopyResidue(Compound *to, const Group &residue, const placement::Place &place) {
    Compound *copy = DataMaker::makeGroup(to, residue.GetName(), residue.GetSeqId());
    for (const Compound *node : Below(&residue))
        if (const auto *atom = dynamic_cast<const Atom *>(node))
            DataMaker::makeAtom(copy, atom->GetLabel(), atom->GetName(), atom->GetModelNumber(),
                                Moved(place, atom->GetPosition()), 1, atom->GetOrbital(), atom->GetCharge(),
                                atom->GetBFactor());
    copy->Complete();
}

} // namespace

PlaceSearch::PlaceSearch() {
    connect(&m_watcher, &QFutureWatcherBase::progressValueChanged, this, [this](int value) {
        const double share = double(value) / progressSteps, seconds = double(m_timer.elapsed()) / 1000;
        if (share > 0)
            emit progressed(share, seconds * (1 - share) / share);
    });
    connect(&m_watcher, &QFutureWatcherBase::finished, this, &PlaceSearch::Take);
}

PlaceSearch::~PlaceSearch() {
    m_watcher.disconnect(this);
    Cancel();
    m_watcher.waitForFinished();
}

void PlaceSearch::Start(const PlaceQuestion &question) {
    const std::shared_ptr<Task> task = MakeTask(question);
    m_isRunning = true;
    m_cancelled = std::make_shared<std::atomic<bool>>(false);
    m_timer.start();
    m_watcher.setFuture(QtConcurrent::run(SearchInThread, task, m_cancelled));
}

void PlaceSearch::Cancel() {
    if (m_cancelled)
        *m_cancelled = true;
}

void PlaceSearch::Take() {
    m_isRunning = false;
    emit answered(m_watcher.result());
}

std::array<double, 16> MatrixOf(const placement::Place &place) {
    const placement::Matrix &r = place.pose.rotation;
    const placement::Point &t = place.translation;
    return {r[0], r[1], r[2], t.x, r[3], r[4], r[5], t.y, r[6], r[7], r[8], t.z, 0, 0, 0, 1};
}

void MakePlacedCopy(const std::string &name, const std::vector<Chain *> &chains,
                    const placement::Place &place) {
    Compound *molecule = DataMaker::makeMolecule(DataMaker::makeClump(name), name);
    for (const Chain *chain : chains) {
        Compound *copy = DataMaker::makeChain(molecule, chain->GetName(), chain->IsPolymer());
        for (const Compound *node : Below(chain))
            if (const auto *residue = dynamic_cast<const Group *>(node))
                CopyResidue(copy, *residue, place);
    }
}

QString ConfidenceInWords(const hosts::PlaceRecord &record, const placement::Place &place) {
    using placement::Verdict;
    if (record.result.verdict == Verdict::Refined)
        return PlaceSearch::tr("refined");
    if (record.result.verdict == Verdict::NotJudged)
        return PlaceSearch::tr("not judged");
    if (place.otherTurn)
        return PlaceSearch::tr("another turn of the first");
    if (place.probability >= 0.95)
        return PlaceSearch::tr("sure");
    if (place.probability >= 0.7)
        return PlaceSearch::tr("likely");
    if (place.probability >= 0.3)
        return PlaceSearch::tr("doubtful");
    return PlaceSearch::tr("by chance");
}

} // namespace desktop
