#pragma once

#include "hosts/common/AssemblyRecord.h"
#include "hosts/common/Delivery.h"
#include "hosts/common/FitInput.h"
#include "hosts/common/FitRecord.h"

namespace hosts {

/// Write the report where the options ask for one; see report::WriteReport.
void DeliverReport(const PlaceRecord &record, const PlaceInput &input, DeliveryWriter &writer);
void DeliverReport(const AssemblyRecord &record, const PlaceInput &input, DeliveryWriter &writer);
void DeliverReport(const FitRecord &record, const FitInput &input, DeliveryWriter &writer);

} // namespace hosts
