#include "Commands.h"

#include "CommonOptions.h"
#include "Conclusion.h"
#include "FitArguments.h"
#include "FitProgress.h"
#include "FitReport.h"
#include "cli/Diagnostics.h"
#include "cli/StopSignals.h"
#include "hosts/common/Chains.h"
#include "hosts/common/FitChecks.h"
#include "hosts/common/FitOutput.h"
#include "hosts/common/ParameterError.h"

using namespace cli;
using namespace hosts;

namespace batch {

namespace {

int FitChain(const Arguments &arguments) {
    FitRecord record;
    record.options = ReadFitOptions(arguments, Warn);
    const FitOptions &options = record.options;
    CheckFitOptions(options);
    const FitInput input = ReadFitInput(options, Warn);
    CheckFitOutputs(options, ModelFiles(options, input.targetFormat));
    const fit::FitParameters parameters = ParametersOf(options, input);
    const fit::Survey survey = CheckFit(options, input, parameters, Warn);
    const std::string outOfReach = WarningOfReach(survey, options, *input.map);
    if (!outOfReach.empty())
        Warn(outOfReach);
    record.chain = input.target->GetName();
    if (!options.quiet)
        ReportInput(options, input, parameters, survey);
    StopSignals stopSignals("the current axis");
    std::list<SolutionScore> solutions;
    const bool finished = [&] {
        FitProgress progress(record, options.quiet);
        return SearchFit(parameters, survey, solutions, progress);
    }();
    if (!finished)
        Warn("stopped by " + SignalName(StopSignal()) + " after " + std::to_string(record.axesDone) + " of " +
             std::to_string(record.axes) + " axes; what was found by then is written");
    stopSignals.EnterStep("the writing of what was found");
    const Delivery delivery = WriteFitOutputs(record, solutions, input);
    return Conclude(delivery, WarningsOf(record, outOfReach), !finished,
                    [&] { ReportSolutions(record, delivery.written); });
}

/// Refusals in the words of the command line.
int Run(const Arguments &arguments) {
    try {
        return FitChain(arguments);
    } catch (const ParameterError &error) {
        throw std::runtime_error(OptionOf(error.Parameter()) + ": " + error.Problem());
    } catch (const FitTooLong &error) {
        throw std::runtime_error(std::string(error.what()) + "; --force runs it.");
    }
}

} // namespace

Command FitCommand() {
    return {
        .name = "fit",
        .summary = "fit a chain of a structure into a density map",
        .description =
            "Searches all rotations of the target chain about its centre, each at every translation of a "
            "cube around its start position, for the poses with the highest sum of density at its residues. "
            "A pose that clashes with the fixed chains is rejected.\n\n"
            "A summary of the input and a table of the ten best poses go to standard output, progress to "
            "standard error: a bar on a terminal, else a line for every tenth of a search of more than two "
            "seconds.\n\n"
            "Ctrl-C, SIGTERM and SIGHUP stop the search at the end of the current axis, and what it has found "
            "is written (exit status 130, 143 and 129). A second signal ends the program at once and leaves no "
            "file but the log.\n\n"
            "Options that are not given come from section Morvanex of the settings file varno/varno.ini in the "
            "user's configuration folder, or are the shipped ones.",
        .options = FitOptionTable(),
        .example = "morvanex fit --map map.mrc --target model.pdb --chain D --models 3",
        .run = Run,
    };
}

} // namespace batch
