#pragma once

namespace cli {

/// Protects the process's files from how it was started; called once, first of all. Opens closed standard
/// streams on the null device: else the next file opened would take their place, and messages would be
/// written into it. Writing beyond a limit of the file's size fails with a reason instead of ending the
/// process.
void PrepareProcess();

} // namespace cli
