#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_PlanWriter.h"

#include <cstddef>
#include <string_view>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Texts.h"

namespace JsonSerialization {

namespace {

using rapidjson::SizeType;
using Reflection::TypeKind;

ResultCode WriteField(const WritePlan::Field& field, const void* object, const WriteTarget& target) {
    const void* const place = static_cast<const std::byte*>(object) + field.offset;
    return field.custom ? field.custom(place, target) : WriteByPlan(*field.plan, place, target);
}

ResultCode WriteFields(const WritePlan& plan, const void* object, const WriteTarget& target,
                       DocumentAllocator& allocator) {
    target.value.SetObject();
    for (const WritePlan::Field& field : plan.fields) {
        JsonValue value;
        const ResultCode result = WriteField(field, object, {value, target.context});
        // The palette keeps the key for ever: the document need not copy it.
        const auto length = static_cast<SizeType>(field.key.size());
        target.value.AddMember(JsonValue::StringRefType(field.key.data(), length), value, allocator);
        if (!result) {
            return result;
        }
    }
    return Platform::Success;
}

ResultCode WriteVector(const WritePlan& plan, const void* object, const WriteTarget& target,
                       DocumentAllocator& allocator) {
    const Reflection::VectorOperations& operations = *plan.type->operations.vector;
    const std::size_t count = operations.count(object);
    const auto* place = static_cast<const std::byte*>(operations.elements(object));
    target.value.SetArray();
    target.value.Reserve(static_cast<SizeType>(count), allocator);
    for (std::size_t i = 0; i < count; ++i) {
        JsonValue value;
        const ResultCode result = WriteByPlan(*plan.element, place, {value, target.context});
        target.value.PushBack(value, allocator);
        if (!result) {
            return result;
        }
        place += plan.element->type->size;
    }
    return Platform::Success;
}

struct MapWriter {
    const WritePlan& plan;
    const WriteTarget& target;
    DocumentAllocator& allocator;
    ResultCode result;

    bool Write(std::string_view key, const void* object) {
        JsonValue name;
        result = SetText({name, target.context}, key);
        if (!result) {
            return false;
        }
        JsonValue value;
        result = WriteByPlan(*plan.element, object, {value, target.context});
        target.value.AddMember(name, value, allocator);
        return result.Succeeded();
    }
};

ResultCode WriteMap(const WritePlan& plan, const void* object, const WriteTarget& target,
                    DocumentAllocator& allocator) {
    target.value.SetObject();
    MapWriter writer{plan, target, allocator, Platform::Success};
    const auto visitor = [](void* state, std::string_view key, const void* value) {
        return static_cast<MapWriter*>(state)->Write(key, value);
    };
    plan.type->operations.map->visit(object, visitor, &writer);
    return writer.result;
}

using CompoundWriter = ResultCode (*)(const WritePlan&, const void*, const WriteTarget&, DocumentAllocator&);

ResultCode WriteCompound(CompoundWriter writer, const WritePlan& plan, const void* object,
                         const WriteTarget& target) {
    DocumentAllocator* const allocator = target.context.FindAllocator();
    return allocator ? writer(plan, object, target, *allocator) : NoAllocator;
}

} // namespace

ResultCode WriteByPlan(const WritePlan& plan, const void* object, const WriteTarget& target) {
    if (plan.function) {
        return plan.function(object, target);
    }
    switch (plan.type->kind) {
    case TypeKind::Record:
        return WriteCompound(&WriteFields, plan, object, target);
    case TypeKind::Vector:
        return WriteCompound(&WriteVector, plan, object, target);
    case TypeKind::Map:
        return WriteCompound(&WriteMap, plan, object, target);
    case TypeKind::Enumeration:
        return WriteEnum(*plan.type, object, target);
    case TypeKind::NarrowString:
        return WriteNarrow(*plan.type, object, target);
    case TypeKind::WideString:
        return WriteWide(*plan.type, object, target);
    case TypeKind::Opaque:
        break;
    }
    return "Unsupported type";
}

} // namespace JsonSerialization
