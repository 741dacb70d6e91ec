#pragma once

#include "Compound.h"

#include <QJsonValue>

#include <functional>

namespace desktop {

/// What names a node of the model in a file, null for one that the file does not hold; and back, null for
/// what names none.
using JsonOfNode = std::function<QJsonValue(const VARNO::Compound *)>;
using NodeOfJson = std::function<VARNO::Compound *(const QJsonValue &)>;

} // namespace desktop
