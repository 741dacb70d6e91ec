#pragma once

#include "document/Document.h"

#include <vtkActor.h>
#include <vtkImageSlice.h>
#include <vtkNew.h>
#include <vtkPolyData.h>
#include <vtkRenderer.h>
#include <vtkSmartPointer.h>

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_set>
#include <vector>

namespace desktop {

class Isosurface;

/// The actors of a chain or a map in a renderer, which they leave with this object.
class DrawnNode {
public:
    explicit DrawnNode(vtkRenderer &renderer)
        : m_renderer(renderer) {}
    DrawnNode(const DrawnNode &) = delete;
    DrawnNode &operator=(const DrawnNode &) = delete;
    virtual ~DrawnNode();

    /// Draws with the looks that the document has now.
    virtual void UpdateLook(const Document &document) = 0;
    virtual void UpdateSelection() = 0;
    virtual bool IsUpToDate() const { return true; }
    /// Around what is drawn: least and greatest x, y, z, Å; not set where that is not known yet.
    virtual std::optional<std::array<double, 6>> Box() const = 0;
    /// Draws with less detail or with all of it.
    virtual void SetCoarse(bool coarse) = 0;

protected:
    void Put(vtkProp *prop);
    void Take(vtkProp *prop);

private:
    vtkRenderer &m_renderer;
    std::vector<vtkSmartPointer<vtkProp>> m_props;
};

class DrawnChain : public DrawnNode {
public:
    DrawnChain(vtkRenderer &renderer, const VARNO::Compound &chain, const Document &document);

    void UpdateLook(const Document &document) override;
    void UpdateSelection() override;
    void SetCoarse(bool coarse) override;
    std::optional<std::array<double, 6>> Box() const override;

private:
    void MakeTube(const ChainLook &look);
    void MakeAtoms();

    const VARNO::Compound &m_chain;
    std::optional<ChainLook> m_look;
    std::size_t m_residues = 0; ///< that are drawn
    vtkNew<vtkActor> m_actor, m_mark;
    vtkSmartPointer<vtkPolyData> m_fine,
        m_coarse; ///< tubes; null where atoms are drawn, or until it is needed
    std::unordered_set<const VARNO::Compound *> m_marked; ///< residues whose selection is drawn
};

class DrawnMap : public DrawnNode {
public:
    /// `changed` is called when a surface has been made.
    DrawnMap(vtkRenderer &renderer, const VARNO::Grid &map, const Document &document,
             std::function<void()> changed);
    ~DrawnMap() override;

    void UpdateLook(const Document &document) override;
    void UpdateSelection() override;
    bool IsUpToDate() const override;
    void SetCoarse(bool coarse) override;
    /// The surface's, since a map is often much larger than what lies in it.
    std::optional<std::array<double, 6>> Box() const override;

private:
    void UpdateSlice(const MapLook &look, const formats::MapStatistics &statistics);

    const VARNO::Grid &m_map;
    std::unique_ptr<VARNO::Grid> m_values; ///< shared, for the slice
    std::unique_ptr<Isosurface> m_surface;
    std::optional<double> m_value; ///< of the surface that was asked for
    vtkNew<vtkActor> m_actor, m_frame;
    vtkSmartPointer<vtkImageSlice> m_slice;
};

} // namespace desktop
