#include "view/Scene.h"

#include "document/Nodes.h"
#include "view/ChainGeometry.h"
#include "view/DrawnNode.h"

#include <vtkCamera.h>
#include <vtkLineSource.h>
#include <vtkPolyDataMapper.h>
#include <vtkProperty.h>
#include <vtkTextProperty.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

using namespace VARNO;

namespace desktop {

namespace {

using Bounds = std::array<double, 6>;

Bounds BoxOf(const Grid &map) {
    const auto &n = map.Dimensions();
    const Vertex first = map.GetPoint(0, 0, 0), last = map.GetPoint(n[0] - 1, n[1] - 1, n[2] - 1);
    return {double(first[0]), double(last[0]),  double(first[1]),
            double(last[1]),  double(first[2]), double(last[2])};
}

void Widen(std::optional<Bounds> &box, const Bounds &by) {
    if (!box)
        box = by;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        (*box)[2 * axis] = std::min((*box)[2 * axis], by[2 * axis]);
        (*box)[2 * axis + 1] = std::max((*box)[2 * axis + 1], by[2 * axis + 1]);
    }
}

/// What of a chain can be pointed at: residues of a tube, atoms where those are drawn.
Document::Nodes Targets(const Compound &chain, const ChainLook &look) {
    const bool asTube = look.style == ChainLook::Style::Tube && HasTube(chain);
    Document::Nodes targets;
    for (Compound *residue : Below(&chain))
        if (asTube)
            targets.push_back(residue);
        else
            for (Compound *atom : Below(residue))
                targets.push_back(atom);
    return targets;
}

} // namespace

Scene::Scene(Document &document, vtkRenderer &renderer)
    : m_document(document)
    , m_renderer(renderer) {
    connect(&document, &Document::added, this, &Scene::TakeIn);
    connect(&document, &Document::removed, this, &Scene::LetGo);
    connect(&document, &Document::selectionChanged, this, &Scene::UpdateSelection);
    connect(&document, &Document::shownChanged, this, &Scene::TakeIn);
    connect(&document, &Document::lookChanged, this, [this](Compound *drawn) { TakeIn({drawn}); });
    m_distance->GetProperty()->SetColor(1, 0.6, 0);
    m_distance->GetProperty()->SetLineWidth(3);
    PrepareLength();
    TakeIn(document.Tops());
}

Scene::~Scene() = default;

std::optional<Bounds> Scene::BoxOf(const Document::Nodes &nodes) const {
    std::optional<Bounds> box;
    for (Compound *node : nodes)
        for (Compound *drawn : Drawn(node)) {
            const auto made = m_drawn.find(drawn);
            if (made == m_drawn.end())
                continue;
            if (const auto known = made->second->Box())
                Widen(box, *known);
            else if (const auto *map = dynamic_cast<const Grid *>(drawn))
                Widen(box, desktop::BoxOf(*map));
        }
    return box;
}

bool Scene::IsUpToDate() const {
    return std::ranges::all_of(m_drawn, [](const auto &entry) { return entry.second->IsUpToDate(); });
}

Compound *Scene::At(double x, double y, int width, int height, double reach) const {
    vtkMatrix4x4 *project =
        m_renderer.GetActiveCamera()->GetCompositeProjectionTransformMatrix(double(width) / height, -1, 1);
    Compound *nearest = nullptr;
    double least = std::numeric_limits<double>::max();
    for (const auto &[drawn, made] : m_drawn) {
        if (dynamic_cast<Grid *>(drawn))
            continue;
        for (Compound *target : Targets(*drawn, m_document.LookOfChain(drawn))) {
            const Vertex at = target->GetPosition();
            const double point[4] = {double(at[0]), double(at[1]), double(at[2]), 1};
            double seen[4];
            project->MultiplyPoint(point, seen);
            if (!at.IsValid() || seen[3] <= 0)
                continue;
            const double dx = (seen[0] / seen[3] + 1) / 2 * width - x;
            const double dy = (1 - seen[1] / seen[3]) / 2 * height - y;
            if (std::hypot(dx, dy) <= reach && seen[2] / seen[3] < least) {
                least = seen[2] / seen[3];
                nearest = target;
            }
        }
    }
    return nearest;
}

void Scene::SetCoarse(bool coarse) {
    if (std::exchange(m_isCoarse, coarse) != coarse)
        for (const auto &[drawn, made] : m_drawn)
            made->SetCoarse(coarse);
}

