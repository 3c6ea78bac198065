#pragma once

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Context.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Plan.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

namespace JsonSerialization {

// Reads and writes reflected types as JSON by plans that it keeps. One per process, reached by GetSerializer.
// Any thread may call, each on objects of its own. Nothing throws: without memory the result is "Out of
// memory".
class Serializer {
public:
    using TypeFunction = const Reflection::TypeDescriptor& (*)(); // Reflection::TypeOf<T>

    // Stops at the first failure: what was read before stays read. A field that may be absent keeps its value
    // then.
    ResultCode Read(TypeFunction type, void* object, const JsonValue& value, Context& context);

    // Fills value, which takes its memory from the context's allocator.
    ResultCode Write(TypeFunction type, const void* object, JsonValue& value, Context& context);
    ResultCode Write(TypeFunction type, const void* object, JsonDocument& document);

private:
    PlanCache<Reflection::DeserializeFunction> m_readPlans;
    PlanCache<Reflection::SerializeFunction> m_writePlans;
};

Serializer& GetSerializer();

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
