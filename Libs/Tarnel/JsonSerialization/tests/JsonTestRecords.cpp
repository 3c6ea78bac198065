#include "Libs/Tarnel/JsonSerialization/tests/JsonTestRecords.h"

#include <cctype>
#include <cstdio>

#include "Libs/Tarnel/JsonSerialization/src/JsonSerialization_CustomSerializer.h"

using JsonSerialization::ReadSource;
using JsonSerialization::WriteTarget;
using Reflection::OptionalAttribute; // NOLINT(misc-unused-using-decls): the definitions below use it

namespace {

ResultCode ReadVersion(void* object, const ReadSource& source) {
    std::string text;
    if (const ResultCode result = JsonSerialization::ReadString(source.value, text); !result) {
        return result;
    }
    auto& version = *static_cast<JsonVersion*>(object);
    // NOLINTNEXTLINE(cert-err34-c): numbers of the test's own
    if (std::sscanf(text.c_str(), "%d.%d", &version.major, &version.minor) != 2) {
        return "Not a version";
    }
    return Platform::Success;
}

ResultCode WriteVersion(const void* object, const WriteTarget& target) {
    const auto& version = *static_cast<const JsonVersion*>(object);
    const std::string text = std::to_string(version.major) + "." + std::to_string(version.minor);
    target.value.SetString(text.c_str(), *target.context.FindAllocator());
    return Platform::Success;
}

ResultCode ReadUpperCase(void* object, const ReadSource& source) {
    auto& text = *static_cast<std::string*>(object);
    const ResultCode result = JsonSerialization::ReadString(source.value, text);
    for (char& c : text) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return result;
}

} // namespace

Reflection_DefineEnum(JsonColour, Reflection_Enumerator(JsonColour::Red, "RED"),
                      Reflection_Enumerator(JsonColour::Green, "GREEN"));

Reflection_DefineType(JsonValues, Reflection_Field(flag, "bool", OptionalAttribute()),
                      Reflection_Field(int8, "int8", OptionalAttribute()),
                      Reflection_Field(int32, "int32", OptionalAttribute()),
                      Reflection_Field(int64, "int64", OptionalAttribute()),
                      Reflection_Field(uint8, "uint8", OptionalAttribute()),
                      Reflection_Field(uint16, "uint16", OptionalAttribute()),
                      Reflection_Field(uint32, "uint32", OptionalAttribute()),
                      Reflection_Field(uint64, "uint64", OptionalAttribute()),
                      Reflection_Field(real32, "float", OptionalAttribute()),
                      Reflection_Field(real64, "double", OptionalAttribute()),
                      Reflection_Field(text, "text", OptionalAttribute()),
                      Reflection_Field(basic, "basic", OptionalAttribute()),
                      Reflection_Field(wide, "wide", OptionalAttribute()),
                      Reflection_Field(colour, "enum", OptionalAttribute()),
                      Reflection_Field(numbers, "vector", OptionalAttribute()),
                      Reflection_Field(names, "map", OptionalAttribute()),
                      Reflection_Field(unsupported, "char", OptionalAttribute(),
                                       Reflection::NoWriteAttribute()));

Reflection_DefineType(JsonPoint, Reflection_Field(x, "X"), Reflection_Field(y, "Y"));

Reflection_DefineType(JsonShape, Reflection_Base(JsonPoint),
                      Reflection_Field(name, "Name", OptionalAttribute()),
                      Reflection_Field(corners, "Corners"),
                      Reflection_Field(centre, "Centre", OptionalAttribute()));

Reflection_DefineType(JsonRemarks, Reflection_Field(renamed, "Own", Reflection::NameAttribute("InData")),
                      Reflection_Field(readOnly, "ReadOnly", Reflection::NoWriteAttribute()),
                      Reflection_Field(writeOnly, "WriteOnly", Reflection::NoReadAttribute()),
                      Reflection_Field(ignored, "Ignored", Reflection::IgnoreAttribute()),
                      Reflection_Field(shouted, "Shouted",
                                       Reflection::DeserializationAttribute(&ReadUpperCase)));

Reflection_DefineType(JsonVersion, Reflection_Field(major, "Unused"),
                      Reflection_TypeAttribute(Reflection::DeserializationAttribute(&ReadVersion)),
                      Reflection_TypeAttribute(Reflection::SerializationAttribute(&WriteVersion)));

Reflection_DefineType(JsonRelease, Reflection_Field(version, "Version"));
