#pragma once

#include <pybind11/pybind11.h>

namespace python {

/// Defines fit, as the command has it.
void DefineFit(pybind11::module_ &module);

} // namespace python
