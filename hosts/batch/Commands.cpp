#include "Commands.h"

namespace Batch {

const std::vector<Command> &AllCommands() {
    static const std::vector<Command> commands = {FitCommand(), InfoCommand(), BuildCommand(),
                                                  SimulateCommand()};
    return commands;
}

} // namespace Batch
