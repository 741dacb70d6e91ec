#include "Place.h"

#include "Errors.h"
#include "ObjectSource.h"
#include "Outcome.h"
#include "PlaceArguments.h"
#include "ToolkitMessages.h"
#include "WatchedWork.h"
#include "hosts/common/AssemblyOutput.h"
#include "hosts/common/MapInMap.h"
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

/// How the places of one kind are found, and told.
template <class Input, class Record>
struct Steps {
    void (*find)(const Input &, Record &, placement::Monitor &);
    Delivery (*write)(const Record &, const Input &);
    void (*writeJson)(std::ostream &, const Record &);
};

template <class Input, class Record>
void Search(const Input &input, Record record, const Steps<Input, Record> &steps, Watch &watch,
            Outcome &outcome) {
    Monitor monitor(watch);
    const auto begin = std::chrono::steady_clock::now();
    steps.find(input, record, monitor);
    record.seconds = SecondsSince(begin);
    const Delivery delivery = steps.write(record, input);
    outcome.written = delivery.written;
    outcome.errors = delivery.errors;
    for (const std::string &warning : WarningsOf(record))
        outcome.warnings.push_back(warning);
    std::ostringstream json;
    steps.writeJson(json, record);
    outcome.json = json.str();
}

void SearchForMap(const PlaceOptions &options, ObjectSource &source, const WarningSink &warn, Watch &watch,
                  Outcome &outcome) {
    const MapInMapInput input = ReadMapInMapInput(options, warn, source);
    CheckMapInMapOutputs(options);
    const Steps<MapInMapInput, MapInMapRecord> steps{FindMapOf, WriteMapInMapOutputs, WriteMapInMapJson};
    Search(input, {options, {}, 0}, steps, watch, outcome);
}

void SearchForModels(const PlaceOptions &options, ObjectSource &source, const WarningSink &warn, Watch &watch,
                     Outcome &outcome) {
    PlaceInput input = ReadPlaceInput(options, warn, source);
    if (const MapObject *map = source.Prepared(options.map, input.resolution)) {
        input.prepared = map->prepared.get();
        input.ruleOut = map->ruleOut;
    }
    if (options.parts.empty()) {
        CheckPlaceOutputs(options, input.format);
        const Steps<PlaceInput, PlaceRecord> steps{FindPlacesOf, WritePlaceOutputs, WritePlaceJson};
        Search(input, MakePlaceRecord(options, input), steps, watch, outcome);
    } else {
        CheckAssemblyOutputs(options);
        const Steps<PlaceInput, AssemblyRecord> steps{FindAssemblyOf, WriteAssemblyOutputs,
                                                      WriteAssemblyJson};
        Search(input, MakeAssemblyRecord(options, input), steps, watch, outcome);
    }
}

void Run(const PlaceOptions &options, ObjectSource &source, Watch &watch, Outcome &outcome) {
    const WarningSink warn = [&](const std::string &text) { outcome.warnings.push_back(text); };
    const ToolkitMessages messages(warn);
    const bool isMap = options.parts.empty() && source.IsMap(options.model);
    (isMap ? SearchForMap : SearchForModels)(options, source, warn, watch, outcome);
}

py::dict Place(const OptionTexts &texts, const ObjectSource::Maps &maps,
               const ObjectSource::Structures &structures, const py::object &progress) {
    const PlaceOptions options = ReadOptions([&] { return batch::ReadPlaceOptions(ArgumentsOf(texts)); });
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
