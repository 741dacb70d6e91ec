#pragma once

#include <QtGlobal>

/// Reports a broken invariant on the warning channel and goes on; the toolkit's own macro would end the host.
inline void WarnAssertion(const char *condition, const char *file, int line) {
    qWarning("ASSERT: \"%s\" in %s (%d)", condition, file, line);
}
