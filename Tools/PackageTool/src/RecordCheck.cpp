#include "Tools/PackageTool/src/RecordCheck.h"

#include <algorithm>
#include <set>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Plan.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_PlanReader.h"

namespace {

using JsonSerialization::ReadPlan;
using Reflection::TypeKind;

// Walks a value and its plan side by side.
class Reader {
public:
    explicit Reader(const RecordReport& report) : m_report(report) {}

    // name is the member's that has the value.
    void Read(const ReadPlan& plan, void* object, const JsonValue& value, const std::string& name) {
        const bool goesDeeper = !plan.function;
        if (goesDeeper && plan.type->kind == TypeKind::Record && value.IsObject()) {
            ReadFields(plan, object, value);
        } else if (goesDeeper && plan.type->kind == TypeKind::Vector && value.IsArray()) {
            ReadVector(plan, object, value, name);
        } else if (goesDeeper && plan.type->kind == TypeKind::Map && value.IsObject()) {
            ReadMap(plan, object, value);
        } else {
            ReadWhole(plan, object, value, name);
        }
    }

private:
    void ReadWhole(const ReadPlan& plan, void* object, const JsonValue& value, const std::string& name) {
        const ResultCode result = JsonSerialization::ReadByPlan(plan, object, {value, m_context});
        if (!result) {
            m_report(value, name.empty() ? result.Text() : Quoted(name) + ": " + result.Text());
        } else if (!plan.function && plan.type->kind == TypeKind::Record) {
            m_report(value, Quoted(name) + ": Element is not an object"); // reads as an empty one
        }
    }

    void ReadFields(const ReadPlan& plan, void* object, const JsonValue& value) {
        for (const ReadPlan::Field& field : plan.fields) {
            const std::string key(field.key);
            const auto member = value.FindMember(key.c_str());
            if (member == value.MemberEnd()) {
                if (!field.isOptional) {
                    m_report(value, "Field not found in json: " + Quoted(key));
                }
                continue;
            }
            void* const place = static_cast<std::byte*>(object) + field.offset;
            if (field.custom) {
                const ResultCode result = field.custom(place, {member->value, m_context});
                if (!result) {
                    m_report(member->value, Quoted(key) + ": " + result.Text());
                }
            } else {
                Read(*field.plan, place, member->value, key);
            }
        }
        ReportOtherMembers(plan, value);
    }

    void ReportOtherMembers(const ReadPlan& plan, const JsonValue& value) {
        std::set<std::string> seen;
        for (const JsonValue::Member& member : value.GetObject()) {
            const std::string key = TextOf(member.name);
            const bool isKnown = std::any_of(plan.fields.begin(), plan.fields.end(),
                                             [&](const ReadPlan::Field& field) { return field.key == key; });
            if (!isKnown) {
                m_report(member.name, "Unknown key " + Quoted(key));
            } else if (!seen.insert(key).second) {
                m_report(member.name, "Key " + Quoted(key) + " stands here again; only the first counts");
            }
        }
    }

    void ReadVector(const ReadPlan& plan, void* object, const JsonValue& value, const std::string& name) {
        const Reflection::VectorOperations& operations = *plan.type->operations.vector;
        operations.resize(object, value.Size());
        auto* place = static_cast<std::byte*>(operations.mutableElements(object));
        for (const JsonValue& element : value.GetArray()) {
            Read(*plan.element, place, element, name);
            place += plan.element->type->size;
        }
    }

    void ReadMap(const ReadPlan& plan, void* object, const JsonValue& value) {
        const Reflection::MapOperations& operations = *plan.type->operations.map;
        operations.clear(object);
        for (const JsonValue::Member& member : value.GetObject()) {
            const std::string key = TextOf(member.name);
            Read(*plan.element, operations.insertFresh(object, key), member.value, key);
        }
    }

    const RecordReport& m_report;
    JsonSerialization::Context m_context;
};

} // namespace

void ReadAndReport(const Reflection::TypeDescriptor& type, void* object, const JsonValue& value,
                   const RecordReport& report) {
    JsonSerialization::PlanCache<Reflection::DeserializeFunction> plans;
    Reader(report).Read(plans.Get(type), object, value, "");
}

std::string Quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

std::string TextOf(const JsonValue& string) {
    return {string.GetString(), string.GetStringLength()};
}
