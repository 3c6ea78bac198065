#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Serializer.h"

#include <exception>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_CustomSerializer.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_PlanReader.h"
#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_PlanWriter.h"

namespace JsonSerialization {

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
