#include "Assemble.h"

#include "AssemblyReport.h"
#include "PlaceProgress.h"
#include "PlaceReport.h"
#include "cli/Command.h"
#include "cli/Diagnostics.h"
#include "cli/StopSignals.h"
#include "formats/files/FileError.h"
#include "hosts/common/AssemblyOutput.h"
#include "hosts/common/MapInMap.h"

using namespace cli;
using namespace hosts;

namespace batch {

namespace {

void RefuseMaps(const std::vector<PartOptions> &parts) {
    for (const PartOptions &part : parts)
        if (IsMapFile(part.file))
            throw formats::FileError(part.file, "", "is a map; copies and several models are of structures");
}

} // namespace

int Assemble(const PlaceOptions &options) {
    RefuseMaps(options.parts);
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
    if (options.assembly && record.result.copies.empty())
        Warn(*options.assembly + " is not written, since nothing is placed");
    ReportAssembly(record, written);
    for (const std::string &error : errors)
        ReportError(error);
    if (!errors.empty())
        return Failed;
    return record.result.cancelled ? 128 + StopSignal() : int(Succeeded);
}

} // namespace batch
