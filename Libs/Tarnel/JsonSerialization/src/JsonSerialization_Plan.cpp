#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Plan.h"

#include <mutex>
#include <shared_mutex>
#include <type_traits>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_CustomSerializer.h"

namespace JsonSerialization {

namespace {

using Reflection::DeserializeFunction;
using Reflection::FieldDescriptor;
using Reflection::TypeDescriptor;
namespace AttributeName = Reflection::AttributeName;

const Reflection::Attribute* Find(const FieldDescriptor& field, const char* attribute) {
    return Reflection::FindAttribute(field.attributes, String::GlobalID::OfText(attribute));
}

template <class Function>
constexpr bool IsReading = std::is_same_v<Function, DeserializeFunction>;

template <class Function>
bool IsSkipped(const FieldDescriptor& field) {
    const char* const skipping = IsReading<Function> ? AttributeName::NoRead : AttributeName::NoWrite;
    return Find(field, AttributeName::Ignore) || Find(field, skipping);
}

template <class Function>
Function CustomFunction(const FieldDescriptor& field) {
    const auto* const attribute =
        Find(field, IsReading<Function> ? AttributeName::Deserialization : AttributeName::Serialization);
    const Function* const function = attribute ? std::get_if<Function>(&attribute->value) : nullptr;
    return function ? *function : nullptr;
}

template <class Function>
Function TypeFunction(const TypeDescriptor& type) {
    if constexpr (IsReading<Function>) {
        return type.deserialize ? type.deserialize : FindValueSerializer(type.Id()).reader;
    } else {
        return type.serialize ? type.serialize : FindValueSerializer(type.Id()).writer;
    }
}

std::string_view KeyOf(const FieldDescriptor& field) {
    const auto* const attribute = Find(field, AttributeName::Name);
    const auto* const name = attribute ? std::get_if<String::Global>(&attribute->value) : nullptr;
    return name ? name->View() : field.name.View();
}

} // namespace

// Builds a plan and the plans it needs outside the cache: a build that runs out of memory leaves nothing half
// built, and a type may contain itself.
template <class Function>
class PlanCache<Function>::Builder {
public:
    explicit Builder(const PlanMap& known) : m_known(known) {}

    const Plan<Function>* PlanFor(const TypeDescriptor& type) {
        if (const auto known = m_known.find(type.Id()); known != m_known.end()) {
            return known->second.get();
        }
        if (const auto built = m_built.find(type.Id()); built != m_built.end()) {
            return built->second.get();
        }
        Plan<Function>& plan = *(m_built[type.Id()] = std::make_unique<Plan<Function>>());
        plan.type = &type;
        plan.function = TypeFunction<Function>(type);
        if (!plan.function) {
            AddFields(plan, type, 0);
            plan.element = type.element ? PlanFor(*type.element) : nullptr;
        }
        return &plan;
    }

    PlanMap& Built() { return m_built; }

private:
    void AddFields(Plan<Function>& plan, const TypeDescriptor& type, std::size_t offset) {
        if (type.base) {
            AddFields(plan, *type.base, offset + type.baseOffset);
        }
        for (const FieldDescriptor& field : type.fields) {
            if (!IsSkipped<Function>(field)) {
                plan.fields.push_back({KeyOf(field), offset + field.offset,
                                       Find(field, AttributeName::Optional) != nullptr,
                                       CustomFunction<Function>(field), PlanFor(*field.type)});
            }
        }
    }

    const PlanMap& m_known;
    PlanMap m_built;
};

template <class Function>
const Plan<Function>& PlanCache<Function>::Get(const TypeDescriptor& type) {
    {
        const std::shared_lock lock(m_lock);
        if (const auto found = m_plans.find(type.Id()); found != m_plans.end()) {
            return *found->second;
        }
    }
    const std::lock_guard building(m_building);
    Builder builder(m_plans);
    const Plan<Function>* const plan = builder.PlanFor(type);
    const std::unique_lock lock(m_lock);
    m_plans.merge(builder.Built());
    return *plan;
}

template class PlanCache<Reflection::DeserializeFunction>;
template class PlanCache<Reflection::SerializeFunction>;

} // namespace JsonSerialization
