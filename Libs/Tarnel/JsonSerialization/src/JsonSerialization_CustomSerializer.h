#pragma once

#include <map>
#include <string>
#include <string_view>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Document.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_ResultCode.h"
#include "Libs/Tarnel/Reflection/src/Reflection_TypeLookup.h"

// The readers and writers of single values: those of the built-in types, and those that other modules
// register for their own types.
namespace JsonSerialization {

// The innermost place where reading a document failed.
struct ReadFailure {
    const JsonValue* where = nullptr;
    std::string_view key;                                 // of the field; empty for the document itself
    const Reflection::TypeDescriptor* expected = nullptr; // null if where is an object without that key
};

// What readers and writers can ask for by name while a document is read or written. Does not own the
// services, which must outlive it. One thread.
class Context {
public:
    Context() = default; // for reading
    explicit Context(DocumentAllocator& allocator) { SetService(AllocatorName(), &allocator); }

    // Replaces a service of that name.
    void SetService(String::GlobalID name, void* service) { m_services[name] = service; }

    // Null if there is none.
    void* FindService(String::GlobalID name) const {
        const auto found = m_services.find(name);
        return found != m_services.end() ? found->second : nullptr;
    }

    // The allocator of the document that is written. Null if the context has none.
    DocumentAllocator* FindAllocator() const {
        return static_cast<DocumentAllocator*>(FindService(AllocatorName()));
    }

    // Filled by a read that fails.
    ReadFailure& Failure() { return m_failure; }

private:
    static String::GlobalID AllocatorName() { return String::GlobalID::OfText("DocumentAllocator"); }

    std::map<String::GlobalID, void*> m_services;
    ReadFailure m_failure;
};

struct ReadSource {
    const JsonValue& value;
    Context& context;
};

struct WriteTarget {
    JsonValue& value; // null until it is filled
    Context& context;
};

struct ValueSerializer {
    Reflection::DeserializeFunction reader = nullptr;
    Reflection::SerializeFunction writer = nullptr;
};

// Replaces what was registered for the type. Plans keep the functions that they found when they were built,
// so register at start-up. Any thread. Throws std::bad_alloc.
void RegisterValueSerializer(String::GlobalID type, const ValueSerializer& serializer);

// Both functions are null if none is registered for that type.
ValueSerializer FindValueSerializer(String::GlobalID type);

// For custom readers: takes strings only, not null.
ResultCode ReadString(const JsonValue& value, std::string& text);

// Copies the text into the document.
ResultCode SetText(const WriteTarget& target, std::string_view text);

// The types whose JSON form is a string; type must be of that kind. These throw std::bad_alloc.
ResultCode ReadNarrow(const Reflection::TypeDescriptor& type, void* object, const ReadSource& source);
ResultCode ReadWide(const Reflection::TypeDescriptor& type, void* object, const ReadSource& source);
ResultCode WriteWide(const Reflection::TypeDescriptor& type, const void* object, const WriteTarget& target);
ResultCode ReadEnum(const Reflection::TypeDescriptor& type, void* object, const ReadSource& source);

// A value without an enumerator is written as "UNKNOWN_ENUM_VALUE", and is a failure.
ResultCode WriteEnum(const Reflection::TypeDescriptor& type, const void* object, const WriteTarget& target);

inline constexpr ResultCode OutOfMemory = "Out of memory";
inline constexpr ResultCode NoAllocator = "No allocator in context";

} // namespace JsonSerialization
