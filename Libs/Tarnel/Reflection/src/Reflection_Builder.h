#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>

#include "Libs/Tarnel/Reflection/src/Reflection_TypeLookup.h"

// What the declaration forms expand to.
namespace Reflection {

// An object's place without an object: offsets are taken from it, nothing is read.
template <class T>
struct Layout {
    alignas(T) std::byte bytes[sizeof(T)];
    T* Object() { return reinterpret_cast<T*>(bytes); }

    template <class Part>
    std::size_t OffsetOf(const Part* part) {
        return static_cast<std::size_t>(reinterpret_cast<const std::byte*>(part) - bytes);
    }
};

template <class Owner, class Member>
struct FieldEntry {
    Member Owner::*member;
    const char* name;
    AttributeList attributes;

    void AddTo(TypeDescriptor& owner) {
        static_assert(!std::is_reference_v<Member> && !std::is_const_v<Member>);
        Layout<Owner> layout;
        owner.fields.push_back({&TypeOf<Member>(), String::Global(name), std::move(attributes),
                                layout.OffsetOf(std::addressof(layout.Object()->*member)), &owner});
    }
};

template <class Owner, class BaseType>
struct BaseEntry {
    void AddTo(TypeDescriptor& owner) {
        static_assert(std::is_base_of_v<BaseType, Owner>);
        Layout<Owner> layout;
        owner.base = &TypeOf<BaseType>();
        owner.baseOffset = layout.OffsetOf(static_cast<BaseType*>(layout.Object()));
    }
};

struct TypeAttributeEntry {
    Attribute attribute;
    void AddTo(TypeDescriptor& owner);
};

// Attributes keep the order in which they are written.
template <class... Attributes>
AttributeList MakeAttributes(Attributes... attributes) {
    AttributeList list;
    [[maybe_unused]] auto last = list.before_begin();
    ((last = list.insert_after(last, std::move(attributes))), ...);
    return list;
}

template <class Owner, class Member, class... Attributes>
FieldEntry<Owner, Member> MakeEntry(Member Owner::*member, const char* name, Attributes... attributes) {
    return {member, name, MakeAttributes(std::move(attributes)...)};
}

void DescribeRecord(TypeDescriptor& descriptor, const char* szType, std::size_t size, bool hasVTable,
                    bool isDeclaredPolymorphic);
void DescribeEnum(TypeDescriptor& descriptor, const char* szEnumType, std::size_t size);

template <class T, class... Entries>
void BuildRecord(TypeDescriptor& descriptor, const char* szType, bool isDeclaredPolymorphic,
                 Entries... entries) {
    DescribeRecord(descriptor, szType, sizeof(T), std::is_polymorphic_v<T>, isDeclaredPolymorphic);
    descriptor.fields.reserve(sizeof...(Entries));
    (entries.AddTo(descriptor), ...);
}

template <class T>
struct EnumeratorEntry {
    T value;
    const char* name;
};

template <class T, class... Entries>
void BuildEnum(TypeDescriptor& descriptor, const char* szEnumType, Entries... entries) {
    static_assert((std::is_same_v<Entries, EnumeratorEntry<T>> && ...),
                  "an enumerator of another enumeration");
    static_assert(sizeof(T) <= sizeof(uint32_t), "the table holds 32-bit values");
    DescribeEnum(descriptor, szEnumType, sizeof(T));
    descriptor.enumerators = {{static_cast<uint32_t>(entries.value), String::Global(entries.name)}...};
}

} // namespace Reflection
