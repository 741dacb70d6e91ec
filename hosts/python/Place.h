#pragma once

#include <pybind11/pybind11.h>

namespace python {

/// Defines place, as the command has it.
void DefinePlace(pybind11::module_ &module);

} // namespace python
