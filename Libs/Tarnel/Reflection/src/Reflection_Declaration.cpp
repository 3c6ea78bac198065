#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"

namespace Reflection {

void TypeAttributeEntry::AddTo(TypeDescriptor& owner) {
    if (const auto* serialize = std::get_if<SerializeFunction>(&attribute.value)) {
        owner.serialize = *serialize;
    } else if (const auto* deserialize = std::get_if<DeserializeFunction>(&attribute.value)) {
        owner.deserialize = *deserialize;
    }
}

void DescribeRecord(TypeDescriptor& descriptor, const char* szType, std::size_t size, bool hasVTable,
                    bool isDeclaredPolymorphic) {
    PLATFORM_ASSERT_MESSAGE(
        !hasVTable || isDeclaredPolymorphic,
        "The type \"%s\" has a v-table but is not declared as polymorphic.  Please use "
        "Reflection_DeclarePolymorphicType in place of Reflection_DeclareType for this type.",
        szType);
    descriptor.kind = TypeKind::Record;
    descriptor.name = String::NeededGlobal(szType);
    descriptor.size = size;
    descriptor.isPolymorphic = hasVTable;
}

void DescribeEnum(TypeDescriptor& descriptor, const char* szEnumType, std::size_t size) {
    PLATFORM_ASSERT_TEXT(szEnumType && *szEnumType, "!String::IsNullOrEmpty(szEnumType)");
    descriptor.kind = TypeKind::Enumeration;
    descriptor.name = String::NeededGlobal(szEnumType);
    descriptor.size = size;
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
