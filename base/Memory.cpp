#include "base/Memory.h"

#include "base/Numbers.h"

#include <unistd.h>

namespace base {

double MachineMemory() {
    return double(sysconf(_SC_PHYS_PAGES)) * double(sysconf(_SC_PAGE_SIZE));
}

double MemoryLimit() {
    return 0.75 * MachineMemory();
}

std::string GiB(double bytes) {
    const double number = bytes / 0x1p30;
    const QString text = number < 1e6 ? FixedNumber(number, 0, 1) : GeneralNumber(number);
    return text.toStdString() + " GiB";
}

} // namespace base
