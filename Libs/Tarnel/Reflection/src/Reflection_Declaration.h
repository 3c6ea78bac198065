#pragma once

#include <type_traits>

#include "Libs/Tarnel/Reflection/src/Reflection_Builder.h"
#include "Libs/Tarnel/Reflection/src/Reflection_BuiltInTypes.h"
#include "Libs/Tarnel/Reflection/src/Reflection_GenericTypes.h"
#include "Libs/Tarnel/Reflection/src/Reflection_QueryObject.h"
#include "Libs/Tarnel/Reflection/src/Reflection_TypeLookup.h"

// How records and enumerations describe themselves. All forms stand at global scope; the registered name is
// the type's name as it is written there. In the header, after the type:
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
// Beside fields the list may hold Reflection_Base(Base), which takes the base's fields over in front of the
// own ones, and Reflection_TypeAttribute(...). A type with a v-table takes the Polymorphic forms.

#define Reflection_DeclareType(Type)                      \
    template <>                                           \
    struct Reflection::TypeAccessor<Type> {               \
        static const ::Reflection::TypeDescriptor& Get(); \
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

#define REFLECTION_DEFINE_IMPL(Type, build)                                                               \
    const ::Reflection::TypeDescriptor& Reflection::TypeAccessor<Type>::Get() {                           \
        using Self [[maybe_unused]] = Type;                                                               \
        static constinit ::Reflection::TypeRegistration s_registration;                                   \
        return s_registration.Get([](::Reflection::TypeDescriptor& descriptor) { ::Reflection::build; }); \
    }                                                                                                     \
    static_assert(std::is_class_v<Type> || std::is_enum_v<Type>)

namespace Reflection {

// The object as a T, or null when it is none.
template <class T>
T* Query(IQueryObject& object) {
    return static_cast<T*>(object.QueryObj(TypeOf<T>()));
}

} // namespace Reflection