void Scene::ShowDistance(const Compound *from, const Compound *to) {
    m_renderer.RemoveViewProp(m_distance);
    m_renderer.RemoveViewProp(m_length);
    if (from && to) {
        const Vertex a = from->GetPosition(), b = to->GetPosition();
        vtkNew<vtkLineSource> line;
        line->SetPoint1(double(a[0]), double(a[1]), double(a[2]));
        line->SetPoint2(double(b[0]), double(b[1]), double(b[2]));
        vtkNew<vtkPolyDataMapper> mapper;
        mapper->SetInputConnection(line->GetOutputPort());
        m_distance->SetMapper(mapper);
        m_renderer.AddViewProp(m_distance);
        ShowLength(a, b);
    }
    emit changed();
}

/// It lies over all that is drawn, at a place in the model, on a ground that lets it be read on any.
void Scene::PrepareLength() {
    m_length->GetPositionCoordinate()->SetCoordinateSystemToWorld();
    vtkTextProperty *text = m_length->GetTextProperty();
    text->SetColor(1, 0.75, 0.3);
    text->SetFontSize(16);
    text->SetJustificationToCentered();
    text->SetVerticalJustificationToCentered();
    text->SetBackgroundColor(0.1, 0.1, 0.1);
    text->SetBackgroundOpacity(0.75);
}

void Scene::ShowLength(const Vertex &a, const Vertex &b) {
    const double length = std::sqrt(double((b - a).SquaredLength()));
    m_length->SetInput(QString(" %1 Å ").arg(length, 0, 'f', 2).toUtf8().constData());
    m_length->GetPositionCoordinate()->SetValue((double(a[0]) + double(b[0])) / 2,
                                                (double(a[1]) + double(b[1])) / 2,
                                                (double(a[2]) + double(b[2])) / 2);
    m_renderer.AddViewProp(m_length);
}

void Scene::ShowGhosts(const std::vector<Ghost> &ghosts) {
    for (vtkActor *ghost : m_ghosts)
        m_renderer.RemoveViewProp(ghost);
    m_ghosts.clear();
    for (const Ghost &ghost : ghosts) {
        vtkNew<vtkMatrix4x4> pose;
        pose->DeepCopy(ghost.matrix.data());
        for (const Compound *chain : ghost.chains)
            AddGhost(*chain, pose);
    }
    emit changed();
}

void Scene::AddGhost(const Compound &chain, vtkMatrix4x4 *pose) {
    vtkNew<vtkPolyDataMapper> mapper;
    constexpr double radius = 1.1; // Å, so that it stands out of a chain in the same place
    mapper->SetInputData(TubeOf(chain, radius));
    mapper->ScalarVisibilityOff();
    auto ghost = vtkSmartPointer<vtkActor>::New();
    ghost->SetMapper(mapper);
    ghost->SetUserMatrix(pose);
    ghost->GetProperty()->SetColor(0.95, 0.55, 0.1);
    m_renderer.AddViewProp(ghost);
    m_ghosts.push_back(ghost);
}

void Scene::TakeIn(const Document::Nodes &nodes) {
    for (Compound *node : nodes)
        for (Compound *drawn : Drawn(node))
            Update(drawn);
    UpdateChains();
    emit changed();
}

void Scene::LetGo(Compound *node) {
    for (Compound *drawn : Drawn(node))
        m_drawn.erase(drawn);
    UpdateChains();
    ShowDistance(nullptr, nullptr);
}

void Scene::UpdateChains() {
    for (const auto &[drawn, made] : m_drawn)
        if (IsDrawnAsChain(drawn))
            made->UpdateLook(m_document);
}

void Scene::Update(Compound *drawn) {
    if (!m_document.IsShown(drawn)) {
        m_drawn.erase(drawn);
        return;
    }
    std::unique_ptr<DrawnNode> &made = m_drawn[drawn];
    if (made)
        made->UpdateLook(m_document);
    else if (const auto *map = dynamic_cast<Grid *>(drawn))
        made = std::make_unique<DrawnMap>(m_renderer, *map, m_document, [this] { emit changed(); });
    else
        made = std::make_unique<DrawnChain>(m_renderer, *drawn, m_document);
}

void Scene::UpdateSelection() {
    for (const auto &[drawn, made] : m_drawn)
        made->UpdateSelection();
    emit changed();
}

} // namespace desktop
