#include "Simulate.h"

#include "Errors.h"
#include "ObjectSource.h"
#include "Outcome.h"
#include "SimulateArguments.h"

namespace py = pybind11;
using namespace hosts;

namespace python {

namespace {

MapObject Run(const SimulationOptions &options, ObjectSource &source, const WarningSink &warn) {
    CheckSimulationOutputs(options);
    const SimulationInput input = ReadSimulationInput(options, warn, source);
    MapObject map;
    map.report.title = map.file = SimulationTitle(options);
    map.grid = SimulateMap(input.scatterers, input.box, options.settings);
    if (options.out)
        formats::WriteMap(*options.out, *map.grid, map.report.title);
    if (options.bentModel)
        WriteBentModel(*options.bentModel, input);
    return map;
}

py::tuple Simulate(const OptionTexts &texts, const ObjectSource::Structures &structures) {
    std::vector<std::string> warnings;
    const WarningSink warn = [&](const std::string &warning) { warnings.push_back(warning); };
    const SimulationOptions options =
        ReadOptions([&] { return batch::ReadSimulateOptions(ArgumentsOf(texts), warn); });
    ObjectSource source({}, structures, false);
    MapObject map;
    {
        const py::gil_scoped_release unlocked;
        map = Run(options, source, warn);
    }
    return py::make_tuple(std::move(map), warnings);
}

} // namespace

void DefineSimulate(py::module_ &module) {
    module.def("simulate", &Simulate, py::arg("options"), py::arg("structures"));
}

} // namespace python
