#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "Libs/Tarnel/Reflection/src/Reflection_Attribute.h"
#include "Libs/Tarnel/String/src/String_Global.h"

namespace Reflection {

struct TypeDescriptor;

struct FieldDescriptor {
    const TypeDescriptor* type = nullptr;
    String::Global name;
    AttributeList attributes;
    std::size_t offset = 0; // bytes from the start of the owner
    const TypeDescriptor* owner = nullptr;
};

struct EnumeratorDescriptor {
    uint32_t value = 0;
    String::Global name;
};

enum class TypeKind { Opaque, Record, Enumeration, Vector, Map, NarrowString, WideString };

// What a serializer needs of a container whose element type it knows by description alone. These may throw
// std::bad_alloc.
struct VectorOperations {
    void (*resize)(void* vector, std::size_t count);
    std::size_t (*count)(const void* vector);
    // One after the other, in steps of the element type's size.
    const void* (*elements)(const void* vector);
    void* (*mutableElements)(void* vector);
};

// Maps keyed by std::string.
struct MapOperations {
    using Visitor = bool (*)(void* state, std::string_view key, const void* value); // false ends the walk

    void (*clear)(void* map);
    void* (*insertFresh)(void* map, std::string_view key); // a fresh value, also where the key was taken
    bool (*visit)(const void* map, Visitor visitor,
                  void* state); // in the map's order; false when it was ended
};

template <class Char>
struct TextOperations {
    void (*assign)(void* text, std::basic_string_view<Char> value);
    std::basic_string_view<Char> (*view)(const void* text);
};

// One type as the registry knows it. Its address stands for the type for the life of the process; it does not
// change once it is registered. Equal names mean equal types.
struct TypeDescriptor {
    String::Global name;
    const TypeDescriptor* base = nullptr;
    std::size_t baseOffset = 0; // where the base's part lies
    bool isPolymorphic = false;
    std::size_t size = 0;                          // bytes
    std::vector<FieldDescriptor> fields;           // in declaration order, without the base's
    std::vector<EnumeratorDescriptor> enumerators; // of an enumeration
    SerializeFunction serialize = nullptr;         // set by a SerializationAttribute on the type
    DeserializeFunction deserialize = nullptr;

    TypeKind kind = TypeKind::Opaque;
    const TypeDescriptor* element = nullptr; // of a vector; the value type of a map
    union {
        const VectorOperations* vector = nullptr;
        const MapOperations* map;
        const TextOperations<char>* narrow;
        const TextOperations<wchar_t>* wide;
    } operations;

    String::GlobalID Id() const { return name.Id(); }
    bool operator==(const TypeDescriptor& other) const { return Id() == other.Id(); }
};

} // namespace Reflection
