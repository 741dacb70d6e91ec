#pragma once

#include <pybind11/pybind11.h>

namespace python {

/// Defines is_viewer_script and write_report.
void DefineReport(pybind11::module_ &module);

} // namespace python
