#include "Fit.h"

#include "Errors.h"
#include "FitArguments.h"
#include "ObjectSource.h"
#include "Outcome.h"
#include "ToolkitMessages.h"
#include "WatchedWork.h"
#include "hosts/common/FitChecks.h"
#include "hosts/common/FitJson.h"
#include "hosts/common/FitOutput.h"
#include "hosts/common/FitSearch.h"

#include <sstream>

namespace py = pybind11;
using namespace hosts;

namespace python {

namespace {

class Monitor : public FitRecorder {
public:
    Monitor(FitRecord &record, Watch &watch)
        : FitRecorder(record)
        , m_watch(watch) {}

    bool IsCancelled() override { return m_watch.mustStop || !LogError().isEmpty(); }
    void AxisDone(std::size_t done, std::size_t axes, double minutes) override {
        FitRecorder::AxisDone(done, axes, minutes);
        m_watch.share = double(done) / double(axes);
    }

private:
    Watch &m_watch;
};

void Run(const FitOptions &options, ObjectSource &source, Watch &watch, Outcome &outcome) {
    const WarningSink warn = [&](const std::string &text) { outcome.warnings.push_back(text); };
    const ToolkitMessages messages(warn);
    FitRecord record;
    record.options = options;
    CheckFitOptions(options);
    const FitInput input = ReadFitInput(options, warn, source);
    CheckFitOutputs(options, ModelFiles(options, input.targetFormat));
    const fit::FitParameters parameters = ParametersOf(options, input);
    const fit::Survey survey = CheckFit(options, input, parameters, warn);
    record.chain = input.target->GetName();
    Monitor monitor(record, watch);
    std::list<SolutionScore> solutions;
    SearchFit(parameters, survey, solutions, monitor);
    const Delivery delivery = WriteFitOutputs(record, solutions, input);
    outcome.written = delivery.written;
    outcome.errors = delivery.errors;
    for (const std::string &warning : WarningsOf(record, WarningOfReach(survey, options, *input.map)))
        warn(warning);
    std::ostringstream json;
    WriteFitJson(json, record);
    outcome.json = json.str();
}

py::dict Fit(const OptionTexts &texts, const ObjectSource::Maps &maps,
             const ObjectSource::Structures &structures, const py::object &progress) {
    Outcome outcome;
    const FitOptions options = ReadOptions([&] {
        return batch::ReadFitOptions(
            ArgumentsOf(texts), [&](const std::string &warning) { outcome.warnings.push_back(warning); });
    });
    ObjectSource source(maps, structures, false);
    Watch watch;
    outcome.stopped = RunWatched(watch, progress, [&] { Run(options, source, watch, outcome); });
    return outcome.ToPython();
}

} // namespace

void DefineFit(py::module_ &module) {
    module.def("fit", &Fit, py::arg("options"), py::arg("maps"), py::arg("structures"), py::arg("progress"));
}

} // namespace python
