#pragma once

#include "Compound.h"

namespace VARNO {

/// A group of atoms with a sequence identifier.
class Group : public Composite {
public:
    Group(std::string name, std::string sequenceId)
        : Composite(std::move(name))
        , m_sequenceId(std::move(sequenceId)) {}

    /// Name and sequence identifier, "ALA12".
    std::string GetLabel() const override { return GetName() + m_sequenceId; }
    /// The author's residue number with the insertion code appended, "12" or "12A".
    std::string GetSeqId() const { return m_sequenceId; }

private:
    std::string m_sequenceId;
};

} // namespace VARNO
