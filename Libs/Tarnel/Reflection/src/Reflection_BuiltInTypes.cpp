#include "Libs/Tarnel/Reflection/src/Reflection_BuiltInTypes.h"

#include <type_traits>

#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

namespace Reflection {

namespace {

void DescribeOpaque(TypeDescriptor& descriptor, const char* szType, std::size_t size) {
    descriptor.name = String::Global(szType);
    descriptor.size = size;
}

} // namespace

#define REFLECTION_BUILT_IN_TYPE(Type, szType)                                                     \
    const TypeDescriptor& TypeAccessor<Type>::Get() {                                              \
        static constinit TypeRegistration s_registration;                                          \
        return s_registration.Get(                                                                 \
            [](TypeDescriptor& descriptor) { DescribeOpaque(descriptor, szType, sizeof(Type)); }); \
    }

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

const TypeDescriptor& TypeAccessor<wchar_t>::Get() {
    return TypeOf<std::conditional_t<sizeof(wchar_t) == sizeof(char16_t), char16_t, char32_t>>();
}

const char* EncodingName(String::Encoding encoding) {
    for (const EnumeratorDescriptor& enumerator : TypeOf<String::Encoding>().enumerators) {
        if (enumerator.value == static_cast<uint32_t>(encoding)) {
            return enumerator.name.Text();
        }
    }
    return "";
}

} // namespace Reflection

Reflection_DefineEnum(String::Encoding, Reflection_Enumerator(String::Encoding::ASCII, "String::ASCII"),
                      Reflection_Enumerator(String::Encoding::UTF8, "String::UTF8"),
                      Reflection_Enumerator(String::Encoding::UTF16, "String::UTF16"),
                      Reflection_Enumerator(String::Encoding::UTF32, "String::UTF32"),
                      Reflection_Enumerator(String::Encoding::WIDE_CHAR, "String::WIDE_CHAR"));
