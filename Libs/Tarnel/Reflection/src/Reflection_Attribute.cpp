#include "Libs/Tarnel/Reflection/src/Reflection_Attribute.h"

#include <algorithm>

namespace Reflection {

const Attribute* FindAttribute(const AttributeList& attributes, String::GlobalID type) {
    const auto found = std::ranges::find(attributes, type, &Attribute::type);
    return found != attributes.end() ? &*found : nullptr;
}

Attribute OptionalAttribute() {
    return {String::GlobalID(AttributeName::Optional), {}};
}
Attribute IgnoreAttribute() {
    return {String::GlobalID(AttributeName::Ignore), {}};
}
Attribute NoWriteAttribute() {
    return {String::GlobalID(AttributeName::NoWrite), {}};
}
Attribute NoReadAttribute() {
    return {String::GlobalID(AttributeName::NoRead), {}};
}

Attribute NameAttribute(const char* inData) {
    return {String::GlobalID(AttributeName::Name), String::Global(inData)};
}

Attribute SerializationAttribute(SerializeFunction function) {
    return {String::GlobalID(AttributeName::Serialization), function};
}

Attribute DeserializationAttribute(DeserializeFunction function) {
    return {String::GlobalID(AttributeName::Deserialization), function};
}

} // namespace Reflection
