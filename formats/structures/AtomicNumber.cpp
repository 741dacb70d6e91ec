#include "formats/structures/AtomicNumber.h"

#include <gemmi/elem.hpp>

namespace formats {

int AtomicNumber(const std::string &symbol) {
    return gemmi::Element(symbol).atomic_number();
}

} // namespace formats
