#include "Commands.h"

namespace Batch {

const std::vector<Command> &AllCommands() {
    static const std::vector<Command> commands = {FitCommand()};
    return commands;
}

} // namespace Batch
