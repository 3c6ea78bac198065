#pragma once

#include <algorithm>
#include <forward_list>
#include <variant>

#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"
#include "Libs/Tarnel/String/src/String_GlobalPalette.h"

namespace JsonSerialization {
struct ReadSource;  // the JSON value to read and its context; defined by the serializer
struct WriteTarget; // the JSON value to fill and its context
} // namespace JsonSerialization

namespace Reflection {

// Replace the serializer's own way of reading or writing a type or a field. Must not throw.
using DeserializeFunction = ResultCode (*)(void* object, const JsonSerialization::ReadSource& source);
using SerializeFunction = ResultCode (*)(const void* object, const JsonSerialization::WriteTarget& target);

// A remark on a field or a type, identified by its registered name.
struct Attribute {
    String::GlobalID type;
    std::variant<std::monostate, String::Global, SerializeFunction, DeserializeFunction> value;
};
using AttributeList = std::forward_list<Attribute>;

// The attribute of that identity, or null.
inline const Attribute* FindAttribute(const AttributeList& attributes, String::GlobalID type) {
    const auto found = std::ranges::find(attributes, type, &Attribute::type);
    return found != attributes.end() ? &*found : nullptr;
}

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

// The field may be absent from the data, and then keeps its value.
inline Attribute OptionalAttribute() {
    return {String::GlobalID::OfText(AttributeName::Optional), {}};
}

// The field is neither read nor written.
inline Attribute IgnoreAttribute() {
    return {String::GlobalID::OfText(AttributeName::Ignore), {}};
}

// The field is read only.
inline Attribute NoWriteAttribute() {
    return {String::GlobalID::OfText(AttributeName::NoWrite), {}};
}

// The field is written only.
inline Attribute NoReadAttribute() {
    return {String::GlobalID::OfText(AttributeName::NoRead), {}};
}

// The field's name in the data, instead of its own.
inline Attribute NameAttribute(const char* inData) {
    return {String::GlobalID::OfText(AttributeName::Name), String::NeededGlobal(inData)};
}

inline Attribute SerializationAttribute(SerializeFunction function) {
    return {String::GlobalID::OfText(AttributeName::Serialization), function};
}

inline Attribute DeserializationAttribute(DeserializeFunction function) {
    return {String::GlobalID::OfText(AttributeName::Deserialization), function};
}

} // namespace Reflection
