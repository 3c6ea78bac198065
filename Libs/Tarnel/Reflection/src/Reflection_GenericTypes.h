#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "Libs/Tarnel/Reflection/src/Reflection_TypeLookup.h"

// Descriptors of standard strings, vectors and maps. The names are formatted with their parameters' names.
namespace Reflection {

void DescribeVector(TypeDescriptor& descriptor, const TypeDescriptor& element, std::size_t size,
                    const VectorOperations& operations);
void DescribeMap(TypeDescriptor& descriptor, const TypeDescriptor& key, const TypeDescriptor& value,
                 std::size_t size, const MapOperations& operations);

// All but the name.
void DescribeText(TypeDescriptor& descriptor, std::size_t size, const TextOperations<char>& operations);
void DescribeText(TypeDescriptor& descriptor, std::size_t size, const TextOperations<wchar_t>& operations);

template <class Char>
struct TypeAccessor<std::basic_string<Char>> {
    static_assert(std::is_same_v<Char, char> || std::is_same_v<Char, wchar_t>);
    using Text = std::basic_string<Char>;

    static constexpr TextOperations<Char> Operations = {
        [](void* text, std::basic_string_view<Char> value) { static_cast<Text*>(text)->assign(value); },
        [](const void* text) -> std::basic_string_view<Char> { return *static_cast<const Text*>(text); }};

    static const TypeDescriptor& Get() {
        static constinit TypeRegistration s_registration;
        return s_registration.Get([](TypeDescriptor& descriptor) {
            DescribeText(descriptor, sizeof(Text), Operations);
            descriptor.name = String::FormatGlobal("std::basic_string<%s>", TypeOf<Char>().name.Text());
        });
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
