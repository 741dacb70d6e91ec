#pragma once

#include "Compound.h"

namespace formats {

/// A clump that is a root of its own, for a host that holds models as values: nothing of it is announced, and
/// it dies with its owner. Once it is complete, its nodes count as attached, to it.
class FreeClump : public VARNO::Clump {
public:
    using Clump::Clump;

    void Complete() override { m_isComplete = true; }
    bool IsAttached() const override { return m_isComplete; }

private:
    bool m_isComplete = false;
};

} // namespace formats
