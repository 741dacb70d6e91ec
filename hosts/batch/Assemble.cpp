#include "Assemble.h"

#include "AssemblyReport.h"
#include "PlaceProgress.h"
#include "PlaceReport.h"
#include "cli/Command.h"
#include "cli/Diagnostics.h"
#include "cli/StopSignals.h"
#include "hosts/common/AssemblyOutput.h"

using namespace cli;
using namespace hosts;

namespace batch {

int Assemble(const PlaceOptions &options) {
    const PlaceInput input = ReadPlaceInput(options, Warn);
    CheckAssemblyOutputs(options);
    AssemblyRecord record = MakeAssemblyRecord(options, input);
    if (!options.quiet)
        ReportPlaceInput(options, input);
    StopSignals stopSignals("what has begun");
    {
        PlaceProgress progress(options.quiet);
        FindAssemblyOf(input, record, progress);
        record.seconds = progress.Seconds();
    }
    if (record.result.cancelled)
        Warn("stopped by " + SignalName(StopSignal()) + "; what was placed by then is written");
    stopSignals.EnterStep("the writing of what was found");
    // The files come first: whoever reads standard output may have gone away.
    const auto [written, errors] = WriteAssemblyOutputs(record, input);
    for (const std::string &warning : WarningsOf(record))
        Warn(warning);
    ReportAssembly(record, written);
    for (const std::string &error : errors)
        ReportError(error);
    if (!errors.empty())
        return Failed;
    return record.result.cancelled ? 128 + StopSignal() : int(Succeeded);
}

} // namespace batch
