#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_Locks.h"
#include "Libs/Tarnel/Reflection/src/Reflection_TypeLookup.h"

namespace JsonSerialization {

// How one type is read (Function is Reflection::DeserializeFunction) or written (SerializeFunction). Built
// once per type, so that documents are walked without asking the reflection, and never changed afterwards.
template <class Function>
struct Plan {
    struct Field {
        std::string_view key; // the name in the data
        std::size_t offset = 0;
        bool isOptional = false;
        Function custom = nullptr; // replaces the plan for this field
        const Plan* plan = nullptr;
    };

    const Reflection::TypeDescriptor* type = nullptr;
    Function function = nullptr; // the type's own or a registered one; if there is one, the rest is unused
    std::vector<Field> fields;   // of a record: those of the base first
    const Plan* element = nullptr;
};

using ReadPlan = Plan<Reflection::DeserializeFunction>;
using WritePlan = Plan<Reflection::SerializeFunction>;

// The plans built so far, which live as long as the cache. Any thread.
template <class Function>
class PlanCache {
public:
    // Built on first use. Throws std::bad_alloc.
    const Plan<Function>& Get(const Reflection::TypeDescriptor& type);

private:
    using PlanMap = std::map<String::GlobalID, std::unique_ptr<Plan<Function>>>;
    class Builder;

    std::mutex m_building;             // one builder at a time
    Platform::ReaderWriterLock m_lock; // never held while a plan is built: readers need not wait for that
    PlanMap m_plans;                   // read under either lock, changed under both
};

extern template class PlanCache<Reflection::DeserializeFunction>;
extern template class PlanCache<Reflection::SerializeFunction>;

} // namespace JsonSerialization
