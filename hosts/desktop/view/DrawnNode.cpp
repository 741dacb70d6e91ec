#include "view/DrawnNode.h"

#include "document/Nodes.h"
#include "view/ChainGeometry.h"
#include "view/Isosurface.h"

#include <vtkImageProperty.h>
#include <vtkImageSliceMapper.h>
#include <vtkLookupTable.h>
#include <vtkMoleculeMapper.h>
#include <vtkOutlineSource.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>

#include <algorithm>
#include <cmath>

using namespace VARNO;

namespace desktop {

namespace {

constexpr double tubeRadius = 0.9, markRadius = 1.5; // Å

void SetColour(vtkProperty *property, const QColor &colour) {
    property->SetColor(colour.redF(), colour.greenF(), colour.blueF());
}

/// From blue at the start of a chain to red at its end.
vtkSmartPointer<vtkLookupTable> Rainbow() {
    static const vtkSmartPointer<vtkLookupTable> table = [] {
        auto made = vtkSmartPointer<vtkLookupTable>::New();
        made->SetHueRange(0.667, 0);
        made->SetSaturationRange(0.85, 0.85);
        made->SetTableRange(0, 1);
        made->Build();
        return made;
    }();
    return table;
}

} // namespace

DrawnNode::~DrawnNode() {
    for (vtkProp *prop : m_props)
        m_renderer.RemoveViewProp(prop);
}

void DrawnNode::Put(vtkProp *prop) {
    if (std::ranges::any_of(m_props, [&](vtkProp *one) { return one == prop; }))
        return;
    m_props.emplace_back(prop);
    m_renderer.AddViewProp(prop);
}

void DrawnNode::Take(vtkProp *prop) {
    m_renderer.RemoveViewProp(prop);
    std::erase_if(m_props, [&](vtkProp *one) { return one == prop; });
}

DrawnChain::DrawnChain(vtkRenderer &renderer, const Compound &chain, const Document &document)
    : DrawnNode(renderer)
    , m_chain(chain) {
    m_mark->GetProperty()->SetOpacity(0.4);
    SetColour(m_mark->GetProperty(), QColor(255, 220, 0));
    m_mark->GetProperty()->SetAmbient(0.4);
    Put(m_actor);
    UpdateLook(document);
    UpdateSelection();
}

void DrawnChain::UpdateLook(const Document &document) {
    const ChainLook look = document.LookOfChain(&m_chain);
    const std::size_t residues = Below(&m_chain).size();
    if (m_look == look && m_residues == residues)
        return;
    m_look = look;
    m_residues = residues;
    if (look.style == ChainLook::Style::Tube && HasTube(m_chain))
        MakeTube(look);
    else
        MakeAtoms();
}

void DrawnChain::MakeTube(const ChainLook &look) {
    vtkNew<vtkPolyDataMapper> mapper;
    m_fine = TubeOf(m_chain, tubeRadius);
    m_coarse = nullptr;
    mapper->SetInputData(m_fine);
    mapper->SetScalarVisibility(look.rainbow);
    mapper->SetLookupTable(Rainbow());
    mapper->SetScalarRange(0, 1);
    m_actor->SetMapper(mapper);
    SetColour(m_actor->GetProperty(), look.colour);
    m_actor->GetProperty()->SetSpecular(0.3);
    m_actor->GetProperty()->SetSpecularPower(30);
}

void DrawnChain::MakeAtoms() {
    m_fine = nullptr;
    vtkNew<vtkMoleculeMapper> mapper;
    mapper->SetInputData(AtomsOf(m_chain));
    mapper->UseBallAndStickSettings();
    m_actor->SetMapper(mapper);
}

void DrawnChain::SetCoarse(bool coarse) {
    if (!m_fine)
        return;
    if (coarse && !m_coarse)
        m_coarse = TubeOf(m_chain, tubeRadius, {}, coarseTube);
    static_cast<vtkPolyDataMapper *>(m_actor->GetMapper())->SetInputData(coarse ? m_coarse : m_fine);
    m_mark->SetVisibility(!coarse);
}

std::optional<std::array<double, 6>> DrawnChain::Box() const {
    std::array<double, 6> box{};
    const double *bounds = m_actor->GetBounds();
    std::copy_n(bounds, box.size(), box.begin());
    return box;
}

/// Of a selected chain every residue counts as selected.
void DrawnChain::UpdateSelection() {
    std::unordered_set<const Compound *> marked;
    for (const Compound *residue : Below(&m_chain))
        if (m_chain.IsSelected() || residue->HasSelected())
            marked.insert(residue);
    if (marked == m_marked)
        return;
    m_marked = marked;
    if (marked.empty()) {
        Take(m_mark);
        return;
    }
    vtkNew<vtkPolyDataMapper> mapper;
    mapper->SetInputData(
        TubeOf(m_chain, markRadius, [&](const Compound &residue) { return marked.contains(&residue); }));
    mapper->ScalarVisibilityOff();
    m_mark->SetMapper(mapper);
    Put(m_mark);
}

DrawnMap::DrawnMap(vtkRenderer &renderer, const Grid &map, const Document &document,
                   std::function<void()> changed)
    : DrawnNode(renderer)
    , m_map(map)
    , m_values(map.Share())
    , m_surface(std::make_unique<Isosurface>(map)) {
    m_actor->GetProperty()->SetAmbient(0.2);
    QObject::connect(m_surface.get(), &Isosurface::changed, [this, changed = std::move(changed)] {
        vtkNew<vtkPolyDataMapper> mapper;
        mapper->SetInputData(m_surface->Surface());
        m_actor->SetMapper(mapper);
        Put(m_actor);
        changed();
    });
    UpdateLook(document);
    UpdateSelection();
}

DrawnMap::~DrawnMap() = default;

void DrawnMap::UpdateLook(const Document &document) {
    const MapLook look = document.LookOf(&m_map);
    const formats::MapStatistics statistics = document.StatisticsOf(&m_map);
    SetColour(m_actor->GetProperty(), look.colour);
    SetColour(m_frame->GetProperty(), look.colour);
    m_actor->GetProperty()->SetOpacity(look.opacity);
    m_actor->SetVisibility(look.surface);
    const double value = statistics.mean + look.level * statistics.deviation;
    if (look.surface && m_value != value) {
        m_value = value;
        m_surface->SetLevel(value);
    }
    UpdateSlice(look, statistics);
}

/// From the mean, drawn in black, to four standard deviations above the level, or to where the map ends.
void DrawnMap::UpdateSlice(const MapLook &look, const formats::MapStatistics &statistics) {
    if (m_slice)
        Take(m_slice);
    m_slice = nullptr;
    if (look.sliceAxis < 0)
        return;
    vtkNew<vtkImageSliceMapper> mapper;
    mapper->SetInputData(ImageOf(*m_values));
    mapper->SetOrientation(look.sliceAxis);
    const unsigned voxels = m_values->Dimensions()[std::size_t(look.sliceAxis)];
    mapper->SetSliceNumber(int(std::lround(look.slice * (voxels - 1))));
    m_slice = vtkSmartPointer<vtkImageSlice>::New();
    m_slice->SetMapper(mapper);
    const double low = statistics.mean - statistics.deviation;
    const double high =
        std::min(statistics.mean + (look.level + 4) * statistics.deviation, double(statistics.maximum));
    m_slice->GetProperty()->SetColorWindow(high - low);
    m_slice->GetProperty()->SetColorLevel((high + low) / 2);
    Put(m_slice);
}

/// A selected map stands in its frame.
void DrawnMap::UpdateSelection() {
    if (!m_map.IsSelected()) {
        Take(m_frame);
        return;
    }
    const auto &n = m_map.Dimensions();
    const Vertex first = m_map.GetPoint(0, 0, 0), last = m_map.GetPoint(n[0] - 1, n[1] - 1, n[2] - 1);
    vtkNew<vtkOutlineSource> outline;
    outline->SetBounds(double(first[0]), double(last[0]), double(first[1]), double(last[1]), double(first[2]),
                       double(last[2]));
    vtkNew<vtkPolyDataMapper> mapper;
    mapper->SetInputConnection(outline->GetOutputPort());
    m_frame->SetMapper(mapper);
    Put(m_frame);
}

void DrawnMap::SetCoarse(bool coarse) {
    if (auto *mapper = static_cast<vtkPolyDataMapper *>(m_actor->GetMapper()))
        mapper->SetInputData(coarse ? m_surface->CoarseSurface() : m_surface->Surface());
}

std::optional<std::array<double, 6>> DrawnMap::Box() const {
    if (!m_surface->Surface() || m_surface->Surface()->GetNumberOfPoints() == 0)
        return {};
    std::array<double, 6> box{};
    m_surface->Surface()->GetBounds(box.data());
    return box;
}

bool DrawnMap::IsUpToDate() const {
    return !m_actor->GetVisibility() || m_surface->IsUpToDate();
}

} // namespace desktop
