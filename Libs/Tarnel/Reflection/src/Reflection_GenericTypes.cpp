#include "Libs/Tarnel/Reflection/src/Reflection_GenericTypes.h"

namespace Reflection {

void DescribeVector(TypeDescriptor& descriptor, const TypeDescriptor& element, std::size_t size,
                    const VectorOperations& operations) {
    descriptor.kind = TypeKind::Vector;
    descriptor.name = String::FormatGlobal("std::vector<%s>", element.name.Text());
    descriptor.size = size;
    descriptor.element = &element;
    descriptor.operations.vector = &operations;
}

void DescribeMap(TypeDescriptor& descriptor, const TypeDescriptor& key, const TypeDescriptor& value,
                 std::size_t size, const MapOperations& operations) {
    descriptor.kind = TypeKind::Map;
    descriptor.name = String::FormatGlobal("std::map<%s,%s>", key.name.Text(), value.name.Text());
    descriptor.size = size;
    descriptor.element = &value;
    descriptor.operations.map = &operations;
}

void DescribeText(TypeDescriptor& descriptor, std::size_t size, const TextOperations<char>& operations) {
    descriptor.kind = TypeKind::NarrowString;
    descriptor.size = size;
    descriptor.operations.narrow = &operations;
}

void DescribeText(TypeDescriptor& descriptor, std::size_t size, const TextOperations<wchar_t>& operations) {
    descriptor.kind = TypeKind::WideString;
    descriptor.size = size;
    descriptor.operations.wide = &operations;
}

} // namespace Reflection
