#pragma once

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_CustomSerializer.h"
#include "Libs/Tarnel/Reflection/src/Reflection_TypeDescriptor.h"

// Values that are texts in the data: strings and enumerators. type must be of that kind. These may throw
// std::bad_alloc.
namespace JsonSerialization {

ResultCode ReadNarrow(const Reflection::TypeDescriptor& type, void* object, const ReadSource& source);
ResultCode WriteNarrow(const Reflection::TypeDescriptor& type, const void* object, const WriteTarget& target);

ResultCode ReadWide(const Reflection::TypeDescriptor& type, void* object, const ReadSource& source);
ResultCode WriteWide(const Reflection::TypeDescriptor& type, const void* object, const WriteTarget& target);

ResultCode ReadEnum(const Reflection::TypeDescriptor& type, void* object, const ReadSource& source);

// A value that the type's table lacks is written as "UNKNOWN_ENUM_VALUE", and is a failure all the same.
ResultCode WriteEnum(const Reflection::TypeDescriptor& type, const void* object, const WriteTarget& target);

// Copies the text into the document.
ResultCode SetText(const WriteTarget& target, std::string_view text);

} // namespace JsonSerialization
