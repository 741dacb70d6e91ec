#pragma once

#include "Compound.h"

namespace VARNO {

class Atom : public Compound {
public:
    struct Attributes {
        std::string element;     ///< "C", "CA" being calcium
        std::string name;        ///< "CA", "C4'"
        std::string modelNumber; ///< number of the file's model, as text
        Vertex position;         ///< Å
        std::string orbital;     ///< empty for an atom read from a file
        float charge = 0;        ///< formal charge, elementary charges
        float bFactor = 0;       ///< Å²
    };

    explicit Atom(Attributes attributes)
        : m_attributes(std::move(attributes)) {}

    /// The element symbol, so that calcium and a carbon called CA stay apart.
    std::string GetLabel() const override { return m_attributes.element; }
    std::string GetName() const override { return m_attributes.name; }
    Vertex GetPosition() const override { return m_attributes.position; }

    std::string GetOrbital() const { return m_attributes.orbital; }
    std::string GetModelNumber() const { return m_attributes.modelNumber; }
    float GetCharge() const { return m_attributes.charge; }
    float GetBFactor() const { return m_attributes.bFactor; }

private:
    Attributes m_attributes;
};

/// A bond between two atoms; it is a part of its first atom.
class Bond : public Compound {
public:
    Bond(Compound *first, Compound *second, char kind)
        : m_first(first)
        , m_second(second)
        , m_kind(kind) {}

    Compound *GetFirst() const { return m_first; }
    Compound *GetSecond() const { return m_second; }
    char GetKind() const { return m_kind; }

private:
    Compound *m_first;
    Compound *m_second;
    char m_kind;
};

} // namespace VARNO
