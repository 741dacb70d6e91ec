#include "Assemble.h"

#include "AssemblyReport.h"
#include "Conclusion.h"
#include "PlaceProgress.h"
#include "PlaceReport.h"
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
    const Delivery delivery = WriteAssemblyOutputs(record, input);
    return Conclude(delivery, WarningsOf(record), record.result.cancelled,
                    [&] { ReportAssembly(record, delivery.written); });
}

} // namespace batch
