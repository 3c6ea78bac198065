#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_PlanReader.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Texts.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Log.h"

namespace JsonSerialization {

namespace {

using Reflection::TypeKind;

// Finds members by name; of several with one name the first. Documents usually hold them in the order in
// which they are asked for, so the member after the last one found is tried before the search. That is safe
// only while no member has been passed over: a passed one may come first of its name.
class MemberFinder {
public:
    // A value that is no object has no members.
    explicit MemberFinder(const JsonValue& value) {
        if (value.IsObject()) {
            m_begin = value.MemberBegin();
            m_end = value.MemberEnd();
            m_next = m_begin;
        }
    }

    const JsonValue* Find(std::string_view key) {
        if (m_next != m_end && HasName(*m_next, key)) {
            return &(m_next++)->value;
        }
        for (auto member = m_begin; member != m_end; ++member) {
            if (HasName(*member, key)) {
                m_next = m_end;
                return &member->value;
            }
        }
        return nullptr;
    }

private:
    using Iterator = JsonValue::ConstMemberIterator;

    static bool HasName(const JsonValue::Member& member, std::string_view key) {
        return member.name.GetStringLength() == key.size() &&
               std::equal(key.begin(), key.end(), member.name.GetString());
    }

    Iterator m_begin;
    Iterator m_end;
    Iterator m_next;
};

ResultCode ReadField(const ReadPlan::Field& field, void* object, const ReadSource& source) {
    void* const place = static_cast<std::byte*>(object) + field.offset;
    return field.custom ? field.custom(place, source) : ReadByPlan(*field.plan, place, source);
}

ResultCode ReadFields(const ReadPlan& plan, void* object, const ReadSource& source) {
    MemberFinder members(source.value);
    for (const ReadPlan::Field& field : plan.fields) {
        const JsonValue* const value = members.Find(field.key);
        if (!value) {
            if (field.isOptional) {
                continue;
            }
            PLATFORM_LOG(Platform::EngineLog, " Failed to find field \"%s\" in json data", field.key.data());
            return "Field not found in json";
        }
        if (const ResultCode result = ReadField(field, object, {*value, source.context}); !result) {
            return result;
        }
    }
    return Platform::Success;
}

// The elements have room in the vector already; the first that can't be read ends the reading.
ResultCode ReadElements(const ReadPlan& element, std::byte* place, const ReadSource& source) {
    const std::size_t size = element.type->size;
    const Reflection::DeserializeFunction function = element.function;
    for (const JsonValue& value : source.value.GetArray()) {
        const ReadSource item = {value, source.context};
        // Numbers, of which there are thousands, have a function.
        const ResultCode result = function ? function(place, item) : ReadByPlan(element, place, item);
        if (!result) {
            return result;
        }
        place += size;
    }
    return Platform::Success;
}

ResultCode ReadVector(const ReadPlan& plan, void* object, const ReadSource& source) {
    if (!source.value.IsArray()) {
        return "Not an array";
    }
    const Reflection::VectorOperations& operations = *plan.type->operations.vector;
    operations.resize(object, source.value.Size());
    return ReadElements(*plan.element, static_cast<std::byte*>(operations.mutableElements(object)), source);
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
        const ResultCode result = ReadByPlan(*plan.element, place, {member.value, source.context});
        if (!result) {
            return result;
        }
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

} // namespace JsonSerialization
