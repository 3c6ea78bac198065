#pragma once

#include <string>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Context.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Attribute.h"
#include "Libs/Tarnel/String/src/String_Global.h"

// The readers and writers of single values: those of the built-in types, and those that other modules add for
// types of their own.
namespace JsonSerialization {

struct ReadSource {
    const JsonValue& value;
    Context& context;
};

struct WriteTarget {
    JsonValue& value; // null until it is filled
    Context& context;
};

struct ValueSerializer {
    Reflection::DeserializeFunction reader = nullptr;
    Reflection::SerializeFunction writer = nullptr;
};

// For all values of that type. Takes effect for types that have not been read or written yet: register at
// start-up. Any thread. Throws std::bad_alloc.
void RegisterValueSerializer(String::GlobalID type, const ValueSerializer& serializer);

// Empty when there is none for that type.
ValueSerializer FindValueSerializer(String::GlobalID type);

// For custom readers: takes strings alone, no null.
ResultCode ReadString(const JsonValue& value, std::string& text);

inline constexpr ResultCode OutOfMemory = "Out of memory";
inline constexpr ResultCode NoAllocator = "No allocator in context";

} // namespace JsonSerialization
