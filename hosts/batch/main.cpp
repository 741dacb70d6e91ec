#include "Commands.h"
#include "Diagnostics.h"
#include "Program.h"

int main(int count, char **words) {
    Batch::CatchToolkitMessages();
    return Batch::RunProgram(Batch::AllCommands(), {words + 1, words + count});
}
