#pragma once

#include <forward_list>
#include <string_view>
#include <variant>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"
#include "Libs/Tarnel/String/src/String_Global.h"

namespace JsonSerialization {
struct ReadSource;  // the JSON value at hand and its context; defined by the serializer
struct WriteTarget; // the JSON value to fill and its context
} // namespace JsonSerialization

namespace Reflection {

// Replace the serializer's own way with a type or a field. Must not throw.
using DeserializeFunction = ResultCode (*)(void* object, const JsonSerialization::ReadSource& source);
using SerializeFunction = ResultCode (*)(const void* object, const JsonSerialization::WriteTarget& target);

// A remark on a field or a type, told from others by the identity of its registered name.
struct Attribute {
    String::GlobalID type;
    std::variant<std::monostate, String::Global, SerializeFunction, DeserializeFunction> value;
};
using AttributeList = std::forward_list<Attribute>;

// The attribute of that identity, or null.
const Attribute* FindAttribute(const AttributeList& attributes, String::GlobalID type);

namespace AttributeName {
inline constexpr char Optional[] = "OptionalAttribute";
inline constexpr char Serialization[] = "SerializationAttribute";
inline constexpr char Deserialization[] = "DeserializationAttribute";
inline constexpr char Ignore[] = "IgnoreAttribute";
inline constexpr char NoWrite[] = "NoWriteAttribute";
inline constexpr char NoRead[] = "NoReadAttribute";
inline constexpr char Name[] = "NameAttribtue"; // the registered name, misspelling included
} // namespace AttributeName

// The attributes as declarations write them.
Attribute OptionalAttribute();               // the field may be absent from the data and then keeps its value
Attribute IgnoreAttribute();                 // neither read nor written
Attribute NoWriteAttribute();                // read alone
Attribute NoReadAttribute();                 // written alone
Attribute NameAttribute(const char* inData); // the field's name in the data, in place of its own
Attribute SerializationAttribute(SerializeFunction function);
Attribute DeserializationAttribute(DeserializeFunction function);

} // namespace Reflection
