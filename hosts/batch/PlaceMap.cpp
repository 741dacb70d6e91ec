#include "PlaceMap.h"

#include "Conclusion.h"
#include "PlaceProgress.h"
#include "PlaceReport.h"
#include "Printing.h"
#include "base/Numbers.h"
#include "cli/Diagnostics.h"
#include "cli/StopSignals.h"
#include "hosts/common/MapInMap.h"

#include <iostream>

using namespace cli;
using namespace hosts;

namespace batch {

namespace {

void ReportMap(const std::string &label, const std::string &file, const VARNO::Grid &map) {
    const auto &size = map.Dimensions();
    const auto &voxel = map.Spacing();
    PrintItem(QString::fromStdString(label), Text(file));
    PrintItem("",
              QString("%1 x %2 x %3 voxels of %4 x %5 x %6 Å")
                  .arg(size[0])
                  .arg(size[1])
                  .arg(size[2])
                  .arg(base::FixedNumber(double(voxel[0]), 0, 3), base::FixedNumber(double(voxel[1]), 0, 3),
                       base::FixedNumber(double(voxel[2]), 0, 3)));
}

void ReportInput(const PlaceOptions &options, const MapInMapInput &input) {
    ReportMap("Map", options.map, *input.map);
    ReportMap("Second map", options.model, *input.moved);
    Print("");
    std::cout << std::flush;
}

void ReportResult(const MapInMapRecord &record, const std::vector<std::string> &written) {
    const placement::MapInMapResult &all = record.result;
    if (!record.options.quiet && all.resolution > record.options.resolution)
        PrintItem("Searched", "at " + base::FixedNumber(all.resolution, 0, 1) +
                                  " Å, which is enough for a map of this size");
    PrintItem("Verdict", Text(VerdictText(all.result)));
    if (!all.result.places.empty()) {
        PrintItem("Hand", Text(MapHandText(all)));
        PrintItem("Agreement", Text(CorrelationText(all)));
        Print("");
        PrintPlaces(all.result, false);
    }
    PrintWritten(written);
}

} // namespace

int PlaceMap(const PlaceOptions &options) {
    const MapInMapInput input = ReadMapInMapInput(options, Warn);
    CheckMapInMapOutputs(options);
    MapInMapRecord record{options, {}, 0};
    if (!options.quiet)
        ReportInput(options, input);
    StopSignals stopSignals("what has begun");
    {
        PlaceProgress progress(options.quiet);
        FindMapOf(input, record, progress);
        record.seconds = progress.Seconds();
    }
    if (record.result.result.cancelled)
        Warn("stopped by " + SignalName(StopSignal()) +
             "; what was found by then is written, and the verdict is that of an unfinished search");
    stopSignals.EnterStep("the writing of what was found");
    const Delivery delivery = WriteMapInMapOutputs(record, input);
    return Conclude(delivery, WarningsOf(record), record.result.result.cancelled,
                    [&] { ReportResult(record, delivery.written); });
}

} // namespace batch
