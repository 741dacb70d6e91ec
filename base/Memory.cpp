#include "base/Memory.h"

#include <unistd.h>

namespace base {

double MachineMemory() {
    return double(sysconf(_SC_PHYS_PAGES)) * double(sysconf(_SC_PAGE_SIZE));
}

double MemoryLimit() {
    return 0.75 * MachineMemory();
}

} // namespace base
