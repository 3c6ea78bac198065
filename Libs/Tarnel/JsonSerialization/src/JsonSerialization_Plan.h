#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

#include "Libs/Tarnel/Platform/src/Common/Platform_Locks.h"
#include "Libs/Tarnel/Reflection/src/Reflection_TypeDescriptor.h"

namespace JsonSerialization {

// How one type is read (Function is Reflection::DeserializeFunction) or written (SerializeFunction), worked
// out once so that documents are walked without asking the reflection. Does not change once it is built.
template <class Function>
struct Plan {
    struct Field {
        std::string_view key; // the name in the data
        std::size_t offset = 0;
        bool isOptional = false;
        Function custom = nullptr; // takes the field in place of its type's plan
        const Plan* plan = nullptr;
    };

    const Reflection::TypeDescriptor* type = nullptr;
    Function function = nullptr; // the type's own or registered one; goes before everything else
    std::vector<Field> fields;   // of a record: the base's first, each in declaration order
    const Plan* element = nullptr;
};

using ReadPlan = Plan<Reflection::DeserializeFunction>;
using WritePlan = Plan<Reflection::SerializeFunction>;

// The plans built so far. Any thread; plans live as long as the cache.
template <class Function>
class PlanCache {
public:
    // Built on first use. Throws std::bad_alloc.
    const Plan<Function>& Get(const Reflection::TypeDescriptor& type);

private:
    using PlanMap = std::map<String::GlobalID, std::unique_ptr<Plan<Function>>>;
    class Builder;

    std::mutex m_building;             // one builder at a time
    Platform::ReaderWriterLock m_lock; // spins, so it is never held while a plan is built
    PlanMap m_plans;                   // read under either lock, changed under both
};

extern template class PlanCache<Reflection::DeserializeFunction>;
extern template class PlanCache<Reflection::SerializeFunction>;

} // namespace JsonSerialization
