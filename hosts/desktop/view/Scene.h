#pragma once

#include "document/Document.h"
#include "view/Ghost.h"

#include <vtkActor.h>
#include <vtkMatrix4x4.h>
#include <vtkNew.h>
#include <vtkRenderer.h>
#include <vtkTextActor.h>

#include <QObject>

#include <array>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace desktop {

class DrawnNode;

/// What of the document is drawn, as VTK's actors in a renderer. Only what is shown has actors.
class Scene : public QObject {
    Q_OBJECT

public:
    Scene(Document &document, vtkRenderer &renderer);
    ~Scene() override;

    /// The box around what is shown of these nodes, of a map around its surface: least and greatest x, y, z,
    /// Å. Not set where nothing is shown.
    std::optional<std::array<double, 6>> BoxOf(const Document::Nodes &nodes) const;
    /// Whether every surface is the one of its map's level.
    bool IsUpToDate() const;

    /// The residue or atom of a shown chain next to a pixel of a picture of that size, counted from its upper
    /// left corner; null where there is none within `reach` pixels. What lies in front wins.
    VARNO::Compound *At(double x, double y, int width, int height, double reach) const;

    /// Draws large things with less detail, so that a moving camera is followed.
    void SetCoarse(bool coarse);

    /// Draws a line between two positions and its length in Å at its middle; none where `from` and `to` are
    /// null.
    void ShowDistance(const VARNO::Compound *from, const VARNO::Compound *to);

    /// Draws chains at other places, in the stead of those drawn so before.
    void ShowGhosts(const std::vector<Ghost> &ghosts);

signals:
    void changed();

private:
    void TakeIn(const Document::Nodes &nodes);
    void LetGo(VARNO::Compound *node);
    /// Makes or removes what is drawn of a node, as the document says.
    void Update(VARNO::Compound *drawn);
    /// Draws those chains anew that have gained or lost residues.
    void UpdateChains();
    void UpdateSelection();
    void PrepareLength();
    void ShowLength(const VARNO::Vertex &a, const VARNO::Vertex &b);
    void AddGhost(const VARNO::Compound &chain, vtkMatrix4x4 *pose);

    Document &m_document;
    vtkRenderer &m_renderer;
    std::unordered_map<VARNO::Compound *, std::unique_ptr<DrawnNode>> m_drawn;
    bool m_isCoarse = false;
    vtkNew<vtkActor> m_distance;
    vtkNew<vtkTextActor> m_length;
    std::vector<vtkSmartPointer<vtkActor>> m_ghosts;
};

} // namespace desktop
