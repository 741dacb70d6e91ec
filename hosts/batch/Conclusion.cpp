#include "Conclusion.h"

#include "cli/Command.h"
#include "cli/Diagnostics.h"
#include "cli/StopSignals.h"

using namespace cli;

namespace batch {

int Conclude(const hosts::Delivery &delivery, const std::vector<std::string> &warnings, bool isStopped,
             const std::function<void()> &report) {
    for (const std::string &warning : warnings)
        Warn(warning);
    report();
    for (const std::string &error : delivery.errors)
        ReportError(error);
    if (!delivery.errors.empty())
        return Failed;
    return isStopped ? 128 + StopSignal() : int(Succeeded);
}

} // namespace batch
