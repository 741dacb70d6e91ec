#pragma once

#include "hosts/common/AssemblyRecord.h"

namespace batch {

/// What an assembly says on standard output: how much of it is placed, a table of the copies, what is not
/// placed and why, and the files written, a line each.
void ReportAssembly(const hosts::AssemblyRecord &record, const std::vector<std::string> &written);

} // namespace batch
