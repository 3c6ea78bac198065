#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Serializer.h"

#include <cstddef>
#include <exception>
#include <string_view>

#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace JsonSerialization {

namespace {

using rapidjson::SizeType;
using Reflection::TypeKind;

// Notes the failure unless one further inside is noted, and gives that its key.
void NoteFailure(const ReadSource& source, std::string_view key, const Reflection::TypeDescriptor* expected) {
    ReadFailure& failure = source.context.Failure();
    if (!failure.where) {
        failure = {&source.value, key, expected};
    } else if (failure.key.empty()) {
        failure.key = key;
    }
}

ResultCode ReadField(const ReadPlan::Field& field, void* object, const ReadSource& source) {
    void* const place = static_cast<std::byte*>(object) + field.offset;
    return field.custom ? field.custom(place, source) : ReadByPlan(*field.plan, place, source);
}

// The first member of that name. A value that is not an object has none.
const JsonValue* FindMember(const JsonValue& value, std::string_view key) {
    if (!value.IsObject()) {
        return nullptr;
    }
    const JsonValue name(JsonValue::StringRefType(key.data(), static_cast<SizeType>(key.size())));
    const auto member = value.FindMember(name);
    return member != value.MemberEnd() ? &member->value : nullptr;
}

ResultCode ReadFields(const ReadPlan& plan, void* object, const ReadSource& source) {
    for (const ReadPlan::Field& field : plan.fields) {
        const JsonValue* const value = FindMember(source.value, field.key);
        if (!value && !field.isOptional) {
            PLATFORM_LOG(Platform::EngineLog, " Failed to find field \"%s\" in json data", field.key.data());
            const bool isObject = source.value.IsObject();
            NoteFailure(source, isObject ? field.key : "", isObject ? nullptr : plan.type);
            return "Field not found in json";
        }
        if (!value) {
            continue;
        }
        const ReadSource member{*value, source.context};
        if (const ResultCode result = ReadField(field, object, member); !result) {
            NoteFailure(member, field.key, field.plan->type);
            return result;
        }
    }
    return Platform::Success;
}

ResultCode ReadVector(const ReadPlan& plan, void* object, const ReadSource& source) {
    if (!source.value.IsArray()) {
        return "Not an array";
    }
    const Reflection::VectorOperations& operations = *plan.type->operations.vector;
    operations.resize(object, source.value.Size());
    auto* place = static_cast<std::byte*>(operations.mutableElements(object));
    for (const JsonValue& value : source.value.GetArray()) {
        const ReadSource element{value, source.context};
        if (const ResultCode result = ReadByPlan(*plan.element, place, element); !result) {
            NoteFailure(element, "", plan.element->type);
            return result;
        }
        place += plan.element->type->size;
    }
    return Platform::Success;
}

ResultCode ReadMap(const ReadPlan& plan, void* object, const ReadSource& source) {
    if (!source.value.IsObject()) {
        return "Element is not an object";
    }
    const Reflection::MapOperations& operations = *plan.type->operations.map;
    operations.clear(object);
    for (const JsonValue::Member& member : source.value.GetObject()) {
        const std::string_view key(member.name.GetString(), member.name.GetStringLength());
        void* const place = operations.insertFresh(object, key);
        RETURN_IF_FAILED(ReadByPlan(*plan.element, place, {member.value, source.context}));
    }
    return Platform::Success;
}

ResultCode WriteField(const WritePlan::Field& field, const void* object, const WriteTarget& target) {
    const void* const place = static_cast<const std::byte*>(object) + field.offset;
    return field.custom ? field.custom(place, target) : WriteByPlan(*field.plan, place, target);
}

// A value that fails is added too: the document shows how far the writing came.
ResultCode WriteFields(const WritePlan& plan, const void* object, const WriteTarget& target,
                       DocumentAllocator& allocator) {
    target.value.SetObject();
    for (const WritePlan::Field& field : plan.fields) {
        JsonValue value;
        const ResultCode result = WriteField(field, object, {value, target.context});
        // The palette keeps the key for the life of the process, so the document need not copy it.
        const auto length = static_cast<SizeType>(field.key.size());
        target.value.AddMember(JsonValue::StringRefType(field.key.data(), length), value, allocator);
        RETURN_IF_FAILED(result);
    }
    return Platform::Success;
}

ResultCode WriteVector(const WritePlan& plan, const void* object, const WriteTarget& target,
                       DocumentAllocator& allocator) {
    const Reflection::VectorOperations& operations = *plan.type->operations.vector;
    const std::size_t count = operations.count(object);
    const auto* place = static_cast<const std::byte*>(operations.elements(object));
    target.value.SetArray();
    for (std::size_t i = 0; i < count; ++i) {
        JsonValue value;
        const ResultCode result = WriteByPlan(*plan.element, place, {value, target.context});
        target.value.PushBack(value, allocator);
        RETURN_IF_FAILED(result);
        place += plan.element->type->size;
    }
    return Platform::Success;
}

ResultCode WriteMap(const WritePlan& plan, const void* object, const WriteTarget& target,
                    DocumentAllocator& allocator) {
    target.value.SetObject();
    for (const auto& [key, element] : plan.type->operations.map->entries(object)) {
        JsonValue name;
        JsonValue value;
        RETURN_IF_FAILED(SetText({name, target.context}, key));
        const ResultCode result = WriteByPlan(*plan.element, element, {value, target.context});
        target.value.AddMember(name, value, allocator);
        RETURN_IF_FAILED(result);
    }
    return Platform::Success;
}

} // namespace

