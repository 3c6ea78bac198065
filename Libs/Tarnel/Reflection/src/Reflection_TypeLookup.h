#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <new>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "Libs/Tarnel/Reflection/src/Reflection_Attribute.h"

// The process-wide registry of types: what it knows about a type, and how a type's entry is found.
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

// How a serializer works with a container whose element type it knows only by its descriptor. These may throw
// std::bad_alloc.
struct VectorOperations {
    void (*resize)(void* vector, std::size_t count);
    std::size_t (*count)(const void* vector);
    // Contiguous, each of the element type's size.
    const void* (*elements)(const void* vector);
    void* (*mutableElements)(void* vector);
};

// Maps keyed by std::string.
struct MapOperations {
    using Entries = std::vector<std::pair<std::string_view, const void*>>;

    void (*clear)(void* map);
    void* (*insertFresh)(void* map, std::string_view key); // resets the value if the key is already there
    Entries (*entries)(const void* map);                   // in the map's order; valid until the map changes
};

template <class Char>
struct TextOperations {
    void (*assign)(void* text, std::basic_string_view<Char> value);
    std::basic_string_view<Char> (*view)(const void* text);
};

// One registered type. It never changes or moves after its registration, so that pointers to it may be kept
// and compared. Equal names mean equal types.
struct TypeDescriptor {
    String::Global name;
    const TypeDescriptor* base = nullptr;
    std::size_t baseOffset = 0; // of the base's part, in bytes
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

// The once-only registration of one type: a static object per type. Neither it nor the descriptor is ever
// destroyed, so that static objects can use them until the process ends.
//
// A type's fields register their types in turn, and a type may contain itself. All registration therefore
// runs under one recursive lock, and only the outermost one marks its type as done: other threads wait for
// the lock until everything that a type refers to is complete.
class TypeRegistration {
public:
    using DescribeFunction = void (*)(TypeDescriptor& descriptor);

    constexpr TypeRegistration() = default;
    TypeRegistration(const TypeRegistration&) = delete; // the descriptor's address identifies the type
    TypeRegistration& operator=(const TypeRegistration&) = delete;

    // Throws std::bad_alloc; the next call then tries again.
    const TypeDescriptor& Get(DescribeFunction describe) {
        if (m_state.load(std::memory_order_acquire) != Done) [[unlikely]] {
            Register(describe);
        }
        return *Descriptor();
    }

private:
    enum State : uint32_t { NotStarted = 0, InProgress = 1, Done = 3 };

    void Register(DescribeFunction describe);

    TypeDescriptor* Descriptor() { return std::launder(reinterpret_cast<TypeDescriptor*>(m_storage)); }

    std::atomic<uint32_t> m_state = NotStarted;
    alignas(TypeDescriptor) std::byte m_storage[sizeof(TypeDescriptor)] = {};
};

// TypeAccessor<T>::Describe(TypeDescriptor&) fills T's descriptor. The declaration forms and
// Reflection_Types.h specialise it.
template <class T>
struct TypeAccessor;

// The descriptor of T, registered on first use. Any thread.
template <class T>
const TypeDescriptor& TypeOf() {
    if constexpr (std::is_same_v<T, wchar_t>) {
        return TypeOf<std::conditional_t<sizeof(wchar_t) == sizeof(char16_t), char16_t, char32_t>>();
    } else {
        static constinit TypeRegistration s_registration;
        return s_registration.Get(&TypeAccessor<T>::Describe);
    }
}

} // namespace Reflection
