#include "MapObject.h"

#include "base/Memory.h"

#include "formats/files/FileError.h"
#include "formats/files/NodeName.h"
#include "formats/maps/MapVoxels.h"
#include "hosts/common/MapInMap.h"
#include "hosts/common/PlaceInput.h"

#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <thread>

namespace py = pybind11;
using namespace VARNO;

namespace python {

namespace {

using Numbers = std::array<double, 3>;
using Values = py::array_t<float, py::array::c_style>;

py::tuple TupleOf(const Vector<float, 3> &vector) {
    return py::make_tuple(double(vector[0]), double(vector[1]), double(vector[2]));
}

Vector<float, 3> VectorOf(const std::string &name, const Numbers &numbers) {
    for (const double number : numbers)
        if (!std::isfinite(float(number)))
            throw py::value_error(name + " holds a number that is not finite");
    return {float(numbers[0]), float(numbers[1]), float(numbers[2])};
}

/// What a map may be made of: as many voxels along each axis as a file holds, and as many in all as memory
/// does.
void CheckShape(const std::vector<py::ssize_t> &shape) {
    constexpr py::ssize_t maxAlong = 65535;
    if (shape.size() != 3)
        throw py::value_error("values must have 3 dimensions (z, y, x), not " + std::to_string(shape.size()));
    double voxels = 1;
    for (const py::ssize_t along : shape) {
        if (along < 1 || along > maxAlong)
            throw py::value_error("values has " + std::to_string(along) +
                                  " voxels along an axis; a map has 1 to 65535");
        voxels *= double(along);
    }
    if (voxels * sizeof(float) > base::MemoryLimit())
        throw py::value_error("values takes " + base::GiB(voxels * sizeof(float)) +
                              " as a map, more than three quarters of the machine's " +
                              base::GiB(base::MachineMemory()));
}

MapObject MakeMap(const Values &values, const Numbers &voxel, const Numbers &origin,
                  const std::string &name) {
    for (const double length : voxel)
        if (!(float(length) > 0))
            throw py::value_error("voxel must be above 0 Å along each axis");
    const Vector<unsigned, 3> size(unsigned(values.shape(2)), unsigned(values.shape(1)),
                                   unsigned(values.shape(0)));
    MapObject map;
    map.file = name;
    map.grid = std::make_shared<Grid>(name, size, VectorOf("origin", origin), VectorOf("voxel", voxel),
                                      Vector<float, 3>(90, 90, 90));
    std::copy_n(values.data(), values.size(), map.grid->Values().begin());
    if (const auto number = formats::ZeroNotFinite(map.grid->Values()))
        throw py::value_error("values has " + std::to_string(number) + " voxels that are not finite");
    return map;
}

/// The voxels themselves, which live as long as the array or the map does.
py::array ValuesOf(const py::object &self) {
    Grid &grid = *self.cast<const MapObject &>().grid;
    const auto &size = grid.Dimensions();
    constexpr auto step = py::ssize_t(sizeof(float));
    const auto row = step * py::ssize_t(size[0]), section = row * py::ssize_t(size[1]);
    return py::array_t<float>({size[2], size[1], size[0]}, {section, row, step}, grid.Values().data(), self);
}

/// The same map, with what searches at that resolution have in common made once.
MapObject Prepared(const MapObject &map, double resolution, bool ruleOut) {
    MapObject prepared = map;
    prepared.ruleOut = ruleOut;
    prepared.prepared = std::make_shared<placement::PreparedMap>(hosts::ViewOf(*map.grid), resolution, 1);
    return prepared;
}

/// The map, or its mirror image, after a motion, on the lattice of another.
MapObject MovedOnto(const MapObject &moved, const MapObject &map, const std::array<double, 4> &rotation,
                    const Numbers &translation, bool mirrored) {
    const py::gil_scoped_release unlocked;
    const auto &[w, x, y, z] = rotation;
    const auto &[a, b, c] = translation;
    const placement::MapMotion motion{mirrored, {placement::MatrixOf({w, x, y, z}), {a, b, c}}};
    MapObject made;
    made.file = moved.file;
    made.grid =
        hosts::MovedOnto(*map.grid, *moved.grid, motion, std::max(std::thread::hardware_concurrency(), 1u));
    return made;
}

MapObject ReadMapObject(const std::filesystem::path &file) {
    const py::gil_scoped_release unlocked;
    MapObject map;
    map.file = file;
    formats::ByteSource source(map.file);
    map.grid = formats::ReadFreeMap(source, &map.report);
    return map;
}

void WriteMapObject(const std::filesystem::path &file, const MapObject &map, const std::string &title) {
    const py::gil_scoped_release unlocked;
    formats::WriteMap(file, *map.grid, title);
}

} // namespace

void DefineMap(py::module_ &module) {
    py::class_<MapObject>(module, "Map")
        .def(py::init(&MakeMap), py::arg("values"), py::arg("voxel"), py::arg("origin"), py::arg("name"))
        .def_property_readonly("values", &ValuesOf)
        .def_property_readonly("voxel", [](const MapObject &map) { return TupleOf(map.grid->Spacing()); })
        .def_property_readonly("origin", [](const MapObject &map) { return TupleOf(map.grid->Origin()); })
        .def_readonly("name", &MapObject::file)
        .def_property_readonly("title", [](const MapObject &map) { return map.report.title; })
        .def_property_readonly("warnings", [](const MapObject &map) { return map.report.warnings; })
        .def("prepared", &Prepared, py::arg("resolution"), py::arg("rule_out"))
        .def("moved_onto", &MovedOnto, py::arg("map"), py::arg("rotation"), py::arg("translation"),
             py::arg("mirrored"));
    module.def("check_shape", &CheckShape, py::arg("shape"));
    module.def("read_map", &ReadMapObject, py::arg("file"));
    module.def("write_map", &WriteMapObject, py::arg("file"), py::arg("map"), py::arg("title"));
}

} // namespace python
