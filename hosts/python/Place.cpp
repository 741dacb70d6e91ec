#include "Place.h"

#include "Errors.h"
#include "ObjectSource.h"
#include "Outcome.h"
#include "PlaceArguments.h"
#include "ToolkitMessages.h"
#include "WatchedWork.h"
#include "hosts/common/PlaceOutput.h"

#include <chrono>
#include <sstream>

namespace py = pybind11;
using namespace hosts;

namespace python {

namespace {

class Monitor : public placement::Monitor {
public:
    explicit Monitor(Watch &watch)
        : m_watch(watch) {}

    void Advance(double share) override { m_watch.share = share; }
    bool IsCancelled() override { return m_watch.mustStop; }

private:
    Watch &m_watch;
};

double SecondsSince(std::chrono::steady_clock::time_point begin) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

void Run(const PlaceOptions &options, ObjectSource &source, Watch &watch, Outcome &outcome) {
    const WarningSink warn = [&](const std::string &text) { outcome.warnings.push_back(text); };
    const ToolkitMessages messages(warn);
    const PlaceInput input = ReadPlaceInput(options, warn, source);
    CheckPlaceOutputs(options, input.format);
    PlaceRecord record = MakePlaceRecord(options, input);
    Monitor monitor(watch);
    const auto begin = std::chrono::steady_clock::now();
    FindPlacesOf(input, record, monitor);
    record.seconds = SecondsSince(begin);
    const Delivery delivery = WritePlaceOutputs(record, input);
    outcome.written = delivery.written;
    outcome.errors = delivery.errors;
    for (const std::string &warning : WarningsOf(record))
        warn(warning);
    std::ostringstream json;
    WritePlaceJson(json, record);
    outcome.json = json.str();
}

py::dict Place(const OptionTexts &texts, const ObjectSource::Maps &maps,
               const ObjectSource::Structures &structures, const py::object &progress) {
    const PlaceOptions options = ReadOptions([&] { return batch::ReadPlaceOptions(ArgumentsOf(texts)); });
    if (!options.parts.empty())
        throw cli::UsageError("--model: from Python one model is placed, and every place of it listed");
    ObjectSource source(maps, structures, options.invert);
    Watch watch;
    Outcome outcome;
    outcome.stopped = RunWatched(watch, progress, [&] { Run(options, source, watch, outcome); });
    return outcome.ToPython();
}

} // namespace

void DefinePlace(py::module_ &module) {
    module.def("place", &Place, py::arg("options"), py::arg("maps"), py::arg("structures"),
               py::arg("progress"));
}

} // namespace python
