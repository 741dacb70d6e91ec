#pragma once

#include "Vertex.h"

#include <memory>
#include <string>
#include <vector>

namespace VARNO {

/// A node of the model tree. A node owns what hangs below it; pointers to nodes stay good for the life of the
/// process, also after the node was removed from the tree, since plug-ins keep them.
///
/// What hangs below a node is a sequence of nodes in model order, in which entries may be null. A `Composite`
/// shows it as its children, any other node as its parts.
class Compound {
public:
    using Iterator = std::vector<Compound *>::const_iterator;

    Compound() = default;
    Compound(const Compound &) = delete;
    Compound &operator=(const Compound &) = delete;
    virtual ~Compound();

    /// The node's text for people: a name, a chain's identifier, "ALA12" for a residue, "C" for an atom.
    virtual std::string GetLabel() const;
    /// One character: a chain's identifier, a residue's one-letter code; blank where there is none.
    virtual char GetCode() const;
    /// The name under which `FindChild` of the parent knows the node.
    virtual std::string GetName() const;
    /// The node's position in Å in the model frame; not valid where it has none.
    virtual Vertex GetPosition() const;
    virtual bool IsSelected() const;
    /// Whether the node or anything below it is selected.
    virtual bool HasSelected() const;
    /// The first child with that `GetName`, or null.
    virtual Compound *FindChild(const std::string &name) const;
    /// A `Composite` node's children; an empty range for any other node.
    virtual Iterator ChildBegin() const;
    virtual Iterator ChildEnd() const;
    /// Whether the node still hangs below the root. False for a node that was removed, or sits below one.
    virtual bool IsAttached() const;
    /// Tells the node that everything below it has been added.
    virtual void Complete();

    Compound *GetParent() const { return m_parent; }
    /// What hangs below a node that is not a `Composite`; an empty range for a `Composite`.
    Iterator PartBegin() const;
    Iterator PartEnd() const;

    /// Selects or deselects this node alone.
    void SetSelected(bool selected) { m_selected = selected; }

protected:
    /// Everything below this node, whatever its kind.
    const std::vector<Compound *> &Below() const { return m_below; }

private:
    friend class DataMaker;
    friend class Space;

    /// Takes the node over as the last one below this one.
    void Adopt(std::unique_ptr<Compound> node);
    /// Takes the node over as the one at that place of the sequence, the last one where it is shorter.
    void AdoptAt(std::size_t place, std::unique_ptr<Compound> node);
    /// Gives the node back to the caller, who then owns it; null when it is not directly below this one.
    std::unique_ptr<Compound> Release(Compound *node);

    virtual bool IsComposite() const { return false; }

    Compound *m_parent = nullptr;
    std::vector<Compound *> m_below;
    bool m_selected = false;
};

/// A node with children: a clump, a molecule, a chain, a residue.
class Composite : public Compound {
public:
    explicit Composite(std::string name)
        : m_name(std::move(name)) {}

    std::string GetLabel() const override { return m_name; }
    std::string GetName() const override { return m_name; }
    Compound *FindChild(const std::string &name) const override;
    Iterator ChildBegin() const override { return Below().begin(); }
    Iterator ChildEnd() const override { return Below().end(); }

private:
    bool IsComposite() const final { return true; }

    std::string m_name;
};

/// A container directly below the root: what one file, or one built solution, holds.
class Clump : public Composite {
public:
    using Composite::Composite;
};

/// A molecule. One that a file holds has chains; one that was built holds its residues directly and then
/// counts as a peptide chain itself, so that it can be the solid or the target of the next fit.
class Molecule : public Composite {
public:
    using Composite::Composite;

    /// The first character of the name for a molecule that holds residues directly, else blank.
    char GetCode() const override;
    bool HoldsResidues() const;
};

/// A chain of a molecule, named by its identifier: several letters in mmCIF, possibly blank in PDB.
class Chain : public Composite {
public:
    Chain(std::string identifier, bool polymer)
        : Composite(std::move(identifier))
        , m_polymer(polymer) {}

    /// The identifier's first character; blank where the identifier is.
    char GetCode() const override;
    /// Whether the residues are joined to a polymer (peptide or nucleic acid); waters and ligands are not.
    bool IsPolymer() const { return m_polymer; }

private:
    bool m_polymer;
};

} // namespace VARNO
