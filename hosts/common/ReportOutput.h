#pragma once

#include "hosts/common/AssemblyRecord.h"
#include "hosts/common/Delivery.h"
#include "hosts/common/FitInput.h"
#include "hosts/common/FitRecord.h"
#include "hosts/common/MapInMap.h"

namespace hosts {

/// Write the report and the viewer's script where the options ask for them; see report::WriteReport and
/// report::WriteViewerScript.
void DeliverReport(const PlaceRecord &record, const PlaceInput &input, DeliveryWriter &writer);
void DeliverReport(const AssemblyRecord &record, const PlaceInput &input, DeliveryWriter &writer);
void DeliverReport(const FitRecord &record, const FitInput &input, DeliveryWriter &writer);
/// `moved` is the second map in its first place, on the lattice of the first; null where it has none.
void DeliverReport(const MapInMapRecord &record, const MapInMapInput &input, const VARNO::Grid *moved,
                   DeliveryWriter &writer);

/// Throws ParameterError where the name of a viewer's script tells no viewer.
void CheckViewerScript(const std::optional<std::string> &file);

} // namespace hosts
