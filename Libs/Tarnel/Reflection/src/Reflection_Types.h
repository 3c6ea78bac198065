#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_Memory.h"
#include "Libs/Tarnel/Reflection/src/Reflection_TypeLookup.h"
#include "Libs/Tarnel/String/src/String_Basic.h"

// Descriptors of the built-in types, of the library's own texts, and of standard strings, vectors and maps.
namespace Reflection {

struct NullType {}; // marks the absence of a type

#define REFLECTION_BUILT_IN_TYPE(Type, szType)              \
    template <>                                             \
    struct TypeAccessor<Type> {                             \
        static void Describe(TypeDescriptor& descriptor) {  \
            descriptor.name = String::NeededGlobal(szType); \
            descriptor.size = sizeof(Type);                 \
        }                                                   \
    };

REFLECTION_BUILT_IN_TYPE(int8_t, "int8")
REFLECTION_BUILT_IN_TYPE(int16_t, "int16")
REFLECTION_BUILT_IN_TYPE(int32_t, "int32")
REFLECTION_BUILT_IN_TYPE(int64_t, "int64")
REFLECTION_BUILT_IN_TYPE(uint8_t, "uint8")
REFLECTION_BUILT_IN_TYPE(uint16_t, "uint16")
REFLECTION_BUILT_IN_TYPE(uint32_t, "uint32")
REFLECTION_BUILT_IN_TYPE(uint64_t, "uint64")
REFLECTION_BUILT_IN_TYPE(float, "float")
REFLECTION_BUILT_IN_TYPE(double, "double")
REFLECTION_BUILT_IN_TYPE(bool, "bool")
REFLECTION_BUILT_IN_TYPE(char, "char")
REFLECTION_BUILT_IN_TYPE(char16_t, "char16")
REFLECTION_BUILT_IN_TYPE(char32_t, "char32")
REFLECTION_BUILT_IN_TYPE(NullType, "NullType")
REFLECTION_BUILT_IN_TYPE(String::Global, "String::Global")
REFLECTION_BUILT_IN_TYPE(String::GlobalID, "String::GlobalID")
REFLECTION_BUILT_IN_TYPE(String::HeapAllocator, "String::HeapAllocator")

#undef REFLECTION_BUILT_IN_TYPE

template <>
struct TypeAccessor<String::Encoding> {
    static void Describe(TypeDescriptor& descriptor);
};

// The registered name of one encoding.
const char* EncodingName(String::Encoding encoding);

// Named by the size of what it allocates, in bytes, and by how many it allocates at a time.
template <class T, std::size_t Count>
struct TypeAccessor<Platform::StaticHeapAllocator<T, Count>> {
    static void Describe(TypeDescriptor& descriptor) {
        descriptor.name = String::FormatGlobal("Platform::StaticHeapAllocator<%i, %i>",
                                               static_cast<int>(sizeof(T)), static_cast<int>(Count));
        descriptor.size = sizeof(Platform::StaticHeapAllocator<T, Count>);
    }
};

// All but the name. Texts of other characters stay opaque.
template <class Text, class Char>
void DescribeText(TypeDescriptor& descriptor) {
    static constexpr TextOperations<Char> Operations = {
        [](void* text, std::basic_string_view<Char> value) { *static_cast<Text*>(text) = Text(value); },
        [](const void* text) { return std::basic_string_view<Char>(*static_cast<const Text*>(text)); }};

    descriptor.size = sizeof(Text);
    if constexpr (std::is_same_v<Char, char>) {
        descriptor.kind = TypeKind::NarrowString;
        descriptor.operations.narrow = &Operations;
    } else if constexpr (std::is_same_v<Char, wchar_t>) {
        descriptor.kind = TypeKind::WideString;
        descriptor.operations.wide = &Operations;
    }
}

template <String::Encoding TextEncoding, class Allocator>
struct TypeAccessor<String::BasicT<TextEncoding, Allocator>> {
    static void Describe(TypeDescriptor& descriptor) {
        using Text = String::BasicT<TextEncoding, Allocator>;
        DescribeText<Text, typename Text::Char>(descriptor);
        descriptor.name = String::FormatGlobal("String::BasicT<%s, %s>", EncodingName(TextEncoding),
                                               TypeOf<Allocator>().name.Text());
    }
};

template <class Char>
struct TypeAccessor<std::basic_string<Char>> {
    static void Describe(TypeDescriptor& descriptor) {
        DescribeText<std::basic_string<Char>, Char>(descriptor);
        descriptor.name = String::FormatGlobal("std::basic_string<%s>", TypeOf<Char>().name.Text());
    }
};

template <class T>
struct TypeAccessor<std::vector<T>> {
    using Vector = std::vector<T>;
    static_assert(!std::is_same_v<T, bool>, "its elements have no addresses; use std::vector<uint8_t>");

    static constexpr VectorOperations Operations = {
        [](void* vector, std::size_t count) { static_cast<Vector*>(vector)->resize(count); },
        [](const void* vector) { return static_cast<const Vector*>(vector)->size(); },
        [](const void* vector) -> const void* { return static_cast<const Vector*>(vector)->data(); },
        [](void* vector) -> void* { return static_cast<Vector*>(vector)->data(); }};

    static void Describe(TypeDescriptor& descriptor) {
        descriptor.kind = TypeKind::Vector;
        descriptor.size = sizeof(Vector);
        descriptor.element = &TypeOf<T>();
        descriptor.name = String::FormatGlobal("std::vector<%s>", descriptor.element->name.Text());
        descriptor.operations.vector = &Operations;
    }
};

template <class T>
struct TypeAccessor<std::map<std::string, T>> {
    using Map = std::map<std::string, T>;

    static constexpr MapOperations Operations = {
        [](void* map) { static_cast<Map*>(map)->clear(); },
        [](void* map, std::string_view key) -> void* {
            return &((*static_cast<Map*>(map))[std::string(key)] = T());
        },
        [](const void* map) {
            MapOperations::Entries entries;
            for (const auto& [key, value] : *static_cast<const Map*>(map)) {
                entries.emplace_back(key, &value);
            }
            return entries;
        }};

    static void Describe(TypeDescriptor& descriptor) {
        descriptor.kind = TypeKind::Map;
        descriptor.size = sizeof(Map);
        descriptor.element = &TypeOf<T>();
        descriptor.name = String::FormatGlobal("std::map<%s,%s>", TypeOf<std::string>().name.Text(),
                                               descriptor.element->name.Text());
        descriptor.operations.map = &Operations;
    }
};

} // namespace Reflection
