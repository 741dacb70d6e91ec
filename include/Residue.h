#pragma once

#include "Group.h"

namespace VARNO {

/// An amino acid, a nucleotide, or any other residue.
class Residue : public Group {
public:
    using Group::Group;

    /// The one-letter code, 'X' where the name is unknown.
    char GetCode() const override;
    /// The position of CA (amino acid), else of C4' or P (nucleotide); not valid without any of them.
    Vertex GetPosition() const override;
};

} // namespace VARNO
