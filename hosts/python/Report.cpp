#include "Report.h"

#include "MapObject.h"
#include "StructureObject.h"

#include "Collect.h"
#include "hosts/common/Chains.h"
#include "hosts/report/ViewerScript.h"

#include <pybind11/stl.h>

namespace py = pybind11;

namespace python {

namespace {

/// Of a structure by its name in the record the chains of those identifiers, all polymers where none is
/// given.
using Model = std::tuple<std::string, StructureObject, std::optional<std::vector<std::string>>>;

report::ReportedModel ModelOf(const Model &model) {
    const auto &[name, structure, identifiers] = model;
    const std::vector<VARNO::Chain *> chains = hosts::ChooseChains(name, structure.clump.get(), identifiers);
    return {name, {chains.begin(), chains.end()}};
}

std::vector<report::ReportedModel> ModelsOf(const std::vector<Model> &models) {
    std::vector<report::ReportedModel> reported;
    reported.reserve(models.size());
    for (const Model &model : models)
        reported.push_back(ModelOf(model));
    return reported;
}

void WriteReport(const std::string &file, const std::string &record, const MapObject &map,
                 const MapObject *movedMap, const std::vector<Model> &models, const std::vector<Model> &fixed,
                 const std::string &command) {
    const report::Sources sources{.map = map.grid.get(),
                                  .movedMap = movedMap ? movedMap->grid.get() : nullptr,
                                  .models = ModelsOf(models),
                                  .fixed = ModelsOf(fixed),
                                  .command = command};
    const py::gil_scoped_release release;
    if (report::IsViewerScript(file))
        report::WriteViewerScript(file, record, sources);
    else
        report::WriteReport(file, record, sources);
}

} // namespace

void DefineReport(py::module_ &module) {
    module.def("is_viewer_script", &report::IsViewerScript, py::arg("file"));
    module.def("write_report", &WriteReport, py::arg("file"), py::arg("record"), py::arg("map"),
               py::arg("moved_map"), py::arg("models"), py::arg("fixed"), py::arg("command"));
}

} // namespace python
