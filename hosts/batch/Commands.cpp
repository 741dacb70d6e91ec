#include "Commands.h"

using namespace cli;

namespace batch {

const std::vector<Command> &AllCommands() {
    static const std::vector<Command> commands = {PlaceCommand(),        FitCommand(),  ScreenCommand(),
                                                  ScreenExportCommand(), InfoCommand(), BuildCommand(),
                                                  SimulateCommand()};
    return commands;
}

} // namespace batch
