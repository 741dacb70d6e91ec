#pragma once

#include <QtGlobal>

namespace VARNO {

/// Reports a null pointer on the warning channel, in the toolkit's words, and goes on: the toolkit's own
/// check throws, and nothing of this library may throw into its host.
inline void CheckPointer(const void *pointer, const char *file, int line) {
    if (!pointer)
        qWarning("In file %s, line %d: Out of memory", file, line);
}

} // namespace VARNO
