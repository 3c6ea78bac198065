#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_CustomSerializer.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <mutex>
#include <shared_mutex>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_Locks.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_StringCommon.h"
#include "Libs/Tarnel/Reflection/src/Reflection_Types.h"

namespace JsonSerialization {

namespace {

using Reflection::TypeDescriptor;

// One struct for each JSON form of a number: what it accepts, how it is read and written.
struct Bool {
    static bool Fits(const JsonValue& value) { return value.IsBool(); }
    static bool Get(const JsonValue& value) { return value.GetBool(); }
    static void Set(JsonValue& value, bool number) { value.SetBool(number); }
    static constexpr ResultCode WrongKind = "Field not bool";
};

struct Int32 {
    static bool Fits(const JsonValue& value) { return value.IsInt(); }
    static int32_t Get(const JsonValue& value) { return value.GetInt(); }
    static void Set(JsonValue& value, int32_t number) { value.SetInt(number); }
    static constexpr ResultCode WrongKind = "Field not integer";
};

struct Uint32 {
    static bool Fits(const JsonValue& value) { return value.IsUint(); }
    static uint32_t Get(const JsonValue& value) { return value.GetUint(); }
    static void Set(JsonValue& value, uint32_t number) { value.SetUint(number); }
    static constexpr ResultCode WrongKind = "Field not unsigned integer";
};

struct Int64 {
    static bool Fits(const JsonValue& value) { return value.IsInt64(); }
    static int64_t Get(const JsonValue& value) { return value.GetInt64(); }
    static void Set(JsonValue& value, int64_t number) { value.SetInt64(number); }
    static constexpr ResultCode WrongKind = "Field not integer";
};

struct Uint64 {
    static bool Fits(const JsonValue& value) { return value.IsUint64(); }
    static uint64_t Get(const JsonValue& value) { return value.GetUint64(); }
    static void Set(JsonValue& value, uint64_t number) { value.SetUint64(number); }
    static constexpr ResultCode WrongKind = "Field not unsigned integer";
};

struct Float64 {
    static bool Fits(const JsonValue& value) { return value.IsNumber(); }
    static double Get(const JsonValue& value) { return value.GetDouble(); }
    static void Set(JsonValue& value, double number) { value.SetDouble(number); }
    static constexpr ResultCode WrongKind = "Field not number";
};

struct Float32 : Float64 {
    static bool Fits(const JsonValue& value) {
        return value.IsNumber() && std::abs(value.GetDouble()) <= std::numeric_limits<float>::max();
    }
};

template <class T, class Kind>
ResultCode ReadNumber(void* object, const ReadSource& source) {
    T& number = *static_cast<T*>(object);
    if (source.value.IsNull()) {
        number = T();
        return Platform::Success;
    }
    if (!Kind::Fits(source.value)) {
        return Kind::WrongKind;
    }
    number = static_cast<T>(Kind::Get(source.value)); // a narrower field takes the low bits
    return Platform::Success;
}

template <class T, class Kind>
ResultCode WriteNumber(const void* object, const WriteTarget& target) {
    Kind::Set(target.value, *static_cast<const T*>(object));
    return Platform::Success;
}

class Registry {
public:
    Registry() {
        Add<bool, Bool>();
        Add<int8_t, Int32>();
        Add<int16_t, Int32>();
        Add<int32_t, Int32>();
        Add<int64_t, Int64>();
        Add<uint8_t, Uint32>();
        Add<uint16_t, Uint32>();
        Add<uint32_t, Uint32>();
        Add<uint64_t, Uint64>();
        Add<float, Float32>();
        Add<double, Float64>();
    }

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
    template <class T, class Kind>
    void Add() {
        m_serializers[Reflection::TypeOf<T>().Id()] = {&ReadNumber<T, Kind>, &WriteNumber<T, Kind>};
    }

    Platform::ReaderWriterLock m_lock;
    std::map<String::GlobalID, ValueSerializer> m_serializers; // guarded by m_lock
};

Registry& GetRegistry() {
    static auto& s_registry = *new Registry; // threads may still read while static objects are destroyed
    return s_registry;
}

std::string_view TextOf(const JsonValue& value) {
    return {value.GetString(), value.GetStringLength()};
}

ResultCode WideResult(Platform::ConvertStringResult res) {
    PLATFORM_ASSERT(res != Platform::ConvertString_CalcLength);
    switch (res) {
    case Platform::ConvertString_Done:
        return Platform::Success;
    case Platform::ConvertString_Partial:
        return "Partial failure converting to wide string!";
    case Platform::ConvertString_InvalidCharacter:
        return "Failed to convert to wide string due to invalid character!";
    case Platform::ConvertString_InvalidArgument:
        return "Failed to convert to wide string due to invalid argument!";
    case Platform::ConvertString_CalcLength:
    case Platform::ConvertString_UnknownError:
        break;
    }
    return "Failed to convert to wide string due to unknown error!";
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
    text = TextOf(value);
    return Platform::Success;
}

ResultCode SetText(const WriteTarget& target, std::string_view text) {
    DocumentAllocator* const allocator = target.context.FindAllocator();
    if (!allocator) {
        return NoAllocator;
    }
    const char* const characters = text.empty() ? "" : text.data();
    target.value.SetString(characters, static_cast<rapidjson::SizeType>(text.size()), *allocator);
    return Platform::Success;
}

ResultCode ReadNarrow(const TypeDescriptor& type, void* object, const ReadSource& source) {
    if (!source.value.IsString() && !source.value.IsNull()) {
        return "Field not string";
    }
    const std::string_view text = source.value.IsNull() ? std::string_view() : TextOf(source.value);
    type.operations.narrow->assign(object, text);
    return type.operations.narrow->view(object).size() == text.size() ? Platform::Success : OutOfMemory;
}

ResultCode ReadWide(const TypeDescriptor& type, void* object, const ReadSource& source) {
    if (!source.value.IsString() && !source.value.IsNull()) {
        return "Field not string";
    }
    std::wstring text;
    if (source.value.IsString()) {
        RETURN_IF_FAILED(WideResult(Platform::ConvertString(TextOf(source.value), text)));
    }
    type.operations.wide->assign(object, text);
    return type.operations.wide->view(object).size() == text.size() ? Platform::Success : OutOfMemory;
}

ResultCode WriteWide(const TypeDescriptor& type, const void* object, const WriteTarget& target) {
    std::string text;
    if (Platform::ConvertString(type.operations.wide->view(object), text) != Platform::ConvertString_Done) {
        return "Failed to convert from wide string!";
    }
    return SetText(target, text);
}

ResultCode ReadEnum(const TypeDescriptor& type, void* object, const ReadSource& source) {
    if (source.value.IsString()) {
        const String::GlobalID name = String::GlobalID::OfText(TextOf(source.value));
        for (const Reflection::EnumeratorDescriptor& enumerator : type.enumerators) {
            if (enumerator.name.Id() == name) {
                // All targets are little-endian: a smaller enumeration is the value's first bytes.
                std::memcpy(object, &enumerator.value, type.size);
                return Platform::Success;
            }
        }
    }
    return "Unknown enum value found in data";
}

ResultCode WriteEnum(const TypeDescriptor& type, const void* object, const WriteTarget& target) {
    for (const Reflection::EnumeratorDescriptor& enumerator : type.enumerators) {
        if (std::memcmp(object, &enumerator.value, type.size) == 0) {
            return SetText(target, enumerator.name.View());
        }
    }
    RETURN_IF_FAILED(SetText(target, "UNKNOWN_ENUM_VALUE"));
    return "Unknown enum value found in type";
}

} // namespace JsonSerialization
