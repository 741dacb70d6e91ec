#include "Commands.h"
#include "cli/Diagnostics.h"
#include "cli/Process.h"
#include "cli/Program.h"

int main(int count, char **words) {
    cli::PrepareProcess();
    cli::CatchToolkitMessages();
    return cli::RunProgram(batch::AllCommands(), {words + 1, words + count});
}
