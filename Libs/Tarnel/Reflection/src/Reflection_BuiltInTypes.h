#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Libs/Tarnel/Platform/src/Common/Platform_StaticHeapAllocator.h"
#include "Libs/Tarnel/Reflection/src/Reflection_GenericTypes.h"
#include "Libs/Tarnel/Reflection/src/Reflection_TypeLookup.h"
#include "Libs/Tarnel/String/src/String_Basic.h"

// Descriptors of the built-in types and of the library's own texts.

namespace Reflection {

struct NullType {}; // marks the absence of a type

#define REFLECTION_BUILT_IN_TYPE(Type)      \
    template <>                             \
    struct TypeAccessor<Type> {             \
        static const TypeDescriptor& Get(); \
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
REFLECTION_BUILT_IN_TYPE(wchar_t) // the one of the two above that has its size
REFLECTION_BUILT_IN_TYPE(NullType)
REFLECTION_BUILT_IN_TYPE(String::Encoding)
REFLECTION_BUILT_IN_TYPE(String::Global)
REFLECTION_BUILT_IN_TYPE(String::GlobalID)
REFLECTION_BUILT_IN_TYPE(String::HeapAllocator)

#undef REFLECTION_BUILT_IN_TYPE

// Named by the size of what it allocates, in bytes, and by how many it allocates at a time.
template <class T, std::size_t Count>
struct TypeAccessor<Platform::StaticHeapAllocator<T, Count>> {
    static const TypeDescriptor& Get() {
        static constinit TypeRegistration s_registration;
        return s_registration.Get([](TypeDescriptor& descriptor) {
            descriptor.name = String::FormatGlobal("Platform::StaticHeapAllocator<%i, %i>",
                                                   static_cast<int>(sizeof(T)), static_cast<int>(Count));
            descriptor.size = sizeof(Platform::StaticHeapAllocator<T, Count>);
        });
    }
};

// The registered name of one encoding.
const char* EncodingName(String::Encoding encoding);

template <String::Encoding TextEncoding, class Allocator>
struct TypeAccessor<String::BasicT<TextEncoding, Allocator>> {
    using Text = String::BasicT<TextEncoding, Allocator>;
    using Char = typename Text::Char;
    static constexpr bool HasOperations = std::is_same_v<Char, char> || std::is_same_v<Char, wchar_t>;

    static constexpr TextOperations<Char> Operations = {
        [](void* text, std::basic_string_view<Char> value) { static_cast<Text*>(text)->Assign(value); },
        [](const void* text) { return static_cast<const Text*>(text)->AsView(); }};

    static const TypeDescriptor& Get() {
        static constinit TypeRegistration s_registration;
        return s_registration.Get([](TypeDescriptor& descriptor) {
            if constexpr (HasOperations) {
                DescribeText(descriptor, sizeof(Text), Operations);
            }
            descriptor.size = sizeof(Text);
            descriptor.name = String::FormatGlobal("String::BasicT<%s, %s>", EncodingName(TextEncoding),
                                                   TypeOf<Allocator>().name.Text());
        });
    }
};

} // namespace Reflection
