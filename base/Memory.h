#pragma once

#include <string>

namespace base {

/// Memory that the machine has, bytes.
double MachineMemory();

/// The most that one piece of work may take of it, bytes: three quarters. The rest is left to everything
/// else on the machine.
double MemoryLimit();

/// A size in a message: "17.5 GiB", from a million GiB on with an exponent.
std::string GiB(double bytes);

} // namespace base
