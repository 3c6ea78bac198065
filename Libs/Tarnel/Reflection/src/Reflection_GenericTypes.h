#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "Libs/Tarnel/Reflection/src/Reflection_TypeLookup.h"

// Descriptors of the built-in types, of standard strings, vectors and maps.

#define REFLECTION_BUILT_IN_TYPE(Type)                    \
    template <>                                           \
    struct Reflection::TypeAccessor<Type> {               \
        static const ::Reflection::TypeDescriptor& Get(); \
    };

REFLECTION_BUILT_IN_TYPE(int8_t)
REFLECTION_BUILT_IN_TYPE(int16_t)
REFLECTION_BUILT_IN_TYPE(int32_t)
REFLECTION_BUILT_IN_TYPE(int64_t)
REFLECTION_BUILT_IN_TYPE(uint8_t)
REFLECTION_BUILT_IN_TYPE(uint16_t)
REFLECTION_BUILT_IN_TYPE(uint32_t)
REFLECTION_BUILT_IN_TYPE(uint64_t)
REFLECTION_BUILT_IN_TYPE(float)
REFLECTION_BUILT_IN_TYPE(double)
REFLECTION_BUILT_IN_TYPE(bool)
REFLECTION_BUILT_IN_TYPE(char)
REFLECTION_BUILT_IN_TYPE(char16_t)
REFLECTION_BUILT_IN_TYPE(char32_t)
REFLECTION_BUILT_IN_TYPE(wchar_t) // under the name of the character type of its size

#undef REFLECTION_BUILT_IN_TYPE

namespace Reflection {

struct NullType {}; // marks the absence of a type

void DescribeVector(TypeDescriptor& descriptor, const TypeDescriptor& element, std::size_t size,
                    const VectorOperations& operations);
void DescribeMap(TypeDescriptor& descriptor, const TypeDescriptor& key, const TypeDescriptor& value,
                 std::size_t size, const MapOperations& operations);

template <>
struct TypeAccessor<NullType> {
    static const TypeDescriptor& Get();
};
template <>
struct TypeAccessor<std::string> {
    static const TypeDescriptor& Get();
};
template <>
struct TypeAccessor<std::wstring> {
    static const TypeDescriptor& Get();
};

template <class T>
struct TypeAccessor<std::vector<T>> {
    using Vector = std::vector<T>;
    static_assert(!std::is_same_v<T, bool>, "its elements have no addresses; use std::vector<uint8_t>");

    static constexpr VectorOperations Operations = {
        [](void* vector, std::size_t count) { static_cast<Vector*>(vector)->resize(count); },
        [](const void* vector) { return static_cast<const Vector*>(vector)->size(); },
        [](const void* vector) -> const void* { return static_cast<const Vector*>(vector)->data(); }};

    static const TypeDescriptor& Get() {
        static constinit TypeRegistration s_registration;
        return s_registration.Get([](TypeDescriptor& descriptor) {
            DescribeVector(descriptor, TypeOf<T>(), sizeof(Vector), Operations);
        });
    }
};

template <class T>
struct TypeAccessor<std::map<std::string, T>> {
    using Map = std::map<std::string, T>;

    static bool VisitAll(const Map& map, MapOperations::Visitor visitor, void* state) {
        for (const auto& [key, value] : map) {
            if (!visitor(state, key, &value)) {
                return false;
            }
        }
        return true;
    }

    static constexpr MapOperations Operations = {
        [](void* map) { static_cast<Map*>(map)->clear(); },
        [](void* map, std::string_view key) -> void* {
            T& value = (*static_cast<Map*>(map))[std::string(key)];
            value = T();
            return &value;
        },
        [](const void* map, MapOperations::Visitor visitor, void* state) {
            return VisitAll(*static_cast<const Map*>(map), visitor, state);
        }};

    static const TypeDescriptor& Get() {
        static constinit TypeRegistration s_registration;
        return s_registration.Get([](TypeDescriptor& descriptor) {
            DescribeMap(descriptor, TypeOf<std::string>(), TypeOf<T>(), sizeof(Map), Operations);
        });
    }
};

} // namespace Reflection
