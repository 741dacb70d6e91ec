#pragma once

#include "hosts/common/Delivery.h"

#include <functional>

namespace batch {

/// Tells how a search ended whose files are written: the warnings, what was found by `report`, and the files
/// that could not be written. The files come first, since whoever reads standard output may have gone away.
/// Returns the exit status; `isStopped`: by a signal.
int Conclude(const hosts::Delivery &delivery, const std::vector<std::string> &warnings, bool isStopped,
             const std::function<void()> &report);

} // namespace batch
