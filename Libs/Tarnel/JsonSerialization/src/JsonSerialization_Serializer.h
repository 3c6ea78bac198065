#pragma once

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Context.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

// Reads and writes reflected types as JSON. No function throws; any thread may call, each on objects of its
// own.
namespace JsonSerialization {

// Stops at the first failure: what was read before stays read. Fields that may be absent keep their value
// then.
ResultCode Read(const Reflection::TypeDescriptor& type, void* object, const JsonValue& value,
                Context& context);

// Fills value, whose memory comes from the context's allocator.
ResultCode Write(const Reflection::TypeDescriptor& type, const void* object, JsonValue& value,
                 Context& context);

template <class T>
ResultCode ReadRecord(const JsonValue& value, T& record) {
    Context context;
    return Read(Reflection::TypeOf<T>(), &record, value, context);
}

// The document's root becomes the record's object.
template <class T>
ResultCode WriteRecord(const T& record, JsonDocument& document) {
    Context context(document.GetAllocator());
    return Write(Reflection::TypeOf<T>(), &record, document, context);
}

} // namespace JsonSerialization
