#pragma once

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_CustomSerializer.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Plan.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

namespace JsonSerialization {

// Reads and writes reflected types as JSON. Keeps the plans it has built; one per process, reached by
// GetSerializer. Any thread may call it, each with its own objects. Nothing throws: without memory the result
// is "Out of memory".
class Serializer {
public:
    using TypeFunction = const Reflection::TypeDescriptor& (*)(); // Reflection::TypeOf<T>

    // Stops at the first failure and keeps what was read before it. An optional field that is absent keeps
    // its value.
    ResultCode Read(TypeFunction type, void* object, const JsonValue& value, Context& context);

    // Fills value, with memory of the context's allocator; the document has its own.
    ResultCode Write(TypeFunction type, const void* object, JsonValue& value, Context& context);
    ResultCode Write(TypeFunction type, const void* object, JsonDocument& document);

private:
    PlanCache<Reflection::DeserializeFunction> m_readPlans;
    PlanCache<Reflection::SerializeFunction> m_writePlans;
};

Serializer& GetSerializer();

// Reads or writes an object of the plan's type. These throw std::bad_alloc and std::length_error.
ResultCode ReadByPlan(const ReadPlan& plan, void* object, const ReadSource& source);
ResultCode WriteByPlan(const WritePlan& plan, const void* object, const WriteTarget& target);

template <class T>
ResultCode ReadRecord(const JsonValue& value, T& record) {
    Context context;
    return GetSerializer().Read(&Reflection::TypeOf<T>, &record, value, context);
}

// The document's root becomes the record's object.
template <class T>
ResultCode WriteRecord(const T& record, JsonDocument& document) {
    return GetSerializer().Write(&Reflection::TypeOf<T>, &record, document);
}

} // namespace JsonSerialization
