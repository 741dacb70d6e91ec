#include "Commands.h"

#include "Assemble.h"
#include "CommonOptions.h"
#include "Conclusion.h"
#include "PlaceArguments.h"
#include "PlaceMap.h"
#include "PlaceProgress.h"
#include "PlaceReport.h"
#include "cli/Diagnostics.h"
#include "cli/StopSignals.h"
#include "hosts/common/ParameterError.h"
#include "hosts/common/PlaceOutput.h"

using namespace cli;
using namespace hosts;

namespace batch {

namespace {

int PlaceAsTold(const Arguments &arguments) {
    const PlaceOptions options = ReadPlaceOptions(arguments);
    if (!options.parts.empty())
        return Assemble(options);
    if (InputFiles().IsMap(options.model))
        return PlaceMap(options);
    const PlaceInput input = ReadPlaceInput(options, Warn);
    CheckPlaceOutputs(options, input.format);
    PlaceRecord record = MakePlaceRecord(options, input);
    if (!record.options.quiet)
        ReportPlaceInput(record.options, input);
    StopSignals stopSignals("what has begun");
    {
        PlaceProgress progress(record.options.quiet);
        FindPlacesOf(input, record, progress);
        record.seconds = progress.Seconds();
    }
    if (record.result.cancelled)
        Warn("stopped by " + SignalName(StopSignal()) +
             "; what was found by then is written, and the verdict is that of an unfinished search");
    stopSignals.EnterStep("the writing of what was found");
    const Delivery delivery = WritePlaceOutputs(record, input);
    return Conclude(delivery, WarningsOf(record), record.result.cancelled,
                    [&] { ReportPlaces(record, input, delivery.written); });
}

/// What is refused is refused in the words of the command line.
int Run(const Arguments &arguments) {
    try {
        return PlaceAsTold(arguments);
    } catch (const ParameterError &error) {
        throw std::runtime_error(OptionOf(error.Parameter()) + ": " + error.Problem());
    }
}

} // namespace

Command PlaceCommand() {
    return {
        .name = "place",
        .summary = "find where a model belongs in a whole density map",
        .description =
            "Searches the whole map for the model, in every turn and without a start, and tells how sure the "
            "best place is: \"placed\" with a probability, or that no place stands out. Either is an answer "
            "(exit status 0).\n\n"
            "Scores are log-likelihood ratios, sums of a filtered map at two points for each residue; the "
            "probability compares the best score with those of the wrong places of the same search.\n\n"
            "Several models, or several copies of one, are placed together as an assembly without clashes: each "
            "copy with its own probability, and parts that cannot be placed are named.\n\n"
            "What was read, a forecast, the verdict and a table of the ten best places go to standard output. "
            "Progress goes to standard error. Ctrl-C, SIGTERM and SIGHUP stop the search, and what it has found is "
            "written (exit status 130, 143 and 129). A second signal ends the program at once.",
        .options = PlaceOptionTable(),
        .example = "morvanex place --map map.mrc --model model.pdb --resolution 8",
        .run = Run,
    };
}

} // namespace batch
