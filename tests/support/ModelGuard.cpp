#include "ModelGuard.h"

#include "Space.h"

ModelGuard::~ModelGuard() {
    VARNO::Space *space = VARNO::Space::instance();
    space->SetReadOnly(false);
    const std::vector<VARNO::Compound *> parts(space->PartBegin(), space->PartEnd());
    for (VARNO::Compound *part : parts)
        space->Remove(part);
}
