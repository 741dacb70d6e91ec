#pragma once

#include "Compound.h"

#include <memory>
#include <span>

namespace VARNO {

/// A three-dimensional array of floats over an orthogonal box: a density map, or a keep-out grid.
///
/// Voxel (i, j, k), i < nx, j < ny, k < nz, is the value at origin + (i·sx, j·sy, k·sz) in Å, model frame,
/// and stands at index i + nx·(j + ny·k) of the values (x runs fastest).
class Grid : public Compound {
public:
    /// All values are 0. Throws std::bad_alloc when the values do not fit into memory.
    Grid(std::string name, const Vector<unsigned, 3> &dimensions, const Vector<float, 3> &origin,
         const Vector<float, 3> &spacing, const Vector<float, 3> &angles);

    std::string GetLabel() const override { return m_name; }
    std::string GetName() const override { return m_name; }

    float GetValue(unsigned i, unsigned j, unsigned k) const { return m_values[Index(i, j, k)]; }
    void SetValue(unsigned i, unsigned j, unsigned k, float value) { m_values[Index(i, j, k)] = value; }
    /// origin + float(i)·spacing, in float; not valid.
    Vertex GetPoint(unsigned i, unsigned j, unsigned k) const;

    /// Numbers of voxels nx, ny, nz.
    const Vector<unsigned, 3> &Dimensions() const { return m_dimensions; }
    /// Position of voxel (0, 0, 0), Å.
    const Vector<float, 3> &Origin() const { return m_origin; }
    /// Distance between neighbouring voxels along x, y, z, Å.
    const Vector<float, 3> &Spacing() const { return m_spacing; }
    /// Cell angles, degrees.
    const Vector<float, 3> &Angles() const { return m_angles; }

    /// All values in the order of the index formula.
    std::span<const float> Values() const { return {m_values.get(), m_size}; }
    std::span<float> Values() { return {m_values.get(), m_size}; }

    /// A grid outside of the tree with the same values, not a copy of them: they live as long as any of the
    /// two, so that a thread may read them while this grid leaves the model.
    std::unique_ptr<Grid> Share() const;

private:
    friend class Space;

    /// Without any voxel.
    explicit Grid(std::string name)
        : m_name(std::move(name)) {}

    std::size_t Index(unsigned i, unsigned j, unsigned k) const {
        return i + std::size_t(m_dimensions[0]) * (j + std::size_t(m_dimensions[1]) * k);
    }
    /// Frees the values of a grid that has left the tree for good; it then has no voxels.
    void Discard();

    std::string m_name;
    Vector<unsigned, 3> m_dimensions;
    Vector<float, 3> m_origin, m_spacing, m_angles;
    std::shared_ptr<float[]> m_values;
    std::size_t m_size = 0;
};

} // namespace VARNO
