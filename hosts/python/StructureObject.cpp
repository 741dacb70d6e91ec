#include "StructureObject.h"

#include "hosts/common/Chains.h"

#include "Atom.h"
#include "Collect.h"
#include "DataMaker.h"
#include "formats/files/ReplaceFile.h"
#include "formats/structures/FreeClump.h"

#include <pybind11/numpy.h>
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <algorithm>
#include <filesystem>

namespace py = pybind11;
using namespace VARNO;

namespace python {

namespace {

using Identifiers = std::optional<std::vector<std::string>>;

StructureObject Read(formats::ByteSource source) {
    const py::gil_scoped_release unlocked;
    StructureObject structure;
    structure.file = source.Name();
    structure.clump = formats::ReadFreeStructure(source, &structure.report);
    return structure;
}

std::vector<Compound *> AtomsOf(const StructureObject &structure) {
    std::vector<Compound *> atoms;
    GetAtoms(structure.clump.get(), atoms, true);
    return atoms;
}

py::array_t<float> CoordinatesOf(const StructureObject &structure) {
    const std::vector<Compound *> atoms = AtomsOf(structure);
    py::array_t<float> coordinates({py::ssize_t(atoms.size()), py::ssize_t(3)});
    auto to = coordinates.mutable_unchecked<2>();
    for (std::size_t i = 0; i < atoms.size(); ++i)
        for (const unsigned axis : {0u, 1u, 2u})
            to(py::ssize_t(i), axis) = atoms[i]->GetPosition()[axis];
    return coordinates;
}

Transform TransformOf(const std::array<double, 4> &rotation, const std::array<double, 3> &translation) {
    Quaternion quaternion;
    quaternion.Set(rotation[0], rotation[1], rotation[2], rotation[3]);
    return {quaternion, Vertex(float(translation[0]), float(translation[1]), float(translation[2]), false)};
}

void CopyAtom(const Atom &atom, const Transform &pose, Compound *to) {
    const Vertex moved = pose * atom.GetPosition();
    DataMaker::makeAtom(to, atom.GetLabel(), atom.GetName(), atom.GetModelNumber(),
                        Vertex(moved[0], moved[1], moved[2], atom.GetPosition().IsValid()), 1,
                        atom.GetOrbital(), atom.GetCharge(), atom.GetBFactor());
}

void CopyResidue(Compound *node, const Transform &pose, Compound *to) {
    const auto *residue = static_cast<const Residue *>(node);
    Compound *group = DataMaker::makeGroup(to, residue->GetName(), residue->GetSeqId());
    std::vector<Compound *> atoms;
    GetAtoms(node, atoms, true);
    for (const Compound *atom : atoms)
        CopyAtom(*static_cast<const Atom *>(atom), pose, group);
    group->Complete();
}

void CopyChain(Chain *chain, const Transform &pose, Compound *to) {
    Compound *copy = DataMaker::makeChain(to, chain->GetName(), chain->IsPolymer());
    std::vector<Compound *> residues;
    GetResidues(chain, residues, true);
    for (Compound *residue : residues)
        CopyResidue(residue, pose, copy);
}

/// The polymer chains of those identifiers, or without any the whole, moved.
StructureObject Moved(const StructureObject &structure, const std::array<double, 4> &rotation,
                      const std::array<double, 3> &translation, const Identifiers &identifiers) {
    const std::vector<Chain *> chains =
        identifiers ? hosts::ChooseChains(structure.file, structure.clump.get(), identifiers)
                    : hosts::AllChains(structure.clump.get());
    const Transform pose = TransformOf(rotation, translation);
    auto clump = std::make_shared<formats::FreeClump>(structure.clump->GetName());
    Compound *molecule = DataMaker::makeMolecule(clump.get(), clump->GetName());
    for (Chain *chain : chains)
        CopyChain(chain, pose, molecule);
    clump->Complete();
    StructureObject moved{clump, structure.report, structure.file};
    if (identifiers)
        std::erase_if(moved.report.chains, [&](const formats::ChainReport &report) {
            return std::ranges::none_of(
                chains, [&](const Chain *chain) { return hosts::IsNamed(*chain, report.identifier); });
        });
    return moved;
}

std::vector<Compound *> PolymerResidues(const StructureObject &structure) {
    std::vector<Compound *> residues;
    for (Chain *chain : hosts::AllChains(structure.clump.get()))
        if (chain->IsPolymer())
            GetResidues(chain, residues, true);
    return residues;
}

double MeanBFactor(Compound *residue) {
    std::vector<Compound *> atoms;
    GetAtoms(residue, atoms, true);
    double sum = 0;
    for (const Compound *atom : atoms)
        sum += double(static_cast<const Atom *>(atom)->GetBFactor());
    return atoms.empty() ? 0 : sum / double(atoms.size());
}

/// Chain, label and mean B factor of each residue of the polymer chains.
py::list ResidueTable(const StructureObject &structure) {
    py::list table;
    for (Compound *residue : PolymerResidues(structure))
        table.append(
            py::make_tuple(residue->GetParent()->GetName(), residue->GetLabel(), MeanBFactor(residue)));
    return table;
}

/// Those residues of the polymer chains for which `mask` is true.
StructureObject Picked(const StructureObject &structure, const std::vector<bool> &mask) {
    const std::vector<Compound *> residues = PolymerResidues(structure);
    if (mask.size() != residues.size())
        throw py::value_error("mask has " + std::to_string(mask.size()) + " entries for " +
                              std::to_string(residues.size()) + " residues");
    StructureObject picked{nullptr, structure.report, structure.file};
    picked.report.chains.clear();
    auto clump = std::make_shared<formats::FreeClump>(structure.clump->GetName());
    Compound *molecule = DataMaker::makeMolecule(clump.get(), clump->GetName());
    const Compound *chain = nullptr;
    Compound *copy = nullptr;
    for (std::size_t i = 0; i < residues.size(); ++i) {
        if (!mask[i])
            continue;
        if (residues[i]->GetParent() != chain) {
            chain = residues[i]->GetParent();
            copy = DataMaker::makeChain(molecule, chain->GetName(), true);
            picked.report.chains.push_back({chain->GetName(), {}, 0, 0, 0});
        }
        CopyResidue(residues[i], Transform({}, {}), copy);
        ++picked.report.chains.back().residues;
    }
    clump->Complete();
    picked.clump = clump;
    return picked;
}

void Write(const std::filesystem::path &file, const StructureObject &structure) {
    const py::gil_scoped_release unlocked;
    formats::WriteStructure(file, formats::StructureFormatOf(file), structure.clump.get());
}

template <class Field>
auto ChainField(Field formats::ChainReport::*field) {
    return [field](const StructureObject &structure) {
        std::vector<Field> values;
        for (const formats::ChainReport &chain : structure.report.chains)
            values.push_back(chain.*field);
        return py::tuple(py::cast(values));
    };
}

} // namespace

formats::StructureFormat StructureObject::Format() const {
    return report.format == "mmCIF" ? formats::StructureFormat::Mmcif : formats::StructureFormat::Pdb;
}

void DefineStructure(py::module_ &module) {
    py::class_<StructureObject>(module, "Structure")
        .def_readonly("name", &StructureObject::file)
        .def_property_readonly("format",
                               [](const StructureObject &structure) { return structure.report.format; })
        .def_property_readonly("chains", ChainField(&formats::ChainReport::identifier))
        .def_property_readonly("residues", ChainField(&formats::ChainReport::residues))
        .def_property_readonly("coordinates", &CoordinatesOf)
        .def_property_readonly("warnings",
                               [](const StructureObject &structure) { return structure.report.warnings; })
        .def_property_readonly("residue_table", &ResidueTable)
        .def("picked", &Picked, py::arg("mask"))
        .def("moved", &Moved, py::arg("rotation"), py::arg("translation"), py::arg("chains"));
    module.def(
        "read_structure",
        [](const std::filesystem::path &file) { return Read(formats::ByteSource(file.string())); },
        py::arg("file"));
    module.def(
        "parse_structure",
        [](const std::string &content, const std::string &name) {
            return Read(formats::ByteSource(name, content));
        },
        py::arg("content"), py::arg("name"));
    module.def(
        "replace_file",
        [](const std::filesystem::path &file, const std::string &text) {
            formats::ReplaceFile(file, [&](std::ostream &out) { out << text; });
        },
        py::arg("file"), py::arg("text"));
    module.def("write_structure", &Write, py::arg("file"), py::arg("structure"));
}

} // namespace python
