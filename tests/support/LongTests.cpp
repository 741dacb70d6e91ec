#include "LongTests.h"

#include <cstdlib>

unsigned RandomCases(unsigned sample, unsigned all) {
    return std::getenv("MORVANEX_LONG_TESTS") ? all : sample;
}
