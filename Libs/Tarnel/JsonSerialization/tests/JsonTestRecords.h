#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "Libs/Tarnel/Reflection/src/Reflection_Declaration.h"

enum class JsonColour : uint16_t { Red, Green = 7, Unlisted = 9 };
Reflection_DeclareEnum(JsonColour);

// One field of each type that the data can hold, none of them mandatory.
struct JsonValues {
    bool flag = true;
    int8_t int8 = 1;
    int32_t int32 = 1;
    int64_t int64 = 1;
    uint8_t uint8 = 1;
    uint16_t uint16 = 1;
    uint32_t uint32 = 1;
    uint64_t uint64 = 1;
    float real32 = 1;
    double real64 = 1;
    std::string text = "old";
    String::BasicT<String::Encoding::UTF8> basic{"old"};
    std::wstring wide = L"old";
    JsonColour colour = JsonColour::Green;
    std::vector<int32_t> numbers = {9, 9, 9};
    std::map<std::string, std::vector<std::string>> names = {{"old", {}}};
    char unsupported = 'x';
};
Reflection_DeclareType(JsonValues);

struct JsonPoint {
    int32_t x = 0;
    int32_t y = 0;
};
Reflection_DeclareType(JsonPoint);

struct JsonShape : JsonPoint {
    std::string name = "unnamed";
    std::vector<JsonPoint> corners;
    JsonPoint centre{7, 7};
};
Reflection_DeclareType(JsonShape);

// Its fields differ in what their attributes make of them.
struct JsonRemarks {
    std::string renamed = "r";
    std::string readOnly = "ro";
    std::string writeOnly = "wo";
    std::string ignored = "i";
    std::string shouted = "s";
};
Reflection_DeclareType(JsonRemarks);

// Stands in the data as one string, "major.minor".
struct JsonVersion {
    int major = 1;
    int minor = 2;
};
Reflection_DeclareType(JsonVersion);

struct JsonRelease {
    JsonVersion version;
};
Reflection_DeclareType(JsonRelease);
