#pragma once

#include <map>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_CustomSerializer.h"

namespace JsonSerialization {

// Adds the readers and writers of bool, the integers, float and double.
void RegisterNumbers(std::map<String::GlobalID, ValueSerializer>& serializers);

} // namespace JsonSerialization
