#include "Errors.h"
#include "Fit.h"
#include "MapObject.h"
#include "Place.h"
#include "Report.h"
#include "Simulate.h"
#include "StructureObject.h"

/// What the package `morvanex` is made of; the package itself gives it the shape that people see.
PYBIND11_MODULE(_morvanex, module) {
    module.attr("version") = MORVANEX_VERSION;
    python::TranslateErrors();
    python::DefineMap(module);
    python::DefineStructure(module);
    python::DefineFit(module);
    python::DefinePlace(module);
    python::DefineReport(module);
    python::DefineSimulate(module);
}
