#pragma once

namespace base {

/// Memory that the machine has, bytes.
double MachineMemory();

/// The most that one piece of work may take of it, bytes: three quarters. The rest is left to everything
/// else.
double MemoryLimit();

} // namespace base
