#pragma once

#include <pybind11/pybind11.h>

namespace python {

/// Defines simulate, as the command has it; needs Map.
void DefineSimulate(pybind11::module_ &module);

} // namespace python
