#include "EngineTest.h"

#include <cstdlib>
#include <iostream>

/// Prints what the engine makes of the random fits of the first seeds; their number is the argument.
int main(int argc, char *argv[]) {
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    std::cout << TextOfFits(argc > 1 ? unsigned(std::atoi(argv[1])) : 0);
}
