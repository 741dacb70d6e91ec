#include "place/PlaceSearch.h"

#include "hosts/common/ParameterError.h"
#include "hosts/common/PlaceChecks.h"
#include "hosts/common/PlaceOutput.h"

#include <QPromise>
#include <QtConcurrentRun>

#include <algorithm>
#include <new>

using namespace VARNO;

namespace desktop {

namespace {

using Answer = std::shared_ptr<PlaceAnswer>;
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
    hosts::PlaceOptions options;
    hosts::PlaceInput input;
    Answer answer = std::make_shared<PlaceAnswer>();
};

std::vector<hosts::PartOptions> PartsOf(const PlaceQuestion &question) {
    std::vector<hosts::PartOptions> parts;
    for (const SoughtModel &model : question.models)
        parts.push_back({model.name, model.copies});
    return parts;
}

/// Throws formats::FileError where no atom is left to be placed.
hosts::PlaceModel ModelOf(const SoughtModel &sought, std::optional<double> minPlddt) {
    hosts::PlaceModel model;
    model.file = sought.name;
    model.chains = sought.chains;
    CollectModelAtoms(model, minPlddt);
    return model;
}

void CollectModels(Task &task, const PlaceQuestion &question) {
    if (!question.IsAssembly()) {
        static_cast<hosts::PlaceModel &>(task.input) =
            ModelOf(question.models.front(), question.options.minPlddt);
        return;
    }
    task.options.parts = PartsOf(question);
    for (const SoughtModel &model : question.models)
        task.input.parts.push_back(ModelOf(model, question.options.minPlddt));
}

std::shared_ptr<Task> MakeTask(const PlaceQuestion &question) {
    auto task = std::make_shared<Task>();
    task->map = question.map->Share();
    task->input.map = task->map.get();
    task->options = question.options;
    task->answer->models = question.models;
    task->answer->isAssembly = question.IsAssembly();
    if (question.options.symmetry)
        task->input.symmetry = question.options.symmetry->request;
    CollectModels(*task, question);
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

void SearchPlaces(Task &task, placement::Monitor &monitor) {
    hosts::PlaceRecord record = MakePlaceRecord(task.options, task.input);
    hosts::FindPlacesOf(task.input, record, monitor);
    Enter(record, *task.answer);
    if (record.IsMirrored())
        task.answer->mirrored = hosts::Mirrored(*task.map, task.map->GetName() + "-mirrored");
}

void SearchAssembly(Task &task, placement::Monitor &monitor) {
    hosts::AssemblyRecord record = MakeAssemblyRecord(task.options, task.input);
    for (std::size_t i = 0; i < record.parts.size(); ++i)
        record.parts[i].name = task.answer->models[i].name; // not a file's name with an extension
    hosts::FindAssemblyOf(task.input, record, monitor);
    Enter(record, *task.answer);
}

void Search(Task &task, placement::Monitor &monitor) {
    if (task.options.invert)
        Negate(task);
    task.input.resolution = hosts::ResolutionOf(task.options, task.input);
    if (task.answer->isAssembly)
        SearchAssembly(task, monitor);
    else
        SearchPlaces(task, monitor);
}

void SearchInThread(QPromise<Answer> &promise, const std::shared_ptr<Task> &task, const Flag &cancelled) {
    PromiseMonitor monitor(promise, cancelled);
    try {
        Search(*task, monitor);
    } catch (const std::bad_alloc &) {
        task->answer->error = "there is not enough memory for this search";
    } catch (const std::exception &error) {
        task->answer->error = error.what();
    }
    promise.addResult(task->answer);
}

} // namespace

void CheckQuestion(const PlaceQuestion &question,
                   const std::function<std::string(const std::string &)> &nameOf) {
    const hosts::PlaceOptions &options = question.options;
    const auto isGiven = [&](const std::string &option) {
        return (option == "near" && options.scope == hosts::PlaceScope::Near) ||
               (option == "refine" && options.scope == hosts::PlaceScope::Refine) ||
               (option == "hands" && options.hands) || (option == "symmetry" && options.symmetry);
    };
    hosts::CheckCombination({isGiven, nameOf},
                            question.IsAssembly() ? hosts::Placed::Assembly : hosts::Placed::OneModel);
    try {
        hosts::CheckParts(PartsOf(question));
    } catch (const hosts::ParameterError &error) {
        throw std::runtime_error(nameOf(error.Parameter()) + ": " + error.Problem());
    }
}

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
    m_watcher.setFuture(QtConcurrent::run(&m_pool, SearchInThread, task, m_cancelled));
}

void PlaceSearch::Cancel() {
    if (m_cancelled)
        *m_cancelled = true;
}

void PlaceSearch::Take() {
    m_isRunning = false;
    emit answered(m_watcher.result());
}

} // namespace desktop
