#include "view/ChainGeometry.h"

#include "document/Nodes.h"

#include "Atom.h"
#include "Group.h"
#include "formats/structures/AtomicNumber.h"

#include <vtkCellArray.h>
#include <vtkFloatArray.h>
#include <vtkNew.h>
#include <vtkPointData.h>
#include <vtkPoints.h>
#include <vtkPolyDataNormals.h>
#include <vtkSimpleBondPerceiver.h>
#include <vtkSplineFilter.h>
#include <vtkTubeFilter.h>

#include <set>

using namespace VARNO;

namespace desktop {

namespace {

/// Farther apart than this, neighbours in the file are none in the chain, Å: CA atoms, and atoms of sugars.
constexpr float maxPeptideStep = 5, maxNucleotideStep = 9;

bool IsWater(const Compound &residue) {
    static const std::set<std::string> names = {"HOH", "WAT", "DOD", "H2O"};
    return names.contains(residue.GetName());
}

/// A residue of a trace.
struct Station {
    const Compound *residue;
    Vertex position;
    float along; ///< from 0 to 1
};

bool AreNeighbours(const Station &a, const Station &b) {
    const float step = a.residue->FindChild("CA") ? maxPeptideStep : maxNucleotideStep;
    return (b.position - a.position).SquaredLength() <= step * step;
}

/// The chain in pieces within which neighbours are neighbours.
std::vector<std::vector<Station>> TracesOf(const Compound &chain) {
    std::vector<std::vector<Station>> traces;
    const std::vector<Compound *> residues = Below(&chain);
    for (std::size_t i = 0; i < residues.size(); ++i) {
        const Vertex at = residues[i]->GetPosition();
        if (!at.IsValid())
            continue;
        const Station station{residues[i], at,
                              residues.size() > 1 ? float(i) / float(residues.size() - 1) : 0};
        if (traces.empty() || !AreNeighbours(traces.back().back(), station))
            traces.emplace_back();
        traces.back().push_back(station);
    }
    return traces;
}

/// Runs of residues that are taken, each with the neighbour on either side half drawn: a line needs two ends.
std::vector<std::vector<Station>> Taken(const std::vector<std::vector<Station>> &traces,
                                        const ResidueFilter &takes) {
    std::vector<std::vector<Station>> taken;
    for (const auto &trace : traces) {
        bool inRun = false;
        for (std::size_t i = 0; i < trace.size(); ++i) {
            const bool takesThis = !takes || takes(*trace[i].residue);
            if (takesThis && !inRun) {
                taken.emplace_back();
                if (i > 0 && takes)
                    taken.back().push_back(trace[i - 1]);
            }
            if (takesThis || (inRun && takes))
                taken.back().push_back(trace[i]);
            inRun = takesThis;
        }
    }
    std::erase_if(taken, [](const auto &trace) { return trace.size() < 2; });
    return taken;
}

vtkSmartPointer<vtkPolyData> LinesOf(const std::vector<std::vector<Station>> &traces) {
    vtkNew<vtkPoints> points;
    vtkNew<vtkCellArray> lines;
    vtkNew<vtkFloatArray> along;
    along->SetName("along");
    for (const auto &trace : traces) {
        lines->InsertNextCell(int(trace.size()));
        for (const Station &station : trace) {
            const Vertex &at = station.position;
            lines->InsertCellPoint(points->InsertNextPoint(double(at[0]), double(at[1]), double(at[2])));
            along->InsertNextValue(station.along);
        }
    }
    auto data = vtkSmartPointer<vtkPolyData>::New();
    data->SetPoints(points);
    data->SetLines(lines);
    data->GetPointData()->SetScalars(along);
    return data;
}

} // namespace

vtkSmartPointer<vtkPolyData> TubeOf(const Compound &chain, double radius, const ResidueFilter &takes,
                                    const TubeDetail &detail) {
    const auto traces = Taken(TracesOf(chain), takes);
    if (traces.empty())
        return vtkSmartPointer<vtkPolyData>::New();
    vtkNew<vtkSplineFilter> spline;
    spline->SetInputData(LinesOf(traces));
    spline->SetSubdivideToLength();
    spline->SetLength(detail.length);
    vtkNew<vtkTubeFilter> tube;
    tube->SetInputConnection(spline->GetOutputPort());
    tube->SetRadius(radius);
    tube->SetNumberOfSides(detail.sides);
    tube->CappingOn();
    tube->Update();
    return tube->GetOutput();
}

vtkSmartPointer<vtkMolecule> AtomsOf(const Compound &chain) {
    vtkNew<vtkMolecule> molecule;
    for (const Compound *residue : Below(&chain)) {
        if (IsWater(*residue))
            continue;
        for (const Compound *atom : Below(residue)) {
            const Vertex at = atom->GetPosition();
            const int number = formats::AtomicNumber(atom->GetLabel());
            molecule->AppendAtom(static_cast<unsigned short>(std::max(number, 0)), double(at[0]),
                                 double(at[1]), double(at[2]));
        }
    }
    if (molecule->GetNumberOfAtoms() == 0)
        return molecule;
    vtkNew<vtkSimpleBondPerceiver> bonds;
    bonds->SetInputData(molecule);
    bonds->Update();
    return bonds->GetOutput();
}

bool HasTube(const Compound &chain) {
    const auto traces = TracesOf(chain);
    return std::ranges::any_of(traces, [](const auto &trace) { return trace.size() > 1; });
}

} // namespace desktop
