#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_Texts.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>

#include "Libs/Tarnel/Platform/src/Common/Platform_Assert.h"
#include "Libs/Tarnel/Platform/src/Common/Platform_StringCommon.h"

namespace JsonSerialization {

namespace {

using Reflection::TypeDescriptor;

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

// Enumerations are of one, two or four bytes.
uint32_t LoadEnum(const void* object, std::size_t size) {
    if (size == sizeof(uint8_t)) {
        return *static_cast<const uint8_t*>(object);
    }
    if (size == sizeof(uint16_t)) {
        return *static_cast<const uint16_t*>(object);
    }
    return *static_cast<const uint32_t*>(object);
}

void StoreEnum(void* object, std::size_t size, uint32_t value) {
    if (size == sizeof(uint8_t)) {
        *static_cast<uint8_t*>(object) = static_cast<uint8_t>(value);
    } else if (size == sizeof(uint16_t)) {
        *static_cast<uint16_t*>(object) = static_cast<uint16_t>(value);
    } else {
        *static_cast<uint32_t*>(object) = value;
    }
}

} // namespace

ResultCode SetText(const WriteTarget& target, std::string_view text) {
    DocumentAllocator* const allocator = target.context.FindAllocator();
    if (!allocator) {
        return NoAllocator;
    }
    if (text.size() >= std::numeric_limits<rapidjson::SizeType>::max()) {
        return OutOfMemory;
    }
    const char* const characters = text.empty() ? "" : text.data();
    target.value.SetString(characters, static_cast<rapidjson::SizeType>(text.size()), *allocator);
    return Platform::Success;
}

ResultCode ReadNarrow(const TypeDescriptor& type, void* object, const ReadSource& source) {
    std::string_view text;
    if (source.value.IsString()) {
        text = TextOf(source.value);
    } else if (!source.value.IsNull()) {
        return "Field not string";
    }
    type.operations.narrow->assign(object, text);
    return type.operations.narrow->view(object).size() == text.size() ? Platform::Success : OutOfMemory;
}

ResultCode WriteNarrow(const TypeDescriptor& type, const void* object, const WriteTarget& target) {
    return SetText(target, type.operations.narrow->view(object));
}

ResultCode ReadWide(const TypeDescriptor& type, void* object, const ReadSource& source) {
    std::wstring text;
    if (source.value.IsString()) {
        const ResultCode result = WideResult(Platform::ConvertString(TextOf(source.value), text));
        if (!result) {
            return result;
        }
    } else if (!source.value.IsNull()) {
        return "Field not string";
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
                StoreEnum(object, type.size, enumerator.value);
                return Platform::Success;
            }
        }
    }
    return "Unknown enum value found in data";
}

ResultCode WriteEnum(const TypeDescriptor& type, const void* object, const WriteTarget& target) {
    // Signed enumerators stand in the table as the full width; compare what the field can hold.
    const uint32_t mask = type.size < sizeof(uint32_t) ? (1u << (8 * type.size)) - 1 : 0xFFFFFFFF;
    const uint32_t value = LoadEnum(object, type.size);
    for (const Reflection::EnumeratorDescriptor& enumerator : type.enumerators) {
        if ((enumerator.value & mask) == value) {
            return SetText(target, enumerator.name.View());
        }
    }
    const ResultCode result = SetText(target, "UNKNOWN_ENUM_VALUE");
    return result ? "Unknown enum value found in type" : result;
}

} // namespace JsonSerialization
