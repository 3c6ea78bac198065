#pragma once

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_CustomSerializer.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Plan.h"

namespace JsonSerialization {

// Fills the value from the object of the plan's type. May throw std::bad_alloc.
ResultCode WriteByPlan(const WritePlan& plan, const void* object, const WriteTarget& target);

} // namespace JsonSerialization
