#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_CustomSerializer.h"

#include <map>
#include <mutex>
#include <shared_mutex>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Numbers.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Locks.h"

namespace JsonSerialization {

namespace {

class Registry {
public:
    Registry() { RegisterNumbers(m_serializers); }

    void Register(String::GlobalID type, const ValueSerializer& serializer) {
        const std::unique_lock lock(m_lock);
        m_serializers.insert_or_assign(type, serializer);
    }

    ValueSerializer Find(String::GlobalID type) {
        const std::shared_lock lock(m_lock);
        const auto found = m_serializers.find(type);
        return found != m_serializers.end() ? found->second : ValueSerializer();
    }

private:
    Platform::ReaderWriterLock m_lock;
    std::map<String::GlobalID, ValueSerializer> m_serializers; // guarded by m_lock
};

Registry& GetRegistry() {
    static auto& s_registry = *new Registry; // threads may still read while static objects are destroyed
    return s_registry;
}

} // namespace

void RegisterValueSerializer(String::GlobalID type, const ValueSerializer& serializer) {
    GetRegistry().Register(type, serializer);
}

ValueSerializer FindValueSerializer(String::GlobalID type) {
    return GetRegistry().Find(type);
}

ResultCode ReadString(const JsonValue& value, std::string& text) {
    if (!value.IsString()) {
        return "Not a string value";
    }
    text.assign(value.GetString(), value.GetStringLength());
    return Platform::Success;
}

} // namespace JsonSerialization
