#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>

#include "Libs/Tarnel/Reflection/src/Reflection_QueryObject.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Types.h"

// How records and enumerations describe themselves. All forms are used at global scope; the registered name
// is the type's name as it is written there. In the header, after the type:
//
//   struct WatcherConfig {
//       uint32_t timeBetweenChecks = 250;
//       std::string folder;
//   };
//   Reflection_DeclareType(WatcherConfig);
//
// and in one .cpp:
//
//   Reflection_DefineType(
//       WatcherConfig,
//       Reflection_Field(timeBetweenChecks, "TimeBetweenChecks", Reflection::OptionalAttribute()),
//       Reflection_Field(folder, "Folder"));
//
// Beside fields the list may hold Reflection_Base(Base), whose fields then come first, and
// Reflection_TypeAttribute(...). A type with a v-table needs the Polymorphic forms.

#define Reflection_DeclareType(Type)                                    \
    template <>                                                         \
    struct Reflection::TypeAccessor<Type> {                             \
        static void Describe(::Reflection::TypeDescriptor& descriptor); \
    }
#define Reflection_DeclarePolymorphicType(Type) Reflection_DeclareType(Type)
#define Reflection_DeclareEnum(Type) Reflection_DeclareType(Type)

#define Reflection_DefineType(Type, ...) \
    REFLECTION_DEFINE_IMPL(Type, BuildRecord<Self>(descriptor, #Type, false __VA_OPT__(, ) __VA_ARGS__))
#define Reflection_DefinePolymorphicType(Type, ...) \
    REFLECTION_DEFINE_IMPL(Type, BuildRecord<Self>(descriptor, #Type, true __VA_OPT__(, ) __VA_ARGS__))
#define Reflection_DefineEnum(Type, ...) \
    REFLECTION_DEFINE_IMPL(Type, BuildEnum<Self>(descriptor, #Type __VA_OPT__(, ) __VA_ARGS__))

// Reflection_Field(member, "Name", attributes...)
#define Reflection_Field(memberName, ...) \
    ::Reflection::MakeEntry<Self, decltype(Self::memberName)>(&Self::memberName, __VA_ARGS__)
#define Reflection_Base(BaseType) \
    ::Reflection::BaseEntry<Self, BaseType> {}
#define Reflection_TypeAttribute(attribute) \
    ::Reflection::TypeAttributeEntry {      \
        attribute                           \
    }

// Reflection_Enumerator(BugSource::Unknown, "UNKNOWN")
#define Reflection_Enumerator(value, name) \
    ::Reflection::EnumeratorEntry<Self> {  \
        value, name                        \
    }

#define REFLECTION_DEFINE_IMPL(Type, build)                                                   \
    void Reflection::TypeAccessor<Type>::Describe(::Reflection::TypeDescriptor& descriptor) { \
        using Self [[maybe_unused]] = Type;                                                   \
        ::Reflection::build;                                                                  \
    }                                                                                         \
    static_assert(std::is_class_v<Type> || std::is_enum_v<Type>)

// What the forms expand to.
namespace Reflection {

// Stands in for an object, to take offsets from. Nothing is read or constructed.
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
        owner.fields.push_back({&TypeOf<Member>(), String::NeededGlobal(name), std::move(attributes),
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

template <class Owner, class Member, class... Attributes>
FieldEntry<Owner, Member> MakeEntry(Member Owner::*member, const char* name, Attributes... attributes) {
    return {member, name, AttributeList{std::move(attributes)...}};
}

void DescribeRecord(TypeDescriptor& descriptor, const char* szType, std::size_t size, bool hasVTable,
                    bool isDeclaredPolymorphic);
void DescribeEnum(TypeDescriptor& descriptor, const char* szEnumType, std::size_t size);

template <class T, class... Entries>
void BuildRecord(TypeDescriptor& descriptor, const char* szType, bool isDeclaredPolymorphic,
                 Entries... entries) {
    DescribeRecord(descriptor, szType, sizeof(T), std::is_polymorphic_v<T>, isDeclaredPolymorphic);
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
    descriptor.enumerators = {{static_cast<uint32_t>(entries.value), String::NeededGlobal(entries.name)}...};
}

// The object as a T, or null if it is not one.
template <class T>
T* Query(IQueryObject& object) {
    return static_cast<T*>(object.QueryObj(TypeOf<T>()));
}

} // namespace Reflection
