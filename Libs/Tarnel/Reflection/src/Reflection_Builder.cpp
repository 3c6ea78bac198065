#include "Libs/Tarnel/Reflection/src/Reflection_Builder.h"

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/String/src/String_Functions.h"

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
    descriptor.name = String::Global(szType);
    descriptor.size = size;
    descriptor.isPolymorphic = hasVTable;
}

void DescribeEnum(TypeDescriptor& descriptor, const char* szEnumType, std::size_t size) {
    PLATFORM_ASSERT(!String::IsNullOrEmpty(szEnumType));
    descriptor.kind = TypeKind::Enumeration;
    descriptor.name = String::Global(szEnumType);
    descriptor.size = size;
}

} // namespace Reflection