ResultCode ReadByPlan(const ReadPlan& plan, void* object, const ReadSource& source) {
    if (plan.function) {
        return plan.function(object, source);
    }
    switch (plan.type->kind) {
    case TypeKind::Record:
        return ReadFields(plan, object, source);
    case TypeKind::Vector:
        return ReadVector(plan, object, source);
    case TypeKind::Map:
        return ReadMap(plan, object, source);
    case TypeKind::Enumeration:
        return ReadEnum(*plan.type, object, source);
    case TypeKind::NarrowString:
        return ReadNarrow(*plan.type, object, source);
    case TypeKind::WideString:
        return ReadWide(*plan.type, object, source);
    case TypeKind::Opaque:
        break;
    }
    return "Unsupported type";
}

ResultCode WriteByPlan(const WritePlan& plan, const void* object, const WriteTarget& target) {
    if (plan.function) {
        return plan.function(object, target);
    }
    DocumentAllocator* const allocator = target.context.FindAllocator();
    if (!allocator) {
        return NoAllocator;
    }
    switch (plan.type->kind) {
    case TypeKind::Record:
        return WriteFields(plan, object, target, *allocator);
    case TypeKind::Vector:
        return WriteVector(plan, object, target, *allocator);
    case TypeKind::Map:
        return WriteMap(plan, object, target, *allocator);
    case TypeKind::Enumeration:
        return WriteEnum(*plan.type, object, target);
    case TypeKind::NarrowString:
        return SetText(target, plan.type->operations.narrow->view(object));
    case TypeKind::WideString:
        return WriteWide(*plan.type, object, target);
    case TypeKind::Opaque:
        break;
    }
    return "Unsupported type";
}

ResultCode Serializer::Read(TypeFunction type, void* object, const JsonValue& value, Context& context) {
    try {
        return ReadByPlan(m_readPlans.Get(type()), object, {value, context});
    } catch (const std::exception&) { // no memory, or a length that no container can have
        return OutOfMemory;
    }
}

ResultCode Serializer::Write(TypeFunction type, const void* object, JsonValue& value, Context& context) {
    try {
        return WriteByPlan(m_writePlans.Get(type()), object, {value, context});
    } catch (const std::exception&) {
        return OutOfMemory;
    }
}

ResultCode Serializer::Write(TypeFunction type, const void* object, JsonDocument& document) {
    try {
        Context context(document.GetAllocator());
        return Write(type, object, document, context);
    } catch (const std::exception&) {
        return OutOfMemory;
    }
}

Serializer& GetSerializer() {
    static auto& s_serializer = *new Serializer; // threads may still read while static objects are destroyed
    return s_serializer;
}

} // namespace JsonSerialization
