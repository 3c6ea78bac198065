#pragma once

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_CustomSerializer.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Plan.h"

namespace JsonSerialization {

// Fills the object of the plan's type from the value. May throw std::bad_alloc and std::length_error.
ResultCode ReadByPlan(const ReadPlan& plan, void* object, const ReadSource& source);

} // namespace JsonSerialization
