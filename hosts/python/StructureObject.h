#pragma once

#include "Compound.h"
#include "formats/structures/StructureFile.h"

#include <pybind11/pybind11.h>

#include <memory>
#include <string>

namespace python {

/// An atomic model as Python holds it.
struct StructureObject {
    std::shared_ptr<VARNO::Clump> clump;
    formats::StructureReport report;
    std::string file; ///< its name, as it was given to whoever read or made it

    formats::StructureFormat Format() const;
};

/// Defines the class Structure, and read_structure and write_structure.
void DefineStructure(pybind11::module_ &module);

} // namespace python
